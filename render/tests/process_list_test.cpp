#include <gtest/gtest.h>

#include "tests/capture.h"

#include <cstdio>
#include <string>

#include "render/process_list.h"

namespace {

std::span<const uint8_t> bytes_of(const std::string& s) { return {reinterpret_cast<const uint8_t*>(s.data()), s.size()}; }

// A process list line with the identity in field 14.
std::string line(const std::string& name, const std::string& type, const std::string& pid) {
    return "\"" + name + "\" " + type + " 2 3 4 5 6 7 8 9 10 11 12 13 " + pid + " 15\n";
}

struct ProcessRows : ::testing::Test {
    void TearDown() override { free_process_rows(); }
};

TEST_F(ProcessRows, FieldsComeFromTheirPlacesAndABackslashContinuesTheEntry) {
    std::string text = "  Name  Type  ...  Pid\n";
    text += line("alpha", "prioritized", "0x00010001");
    text += "\"beta\" \\\n  background 2 3 4 5 6 7 8 9 10 11 12 13 0x00010002\n";
    text += "\"gamma\"\ninterrupt 2 3 4 5 6 7 8 9 10 11 12 13 0x00010003\n";  // not ended before field 2
    read_text_process_dump(nullptr, bytes_of(text));
    ASSERT_EQ(process_row_count, 3u);
    EXPECT_STREQ(process_rows[0].name, "\"alpha\"");
    EXPECT_STREQ(process_rows[0].type, "prioritized");
    EXPECT_STREQ(process_rows[0].pid, "0x00010001");
    EXPECT_STREQ(process_rows[1].name, "\"beta\"");
    EXPECT_STREQ(process_rows[1].type, "background");
    EXPECT_STREQ(process_rows[1].pid, "0x00010002");
    EXPECT_STREQ(process_rows[2].type, "interrupt");
    EXPECT_EQ(find_process_row("0x00010003"), &process_rows[2]);
    EXPECT_EQ(find_process_row("0x0001000"), nullptr);
}

TEST_F(ProcessRows, TextWithoutQuotesFillsNothing) {
    read_text_process_dump(nullptr, bytes_of("name type 2 3 4 5 6 7 8 9 10 11 12 13 0x00000001\n\n"));
    EXPECT_EQ(process_row_count, 0u);
    EXPECT_EQ(find_process_row("0x00000001"), nullptr);
}

TEST_F(ProcessRows, LongFieldsAreCutAndStayTerminated) {
    const std::string name(300, 'n');
    read_text_process_dump(nullptr, bytes_of(line(name, std::string(150, 't'), "0x" + std::string(80, '1'))));
    EXPECT_EQ(std::string(process_rows[0].name), "\"" + std::string(98, 'n'));
    EXPECT_EQ(std::string(process_rows[0].type), std::string(99, 't'));
    EXPECT_EQ(std::string(process_rows[0].pid).size(), 49u);
}

TEST_F(ProcessRows, SwapListKeepsTheDifferenceWhileThePreviousStampIsZero) {
    std::string text = "\n01 20\n02 10\n03 00\n04 30\n";
    std::string out = capture([&](FILE* f) { print_text_process_swap_dump(f, bytes_of(text), "QOT1"); });
    EXPECT_EQ(out,
              "  \n"
              "  01   --                              --         20  (0.00)\n\n"
              "  02   --                              --         10  (0.20)\n\n"
              "  03   --                              --         00  (0.20)\n\n"
              "  04   --                              --         30  (0.20)\n\n"
              "  \n");
}

TEST_F(ProcessRows, SwapListNamesComeFromTheFirstRowOfAnIdentity) {
    // The same identity twice: the first row holds. The last line has no
    // newline and is looked up too.
    std::string list = line("first", "t1", "0x00000007") + line("second", "t2", "0x00000007") +
                       "\"last\" t3 2 3 4 5 6 7 8 9 10 11 12 13 0x00000009";
    read_text_process_dump(nullptr, bytes_of(list));
    std::string out = capture(
        [&](FILE* f) { print_text_process_swap_dump(f, bytes_of("\n00000007 50\n00000009 40\n"), "vnl"); });
    EXPECT_EQ(out,
              "  \n"
              "  00000007   \"first\"                         t1         50  (0.00)\n\n"
              "  00000009   \"last\"                          t3         40  (0.13)\n\n"
              "  \n");
}

TEST_F(ProcessRows, SwapListCutsLongWordsAndUsesTheDefaultRate) {
    EXPECT_EQ(swap_ticks_per_us("vnl3"), 486u);
    EXPECT_EQ(swap_ticks_per_us("vnl33"), 66u);
    EXPECT_EQ(swap_ticks_per_us(""), 66u);
    const std::string long_word(40, '9');
    std::string text = "\n0" + long_word + " 9" + long_word + "\n";
    std::string out = capture([&](FILE* f) { print_text_process_swap_dump(f, bytes_of(text), ""); });
    EXPECT_NE(out.find("0" + long_word + "   --"), std::string::npos);
    EXPECT_NE(out.find("  (0.00)\n"), std::string::npos);
}

}  // namespace
