#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "signals/kernel_trace_bin.h"
#include "signals/sig_text.h"
#include "tests/capture.h"

namespace {

struct hex_read {
    std::vector<uint8_t> bytes;
    uint32_t signo = 0;
    std::string rest;  // the text behind the position
};

hex_read read_hex(const std::string& text, size_t room = 64) {
    hex_read r;
    std::vector<uint8_t> data(room);
    const char* p = text.data();
    size_t remaining = text.size();
    uint32_t n = read_hex_signal(p, remaining, data, &r.signo);
    EXPECT_EQ(remaining, size_t(text.data() + text.size() - p));
    r.bytes.assign(data.begin(), data.begin() + n);
    r.rest.assign(p, remaining);
    return r;
}

using bytes = std::vector<uint8_t>;

TEST(ReadHexSignal, BytesBrokenOverLinesAndWhereTheyEnd) {
    // "a" at a line end and "5" indented on the next are one byte; an empty
    // line ends the data.
    hex_read r = read_hex("head <hex> =   00 00 03 e9 a\n     5 01\n\nnext");
    EXPECT_EQ(r.bytes, (bytes{0x00, 0x00, 0x03, 0xe9, 0xa5, 0x01}));
    EXPECT_EQ(r.signo, 1001u);
    EXPECT_EQ(r.rest, "next");

    // A blank in front of the line end lets the conversion run on; a last
    // single digit in front of a word is dropped and passed by one.
    r = read_hex("<hex> = 00 00 00 01 \n\n02 3\nThe end");
    EXPECT_EQ(r.bytes, (bytes{0, 0, 0, 1, 2}));
    EXPECT_EQ(r.rest, "The end");

    // Behind a byte's line end the data goes on unless the word is no
    // digit pair: "fr" is not one, and the position moves on by one.
    r = read_hex("<hex> = 00 00 00 02\n10\nfrom: x");
    EXPECT_EQ(r.bytes, (bytes{0, 0, 0, 2, 0x10}));
    EXPECT_EQ(r.rest, "rom: x");

    // CR LF behind the last byte ends the data at the first line end.
    r = read_hex("<hex> = 00 00 00 03 0a\r\n0b\r\n");
    EXPECT_EQ(r.bytes, (bytes{0, 0, 0, 3, 0x0a}));
    EXPECT_EQ(r.rest, "0b\r\n");
}

TEST(ReadHexSignal, BoundedByBufferTextAndZeroByte) {
    hex_read r = read_hex("<hex> = 00 00 00 04 05 06 07", 5);
    EXPECT_EQ(r.bytes, (bytes{0, 0, 0, 4, 5}));
    EXPECT_EQ(r.rest, " 06 07");

    std::string with_zero("<hex> = 00 00 00 04 05\0 06", 26);
    r = read_hex(with_zero);
    EXPECT_EQ(r.bytes, (bytes{0, 0, 0, 4, 5}));

    // The marker behind a zero byte is not there; nothing moves.
    r = read_hex(std::string("x\0<hex> = 00", 12));
    EXPECT_TRUE(r.bytes.empty());
    EXPECT_EQ(r.rest.size(), 12u);

    // A split digit at the very end of the text.
    r = read_hex("<hex> = 00 00 00 04 1");
    EXPECT_EQ(r.bytes, (bytes{0, 0, 0, 4}));
    EXPECT_EQ(r.rest, "");
}

struct PidTable : ::testing::Test {
    krd_options options;
    void TearDown() override { free_process_list(); }
    void load(const std::string& text) {
        get_process_list({reinterpret_cast<const uint8_t*>(text.data()), text.size()}, &options);
    }
    std::string lmid_of(uint32_t pid) {
        krd_signal_record r;
        return find_LMID(pid, &r) ? r.lmid : "(none)";
    }
};

std::string process(const std::string& name, uint32_t pid) {
    char line[160];
    std::snprintf(line, sizeof line, "\"%s\" prioritized 16 ready 0 4096 1024 0x00010002 0 0 0 0 0 0x%08x\n",
                  name.c_str(), pid);
    return line;
}

TEST_F(PidTable, BlocksNameTheLoadModulesOfTheirProcesses) {
    options.flags = KRD_OPT_BASIC_LMID;
    options.basic_lmid = "LQZ_BASIC";
    std::string text = "Name Type ...\n" + process("early", 0x10) + "\"os\" BLOCK 0x1 0\n" + process("main", 0x11) +
                       "\"app\" BLOCK 0x2 7\n" + process("a1", 0x21) + process("a2", 0x22) +
                       "\"LQZ_APP\" BLOCK 0x3 7\n" + process("a3", 0x23) + "\"tools\" BLOCK 0x4 7\n" +
                       process("a4", 0x24) + process("a5", 0x25) + "\"bad\" BLOCK\n" + process("a1", 0x99) +
                       process("dup", 0x21);
    testing::internal::CaptureStderr();
    load(text);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning: corrupt BLOCK entry \"bad\" in PROCESS LIST.\n");
    // A process before any block is in segment 0, so the basic OS block's
    // id from -b, a true id, reaches it too.
    EXPECT_EQ(lmid_of(0x10), "LQZ_BASIC");
    EXPECT_EQ(lmid_of(0x11), "LQZ_BASIC");
    // The true id of a later block of the segment corrects the earlier rows.
    EXPECT_EQ(lmid_of(0x21), "LQZ_APP");
    EXPECT_EQ(lmid_of(0x22), "LQZ_APP");
    EXPECT_EQ(lmid_of(0x23), "LQZ_APP");
    // A block with another name: its first process gets the segment's true
    // id, the next one the block's own name.
    EXPECT_EQ(lmid_of(0x24), "LQZ_APP");
    EXPECT_EQ(lmid_of(0x25), "tools");
    EXPECT_EQ(lmid_of(0x99), "tools");
    EXPECT_EQ(lmid_of(0x12345), "(none)");
}

