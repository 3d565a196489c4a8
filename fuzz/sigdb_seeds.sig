# Seeds of fuzz_sigdb: member images with tables of every kind of member,
# in both byte orders (fuzz/run builds them with mksigdb).
member seed_big
fill 16 0
table seed order=big
signal ALL 0x10 {
    uint sig_no
    enum e values=A:1,B:2
    enum small size=2 values=C:3
    struct s {
        char c
        short h format="%hd"
        union u {
            uint w format="0x%08x"
            uchar b[4]
        }
    }
    struct arr[2][2] {
        ushort x
    }
    short grid[2][3] format="%d"
    char text[6] text
    char run[5]
    float f
    double d
    llong ll
    ullong ull format="%llu"
    ptr p
    uint hidden_one hidden
    ulong tail[1]
}
signal SMALL 0x11 {
    uint sig_no
    uchar b
}
table second order=big
signal SHORT_NO 0x12 {
    ushort sig_no
    ushort v[2]
}
member seed_little
table seed order=little magic=3
signal ALL 0x10 {
    uint sig_no
    enum e values=A:1,B:2
    struct s {
        char c
        short h
    }
    char text[4] text
    ushort v[1]
}
