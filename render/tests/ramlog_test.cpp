#include <gtest/gtest.h>

#include "tests/capture.h"

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
    return capture([&](FILE* f) { print_ramlog(f, payload); });
}

TEST(Ramlog, StaysInsideAShortPayload) {
    EXPECT_EQ(printed(ramlog(2, 9, 1000, "0123456789")), "901") << "the stretches are cut to the bytes there";
    std::vector<uint8_t> cut = ramlog(1, 2, 3, "");
    cut.resize(10);
    testing::internal::CaptureStdout();
    EXPECT_EQ(printed(cut), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n RAMLOG is empty or corrupt as the size is = 0 !!!!!\n");
}

}  // namespace
