// The walk over the error log ring, its reads across the ring's end, and
// lg_apply over a framed log.
#include <gtest/gtest.h>

#include <vector>

#include "errlog/log_area.h"
#include "errlog_test_util.h"

namespace {

using image = std::vector<uint8_t>;
void put(image& a, size_t at, uint32_t v) {
    for (int i = 0; i < 4; i++) a[at + i] = uint8_t(v >> (24 - 8 * i));
}

// An area of `size` bytes with the given head and a record of `length` at each offset.
image area(uint32_t size, uint32_t first, uint32_t last, const std::vector<std::pair<uint32_t, uint32_t>>& records = {}) {
    image a(size, 0);
    put(a, 0, first);
    put(a, 4, last);
    for (auto [offset, length] : records) put(a, 8 + offset, length);
    return a;
}

// A ring of n records of 8 bytes each, from offset 0, in 64 + 8 * n bytes.
image chain(uint32_t n, uint32_t last) {
    std::vector<std::pair<uint32_t, uint32_t>> recs;
    for (uint32_t i = 0; i < n; i++) recs.push_back({8 * i, 8});
    return area(64 + 8 * n, 0, last, recs);
}

// The area between guard words; a guard of 0 spoils it.
image framed(image a, uint32_t lead = LG_GUARD_WORD, uint32_t trail = LG_GUARD_WORD) {
    a.insert(a.begin(), 4, 0);
    a.insert(a.end(), 4, 0);
    put(a, 0, lead);
    put(a, a.size() - 4, trail);
    return a;
}

TEST(LogArea, WalksToTheirEndAndCount) {
    std::vector<std::pair<uint32_t, uint32_t>> full;
    for (uint32_t o = 0; o < 56; o += 8) full.push_back({o, 8});
    const struct {
        const char* what;
        image bytes;
        int check_magic, status;
        uint32_t count;
        std::vector<lg_cursor> entries;  // lg_entries[1..], as far as given
    } cases[] = {
        {"empty by the first offset only", area(64, 0xFFFFFFFF, 0), 0, LG_AREA_EMPTY, 0, {}},
        {"empty, both offsets", area(64, 0xFFFFFFFF, 0xFFFFFFFF), 0, LG_AREA_EMPTY, 0, {}},
        {"not quite empty", area(64, 0xFFFFFFFE, 0xFFFFFFFF), 0, LG_AREA_CORRUPT, 0, {}},
        {"a first record of length 0", area(64, 0, 0), 0, LG_AREA_OK, 0, {}},
        {"63 records", chain(63, 62 * 8), 0, LG_AREA_OK, 63, {}},
        {"63, the last offset names none", chain(63, 0x1000), 0, LG_AREA_OK, 63, {}},
        {"64 records", chain(64, 63 * 8), 0, LG_AREA_CORRUPT, 0, {}},
        {"a length rounded up", area(96, 16, 36, {{16, 8}, {24, 9}, {36, 4}}), 0, LG_AREA_OK, 3, {24, 32, 44}},
        {"first offset's low bits dropped", area(64, 3, 0, {{0, 8}}), 0, LG_AREA_OK, 1, {8}},
        {"last offset with low bits never met", area(64, 0, 1, {{0, 8}, {8, 8}}), 0, LG_AREA_OK, 2, {}},
        {"last offset stepped over", area(64, 0, 4, {{0, 8}, {8, 8}}), 0, LG_AREA_OK, 2, {}},
        {"stepped over, no zero length", area(64, 0, 4, full), 0, LG_AREA_CORRUPT, 0, {}},
        {"ending at the ring's end", area(64, 40, 0, {{40, 16}, {0, 4}}), 0, LG_AREA_OK, 2, {48, 8}},
        {"wrapping once", area(64, 40, 8, {{40, 24}, {8, 4}}), 0, LG_AREA_OK, 2, {48, 16}},
        {"a length beyond the ring", area(64, 0, 100, {{0, 200}}), 0, LG_AREA_CORRUPT, 0, {}},
        {"a huge length", area(64, 0, 100, {{0, 0x7FFFFFFF}}), 0, LG_AREA_CORRUPT, 0, {}},
        // Offset 56 of 64 is one word short of the limit, its length read from offset 8.
        {"bare first record at the end", area(64, 56, 56, {{0, 12}}), 0, LG_AREA_OK, 1, {}},
        {"framed, the limit is the end", framed(area(64, 56, 56, {{0, 12}})), 1, LG_AREA_CORRUPT, 0, {}},
        {"framed", framed(area(64, 0, 56, {{0, 12}})), 1, LG_AREA_OK, 1, {12}},
        {"bad trailing guard", framed(area(64, 0, 0, {{0, 8}}), LG_GUARD_WORD, 0xABBAABBB), 1, LG_AREA_CORRUPT, 0, {}},
        {"bad leading guard", framed(area(64, 0, 0, {{0, 8}}), 0), 1, LG_AREA_CORRUPT, 0, {}},
        {"framed empty", framed(area(64, 0xFFFFFFFF, 0)), 1, LG_AREA_EMPTY, 0, {}},
        // Bare, the guard value is just a first offset, far out of range.
        {"guard read bare", framed(area(64, 0xFFFFFFFF, 0)), 0, LG_AREA_CORRUPT, 0, {}},
    };
    for (const auto& c : cases) {
        uint32_t count = 0;
        const uint32_t size = uint32_t(c.bytes.size() - (c.check_magic ? 8 : 0));
        EXPECT_EQ(lg_find_entries(c.bytes, 0, size, &count, c.check_magic), c.status) << c.what;
        if (c.status != LG_AREA_OK) continue;
        EXPECT_EQ(count, c.count) << c.what;
        for (size_t i = 0; i < c.entries.size(); i++) EXPECT_EQ(lg_entries[i + 1], c.entries[i]) << c.what << " " << i;
    }

    // Tiny areas are corrupt; claims beyond the image read as zeros.
    uint32_t count = 0;
    for (uint32_t size = 0; size < 8; size++) {
        int r = 0;
        EXPECT_EQ(print_log(image(size, 0), &r), "");
        EXPECT_EQ(r, LG_AREA_CORRUPT);
    }
    EXPECT_EQ(lg_find_entries(area(16, 0, 0), 0, 4096, &count, 0), LG_AREA_OK);
    EXPECT_EQ(count, 0u);
}

TEST(LogArea, WordSplitOverTheEnd) {
    image a = area(64, 0, 0);
    a[62] = 0x11, a[63] = 0x22, a[8] = 0x33, a[9] = 0x44;
    uint32_t count;
    lg_find_entries(a, 0, 64, &count, 0);
    lg_cursor c = 62;
    EXPECT_EQ(lg_getU32(c), 0x11223344u);
    EXPECT_EQ(c, 10u);
    c = 64;
    EXPECT_EQ(lg_getU8(c), 0x33);
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
    image log = lg_build_ring(ring);
    lg_cursor base = 4;
    uint32_t size = 64;
    lg_area_image = log;
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
    log[0] = 0;
    lg_area_image = log;
    testing::internal::CaptureStdout();
    EXPECT_EQ(lg_apply(visit, &none), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error log corrupted\n");
    log[0] = 0xAB;
    for (int i = 4; i < 8; i++) log[i] = 0xFF;
    lg_area_image = log;
    testing::internal::CaptureStdout();
    EXPECT_EQ(lg_apply(visit, &none), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error log empty\n");
    EXPECT_TRUE(none.seen.empty());
    lg_area_ptr = nullptr;
    lg_area_size_ptr = nullptr;
}

}  // namespace
