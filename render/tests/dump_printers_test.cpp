#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "render/dump_printers.h"
#include "render/section_blocks.h"
#include "tests/capture.h"

namespace {


std::vector<uint8_t> seq(size_t n, uint8_t first = 0) {
    std::vector<uint8_t> v(n);
    for (size_t i = 0; i < n; i++) v[i] = uint8_t(first + i);
    return v;
}

TEST(HexDump, LinesAndTheLastLinePadding) {
    auto data = seq(20, 0x41);
    std::string out = capture([&](FILE* f) { print_hex_dump(f, data, 0x10); });
    EXPECT_EQ(out,
              " 00000010: 41424344 45464748 494a4b4c 4d4e4f50   \"ABCDEFGHIJKLMNOP\"\n"
              " 00000020: 51525354                              \"QRST\"\n");
    // The quote stands in column 49 whatever the length of the last line.
    for (size_t k = 1; k <= 16; k++) {
        std::string line = capture([&](FILE* f) { print_hex_dump(f, seq(k, 0x30), 0); });
        EXPECT_EQ(line.find('"'), 49u) << k;
        EXPECT_EQ(line.size(), 49 + k + 3) << k;
    }
    EXPECT_EQ(capture([&](FILE* f) { print_hex_dump(f, {}, 0); }), "");
    std::vector<uint8_t> odd = {127, 31, ' ', '~', '"', 0};
    EXPECT_EQ(capture([&](FILE* f) { print_hex_dump(f, odd, 0xFFFFFFF0); }),
              " FFFFFFF0: 7f1f207e 2200                         \".. ~\".\"\n");
}

TEST(HexDump, BytesForTheNexusFile) {
    EXPECT_EQ(capture([&](FILE* f) { print_hex_bytes(f, seq(18)); }),
              "00010203 04050607 08090a0b 0c0d0e0f \n1011");
}

TEST(StackDump, EmptyRunIsSkipped) {
    std::vector<uint8_t> stack(4096, 0x55);
    for (size_t i = 1024; i < stack.size(); i++) stack[i] = uint8_t(i);
    EXPECT_EQ(find_empty_stack_run(stack), 1024u);
    std::string out = capture([&](FILE* f) { print_stack_dump(f, stack, 0x1000); });
    EXPECT_EQ(out.substr(0, 68), " 00001000: 55555555 55555555 55555555 55555555   \"UUUUUUUUUUUUUUUU\"\n");
    EXPECT_EQ(out.substr(68, 48), " ........:< Skipping empty part of the stack  >\n");
    EXPECT_EQ(out.substr(68 + 48, 11), " 00001400: ");
    EXPECT_EQ(out.size(), 68 + 48 + 68 * (3072 / 16));

    auto run_of = [](size_t run, size_t size) {
        std::vector<uint8_t> s(size, 1);
        std::fill(s.begin(), s.begin() + long(run), 0xAA);
        return find_empty_stack_run(s);
    };
    EXPECT_EQ(run_of(1020, 4096), 1008u);
    EXPECT_EQ(run_of(12, 4096), 0u);
    EXPECT_EQ(run_of(4096, 4096), 0u);   // filled throughout: printed whole
    EXPECT_EQ(run_of(4100, 4100), 0u);   // fewer than 16 bytes behind the run
    EXPECT_EQ(run_of(4088, 4096), 4080u);
    std::vector<uint8_t> differ = {1, 2, 1, 1, 1, 1, 1, 1};
    EXPECT_EQ(find_empty_stack_run(differ), 0u);
    EXPECT_EQ(find_empty_stack_run(seq(2)), 0u);
}

TEST(TextDump, IndentsAndDropsZerosAndReturns) {
    auto text = [](const std::string& s) { return capture([&](FILE* f) { print_text_dump(f, as_bytes(s.data(), s.size())); }); };
    EXPECT_EQ(text("a\nb"), "  a\n  b\n");
    EXPECT_EQ(text("a\n"), "  a\n  \n");
    EXPECT_EQ(text(std::string("\r\0\r", 3)), "  \n");
    EXPECT_EQ(text("x\r\n\ny"), "  x\n  \n  y\n");
    std::string big(200000, 'z');
    EXPECT_EQ(text(big), "  " + big + "\n");
}

TEST(RegisterText, SlotsByTokenAndValuesCutAtEight) {
    std::string t = "PC=00001000 R1=00002000 MSR=00008000 LR=0000ABCD R31=FFFFFFFF RX=1 SP=12345678 "
                    "R45=9 DAR=DEADBEEF CTR=1 XER=22 CR=123456789 RA=42";
    auto table = parse_reg_text(as_bytes(t.data(), t.size()));
    ASSERT_TRUE(table);
    auto val = [&](int slot) {
        const char* v = table->slot[slot];
        return v ? std::string(v, std::min<size_t>(8, size_t(table->end - v))) : std::string("-");
    };
    EXPECT_EQ(val(REG_PC), "00001000");
    EXPECT_EQ(val(1), "00002000");
    EXPECT_EQ(val(31), "FFFFFFFF");
    EXPECT_EQ(std::string(table->slot[0], 1), "1");  // RX lands in slot 0
    EXPECT_EQ(val(REG_DAR), "DEADBEEF");
    EXPECT_EQ(val(REG_RA), "42");
    EXPECT_EQ(table->slot[2], nullptr);

    std::string only = "R3=1234";
    std::string out = capture([&](FILE* f) { print_reg_text(f, as_bytes(only.data(), only.size())); });
    EXPECT_EQ(out,
              "  PC  = --------  SP  = --------  MSR = --------  LR  = --------\n\n"
              "  R0  = --------  R8  = --------  R16 = --------  R24 = --------\n"
              "  R1  = --------  R9  = --------  R17 = --------  R25 = --------\n"
              "  R2  = --------  R10 = --------  R18 = --------  R26 = --------\n"
              "  R3  = 1234  R11 = --------  R19 = --------  R27 = --------\n"
              "  R4  = --------  R12 = --------  R20 = --------  R28 = --------\n"
              "  R5  = --------  R13 = --------  R21 = --------  R29 = --------\n"
              "  R6  = --------  R14 = --------  R22 = --------  R30 = --------\n"
              "  R7  = --------  R15 = --------  R23 = --------  R31 = --------\n"
              "\n"
              "  DAR = --------  CR  = --------  XER = --------  CTR = --------\n");
    // A shorter value shows what follows it, up to eight characters.
    std::string shortv = "R0=12 R1=3";
    out = capture([&](FILE* f) { print_reg_text(f, as_bytes(shortv.data(), shortv.size())); });
    EXPECT_NE(out.find("  R0  = 12 R1=3  R8 "), std::string::npos);
    // RA adds its line and a blank one; a token without "=" ends the parse.
    std::string ra = "RA=00000001 R2";
    out = capture([&](FILE* f) { print_reg_text(f, as_bytes(ra.data(), ra.size())); });
    EXPECT_EQ(out.substr(out.size() - 19), "\n  RA  = 00000001\n\n");
}

}  // namespace
