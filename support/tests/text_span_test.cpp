#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/text_span.h"
#include "tests/capture.h"

namespace {

// The writers against printf, on the edges of every digit count and on a
// spread of other values.
TEST(TextSpan, WritersPrintAsPrintf) {
    std::vector<uint32_t> values{0, 0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu};
    for (uint64_t p = 1; p <= 0xFFFFFFFFu; p *= 10) {
        values.push_back(uint32_t(p));
        values.push_back(uint32_t(p - 1));
    }
    for (uint64_t p = 1; p <= 0xFFFFFFFFu; p *= 16) {
        values.push_back(uint32_t(p));
        values.push_back(uint32_t(p - 1));
    }
    uint32_t x = 0x2545F491;
    for (int i = 0; i < 2000; i++) {
        x ^= x << 13, x ^= x >> 17, x ^= x << 5;
        values.push_back(x >> (i % 32));
    }

    std::string expected;
    char text[64];
    for (uint32_t v : values) {
        std::snprintf(text, sizeof text, "%u|%02u|%08x|%x|", v, v % 1000, v, v);
        expected += text;
    }
    std::string got = capture([&](FILE* f) {
        out_buffer out(f);
        for (uint32_t v : values) {
            text_span t(out, 64);
            t.dec(v);
            t.text("|");
            t.dec(v % 1000, 2);
            t.text("|");
            t.hex8(v);
            t.text("|");
            t.hex(v);
            t.text("|");
        }
    });
    EXPECT_EQ(got, expected);
}

}  // namespace
