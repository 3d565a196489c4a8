// The byte-order layer: the host test, the selection by EI_DATA, and reads
// at odd addresses.
#include <gtest/gtest.h>

#include <bit>

#include "zdb_src/zdb.h"

TEST(ByteOrder, HostOrderAndValueForms) {
    EXPECT_EQ(ec_check_endian(), std::endian::native == std::endian::big ? 4321 : 1234);
    EXPECT_EQ(__EC32_CONV(0x12345678u), 0x78563412u);
    EXPECT_EQ(__EC16_CONV(0x1234u), 0x3412u);
    EXPECT_EQ(__EC32(0x12345678u), 0x12345678u);
    EXPECT_EQ(__EC16(0xABCD1234u), 0x1234u);
}

TEST(ByteOrder, SelectionFollowsTheFileAndTheHost) {
    bool big_host = ec_check_endian() == 4321;
    ec_init(2);
    EXPECT_EQ(Z_EC32, big_host ? __EC32_ALIGNED : __EC32_CONV_ALIGNED);
    EXPECT_EQ(Z_EC16, big_host ? __EC16_ALIGNED : __EC16_CONV_ALIGNED);
    ec_init(1);
    EXPECT_EQ(Z_EC32, big_host ? __EC32_CONV_ALIGNED : __EC32_ALIGNED);
    EXPECT_EQ(Z_EC16, big_host ? __EC16_CONV_ALIGNED : __EC16_ALIGNED);
    // Neither order declared: read with conversion on either host.
    ec_init(0);
    EXPECT_EQ(Z_EC32, __EC32_CONV_ALIGNED);
    EXPECT_EQ(Z_EC16, __EC16_CONV_ALIGNED);
}

TEST(ByteOrder, FieldsAtAnOddAddressReadInTheFilesOrder) {
    const uint8_t bytes[] = {0xEE, 0x12, 0x34, 0x56, 0x78, 0xEE};
    ec_init(2);
    EXPECT_EQ(Z_EC32(bytes + 1), 0x12345678u);
    EXPECT_EQ(Z_EC16(bytes + 1) & 0xFFFF, 0x1234u);
    ec_init(1);
    EXPECT_EQ(Z_EC32(bytes + 1), 0x78563412u);
    EXPECT_EQ(Z_EC16(bytes + 1) & 0xFFFF, 0x3412u);
}
