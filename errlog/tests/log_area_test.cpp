// The walk over the error log ring, its reads across the ring's end, and
// lg_apply over a framed log.
#include <gtest/gtest.h>

#include <vector>

#include "errlog/log_area.h"
#include "errlog_test_util.h"

namespace {

// An area of `size` bytes with the given head and a record of `length` at each offset.
std::vector<uint8_t> area(uint32_t size, uint32_t first, uint32_t last,
                          const std::vector<std::pair<uint32_t, uint32_t>>& records = {}) {
    std::vector<uint8_t> a(size, 0);
    auto put = [&](uint32_t at, uint32_t v) {
        for (int i = 0; i < 4; i++) a[at + i] = uint8_t(v >> (24 - 8 * i));
    };
    put(0, first);
    put(4, last);
    for (auto [offset, length] : records) put(8 + offset, length);
    return a;
}

int walk(const std::vector<uint8_t>& image, uint32_t* count, int check_magic = 0) {
    uint32_t size = check_magic ? uint32_t(image.size() - 8) : uint32_t(image.size());
    return lg_find_entries(image, 0, size, count, check_magic);
}

// A ring of n records of 8 bytes each, from offset 0, in 64 + 8 * n bytes.
std::vector<uint8_t> chain(uint32_t n, uint32_t last) {
    std::vector<std::pair<uint32_t, uint32_t>> recs;
    for (uint32_t i = 0; i < n; i++) recs.push_back({8 * i, 8});
    return area(64 + 8 * n, 0, last, recs);
}

TEST(LogArea, EmptyOnlyByTheFirstOffset) {
    uint32_t count = 7;
    EXPECT_EQ(walk(area(64, 0xFFFFFFFF, 0), &count), LG_AREA_EMPTY);
    EXPECT_EQ(walk(area(64, 0xFFFFFFFF, 0xFFFFFFFF), &count), LG_AREA_EMPTY);
    EXPECT_EQ(walk(area(64, 0xFFFFFFFE, 0xFFFFFFFF), &count), LG_AREA_CORRUPT);
}

TEST(LogArea, ZeroLengthFirstRecordPrintsNothing) {
    uint32_t count = 7;
    EXPECT_EQ(walk(area(64, 0, 0), &count), LG_AREA_OK);
    EXPECT_EQ(count, 0u);
    int r = -1;
    EXPECT_EQ(print_log(area(64, 0, 0), &r), "");
    EXPECT_EQ(r, 0);
}

TEST(LogArea, SixtyThreeRecordsAtMost) {
    uint32_t count = 0;
    EXPECT_EQ(walk(chain(63, 62 * 8), &count), LG_AREA_OK);
    EXPECT_EQ(count, 63u);
    // The last offset names none of them: the zero length behind the 63rd ends it.
    EXPECT_EQ(walk(chain(63, 0x1000), &count), LG_AREA_OK);
    EXPECT_EQ(count, 63u);
    EXPECT_EQ(walk(chain(64, 63 * 8), &count), LG_AREA_CORRUPT);
    EXPECT_EQ(lg_entries[0], 0u);
}

TEST(LogArea, RecordPositionsInWalkingOrder) {
    uint32_t count = 0;
    // 3 records from offset 16; the middle one's length rounds up to 12.
    ASSERT_EQ(walk(area(96, 16, 36, {{16, 8}, {24, 9}, {36, 4}}), &count), LG_AREA_OK);
    ASSERT_EQ(count, 3u);
    EXPECT_EQ(lg_entries[1], 24u);
    EXPECT_EQ(lg_entries[2], 32u);
    EXPECT_EQ(lg_entries[3], 44u);
}

TEST(LogArea, OffsetLowBits) {
    uint32_t count = 0;
    // The first offset's low bits are dropped.
    ASSERT_EQ(walk(area(64, 3, 0, {{0, 8}}), &count), LG_AREA_OK);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(lg_entries[1], 8u);
    // A last offset with low bits never matches: the walk goes on to the zero length.
    ASSERT_EQ(walk(area(64, 0, 1, {{0, 8}, {8, 8}}), &count), LG_AREA_OK);
    EXPECT_EQ(count, 2u);
}

TEST(LogArea, LastOffsetSteppedOver) {
    uint32_t count = 0;
    // The last offset lies inside the first record: the zero length ends well.
    EXPECT_EQ(walk(area(64, 0, 4, {{0, 8}, {8, 8}}), &count), LG_AREA_OK);
    EXPECT_EQ(count, 2u);
    // ... or the ring never has a zero length and the walk runs into its 64th record.
    std::vector<std::pair<uint32_t, uint32_t>> full;
    for (uint32_t o = 0; o < 56; o += 8) full.push_back({o, 8});
    EXPECT_EQ(walk(area(64, 0, 4, full), &count), LG_AREA_CORRUPT);
}

TEST(LogArea, WrapAtTheRingsEnd) {
    uint32_t count = 0;
    // A record ending exactly at offset `size` has its successor at offset 8.
    ASSERT_EQ(walk(area(64, 40, 0, {{40, 16}, {0, 4}}), &count), LG_AREA_OK);
    ASSERT_EQ(count, 2u);
    EXPECT_EQ(lg_entries[2], 8u);
    // A longer one wraps by the ring's length, once.
    ASSERT_EQ(walk(area(64, 40, 8, {{40, 24}, {8, 4}}), &count), LG_AREA_OK);
    EXPECT_EQ(lg_entries[2], 16u);
    // A length beyond the ring lands out of range.
    EXPECT_EQ(walk(area(64, 0, 100, {{0, 200}}), &count), LG_AREA_CORRUPT);
    EXPECT_EQ(walk(area(64, 0, 100, {{0, 0x7FFFFFFF}}), &count), LG_AREA_CORRUPT);
}

TEST(LogArea, U32SplitOverTheEnd) {
    std::vector<uint8_t> a = area(64, 0, 0);
    a[62] = 0x11;
    a[63] = 0x22;
    a[8] = 0x33;
    a[9] = 0x44;
    uint32_t count;
    walk(a, &count);
    lg_cursor c = 62;
    EXPECT_EQ(lg_getU32(c), 0x11223344u);
    EXPECT_EQ(c, 10u);
    c = 64;
    EXPECT_EQ(lg_getU8(c), 0x33);
}

TEST(LogArea, FirstRecordAtTheRingsEnd) {
    uint32_t count = 0;
    // Bare: offset 56 in a 64-byte area is position 64, one word short of the
    // limit; its length is read from offset 8.
    std::vector<uint8_t> a = area(64, 56, 56, {{0, 12}});
    ASSERT_EQ(walk(a, &count), LG_AREA_OK);
    EXPECT_EQ(count, 1u);
    // Framed, the limit is the area's end.
    std::vector<uint8_t> framed = {0xAB, 0xBA, 0xAB, 0xBA};
    framed.insert(framed.end(), a.begin(), a.end());
    framed.insert(framed.end(), {0xAB, 0xBA, 0xAB, 0xBA});
    EXPECT_EQ(walk(framed, &count, 1), LG_AREA_CORRUPT);
    framed[7] = 0;  // first offset 0
    EXPECT_EQ(walk(framed, &count, 1), LG_AREA_OK);
    EXPECT_EQ(lg_entries[0], 4u);
    EXPECT_EQ(lg_entries[1], 12u);
}

TEST(LogArea, GuardWords) {
    uint32_t count = 0;
    std::vector<uint8_t> a = area(64, 0, 0, {{0, 8}});
    std::vector<uint8_t> framed = {0xAB, 0xBA, 0xAB, 0xBA};
    framed.insert(framed.end(), a.begin(), a.end());
    framed.insert(framed.end(), {0xAB, 0xBA, 0xAB, 0xBB});
    EXPECT_EQ(walk(framed, &count, 1), LG_AREA_CORRUPT);
    framed.back() = 0xBA;
    framed[0] = 0;
    EXPECT_EQ(walk(framed, &count, 1), LG_AREA_CORRUPT);
    // An empty log is told only behind good guards.
    std::vector<uint8_t> empty = area(72, 0xABBAABBA, 0xFFFFFFFF);
    empty[68] = 0xAB;
    empty[69] = 0xBA;
    empty[70] = 0xAB;
    empty[71] = 0xBA;
    EXPECT_EQ(walk(empty, &count, 1), LG_AREA_EMPTY);
    // Bare, the guard value is just a first offset, far out of range.
    EXPECT_EQ(walk(empty, &count, 0), LG_AREA_CORRUPT);
}

TEST(LogArea, TinyAreasAreCorrupt) {
    uint32_t count = 0;
    for (uint32_t size = 0; size < 8; size++) {
        std::vector<uint8_t> a(size, 0);
        EXPECT_EQ(lg_find_entries(a, 0, size, &count, 0), LG_AREA_CORRUPT) << size;
        int r = 0;
        EXPECT_EQ(print_log(a, &r), "");
        EXPECT_EQ(r, LG_AREA_CORRUPT);
    }
    // Claims beyond the image read as zeros.
    std::vector<uint8_t> a = area(16, 0, 0);
    EXPECT_EQ(lg_find_entries(a, 0, 4096, &count, 0), LG_AREA_OK);
    EXPECT_EQ(count, 0u);
}

struct visits {
    std::vector<lg_cursor> seen;
    int stop_at = -1;
    int stop_with = 0;
};

int visit(void* argument, lg_cursor record) {
    auto* v = static_cast<visits*>(argument);
    v->seen.push_back(record);
    return int(v->seen.size()) - 1 == v->stop_at ? v->stop_with : 0;
}

TEST(LogArea, ApplyOverAFramedLog) {
    lg_image_ring ring;
    ring.size = 64;
    ring.framed = true;
    ring.records = {std::vector<uint8_t>(8, 0), std::vector<uint8_t>(12, 0), std::vector<uint8_t>(4, 0)};
    for (auto& r : ring.records) r[3] = uint8_t(r.size());
    std::vector<uint8_t> image = lg_build_ring(ring);
    lg_cursor base = 4;
    uint32_t size = 64;
    lg_area_image = image;
    lg_area_ptr = &base;
    lg_area_size_ptr = &size;

    visits all;
    EXPECT_EQ(lg_apply(visit, &all), 0);
    EXPECT_EQ(all.seen, (std::vector<lg_cursor>{12, 20, 32}));
    // -1 and 1 stop the visit and are the result; other values go on.
    for (int stop : {-1, 1, 5}) {
        visits some;
        some.stop_at = 1;
        some.stop_with = stop;
        EXPECT_EQ(lg_apply(visit, &some), stop == 5 ? 0 : stop);
        EXPECT_EQ(some.seen.size(), stop == 5 ? 3u : 2u);
    }

    visits none;
    image[0] = 0;
    lg_area_image = image;
    testing::internal::CaptureStdout();
    EXPECT_EQ(lg_apply(visit, &none), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error log corrupted\n");
    image[0] = 0xAB;
    for (int i = 4; i < 8; i++) image[i] = 0xFF;
    lg_area_image = image;
    testing::internal::CaptureStdout();
    EXPECT_EQ(lg_apply(visit, &none), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error log empty\n");
    EXPECT_TRUE(none.seen.empty());
    lg_area_ptr = nullptr;
    lg_area_size_ptr = nullptr;
}

}  // namespace
