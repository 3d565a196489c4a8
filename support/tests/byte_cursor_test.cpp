#include <gtest/gtest.h>

#include <vector>

#include "support/byte_cursor.h"

namespace {

TEST(ByteCursor, BothOrdersAndStickyFailure) {
    const std::vector<uint8_t> bytes{0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0, 0x11, 0x22, 0x33};
    byte_cursor be(bytes, 1);
    EXPECT_EQ(be.u16(), 0x3456u);
    EXPECT_EQ(be.u32(), 0x789ABCDEu);
    be.seek(0);
    EXPECT_EQ(be.u64(), 0x123456789ABCDEF0u);

    byte_cursor le(bytes, 1, byte_order::little);
    EXPECT_EQ(le.u16(), 0x5634u);
    EXPECT_EQ(le.u32(), 0xDEBC9A78u);
    le.seek(0);
    EXPECT_EQ(le.u64(), 0xF0DEBC9A78563412u);

    // A read that does not fit gives 0, fails the cursor and leaves it where
    // it was; after it even a read that would fit gives 0.
    byte_cursor c(bytes, 8);
    EXPECT_EQ(c.u32(), 0u);
    EXPECT_FALSE(c.ok());
    EXPECT_EQ(c.tell(), 8u);
    EXPECT_EQ(c.u8(), 0u);
    EXPECT_TRUE(c.bytes(1).empty());

    EXPECT_FALSE(byte_cursor(bytes, bytes.size() + 1).ok());
    EXPECT_EQ(be32_at(bytes, 7), 0xF0112233u);
    EXPECT_EQ(be32_at(bytes, 8), 0u);
}

TEST(ByteCursor, Leb128) {
    const std::vector<uint8_t> bytes{
        0xE5, 0x8E, 0x26,                                      // 624485
        0xC0, 0xBB, 0x78,                                      // -123456
        0x3F,                                                  // 63
        0x40,                                                  // -64
        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01,  // longer than 32 bits
        0x80,                                                  // runs into the end
    };
    byte_cursor c(bytes);
    EXPECT_EQ(read_uleb128(c), 624485u);
    EXPECT_EQ(int32_t(read_sleb128(c)), -123456);
    EXPECT_EQ(int32_t(read_sleb128(c)), 63);
    EXPECT_EQ(int32_t(read_sleb128(c)), -64);
    EXPECT_EQ(read_uleb128(c), 0xFFFFFFFFu);
    EXPECT_TRUE(c.ok());
    EXPECT_EQ(read_uleb128(c), 0u);
    EXPECT_FALSE(c.ok());
}

}  // namespace
