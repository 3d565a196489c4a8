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

// 32 bytes and 4 units with a message of two characters.
const char* entry = "entry seconds=1000000000 base=100 ticks=150 file=\"f.c\" line=7 group=4 msg=\"m{n}\"";

TEST(TeLog, NoRingAndAnEmptyRing) {
    bytes none(300, 0);
    int result = -1;
    EXPECT_EQ(printed(none, "1", &result), "");
    EXPECT_EQ(result, 1);
    // A header in 45 bytes lies in no position that is searched.
    bytes tiny = build("image size=300\nring at=0 size=300\n");
    tiny.resize(45);
    EXPECT_EQ(printed(tiny, "1", &result), "");
    EXPECT_EQ(result, 1);
    trace_cursor c;
    EXPECT_EQ(find_trace(tiny, 0, 45, "", &c), 0);
    tiny.resize(46);
    EXPECT_EQ(printed(tiny, "1", &result), "");
    EXPECT_NE(result, 1);
    bytes empty = build("image size=300 address=0x100\nring at=16 size=284\n");
    EXPECT_EQ(printed(empty, "1", &result), "  Trace empty\n");
    EXPECT_EQ(result, 0);
}

TEST(TeLog, ImageShorterThanTheRingStaysInside) {
    // Cut inside the second block of a ring that never wrapped: the check
    // meets the missing third block as one of 0 units.
    bytes image = build("image size=600\nring at=0 size=600\n" + std::string(entry) + " count=3");
    image.resize(44 + 16 + 64 + 20);
    int result = -1;
    EXPECT_EQ(printed(image, "1", &result), "");
    EXPECT_EQ(result, 18);
    // A wrapped ring cut inside its oldest block keeps the rest; the cut
    // entry shows what the image holds of it.
    bytes wrapped = build("image size=400\nring at=0 size=400\n" + std::string(entry) + " count=9");
    wrapped.resize(44 + 16 * 19);
    EXPECT_EQ(printed(wrapped, "0", &result),
              " [2001-09-09 01:46:40.000]  :7 CHECK:\n"
              " [2001-09-09 01:46:40.000] m6 f.c:7 INFO:\n"
              " [2001-09-09 01:46:40.000] m7 f.c:7 INFO:\n"
              " [2001-09-09 01:46:40.000] m8 f.c:7 INFO:\n"
              " [2001-09-09 01:46:40.000] m9 f.c:7 INFO:\n");
    EXPECT_EQ(result, 0);
}

// A text ends at its NUL or at the end of its entry's text area; one that
// begins outside the area is empty.
TEST(TeLog, TextsStayInsideTheirEntry) {
    // seconds, base, line 7, file at 4, message at 0, suffix at 8, no binary
    // data, group 4; then twelve bytes of text without a NUL.
    const std::string head = "3B9ACA00 00000064 0007 0004 0000 0008 0000 0000 00000004";
    bytes image = build("image size=400 fill=0x41\nring at=0 size=400\nblock hex=\"" + head +
                        " 6d6d6d6d 66666666 73737373\"\n" + entry);
    int result = -1;
    EXPECT_EQ(printed(image, "0", &result),
              " [2001-09-09 01:46:40.000] mmmmffffssss ffffssss:7 INFO:ssss\n"
              " [2001-09-09 01:46:40.000] m1 f.c:7 INFO:\n");
    EXPECT_EQ(result, 0);

    // Many entries whose texts would begin far behind them, in a large area
    // without a NUL: the output stays near the size of the image.
    bytes damaged = build("image size=65536 fill=0x41\nring at=0 size=8192\n" + std::string(entry) +
                          " msgpos=60000 filepos=60000 suffixpos=60000 count=200");
    std::string out = printed(damaged, "0", &result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(out.substr(0, 46), " [2001-09-09 01:46:40.000]  :7 INFO:\n [2001-09");
    EXPECT_LT(out.size(), damaged.size());
}

}  // namespace
