#include <gtest/gtest.h>

#include <cstring>

#include "cli/report.h"
#include "render/process_list.h"
#include "render/text_search.h"

namespace {

TEST(NumericArgument, PrefixesAndDigits) {
    for (const char* ok : {"0x1F", "x1F", "123", "0", "", "0xdeadBEEF", "010", "x"}) EXPECT_EQ(is_numeric_arg(ok), 1) << ok;
    for (const char* bad : {"0X1F", "-1", "12a", "0x1G", "00x1", " 1"}) EXPECT_EQ(is_numeric_arg(bad), 0) << bad;
}

TEST(TextSearch, CaseFoldedSubstring) {
    const char* title = "Stack for process";
    EXPECT_EQ(xstrcasestr(title, "STACK"), title);
    EXPECT_EQ(xstrcasestr(title, "PROC"), title + 10);
    EXPECT_EQ(xstrcasestr(title, ""), title);
    EXPECT_EQ(xstrcasestr(title, nullptr), title);
    EXPECT_EQ(xstrcasestr(nullptr, "x"), nullptr);
    EXPECT_EQ(xstrcasestr(title, "stacks"), nullptr);
}

struct rows_guard {
    rows_guard(std::initializer_list<std::pair<const char*, const char*>> rows, uint32_t count) {
        process_rows.assign(rows.size() + 1, process_row{});
        size_t i = 0;
        for (auto& [pid, name] : rows) {
            std::strcpy(process_rows[i].pid, pid);
            std::strcpy(process_rows[i].name, name);
            i++;
        }
        process_row_count = count;
        process_row_capacity = uint32_t(process_rows.size());
        index_process_rows();
    }
    ~rows_guard() { free_process_rows(); }
};

TEST(ProcessName, KeyFromTheDigitsBehindTheFirstZero) {
    rows_guard rows({{"0x00010023", "\"main\""}, {"0x00000005", "\"idle\""}}, 1);
    // One character behind the digits makes a key of eight digits.
    EXPECT_STREQ(find_process_name("SIGNAL QUEUE FOR PROCESS 0x10023:"), "\"main\"");
    EXPECT_STREQ(find_process_name("SIGNAL QUEUE FOR PROCESS 0x00010023:"), "\"main\"");
    // The row behind the count is searched too.
    EXPECT_STREQ(find_process_name("SIGNAL QUEUE FOR PROCESS 0x5 "), "\"idle\"");
    // Without that character the key is one digit too long.
    EXPECT_EQ(find_process_name("SIGNAL QUEUE FOR PROCESS 0x00010023"), nullptr);
    EXPECT_EQ(find_process_name("SIGNAL QUEUE FOR PROCESS x12"), nullptr);
    EXPECT_EQ(find_process_name("SIGNAL QUEUE FOR PROCESS 0"), nullptr);
    EXPECT_EQ(find_process_name("SIGNAL QUEUE FOR PROCESS 0x"), nullptr);
    EXPECT_EQ(find_process_name("SIGNAL QUEUE FOR PROCESS 0x0001002300000"), nullptr);
}

TEST(ProcessName, FirstRowOfAnIdentityWins) {
    // Only the first ten characters count, so both rows agree with the key.
    rows_guard rows({{"0x00010023", "\"first\""}, {"0x00010023 x", "\"second\""}}, 1);
    EXPECT_STREQ(find_process_name("SIGNAL QUEUE FOR PROCESS 0x10023:"), "\"first\"");
}

TEST(ProcessName, NoRowsNoName) {
    rows_guard rows({{"0x00010023", "\"main\""}}, 0);
    EXPECT_EQ(find_process_name("SIGNAL QUEUE FOR PROCESS 0x10023:"), nullptr);
}

}  // namespace
