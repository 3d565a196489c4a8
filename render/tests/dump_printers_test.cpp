// The printers' edges that the report cases do not reach: where an empty
// stack run begins, register texts of odd tokens and short values, a text
// line longer than the output block.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "render/dump_printers.h"
#include "render/section_blocks.h"
#include "tests/capture.h"

namespace {

TEST(StackDump, EmptyRunIsSkipped) {
    std::vector<uint8_t> stack(4096, 0x55);
    for (size_t i = 1024; i < stack.size(); i++) stack[i] = uint8_t(i);
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
}

TEST(TextDump, LineLongerThanTheBlock) {
    std::string big(200000, 'z');
    EXPECT_EQ(capture([&](FILE* f) { print_text_dump(f, as_bytes(big.data(), big.size())); }), "  " + big + "\n");
}

TEST(RegisterText, SlotsByTokenAndValuesCutAtEight) {
    std::string t = "PC=00001000 R1=00002000 R31=FFFFFFFF RX=1 R45=9 DAR=DEADBEEF CR=123456789 RA=42";
    auto table = parse_reg_text(as_bytes(t.data(), t.size()));
    ASSERT_TRUE(table);
    auto val = [&](int slot) {
        const char* v = table->slot[slot];
        return v ? std::string(v, std::min<size_t>(8, size_t(table->end - v))) : std::string("-");
    };
    EXPECT_EQ(val(REG_PC), "00001000");
    EXPECT_EQ(val(31), "FFFFFFFF");
    EXPECT_EQ(std::string(table->slot[0], 1), "1");  // RX lands in slot 0
    EXPECT_EQ(val(REG_DAR), "DEADBEEF");
    EXPECT_EQ(val(REG_RA), "42");
    EXPECT_EQ(table->slot[2], nullptr);

    // A shorter value shows what follows it, up to eight characters.
    std::string shortv = "R0=12 R1=3";
    std::string out = capture([&](FILE* f) { print_reg_text(f, as_bytes(shortv.data(), shortv.size())); });
    EXPECT_NE(out.find("  R0  = 12 R1=3  R8 "), std::string::npos);
    // A token without "=" ends the parse.
    std::string ra = "RA=00000001 R2";
    out = capture([&](FILE* f) { print_reg_text(f, as_bytes(ra.data(), ra.size())); });
    EXPECT_EQ(out.substr(out.size() - 19), "\n  RA  = 00000001\n\n");
}

}  // namespace
