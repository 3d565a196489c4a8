# Two members; the archive gets both under the first one's name.
member LQZ1234567_R1A
table ctrl
signal LINK_LOST 0x2c {
    uint sig_no
    uint port
}
member LQZ1234567_R1B
table ctrl_b
signal LINK_UP 0x2d {
    uint sig_no
    uint port
}
