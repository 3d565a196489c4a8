// The byte-order layer: the host test, and the file's fields read at odd
// addresses in the order its EI_DATA byte declares.
#include <gtest/gtest.h>

#include <bit>

#include "zdb_src/zdb.h"

TEST(ByteOrder, FieldsReadInTheOrderTheFileDeclares) {
    EXPECT_EQ(ec_check_endian(), std::endian::native == std::endian::big ? 4321 : 1234);
    const uint8_t bytes[] = {0xEE, 0x12, 0x34, 0x56, 0x78, 0xEE};
    zdb_file f;
    f.order = ec_init(2);
    EXPECT_EQ(Z_EC32(&f, bytes + 1), 0x12345678u);
    EXPECT_EQ(Z_EC16(&f, bytes + 1), 0x1234u);
    f.order = ec_init(1);
    EXPECT_EQ(Z_EC32(&f, bytes + 1), 0x78563412u);
    EXPECT_EQ(Z_EC16(&f, bytes + 1), 0x3412u);
    // Neither order declared: the other one than the host's.
    EXPECT_NE(ec_init(0), std::endian::native == std::endian::big ? byte_order::big : byte_order::little);
}
