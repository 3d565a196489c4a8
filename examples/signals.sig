# The example's signal symbol archive, build/examples/sigs.zip: one member
# per load module, named by its load module id (see mksigdb.cpp for the
# format). krd -z build/examples/sigs.zip prints the signals it describes
# field by field.

# The control application.
member LQZ1234567_R1A
# An object file's own bytes in front of the tables.
hex 7f 45 4c 46 01 02 01 00
fill 56 0
table ctrl_app order=big

# Texts are described as one value of the buffer's size: the report prints
# a text array once per element, each time from that element on.

# A port's link went down: the link supervision tells ctrl_main.
signal CTRL_LINK_LOST_IND 0x105 {
    uint sig_no
    uint reporter format="0x%08x"
    uint fault
    char reason size=12 text @12
}

signal CTRL_RESTART_REQ 0x106 {
    uint sig_no
    uint requester format="0x%08x"
    enum cause values=WATCHDOG:0,LINK_LOST:1,OPERATOR:2,UPGRADE:3
    uint delay_ms format="%u"
}

# New setpoints for the motor axes.
signal MOTOR_SETPOINT_REQ 0x1001 {
    uint sig_no
    ushort axis_count format="%u"
    enum mode size=2 values=IDLE:0,POSITION:1,VELOCITY:2,TORQUE:3
    struct axis[3] {
        short position format="%d"
        short velocity format="%d"
        uchar limits[2]
    }
    uint request_id hidden
}

# Samples of one sensor channel; as many as the signal is long.
signal SENSOR_SAMPLE_IND 0x1002 {
    uint sig_no
    uint timestamp format="%u"
    ushort channel format="%u"
    ushort count format="%u"
    struct calibration {
        float gain
        float offset
    }
    short samples[1] format="%d"
}

# The controller's state, with counters that are read either as one word
# or as two halves.
signal CTRL_STATUS_IND 0x1003 size=28 {
    uint sig_no
    enum state values=BOOTING:0,RUNNING:1,DEGRADED:2,FAILED:3
    union value {
        uint raw
        struct counters {
            ushort errors format="%u"
            ushort retries format="%u"
        }
    }
    uchar io_map[2][4]
    char unit_name size=8 text @20
}

# The basic OS segment.
member LQZ1000001_R4B
hex 7f 45 4c 46 01 02 01 00
fill 24 0
table ose_basic order=big

signal OS_TIMEOUT_IND 0xf01 {
    uint sig_no
    uint timer_id
    uint elapsed_ms format="%u"
}

signal OS_PROCESS_DIED_IND 0xf02 {
    uint sig_no
    uint pid format="0x%08x"
    char name[16] text
}
