#include <gtest/gtest.h>

#include "tests/capture.h"

#include <chrono>
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
    ASSERT_EQ(run_process_rows().process_row_count, 3u);
    EXPECT_STREQ(run_process_rows().rows[0].name, "\"alpha\"");
    EXPECT_STREQ(run_process_rows().rows[0].type, "prioritized");
    EXPECT_STREQ(run_process_rows().rows[0].pid, "0x00010001");
    EXPECT_STREQ(run_process_rows().rows[1].name, "\"beta\"");
    EXPECT_STREQ(run_process_rows().rows[1].type, "background");
    EXPECT_STREQ(run_process_rows().rows[1].pid, "0x00010002");
    EXPECT_STREQ(run_process_rows().rows[2].type, "interrupt");
    EXPECT_EQ(find_process_row("0x00010003"), &run_process_rows().rows[2]);
    EXPECT_EQ(find_process_row("0x0001000"), nullptr);
}

TEST_F(ProcessRows, LastLineWithoutNewlineIsLookedUpToo) {
    std::string text = line("one", "t", "0x00000001") + "\"two\" t 2 3 4 5 6 7 8 9 10 11 12 13 0x00000002";
    read_text_process_dump(nullptr, bytes_of(text));
    EXPECT_EQ(run_process_rows().process_row_count, 1u);
    ASSERT_NE(find_process_row("0x00000002"), nullptr);
    EXPECT_STREQ(find_process_row("0x00000002")->name, "\"two\"");
}

TEST_F(ProcessRows, TextWithoutQuotesFillsNothing) {
    read_text_process_dump(nullptr, bytes_of("name type 2 3 4 5 6 7 8 9 10 11 12 13 0x00000001\n\n"));
    EXPECT_EQ(run_process_rows().process_row_count, 0u);
    EXPECT_EQ(run_process_rows().process_row_capacity, 1024u);
    EXPECT_EQ(find_process_row("0x00000001"), nullptr);
}

TEST_F(ProcessRows, TableGrowsByCleanSteps) {
    std::string text;
    for (int i = 0; i < 1030; i++) {
        char name[16], pid[16];
        std::snprintf(name, sizeof name, "p%d", i);
        std::snprintf(pid, sizeof pid, "0x%08x", i);
        text += line(name, "t", pid);
    }
    read_text_process_dump(nullptr, bytes_of(text));
    EXPECT_EQ(run_process_rows().process_row_count, 1030u);
    EXPECT_EQ(run_process_rows().process_row_capacity, 2048u);
    EXPECT_STREQ(run_process_rows().rows[1024].name, "\"p1024\"");
    EXPECT_STREQ(run_process_rows().rows[1030].name, "");
    EXPECT_STREQ(run_process_rows().rows[2047].pid, "");
}

TEST_F(ProcessRows, LongFieldsAreCutAndStayTerminated) {
    const std::string name(300, 'n');
    read_text_process_dump(nullptr, bytes_of(line(name, std::string(150, 't'), "0x" + std::string(80, '1'))));
    EXPECT_EQ(std::string(run_process_rows().rows[0].name), "\"" + std::string(98, 'n'));
    EXPECT_EQ(std::string(run_process_rows().rows[0].type), std::string(99, 't'));
    EXPECT_EQ(std::string(run_process_rows().rows[0].pid).size(), 49u);
}

TEST_F(ProcessRows, SwapListShowsNamesTypesAndDeltaTimes) {
    read_text_process_dump(nullptr, bytes_of(line("main", "prio", "0x00010001")));
    // 1000 then 900: 4.00 on a timer of 25 ticks per microsecond. A lower
    // previous stamp means the timer wrapped at 32 bits.
    std::string text = "pid time\n00010001 1000\n00010002 900 x\n00010001 1000 a7\n5 1x\n";
    std::string out = capture([&](FILE* f) { print_text_process_swap_dump(f, bytes_of(text), "tkr5"); });
    EXPECT_EQ(out,
              "  pid   Process name                    Type          time  (delta time in \xB5s) \n"
              "  00010001   \"main\"                          prio       1000  (0.00)\n"
              "\n"
              "  00010002   --                              --         900  (4.00)\n"
              " x\n"
              "  00010001   \"main\"                          prio       1000  (171798687.84)\n"
              " a7  (0.00)\n"
              "\n"
              "  5 1x\n"
              "  \n");
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

TEST_F(ProcessRows, SwapListOfManyLinesOverManyRowsIsQuick) {
    // Each line's identity was once looked up row by row.
    std::string list;
    for (int i = 0; i < 100000; i++) list += "\" a b\n";
    read_text_process_dump(nullptr, bytes_of(list));
    std::string swap = "\n";
    for (int i = 0; i < 20000; i++) swap += "0 \n";
    const auto t0 = std::chrono::steady_clock::now();
    std::string out = capture([&](FILE* f) { print_text_process_swap_dump(f, bytes_of(swap), ""); });
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    EXPECT_NE(out.find("  0   --                              --         \n"), std::string::npos);
    EXPECT_LT(seconds, 2.0);
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
