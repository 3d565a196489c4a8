# The signal symbol files of the symbolic cases (see tools/mksigdb.cpp). The
# setup of each case (symbolic_setup) puts them into archives:
#   app.zip   LQZ1234567_R1A
#   os.zip    LQZ1000001_R4B, LQZ7654321_R2B
#   old.zip   LQZ1234567_R1A as an older revision had it, LQZ3333333_R1A
#   bad.zip   LQZ8888888_R1A (no tables), LQZ9999999_R1A (a corrupt table)
#   dup.zip   LQZ6666666_R1A twice, the first describing DUP_IND

# The control application, big-endian.
member LQZ1234567_R1A
hex 7f 45 4c 46 01 02 01 00
fill 40 0
table ctrl order=big

# Nested structures; enumerations of 4, 2 and 1 bytes, by name and by
# number; a hidden member.
signal CTRL_CONFIG_REQ 0x2001 {
    uint sig_no
    enum mode values=OFF:0,MANUAL:1,AUTO:2
    enum fallback values=OFF:0,MANUAL:1,AUTO:2
    enum level size=2 values=LOW:1,HIGH:2
    enum unit size=1 values=MM:1,DEG:2
    uchar spare
    struct limits {
        struct speed {
            short min format="%d"
            short max format="%d"
        }
        ushort ramp_ms format="%u"
        uint checksum hidden
    }
}

# An array of structures holding a union; a two-dimensional array.
signal CTRL_TABLE_IND 0x2002 {
    uint sig_no
    struct entry[2] {
        ushort id format="%u"
        uchar flags[2]
        union u {
            uint word
            ushort half[2] format="%u"
        }
    }
    short grid[2][3] format="%d"
}

# The signal number is not printed: offsets count from the first value.
signal CTRL_PORT_IND 0x2003 {
    uint sig_no hidden
    ushort port format="%u"
    ushort state
}

# The other kinds of value.
signal CTRL_MEASURE_IND 0x2004 {
    uint sig_no
    float gain
    double energy
    llong total
    llong small size=4
    ptr buffer
    uchar flag
    char grade format="%c"
    char code[3]
    char label[4] text
    ulong count format="%lu"
}

# As many samples as the signal is long.
signal CTRL_SAMPLES_IND 0x2005 {
    uint sig_no
    ushort count format="%u"
    short samples[1] format="%d"
}

signal CTRL_WORDS_IND 0x2006 {
    uint sig_no
    uint words[1]
}

# As many events as the signal is long.
signal CTRL_EVENTS_IND 0x2007 {
    uint sig_no
    struct event[1] {
        ushort code format="%u"
        ushort arg
    }
}

signal CTRL_ACK 0x2008 {
    uint sig_no
    uint result
}

# A structure first: its name starts no path.
signal CTRL_HEADER_IND 0x2009 {
    struct hdr {
        uint sig_no
        ushort seq format="%u"
        ushort len format="%u"
    }
    uint payload
}

# The basic OS.
member LQZ1000001_R4B
fill 16 0
table ose order=big
signal OS_TIMEOUT_IND 0xf01 {
    uint sig_no
    uint timer_id
    uint elapsed_ms format="%u"
}

# A driver whose table, and so whose signals, are little-endian.
member LQZ7654321_R2B
fill 16 0
table drv order=little
signal DRV_STATUS_IND 0x3001 {
    uint sig_no
    ushort port format="%u"
    enum link size=2 values=DOWN:0,UP:1
    uint rx_frames format="%u"
}

# The control application as an older revision described it: CTRL_ACK
# had a 16-bit result.
member OLD_LQZ1234567_R1A
fill 16 0
table ctrl_old order=big
signal CTRL_ACK 0x2008 {
    uint sig_no
    ushort result
    ushort reserved
}

member LQZ3333333_R1A
fill 16 0
table io order=big
signal IO_READY_IND 0x4001 {
    uint sig_no
    ushort channel format="%u"
}

# Members that cannot be used.
member LQZ8888888_R1A
text "an object file without signal tables"
fill 64 0

member LQZ9999999_R1A
fill 16 0
table broken order=big magic=1
signal BROKEN_IND 0x5001 {
    uint sig_no
}

member DUP_FIRST
fill 16 0
table dup1 order=big
signal DUP_IND 0x6001 {
    uint sig_no
    uint first
}

member DUP_SECOND
fill 16 0
table dup2 order=big
signal DUP_IND 0x6001 {
    uint sig_no
    uint second
}
