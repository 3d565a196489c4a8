// Signal tables: reformatting statuses, lookups, the confsig family, the
// checked formats, and what keeps a lying table from running away.
#include <gtest/gtest.h>

#include <bit>
#include <map>

#include "signals/sig_format.h"
#include "signals/sig_print.h"
#include "signals/sig_table.h"
#include "signals/ssm.h"
#include "signals/tests/sig_fixture.h"

namespace {

std::string table_text(const std::string& name, const char* order, const std::string& body) {
    return "member M\ntable " + name + " order=" + order + "\n" + body;
}

const char* const two_signals = R"(
signal FIRST 0x11 {
    ushort sig_no
    ushort a
    uint b
}
signal SECOND 0x22 {
    ushort sig_no
    ushort a
}
signal FIRST_AGAIN 0x11 {
    ushort sig_no
    uchar c
}
)";

struct built {
    std::vector<uint8_t> image;
    sigdb_layout layout;
    sig_table table() { return {image, uint32_t(layout.header)}; }
    int reformat() { return sigdb_reformat_magic_table(table(), 0, 0, uint32_t(image.size() - 1)); }
    // What the signal prints as, and the print's result.
    std::string print(const std::vector<uint8_t>& signal, int compress = 0, int* result = nullptr) {
        sink.clear();
        const int r = ssm_print_signal(table(), signal.data(), uint32_t(signal.size()), compress, sink_put, nullptr,
                                       nullptr, 0);
        if (result) *result = r;
        return sink;
    }
    void put32(size_t at, uint32_t v, bool big = true) {
        for (int i = 0; i < 4; i++) image[at + size_t(i)] = uint8_t(v >> (8 * (big ? 3 - i : i)));
    }
};

built build(const std::string& description) {
    built b;
    std::vector<sigdb_layout> layouts;
    b.image = member_image(description, &layouts);
    b.layout = layouts.at(0);
    return b;
}

TEST(SignalTable, ReformatStatuses) {
    const std::string name127(127, 'n');
    EXPECT_EQ(build(table_text(name127, "big", two_signals)).reformat(), 0);
    EXPECT_EQ(build(table_text(name127 + "n", "big", two_signals)).reformat(), 9);

    auto with = [&](auto change) {
        built b = build(table_text("t", "big", two_signals));
        change(b);
        return b.reformat();
    };
    const size_t sizes = SYM_SIZES;
    EXPECT_EQ(with([](built& b) { b.image.resize(b.layout.header + 299); }), 3);
    EXPECT_EQ(with([](built& b) { b.image[b.layout.header + 60] = 'x'; }), 3);
    EXPECT_EQ(with([](built& b) { b.image[b.layout.header + 1] = 5; }), 2);
    EXPECT_EQ(with([&](built& b) { b.put32(b.layout.header + sizes + 0, 13); }), 6);
    EXPECT_EQ(with([&](built& b) { b.put32(b.layout.header + sizes + 4, 21); }), 7);
    EXPECT_EQ(with([&](built& b) { b.put32(b.layout.header + sizes + 8, 9); }), 8);
    EXPECT_EQ(with([&](built& b) { b.put32(b.layout.header + sizes + 16, 3); }), 9);
    EXPECT_EQ(with([&](built& b) { b.put32(b.layout.header + sizes + 8, 0); }), 5);
    // A pool whose text is missing.
    EXPECT_EQ(with([](built& b) { b.image[b.layout.pools[4] + b.layout.sizes[4] + 5] = 'X'; }), 5);
    // A pool larger than the room in front of its text.
    EXPECT_EQ(with([&](built& b) { b.put32(b.layout.header + sizes + 0, 0x10000 * 12); }), 5);
    // A text that ends right behind its fixed part names nothing.
    EXPECT_EQ(with([](built& b) { b.image[b.layout.header + 84] = 0; }), 9);
    // Bounds: none at all, and a header that would begin before the image.
    built none = build(table_text("t", "big", two_signals));
    EXPECT_EQ(sigdb_reformat_magic_table(none.table(), 0, SIG_NULL, SIG_NULL), 1);
    EXPECT_EQ(sigdb_reformat_magic_table({none.image, uint32_t(-40)}, 0, 0, uint32_t(none.image.size() - 1)), 3);

    // A type code above 18: refused in the other byte order except in the
    // pool's end mark, never tested in host order.
    auto type_19 = [&](const char* order, size_t record_from_end) {
        built b = build(table_text("t", order, two_signals));
        const size_t at = b.layout.pools[1] + b.layout.sizes[1] - record_from_end * 20 + 12;
        b.image[at + (order[0] == 'b' ? 1 : 0)] = 19;
        return b.reformat();
    };
    EXPECT_EQ(type_19("big", 1), 0);
    EXPECT_EQ(type_19("big", 2), 7);
    EXPECT_EQ(type_19("little", 2), 0);

    // Relocated by the address the header was linked for, as the writer
    // left the positions: 0x100000 plus the place in the file.
    auto linked = [&](auto change) {
        built b = build(table_text("t", "big", two_signals));
        change(b);
        return sigdb_reformat_table(b.table(), uint32_t(0x100000 + b.layout.header), SIG_NULL, SIG_NULL);
    };
    EXPECT_EQ(linked([](built&) {}), 0);
    EXPECT_EQ(linked([](built& b) { b.put32(b.layout.header + SYM_POOLS + 8, 0x900000); }), 4);
    EXPECT_EQ(linked([](built& b) { b.put32(b.layout.header + SYM_POOLS + 8, 0); }), 5);
    EXPECT_EQ(linked([](built& b) { b.put32(b.layout.header + SYM_SIZES + 16, 3); }), 9);
    built relocated = build(table_text("t", "little", two_signals));
    ASSERT_EQ(reformat_table(relocated.table(), uint32_t(0x100000 + relocated.layout.header), 0, SIG_NULL), 0);
    EXPECT_EQ(signo_size(relocated.table()), 2);

    // The other family is not found this way, and is left alone.
    built other = build(table_text("t", "big", two_signals));
    other.image[other.layout.header + 1] = 1;
    const auto before = other.image;
    EXPECT_EQ(reformat_magic_table(other.table(), 0, 0, uint32_t(other.image.size() - 1)), 1);
    EXPECT_EQ(other.image, before);
}

