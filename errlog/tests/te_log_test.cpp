// The T&E log where the report cases (te_log, te_recovery, te_edges) do not
// reach: the first image size that can hold a ring, and texts that would
// begin far behind their entries.
#include <gtest/gtest.h>

#include "tests/capture.h"

#include <cstdio>
#include <string>

#include "errlog/te_log.h"
#include "tools/te_writer.h"

namespace {

bytes build(const std::string& script) {
    bytes image;
    std::string error;
    EXPECT_TRUE(te_build_script(script, &image, &error)) << error;
    return image;
}

std::string printed(bytes& image, const char* timer, int* result) {
    return capture([&](FILE* f) { *result = te_print_log(f, image, timer); });
}

TEST(TeLog, FortySixBytesAreSearched) {
    bytes tiny = build("image size=300\nring at=0 size=300\n");
    tiny.resize(45);
    trace_cursor c;
    EXPECT_EQ(find_trace(tiny, 0, 45, "", &c), 0);
    tiny.resize(46);
    int result = -1;
    EXPECT_EQ(printed(tiny, "1", &result), "");
    EXPECT_NE(result, 1);
}

// Many entries whose texts would begin far behind them, in a large area
// without a NUL: the output stays near the size of the image.
TEST(TeLog, TextsFarBehindTheirEntries) {
    bytes damaged = build(
        "image size=65536 fill=0x41\nring at=0 size=8192\n"
        "entry seconds=1000000000 base=100 ticks=150 file=\"f.c\" line=7 group=4 msg=\"m{n}\""
        " msgpos=60000 filepos=60000 suffixpos=60000 count=200");
    int result = -1;
    std::string out = printed(damaged, "0", &result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(out.substr(0, 46), " [2001-09-09 01:46:40.000]  :7 INFO:\n [2001-09");
    EXPECT_LT(out.size(), damaged.size());
}

}  // namespace
