// Signals printed from a table image: what the report cases do not reach.
#include <gtest/gtest.h>

#include "signals/sig_print.h"
#include "signals/sig_table.h"
#include "signals/tests/sig_fixture.h"

namespace {

// The control application's signals, in either byte order.
std::string ctrl_description(const char* order) {
    return std::string("member LQZ1234567_R1A\nfill 64 0x7f\ntable ctrl order=") + order + R"(
signal MOTOR_SET 0x1001 {
    uint sig_no
    enum mode values=IDLE:0,RUN:1,STOP:2
    struct target {
        short x
        short y format="%d"
    }
    struct axes[2] {
        ushort id
        char unit[2]
    }
    short grid[2][3]
    char label[8] text
    uchar raw[4]
    union u {
        uint word
        uchar bytes[4]
    }
    uint secret hidden
    float gain
    ptr next
}
signal NESTED 0x1004 {
    uint sig_no
    struct inner {
        uint a
        uint b
    }
    uint tail
}
)";
}

// Field values in a byte order: {size, value} pairs.
std::vector<uint8_t> fields(bool big, std::initializer_list<std::pair<int, uint64_t>> list) {
    std::vector<uint8_t> out;
    for (auto [size, value] : list)
        for (int i = 0; i < size; i++) out.push_back(uint8_t(value >> (8 * (big ? size - 1 - i : i))));
    return out;
}

std::vector<uint8_t> operator+(std::vector<uint8_t> a, const std::vector<uint8_t>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
std::vector<uint8_t> raw(std::string_view bytes) { return {bytes.begin(), bytes.end()}; }

std::vector<uint8_t> motor_set(bool big) {
    return fields(big, {{4, 0x1001}, {4, 1},                                        // sig_no, mode
                        {2, 0xfffe}, {2, 7},                                        // target
                        {2, 0xa}, {1, 'm'}, {1, 'm'}, {2, 0xb}, {1, 0}, {1, 1},     // axes
                        {2, 1}, {2, 2}, {2, 3}, {2, 4}, {2, 5}, {2, 6}}) +          // grid
           raw({"left\0xyz" "A\0BC" "\x12\x34\x56\x78", 16}) +                     // label, raw, u
           fields(big, {{4, 0xdeadbeef}, {4, 0x3fc00000}, {4, 0x00102030}});        // secret, gain, next
}

// Quirks of the walk that the report cases do not show.
TEST(SignalPrint, UnknownEnumerationValueAndStructuresBeyondTheBytes) {
    auto image = member_image(ctrl_description("big"));
    sig_table table{image, 64};
    ASSERT_EQ(reformat_magic_table(table, 0, 0, uint32_t(image.size() - 1)), 0);
    auto print = [&](const std::vector<uint8_t>& signal) {
        sink.clear();
        ssm_print_signal(table, signal.data(), uint32_t(signal.size()), 0, sink_put, nullptr, nullptr, 0);
        return sink;
    };
    // An enumeration value without an entry prints its number.
    auto unknown_mode = motor_set(true);
    unknown_mode[7] = 7;
    EXPECT_NE(print(unknown_mode).find("00000004: mode = 0x7\n"), std::string::npos);
    // A structure wholly beyond the bytes is not walked; the records of its
    // list, standing in line, are then taken as members of the signal
    // itself, over the signal's own bytes.
    EXPECT_EQ(print(fields(true, {{4, 0x1004}})), "Signal NESTED:\n\n00000000: sig_no = 0x1004\n00000000: a = 0x1004 ...");
    EXPECT_EQ(print(fields(true, {{4, 0x1004}, {4, 1}, {2, 0}})),
              "Signal NESTED:\n\n00000000: sig_no = 0x1004\n00000004: inner.a = 0x1 ...");
}

// One callback per array, with the table taken straight from an image.
TEST(SignalPrint, CompressedArrays) {
    auto image = member_image(ctrl_description("big"));
    sig_table table{image, 64};
    ASSERT_EQ(reformat_magic_table(table, 0, 0, uint32_t(image.size() - 1)), 0);
    const auto sig = motor_set(true);

    sink.clear();
    EXPECT_EQ(ssm_print_signal(table, sig.data(), uint32_t(sig.size()), 1, sink_put, nullptr, nullptr, 0), 0);
    EXPECT_EQ(sink,
              "Signal MOTOR_SET:\n\n"
              "00000000: sig_no = 0x1001\n"
              "00000004: mode = RUN\n"
              "00000008: target.x = 0xfffe\n"
              "0000000A: target.y = 7\n"
              "0000000C: axes[0].id = 0xa\n"
              "0000000E: axes[0].unit[0-1] = \"mm\"\n"
              "00000010: axes[1].id = 0xb\n"
              "00000012: axes[1].unit[0-1] = 0x00 0x01\n"
              "00000014: grid[0][0-2] = 0x1 0x2 0x3\n"
              "0000001A: grid[1][0-2] = 0x4 0x5 0x6\n"
              "00000020: label[0-7] = left\n"
              "00000028: raw[0-3] = \"A\" 0x00 \"BC\"\n"
              "0000002C: u.word = 0x12345678\n"
              "0000002C: u.bytes[0-3] = 0x12 \"4Vx\"\n"
              "00000034: gain = 1.5\n"
              "00000038: next = 0x102030");

}

}  // namespace
