#include <gtest/gtest.h>

#include <vector>

#include "support/text.h"

namespace {

TEST(Text, StringAtEndsAtTheNulOrTheBytes) {
    const std::vector<uint8_t> bytes{'a', 'b', 0, 'c', 'd'};
    EXPECT_EQ(string_at(bytes, 0), "ab");
    EXPECT_EQ(string_at(bytes, 2), "");
    EXPECT_EQ(string_at(bytes, 3), "cd");
    EXPECT_EQ(string_at(bytes, 5), "");
    EXPECT_EQ(string_at(bytes, uint64_t(1) << 40), "");
}

}  // namespace
