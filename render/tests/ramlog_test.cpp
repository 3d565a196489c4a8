#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "render/ramlog.h"

namespace {

std::vector<uint8_t> ramlog(uint32_t a, uint32_t b, uint32_t size, const std::string& ring) {
    std::vector<uint8_t> p;
    for (uint32_t w : {a, b, size})
        for (int s = 24; s >= 0; s -= 8) p.push_back(uint8_t(w >> s));
    p.insert(p.end(), ring.begin(), ring.end());
    return p;
}

std::string printed(const std::vector<uint8_t>& payload) {
    char* buf = nullptr;
    size_t len = 0;
    FILE* f = open_memstream(&buf, &len);
    print_ramlog(f, payload);
    std::fclose(f);
    std::string out(buf, len);
    std::free(buf);
    return out;
}

TEST(Ramlog, ReadingOrderByThePositionWords) {
    EXPECT_EQ(printed(ramlog(5, 3, 10, "0123456789")), "5678901234") << "a above b: the whole ring from a";
    EXPECT_EQ(printed(ramlog(3, 7, 10, "0123456789")), "789012") << "a below b: the part from a to b is not shown";
    EXPECT_EQ(printed(ramlog(4, 4, 10, "0123456789")), "4567890123");
    EXPECT_EQ(printed(ramlog(0, 0, 10, "0123456789")), "0123456789");
    EXPECT_EQ(printed(ramlog(15, 13, 10, "0123456789")), "5678901234") << "counts are reduced modulo the size";
}

TEST(Ramlog, TextLoopSkipsZeroAndReturnAndIndentsAfterEachNewline) {
    EXPECT_EQ(printed(ramlog(4, 0, 8, std::string("ab\r\n", 4) + std::string("cd\n\0", 4))), "cd\n  ab\n  ");
}

TEST(Ramlog, StaysInsideAShortPayload) {
    EXPECT_EQ(printed(ramlog(2, 9, 1000, "0123456789")), "901") << "the stretches are cut to the bytes there";
    std::vector<uint8_t> cut = ramlog(1, 2, 3, "");
    cut.resize(10);
    testing::internal::CaptureStdout();
    EXPECT_EQ(printed(cut), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n RAMLOG is empty or corrupt as the size is = 0 !!!!!\n");
}

TEST(Ramlog, SizeZeroIsToldOnTheStandardOutput) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(printed(ramlog(1, 2, 0, "abc")), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n RAMLOG is empty or corrupt as the size is = 0 !!!!!\n");
}

}  // namespace