TEST(SignalTable, Lookups) {
    built big = build(table_text("t", "big", two_signals));
    EXPECT_EQ(check_endian(big.table()), 1);
    ASSERT_EQ(big.reformat(), 0);
    EXPECT_EQ(check_endian(big.table()), 1);  // the magic word keeps the stored order
    sig_table t = big.table();
    EXPECT_EQ(signo_size(t), 2);
    const std::vector<uint8_t> signal = {0, 0x11, 0, 1, 0, 0, 0, 2};
    EXPECT_EQ(get_sig_no(t, signal), 0x11u);
    EXPECT_EQ(get_sig_no(t, std::span(signal).first(1)), 0u);

    std::string_view name;
    auto names = [&](const char* pattern) {
        std::string found;
        uint32_t c = SIG_NULL, signo = 0;
        while (list_sig_by_name(pattern, t, &c, &name, nullptr, nullptr, &signo))
            found += std::string(name) + "=" + std::to_string(signo) + " ";
        return found;
    };
    EXPECT_EQ(names("*"), "FIRST=17 SECOND=34 FIRST_AGAIN=17 ");
    EXPECT_EQ(names("FIRST*"), "FIRST=17 FIRST_AGAIN=17 ");
    EXPECT_EQ(names("FIRST"), "FIRST=17 ");
    EXPECT_EQ(names("FIRS"), "");

    // No table at all.
    EXPECT_EQ(sigdb_signo_size({}), 0);
    EXPECT_EQ(sigdb_get_sig_no({}, signal), 0u);
    EXPECT_EQ(sigdb_check_endian({}), 3);

    // Every structure of one member: no place for a number.
    built single = build(table_text("s", "big", "signal ONE 1 {\n uint only\n}\n"));
    ASSERT_EQ(single.reformat(), 0);
    EXPECT_EQ(signo_size(single.table()), 0);
    EXPECT_EQ(get_sig_no(single.table(), signal), 0u);

    sink.clear();
    EXPECT_EQ(ssm_print_signal_name(t, 0x11, sink_put), 2);
    EXPECT_EQ(sink, "FIRST FIRST_AGAIN ");
}