TEST_F(PidTable, ProcessBeforeAnyBlockHasAnEmptyIdThatTheBasicBlockCorrects) {
    load(process("early", 0x10) + "\"LQZ_OS\" BLOCK 0x1 0\n" + process("main", 0x11));
    EXPECT_EQ(lmid_of(0x10), "LQZ_OS");
    free_process_list();
    load(process("early", 0x10) + "\"os\" BLOCK 0x1 0\n" + process("main", 0x11));
    EXPECT_EQ(lmid_of(0x10), "");
    EXPECT_EQ(lmid_of(0x11), "os");
}

TEST_F(PidTable, GrowsPastItsFirstRowsAndFindsTheFirstRowOfAPid) {
    std::string text = "\"first\" BLOCK 0x1 1\n";
    for (uint32_t i = 0; i < 2500; i++) {
        if (i == 1500) text += "\"second\" BLOCK 0x1 2\n";
        text += process("p", 0x1000 + i % 2000);
    }
    load(text);
    EXPECT_EQ(run_pid_table().pid_lm_count, 2500u);
    EXPECT_EQ(lmid_of(0x1000 + 1499), "first");
    EXPECT_EQ(lmid_of(0x1000 + 1500), "second");
    // Pids 0x1000 to 0x11f3 come again in block "second": the first row counts.
    EXPECT_EQ(lmid_of(0x1000), "first");
    EXPECT_EQ(lmid_of(0x1000 + 499), "first");
}

// A process name is kept to 255 characters however long its record.
TEST(BinaryTrace, LongNamesAreCut) {
    std::vector<uint8_t> trace;
    auto word = [&](uint32_t w) {
        for (int i = 3; i >= 0; i--) trace.push_back(uint8_t(w >> (8 * i)));
    };
    for (uint32_t w : {32u + 400, 39216u, 7u, 0u, 0u, 0u, 0u, 0u, 0u}) word(w);
    trace.insert(trace.end(), 400, 'n');
    for (uint32_t w : {32u, 39219u, 1u, 2u, 3u, 0u, 0u, 0u, 7u}) word(w);
    EXPECT_EQ(capture([&](FILE* f) { print_trace_sect(f, trace); }),
              "\n(1) Ticks: 2   Steps: 3 \nEvent: Create process " + std::string(255, 'n') + "\n");
}

}  // namespace
