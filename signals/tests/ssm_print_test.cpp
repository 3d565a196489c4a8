// Whole signals printed from real archives: a member written by our writer,
// zipped by the zip tool, selected, loaded and printed by the manager.
#include <gtest/gtest.h>

#include "signals/sig_print.h"
#include "signals/sig_table.h"
#include "signals/ssm.h"
#include "signals/tests/sig_fixture.h"
#include "tests/capture.h"

#include <filesystem>

namespace {

const SsmAllocators heap = {std::malloc, std::free};

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
signal SAMPLES 0x1002 {
    uint sig_no
    uint v[1]
}
signal STATUS 0x1003 {
    uint sig_no
    ushort state format="%u"
    ushort flags format="0x%04x"
}
signal NESTED 0x1004 {
    uint sig_no
    struct inner {
        uint a
        uint b
    }
    uint tail
}
table extra order=)" + order + R"(
signal PING 0x2001 {
    uint sig_no
    uchar seq
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

const char* const motor_set_text =
    "Signal MOTOR_SET:\n\n"
    "00000000: sig_no = 0x1001\n"
    "00000004: mode = RUN\n"
    "00000008: target.x = 0xfffe\n"
    "0000000A: target.y = 7\n"
    "0000000C: axes[0].id = 0xa\n"
    "0000000E: axes[0].unit[0] = 0x6d\n"
    "0000000F: axes[0].unit[1] = 0x6d\n"
    "00000010: axes[1].id = 0xb\n"
    "00000012: axes[1].unit[0] = 0x0\n"
    "00000013: axes[1].unit[1] = 0x1\n"
    "00000014: grid[0][0] = 0x1\n"
    "00000016: grid[0][1] = 0x2\n"
    "00000018: grid[0][2] = 0x3\n"
    "0000001A: grid[1][0] = 0x4\n"
    "0000001C: grid[1][1] = 0x5\n"
    "0000001E: grid[1][2] = 0x6\n"
    "00000020: label[0] = left\n"
    "00000021: label[1] = eft\n"
    "00000022: label[2] = ft\n"
    "00000023: label[3] = t\n"
    "00000024: label[4] = \n"
    "00000025: label[5] = xyz\n"
    "00000026: label[6] = yz\n"
    "00000027: label[7] = z\n"
    "00000028: raw[0] = 0x41\n"
    "00000029: raw[1] = 0x0\n"
    "0000002A: raw[2] = 0x42\n"
    "0000002B: raw[3] = 0x43\n"
    "0000002C: u.word = 0x12345678\n"
    "0000002C: u.bytes[0] = 0x12\n"
    "0000002D: u.bytes[1] = 0x34\n"
    "0000002E: u.bytes[2] = 0x56\n"
    "0000002F: u.bytes[3] = 0x78\n"
    "00000034: gain = 1.5\n"
    "00000038: next = 0x102030";

std::string print(const char* lmid, const std::vector<uint8_t>& signal) {
    sink.clear();
    EXPECT_EQ(ssmPrint(lmid, signal.data(), uint32_t(signal.size()), sink_put), 0);
    return sink;
}

class SignalArchive : public ::testing::TestWithParam<bool> {};

// The same description and the same values print alike in either byte
// order: a signal's bytes are in its table's order.
TEST_P(SignalArchive, PrintsWholeSignals) {
    const bool big = GetParam();
    scratch_dir dir;
    const std::string zip = dir.archive("sigs.zip", ctrl_description(big ? "big" : "little"));
    ASSERT_EQ(ssmSelectArchive(zip.c_str(), &heap), 0);
    ASSERT_EQ(ssmLoad("LQZ1234567_R1A"), 0);
    const char* lm = "LQZ1234567_R1A";

    // Only the union's word shows the byte order.
    std::string expected = motor_set_text;
    if (!big) expected.replace(expected.find("0x12345678"), 10, "0x78563412");
    EXPECT_EQ(print(lm, motor_set(big)), expected);

    // An enumeration value without an entry prints its number.
    auto unknown_mode = motor_set(big);
    unknown_mode[big ? 7 : 4] = 7;
    EXPECT_NE(print(lm, unknown_mode).find("00000004: mode = 0x7\n"), std::string::npos);

    // Longer than declared, last member an array: it takes all the bytes;
    // an element that is not whole is neither printed nor excess.
    auto samples = fields(big, {{4, 0x1002}, {4, 10}, {4, 11}, {4, 12}, {2, 0xffff}});
    EXPECT_EQ(print(lm, samples),
              "Signal SAMPLES:\n\n00000000: sig_no = 0x1002\n00000004: v[0] = 0xa\n"
              "00000008: v[1] = 0xb\n0000000C: v[2] = 0xc");

    // Longer, last member no array: the surplus is excess bytes.
    auto status = fields(big, {{4, 0x1003}, {2, 5}, {2, 16}}) + raw("\1\2\3\4");
    EXPECT_EQ(print(lm, status),
              "Signal STATUS:\n\n00000000: sig_no = 0x1003\n00000004: state = 5\n00000006: flags = 0x0010\n"
              "<excess bytes>\n"
              "00000008: 01020304" + std::string(30, ' ') + "\"....\"\n");

    // Shorter: the members that fit, then " ...".
    status.resize(7);
    EXPECT_EQ(print(lm, status), "Signal STATUS:\n\n00000000: sig_no = 0x1003\n00000004: state = 5 ...");
    // A structure wholly beyond the bytes is not walked; the records of its
    // list, standing in line, are then taken as members of the signal
    // itself, over the signal's own bytes.
    EXPECT_EQ(print(lm, fields(big, {{4, 0x1004}})),
              "Signal NESTED:\n\n00000000: sig_no = 0x1004\n00000000: a = 0x1004 ...");
    EXPECT_EQ(print(lm, fields(big, {{4, 0x1004}, {4, 1}, {2, 0}})),
              "Signal NESTED:\n\n00000000: sig_no = 0x1004\n00000004: inner.a = 0x1 ...");

    // Described by the member's second table.
    EXPECT_EQ(print(lm, fields(big, {{4, 0x2001}, {1, 9}, {3, 0}})), "Signal PING:\n\n00000000: sig_no = 0x2001\n00000004: seq = 0x9");

    // Described by no table: a hex dump.
    EXPECT_EQ(print(lm, fields(big, {{4, 0x9999}}) + raw({"ABCD\0\0\0\0\0\0\0\0~", 13})),
              std::string("00000000: ") + (big ? "00009999" : "99990000") +
                  " 41424344 00000000 00000000   \"....ABCD........\"\n"
                  "00000010: 7e" + std::string(36, ' ') + "\"~\"\n");
    deleteSsmDataBase();
}

INSTANTIATE_TEST_SUITE_P(ByteOrder, SignalArchive, ::testing::Values(true, false),
                         [](const auto& info) { return info.param ? "big" : "little"; });

// One callback per array, with the table taken straight from an image.
TEST(SignalPrint, CompressedArraysAndTheOneLineStyle) {
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

    sink.clear();
    const auto ping = fields(true, {{4, 0x2001}, {1, 9}, {2, 0x0a0b}});
    EXPECT_EQ(ose_print_signal(table, ping.data(), uint32_t(ping.size()), 1, sink_put, nullptr, nullptr, 1), 1);
    EXPECT_EQ(sink, "8193 : <hex> = 09 0A 0B");
    sink.clear();
    const auto status = fields(true, {{4, 0x1003}, {2, 5}, {2, 16}, {2, 0x0a0b}});
    EXPECT_EQ(ose_print_signal(table, status.data(), uint32_t(status.size()), 1, sink_put, nullptr, nullptr, 1), 0);
    EXPECT_EQ(sink, "STATUS : sig_no = 0x1003, state = 5, flags = 0x0010, <hex> = 0A 0B");
}

}  // namespace

namespace {

// The example's archive against the signal blocks of the example dump.
TEST(ExampleArchive, DescribesTheExampleSignals) {
    const std::string zip = std::string(KRD_BINARY_DIR) + "/examples/sigs.zip";
    if (!std::filesystem::exists(zip)) GTEST_SKIP() << "the example archive is not built";
    ASSERT_EQ(ssmSelectArchive(zip.c_str(), &heap), 0);
    ASSERT_EQ(ssmLoad("LQZ1234567_R1A"), 0);
    ASSERT_EQ(ssmLoad("LQZ1000001_R4B"), 0);
    EXPECT_EQ(print("LQZ1234567_R1A", fields(true, {{4, 0x105}, {4, 0x00010023}, {4, 0x2c}}) +
                                          raw({"link down\0\0\0", 12})),
              "Signal CTRL_LINK_LOST_IND:\n\n"
              "00000000: sig_no = 0x105\n"
              "00000004: reporter = 0x00010023\n"
              "00000008: fault = 0x2c\n"
              "0000000C: reason = link down");
    EXPECT_EQ(print("LQZ1234567_R1A", fields(true, {{4, 0x106}, {4, 0x00010020}, {4, 0}, {4, 0}})),
              "Signal CTRL_RESTART_REQ:\n\n00000000: sig_no = 0x106\n00000004: requester = 0x00010020\n"
              "00000008: cause = WATCHDOG\n0000000C: delay_ms = 0");
    EXPECT_EQ(print("LQZ1000001_R4B", fields(true, {{4, 0xf01}, {4, 3}, {4, 250}})),
              "Signal OS_TIMEOUT_IND:\n\n00000000: sig_no = 0xf01\n00000004: timer_id = 0x3\n"
              "00000008: elapsed_ms = 250");
    deleteSsmDataBase();
}

}  // namespace