// A table's lookup, worked out once, answers as the scan of its pools:
// every record of a number in pool order from any cursor, what a hit
// reports, the number's width, and so the printed signals.
TEST(SignalTable, LookupAnswersAsTheScan) {
    std::vector<sigdb_layout> layouts;
    auto image = member_image(table_text("t", "little", std::string(two_signals) + R"(
signal LAST 0x22 {
    ushort sig_no
    short v[3]
}
signal NESTED 0x33 {
    ushort sig_no
    struct s {
        uchar a
        uchar b[2]
    }
}
)") + "table u order=big\n" + two_signals, &layouts);
    const sig_table scanned{image, uint32_t(layouts[0].header)}, other{image, uint32_t(layouts[1].header)};
    ASSERT_EQ(reformat_magic_table(scanned, 0, 0, uint32_t(image.size() - 1)), 0);
    ASSERT_EQ(reformat_magic_table(other, 0, 0, uint32_t(image.size() - 1)), 0);
    const sig_lookup lookup = sigdb_lookup_of(scanned);
    sig_table indexed = scanned;
    indexed.lookup = &lookup;
    EXPECT_EQ(signo_size(indexed), signo_size(scanned));

    auto walk = [&](sig_table t, uint32_t signo, uint32_t cursor) {
        std::string found;
        std::string_view name;
        uint32_t size = 99, var_size = 99;
        for (int hits = 0; hits < 10 && list_sig_by_number(signo, t, &cursor, &name, &size, &var_size); hits++)
            found += std::string(name) + " " + std::to_string(cursor) + " " + std::to_string(size) + " " +
                     std::to_string(var_size) + ";";
        return found;
    };
    uint32_t foreign = SIG_NULL;
    ASSERT_EQ(list_sig_by_number(0x11, other, &foreign, nullptr, nullptr, nullptr), 1);
    const uint32_t sigs = sig_pool_of(scanned, POOL_SIGDESC).at;
    for (uint32_t signo : {0x11u, 0x22u, 0x33u, 0x44u})
        for (uint32_t cursor : {SIG_NULL, foreign, sigs, sigs + 12, sigs + 5 * 12})
            EXPECT_EQ(walk(indexed, signo, cursor), walk(scanned, signo, cursor)) << signo << " " << cursor;
    EXPECT_EQ(walk(indexed, 0x22, SIG_NULL), "SECOND " + std::to_string(sigs + 12) + " 4 0;LAST " +
                                                 std::to_string(sigs + 36) + " 8 2;");

    for (std::vector<uint8_t> signal : {std::vector<uint8_t>{0x22, 0, 1, 0, 2, 0, 3, 0, 4, 0, 5, 0},
                                        std::vector<uint8_t>{0x33, 0, 'a', 'b', 'c', 'd'},
                                        std::vector<uint8_t>{0x11, 0, 1, 0, 2, 0}}) {
        sink.clear();
        ssm_print_signal(scanned, signal.data(), uint32_t(signal.size()), 0, sink_put, nullptr, nullptr, 1);
        const std::string by_scan = sink;
        sink.clear();
        ssm_print_signal(indexed, signal.data(), uint32_t(signal.size()), 0, sink_put, nullptr, nullptr, 1);
        EXPECT_EQ(sink, by_scan);
    }
}

// Odd but harmless tables: without a string pool members are named by type;
// an array of elements of size 0 is one element wide; a format without a
// conversion prints its text; a text ends at its zero, at its member's end,
// or after 1023 characters; a structure that contains itself ends.
TEST(SignalTable, OddTablesPrintAndEnd) {
    built b = build(table_text("t", "little", "signal S 0x31 {\n uint sig_no\n 19 odd size=2\n}\n"));
    ASSERT_EQ(b.reformat(), 0);
    b.put32(b.layout.header + SYM_POOLS + 4 * POOL_STRING, SIG_NULL, std::endian::native == std::endian::big);
    EXPECT_EQ(b.print({0x31, 0, 0, 0, 0xcd, 0xab}),
              "Signal <SIGNAL_SYMBOL_NAME>:\n\n00000000: (unsigned int) = 0x31\n00000004: (unknown type) = 0xabcd ...");

    b = build(table_text("t", "big", "signal Z 0x51 {\n uint sig_no\n int z[3] size=0\n ushort spare format=\"n/a\"\n}\n"));
    ASSERT_EQ(b.reformat(), 0);
    for (int compress : {0, 1})
        EXPECT_EQ(b.print({0, 0, 0, 0x51, 0, 9, 0, 0}, compress),
                  std::string("Signal Z:\n\n00000000: sig_no = 0x51\n") + (compress ? "" : "00000004: z[0] = 0x0\n") +
                      "00000004: spare = n/a");

    b = build(table_text("t", "big", "signal T 0x41 {\n uint sig_no\n char s[1500] text\n uint after\n}\n"));
    ASSERT_EQ(b.reformat(), 0);
    std::vector<uint8_t> signal(4 + 1500 + 4, 'a');
    signal[0] = signal[1] = signal[2] = 0;
    signal[3] = 0x41;
    EXPECT_EQ(b.print(signal, 1), "Signal T:\n\n00000000: sig_no = 0x41\n00000004: s[0-1499] = " +
                                      std::string(1023, 'a') + "\n000005E0: after = 0x61616161");
    EXPECT_NE(b.print(signal).find("\n000005DE: s[1498] = aa\n000005DF: s[1499] = a\n"), std::string::npos);

    // Records: 0 top, 1 sig_no, 2 pad, 3 s, 4 x. s's link points at the top's list.
    b = build(table_text("t", "big", "signal S 0x31 {\n uint sig_no\n uint pad\n struct s @0 {\n  uint x\n }\n}\n"));
    const size_t link = b.layout.pools[1] + 3 * 20 + 10;
    b.image[link] = 0;
    b.image[link + 1] = 1;
    ASSERT_EQ(b.reformat(), 0);
    const std::string cycle = b.print({0, 0, 0, 0x31, 0, 0, 0, 0});
    EXPECT_LT(cycle.size(), 100000u);
    EXPECT_NE(cycle.find("\n00000000: s.s.s.s.sig_no = 0x31\n"), std::string::npos);
}

TEST(SignalTable, FindTextPassesOverWhereACandidateFailed) {
    size_t at = 0;
    auto find = [&](std::string_view hay, std::string_view pattern) {
        return ssmFindText(pattern, reinterpret_cast<const uint8_t*>(hay.data()), hay.size(), &at);
    };
    EXPECT_EQ(find("xxabcd", "abc"), 0);
    EXPECT_EQ(at, 2u);
    EXPECT_EQ(find("aabc", "abc"), 2);   // the match began on the failing byte
    EXPECT_EQ(find("ababc", "abc"), 2);
    EXPECT_EQ(find("abxabc", "abc"), 0);
    EXPECT_EQ(at, 3u);
    EXPECT_EQ(find("ab", "abc"), 1);
    EXPECT_EQ(find("xxab", "abc"), 2);

    const std::string_view image = "..abc";
    uint32_t hit = 0;
    auto bytes = std::span(reinterpret_cast<const uint8_t*>(image.data()), image.size());
    EXPECT_EQ(sigdb_find_bytes(bytes, "abc", 0, 5, &hit), 0);
    EXPECT_EQ(hit, 2u);
    EXPECT_EQ(sigdb_find_bytes(bytes, "abc", 0, 4, &hit), 2);  // the last byte is not reached
    EXPECT_EQ(sigdb_find_bytes(bytes, "abc", 2, 4, &hit), 1);
}

// A confsig table, linked for address 0x1000, in big-endian order.
struct confsig_image {
    std::vector<uint8_t> b = std::vector<uint8_t>(0x100);
    static constexpr uint32_t header = 0x10, link = 0x1000;
    static uint32_t addr(uint32_t pos) { return link + pos - header; }
    void w16(uint32_t at, uint32_t v) { b[at] = uint8_t(v >> 8), b[at + 1] = uint8_t(v); }
    void w32(uint32_t at, uint32_t v) { w16(at, v >> 16), w16(at + 2, v & 0xffff); }
    void ref(uint32_t at, uint32_t pos) { w32(at, addr(pos)); }
    void var(uint32_t at, uint16_t flags, uint8_t type, uint8_t dims, uint32_t dim_at, uint16_t size,
             uint16_t offset, uint32_t link_at, uint32_t name_at) {
        w16(at, flags);
        b[at + 2] = type;
        b[at + 3] = dims;
        if (dim_at) ref(at + 4, dim_at);
        w16(at + 8, size);
        w16(at + 10, offset);
        if (link_at) ref(at + 12, link_at);
        if (name_at) ref(at + 16, name_at);
    }
    confsig_image() {
        const uint32_t sigs = 0x40, vars = 0x58, enums = 0xAC, strings = 0xBC, index = 0xD0;
        w16(header, 1);
        const uint32_t pools[5] = {sigs, vars, enums, strings, index}, sizes[5] = {24, 84, 16, 20, 2};
        for (int k = 0; k < 5; k++) ref(header + 4 + 4 * uint32_t(k), pools[k]), w32(header + 24 + 4 * uint32_t(k), sizes[k]);
        ref(sigs, strings);  // PING
        w32(sigs + 4, 0x55);
        ref(sigs + 8, vars);
        var(vars, 0, 13, 0, 0, 8, 0, vars + 28, strings);
        var(vars + 28, 2, 0, 0, 0, 2, 4, enums, strings + 5);    // mode, another follows
        var(vars + 56, 0, 2, 1, index, 1, 6, 0, strings + 10);   // b[2], the last
        w32(enums, 1);
        ref(enums + 4, strings + 12);  // ON
        std::memcpy(&b[strings], "PING\0mode\0b\0ON\0", 15);
        w16(index, 2);
    }
    sig_table table() { return {b, header}; }
};

TEST(SignalTable, ConfsigTable) {
    confsig_image c;
    ASSERT_EQ(reformat_table(c.table(), confsig_image::link, SIG_NULL, SIG_NULL), 0);
    const sig_table t = c.table();
    EXPECT_EQ(check_endian(t), 1);
    EXPECT_EQ(signo_size(t), 4);  // the list leaves the number out
    const std::vector<uint8_t> signal = {0, 0, 0, 0x55, 0, 1, 'A', 'B'};
    sink.clear();
    EXPECT_EQ(ssm_print_signal(t, signal.data(), 8, 1, sink_put, nullptr, nullptr, 0), 0);
    EXPECT_EQ(sink, "Signal PING:\n\n00000000: PING.mode = ON\n00000002: PING.b[0-1] = \"AB\"");
    sink.clear();
    EXPECT_EQ(printsig(t, signal.data(), 8, 0, sink_put, nullptr, nullptr), 0);
    EXPECT_EQ(sink, "PING : PING.mode = ON, PING.b[0] = 0x41, PING.b[1] = 0x42");
    uint32_t cursor = SIG_NULL, signo = 0;
    std::string_view name;
    EXPECT_EQ(list_sig_by_name("P*", t, &cursor, &name, nullptr, nullptr, &signo), 1);
    EXPECT_EQ(signo, 0x55u);
    EXPECT_EQ(list_sig_by_name("P*", t, &cursor, &name, nullptr, nullptr, &signo), 0);

    confsig_image out_of_range;
    out_of_range.w32(0x58 + 28 + 16, 0x9000);
    EXPECT_EQ(reformat_table(out_of_range.table(), confsig_image::link, SIG_NULL, SIG_NULL), 7);
    confsig_image bad_type;
    bad_type.b[0x58 + 28 + 2] = 15;
    EXPECT_EQ(reformat_table(bad_type.table(), confsig_image::link, SIG_NULL, SIG_NULL), 8);
    confsig_image bad_size;
    bad_size.w32(confsig_image::header + 28, 85);
    EXPECT_EQ(reformat_table(bad_size.table(), confsig_image::link, SIG_NULL, SIG_NULL), 6);
    confsig_image bad_pool;
    bad_pool.w32(confsig_image::header + 4, 0x50000);
    EXPECT_EQ(reformat_table(bad_pool.table(), confsig_image::link, SIG_NULL, SIG_NULL), 4);
    EXPECT_EQ(reformat_magic_table(bad_pool.table(), 0, 0, 0xff), 1);
}

TEST(SignalFormat, OnlyOneFittingConversion) {
    char out[64];
    auto integer = [&](const char* f, uint64_t v, int bits = 64, bool is_signed = false) {
        const sig_format checked = sig_check_format(f);
        EXPECT_EQ(checked.kind, sig_format::INTEGER) << f;
        sig_format_integer(checked, v, bits, is_signed, out, sizeof out);
        return std::string(out);
    };
    EXPECT_EQ(integer("%d", 0xffffffff), "-1");
    EXPECT_EQ(integer("%ld", 0xffffffff), "-1");  // the target's long is 32 bits
    EXPECT_EQ(integer("%lld", 0xffffffffffffffff), "-1");
    EXPECT_EQ(integer("%hhd", 0x1ff), "-1");
    EXPECT_EQ(integer("%hu", 0x12345), "9029");
    EXPECT_EQ(integer("v=0x%08lX%%", 0xbeef), "v=0x0000BEEF%");
    EXPECT_EQ(integer("[%-3c]", 'A'), "[A  ]");
    EXPECT_EQ(integer("%#o", 8), "010");
    // As a C argument: a signed short widens by its sign, an unsigned one by zeros.
    EXPECT_EQ(integer("%d", 0xff9c, 16, true), "-100");
    EXPECT_EQ(integer("%x", 0xff9c, 16, true), "ffffff9c");
    EXPECT_EQ(integer("%hx", 0xff9c, 16, true), "ff9c");
    EXPECT_EQ(integer("%d", 0xff9c, 16, false), "65436");
    EXPECT_EQ(integer("%lld", 0xffffffff, 32, true), "-1");
    const sig_format f = sig_check_format("%6.2f s");
    ASSERT_EQ(f.kind, sig_format::FLOATING);
    sig_format_floating(f, 1.5, out, sizeof out);
    EXPECT_EQ(std::string(out), "  1.50 s");
    EXPECT_EQ(sig_check_format("%Lg").kind, sig_format::FLOATING);
    // Without a conversion the text stands for any value.
    const sig_format plain = sig_check_format("n/a 100%%");
    ASSERT_EQ(plain.kind, sig_format::PLAIN);
    sig_format_integer(plain, 7, 32, false, out, sizeof out);
    EXPECT_EQ(std::string(out), "n/a 100%");
    for (const char* bad : {"%s", "%n", "%p", "%*d", "%.*d", "%d%d", "%256d", "%.999f", "", "50%",
                            "%hf", "%Ld", "%1$d", "%lc%", "%q"})
        EXPECT_EQ(sig_check_format(bad).kind, sig_format::NONE) << bad;
    EXPECT_EQ(sig_check_format(std::string_view()).kind, sig_format::NONE);
    EXPECT_EQ(sig_check_format(std::string(300, 'x') + "%d").kind, sig_format::NONE);
}

// Our digits against printf's: every flag, width, precision and length a
// table may give, over values at the edges of each width, as a C argument
// of each element type. printf gets the host's length for the target's.
TEST(SignalFormat, DigitsAsPrintfMakesThem) {
    const uint64_t values[] = {0, 1, 8, 10, 0x7f, 0x80, 0xffff, 0x7fffffff, 0x80000000, 0xffffffff,
                               1234567890123, 0x8000000000000000, 0xffffffffffffffff, uint64_t(-12345678)};
    const std::pair<const char*, int> lengths[] = {{"", 32}, {"hh", 8}, {"h", 16}, {"l", 32}, {"ll", 64}};
    std::map<int, const char*> host_length = {{8, "hh"}, {16, "h"}, {32, ""}, {64, "ll"}};
    char ours[1024], theirs[1024];
    for (const char* flags : {"", "-", "+", " ", "#", "0", "-0", "+ #0", "-+ #0"})
        for (const char* width : {"", "1", "6", "30"})
            for (const char* precision : {"", ".", ".0", ".1", ".4", ".25"})
                for (auto [length, bits] : lengths)
                    for (char conv : std::string_view("diouxX")) {
                        const std::string layout = std::string(flags) + width + precision;
                        const std::string format = "<%" + layout + length + conv + "%%>";
                        const std::string host = "<%" + layout + host_length[bits] + conv + "%%>";
                        // Kept verdicts, of which there are far fewer than formats here.
                        const sig_format& f = sig_checked_format(format);
                        ASSERT_EQ(f.kind, sig_format::INTEGER) << format;
                        for (uint64_t v : values)
                            for (int value_bits : {8, 16, 32, 64})
                                for (bool value_signed : {false, true}) {
                                    // The element as C would pass it, then as printf reads it.
                                    const unsigned shift = 64 - unsigned(value_bits);
                                    const int64_t arg = value_signed ? int64_t(v << shift) >> shift
                                                                     : int64_t((v << shift) >> shift);
                                    if (bits == 64) std::snprintf(theirs, sizeof theirs, host.c_str(), (long long)arg);
                                    else std::snprintf(theirs, sizeof theirs, host.c_str(), int(arg));
                                    sig_format_integer(f, v, value_bits, value_signed, ours, sizeof ours);
                                    ASSERT_STREQ(ours, theirs) << format << " " << v << " " << value_bits;
                                }
                    }
}

}  // namespace
