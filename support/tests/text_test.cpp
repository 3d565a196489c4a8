#include <gtest/gtest.h>

#include <vector>

#include "support/text.h"

namespace {

TEST(Text, CaseFoldedSubstring) {
    const char* title = "Stack for process";
    EXPECT_EQ(xstrcasestr(title, "STACK"), title);
    EXPECT_EQ(xstrcasestr(title, "PROC"), title + 10);
    EXPECT_EQ(xstrcasestr(title, ""), title);
    EXPECT_EQ(xstrcasestr(title, nullptr), title);
    EXPECT_EQ(xstrcasestr(nullptr, "x"), nullptr);
    EXPECT_EQ(xstrcasestr(title, "stacks"), nullptr);
}

TEST(Text, StringAtEndsAtTheNulOrTheBytes) {
    const std::vector<uint8_t> bytes{'a', 'b', 0, 'c', 'd'};
    EXPECT_EQ(string_at(bytes, 0), "ab");
    EXPECT_EQ(string_at(bytes, 2), "");
    EXPECT_EQ(string_at(bytes, 3), "cd");
    EXPECT_EQ(string_at(bytes, 5), "");
    EXPECT_EQ(string_at(bytes, uint64_t(1) << 40), "");
}

}  // namespace
