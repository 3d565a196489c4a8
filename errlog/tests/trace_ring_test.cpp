#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "errlog/trace_ring.h"

namespace {

uint32_t be32(const std::vector<uint8_t>& v, size_t at) {
    return uint32_t(v[at]) << 24 | uint32_t(v[at + 1]) << 16 | uint32_t(v[at + 2]) << 8 | v[at + 3];
}
uint16_t be16(const std::vector<uint8_t>& v, size_t at) { return uint16_t(v[at] << 8 | v[at + 1]); }
void set32(std::vector<uint8_t>& v, size_t at, uint32_t x) {
    for (int i = 0; i < 4; i++) v[at + i] = uint8_t(x >> (24 - 8 * i));
}
void set16(std::vector<uint8_t>& v, size_t at, uint16_t x) {
    v[at] = uint8_t(x >> 8);
    v[at + 1] = uint8_t(x);
}

// A ring of `area` bytes at position 8 of an image with guard bytes around it.
struct test_ring {
    std::vector<uint8_t> image;
    uint32_t ring = 8;
    uint32_t area;

    explicit test_ring(uint32_t area_size, const char* name = "Trace&ErrorLog") : area(area_size) {
        image.assign(area + 64, 0xEE);
        create_trace(image, ring, area, name);
    }
    uint32_t head() const { return be32(image, ring + TRACE_HEAD); }
    uint32_t tail() const { return be32(image, ring + TRACE_TAIL); }
    uint32_t start() const { return be32(image, ring + TRACE_START); }
    uint32_t end() const { return be32(image, ring + TRACE_END); }
    uint16_t units(uint32_t data) const { return be16(image, data - 16 + BLOCK_UNITS); }
    uint8_t skip(uint32_t data) const { return image[data - 16 + BLOCK_SKIP]; }
    uint8_t state(uint32_t data) const { return image[data - 16 + BLOCK_STATE]; }

    // A finished block whose data begins with a sequence number.
    uint32_t put(uint32_t seq, uint16_t size = 4) {
        uint32_t d = alloc_trace(image, ring, size);
        if (d) {
            if (size >= 4) set32(image, d, seq);
            free_trace(image, d);
        }
        return d;
    }
};

// The sequence numbers of the visible blocks, in reading order, read from
// a copy so that the ring itself stays open.
std::vector<uint32_t> visible_seqs(const test_ring& r) {
    std::vector<uint8_t> copy = r.image;
    std::vector<uint32_t> out;
    trace_cursor c;
    for (int more = find_trace(copy, r.ring, r.area, "", &c); more; more = get_trace(&c)) out.push_back(be32(copy, c.data));
    return out;
}

int recover_copy(const test_ring& r, const char* name = "Trace&ErrorLog") {
    std::vector<uint8_t> copy = r.image;
    return recover_trace(copy, r.ring, r.area, name);
}

TEST(TraceRing, BlockLengthIsHeadPlusOneMoreThanTheWholeUnits) {
    test_ring r(600);
    EXPECT_EQ(alloc_trace(r.image, r.ring, 4), 0u) << "a fresh ring is disabled";
    EXPECT_EQ(recover_copy(r), 0);
    enable_trace(r.image, r.ring);
    uint32_t h = r.head();
    uint32_t a = alloc_trace(r.image, r.ring, 0);
    EXPECT_EQ(a, h + 16);
    EXPECT_EQ(r.units(a), 2);
    EXPECT_EQ(r.head(), h + 32);
    EXPECT_EQ(r.units(alloc_trace(r.image, r.ring, 15)), 2);
    uint32_t c = alloc_trace(r.image, r.ring, 16);
    EXPECT_EQ(r.units(c), 3);
    EXPECT_EQ(be16(r.image, c - 16 + BLOCK_SIZE), 16);
    EXPECT_EQ(r.state(c), TRACE_WRITING);
    EXPECT_EQ(r.skip(c), 0);
    EXPECT_TRUE(visible_seqs(r).empty()) << "blocks are visible only once freed";
    free_trace(r.image, c);
    EXPECT_EQ(visible_seqs(r).size(), 1u);
}

TEST(TraceRing, BlockEndingExactlyAtEndWrapsThroughAFillerOfNoUnits) {
    test_ring r(300);  // 14 free units behind the first filler
    enable_trace(r.image, r.ring);
    for (uint32_t i = 1; i <= 7; i++) ASSERT_NE(r.put(i, 0), 0u);
    EXPECT_EQ(r.head(), r.end());
    EXPECT_EQ(recover_copy(r), 0);

    uint32_t d = r.put(8, 4);
    ASSERT_NE(d, 0u);
    EXPECT_EQ(d, r.start() + 16);
    EXPECT_EQ(be16(r.image, r.end() + BLOCK_UNITS), 0);
    EXPECT_EQ(r.image[r.end() + BLOCK_SKIP], 1);
    EXPECT_EQ(r.head(), r.start() + 32);
    EXPECT_EQ(r.tail(), r.start() + 48) << "the filler and the oldest block are dropped";
    EXPECT_EQ(recover_copy(r), 0);
    EXPECT_EQ(visible_seqs(r).size(), 7u);
    EXPECT_EQ(visible_seqs(r).back(), 8u);
}

TEST(TraceRing, BlockInUseAtTailIsJumpedOverAndStaysHidden) {
    test_ring r(300);
    enable_trace(r.image, r.ring);
    uint32_t held = alloc_trace(r.image, r.ring, 4);  // never finished in time
    for (uint32_t i = 2; i <= 20; i++) ASSERT_NE(r.put(i), 0u);
    EXPECT_EQ(r.skip(held), 1);
    EXPECT_EQ(r.state(held), TRACE_WRITING);
    EXPECT_EQ(recover_copy(r), 0);
    free_trace(r.image, held);
    EXPECT_EQ(r.skip(held), 1) << "finishing it later sets only its state";
    std::vector<uint32_t> seen = visible_seqs(r);
    ASSERT_FALSE(seen.empty());
    EXPECT_EQ(seen.back(), 20u);
    for (size_t i = 1; i < seen.size(); i++) EXPECT_EQ(seen[i], seen[i - 1] + 1);
}

TEST(TraceRing, ClearHidesBlocksUntilTheGenerationComesRound) {
    test_ring r(600);
    enable_trace(r.image, r.ring);
    r.put(1);
    r.put(2);
    clear_trace(r.image, r.ring);
    EXPECT_TRUE(visible_seqs(r).empty());
    r.put(3);
    EXPECT_EQ(visible_seqs(r), std::vector<uint32_t>{3});
    for (int i = 0; i < 255; i++) clear_trace(r.image, r.ring);
    EXPECT_EQ(r.image[r.ring + TRACE_GENERATION], 0);
    EXPECT_EQ(visible_seqs(r), (std::vector<uint32_t>{1, 2}));
}

TEST(TraceRing, RefusalsLeaveTheRingSound) {
    test_ring r(300);
    enable_trace(r.image, r.ring);
    r.put(1);
    std::vector<uint8_t> before = r.image;
    EXPECT_EQ(alloc_trace(r.image, r.ring, 224), 0u);
    EXPECT_EQ(r.image, before);
    test_ring fresh(300);
    enable_trace(fresh.image, fresh.ring);
    EXPECT_NE(alloc_trace(fresh.image, fresh.ring, 200), 0u) << "the largest block that fits a fresh ring";

    // Refused at the second wrap: the ring stays sound.
    r = test_ring(300);  // 15 units from start to end
    enable_trace(r.image, r.ring);
    r.put(1, 0);
    uint32_t held = alloc_trace(r.image, r.ring, 0);
    r.put(3, 0);
    // 12 units fit in neither gap beside the held block.
    EXPECT_EQ(alloc_trace(r.image, r.ring, 12 * 16 - 32), 0u);
    EXPECT_EQ(r.state(held), TRACE_WRITING);
    EXPECT_EQ(recover_copy(r), 0);
    ASSERT_NE(r.put(4), 0u);
    EXPECT_EQ(visible_seqs(r), std::vector<uint32_t>{4});
}

TEST(TraceRing, RandomUseKeepsTheRingSoundAndInOrder) {
    std::mt19937 rng(4711);
    test_ring r(700);
    enable_trace(r.image, r.ring);
    const std::vector<uint8_t> guard_before(r.image.begin(), r.image.begin() + r.ring);
    std::vector<uint32_t> held;
    uint32_t seq = 0;
    for (int op = 0; op < 4000; op++) {
        uint32_t pick = rng() % 100;
        uint32_t last = 0;
        if (pick < 70) {
            uint16_t size = uint16_t(4 + rng() % (pick < 3 ? 600 : 90));
            last = r.put(++seq, size) ? seq : 0;
        } else if (pick < 80 && held.size() < 3) {
            uint32_t d = alloc_trace(r.image, r.ring, 4);
            if (d) set32(r.image, d, ++seq), held.push_back(d);
        } else if (pick < 90 && !held.empty()) {
            free_trace(r.image, held.front());
            held.erase(held.begin());
        } else if (pick < 95) {
            uint32_t d = alloc_subtrace(r.image, r.ring, uint16_t(rng() % 40));
            if (d && rng() % 2) free_subtrace(r.image, d);
        } else if (pick < 96) {
            clear_trace(r.image, r.ring);
        }
        ASSERT_EQ(recover_copy(r), 0) << "after operation " << op;
        std::vector<uint32_t> seen = visible_seqs(r);
        for (size_t i = 1; i < seen.size(); i++) ASSERT_LT(seen[i - 1], seen[i]) << "after operation " << op;
        if (last) {
            ASSERT_FALSE(seen.empty());
            EXPECT_EQ(seen.back(), last);
        }
    }
    EXPECT_TRUE(std::equal(guard_before.begin(), guard_before.end(), r.image.begin()));
    EXPECT_TRUE(std::all_of(r.image.begin() + r.ring + r.area, r.image.end(), [](uint8_t b) { return b == 0xEE; }));
}

// A ring that has wrapped: tail ahead of head, blocks on both sides.
struct wrapped_ring : test_ring {
    wrapped_ring() : test_ring(300) {
        enable_trace(image, ring);
        for (uint32_t i = 1; i <= 12; i++) put(i, 16);
    }
};

// Each failed check and its code are in the report cases (te_recovery); here
// what the report cannot show: a sound ring keeps its blocks and is left
// disabled, a failed one is replaced by a fresh ring.
TEST(TraceRecover, SoundRingKeepsItsBlocksAndAFailedOneIsFresh) {
    wrapped_ring sound;
    ASSERT_GT(sound.tail(), sound.head());
    const std::vector<uint32_t> before = visible_seqs(sound);
    EXPECT_EQ(before.back(), 12u);
    EXPECT_EQ(recover_trace(sound.image, sound.ring, sound.area, "Trace&ErrorLog"), 0);
    EXPECT_EQ(get_trace_status(sound.image, sound.ring), 0);
    EXPECT_EQ(visible_seqs(sound), before);

    wrapped_ring r;
    set32(r.image, r.ring + TRACE_START, r.start() + 16);
    EXPECT_EQ(recover_trace(r.image, r.ring, r.area, "Trace&ErrorLog"), 2);
    EXPECT_EQ(r.tail(), r.start());
    EXPECT_EQ(r.head(), r.start() + 16);
    EXPECT_EQ(r.end(), r.start() + 240);
    EXPECT_TRUE(visible_seqs(r).empty());
}

TEST(TraceRecover, BlocksCutShortByARestartAreHidden) {
    test_ring r(600);
    enable_trace(r.image, r.ring);
    uint32_t writing = alloc_trace(r.image, r.ring, 4);
    uint32_t sub = alloc_subtrace(r.image, r.ring, 4);
    uint32_t subdone = alloc_subtrace(r.image, r.ring, 4);
    free_subtrace(r.image, subdone);
    r.put(9);
    EXPECT_EQ(recover_trace(r.image, r.ring, r.area, "Trace&ErrorLog"), 0);
    EXPECT_EQ(r.skip(writing), 1);
    EXPECT_EQ(r.state(writing), TRACE_FINISHED);
    EXPECT_EQ(r.state(sub), TRACE_SUB_FINISHED);
    EXPECT_EQ(r.skip(subdone), 1);
    EXPECT_EQ(r.state(subdone), TRACE_SUB_FINISHED);
    EXPECT_EQ(visible_seqs(r), std::vector<uint32_t>{9});
}

TEST(TraceReader, LyingRingEndsTheWalkInsteadOfLooping) {
    test_ring r(600);
    enable_trace(r.image, r.ring);
    r.put(1);
    uint32_t hidden = alloc_trace(r.image, r.ring, 4);
    r.put(3);
    free_trace(r.image, hidden);
    r.image[hidden - 16 + BLOCK_SKIP] = 1;
    set16(r.image, hidden - 16 + BLOCK_UNITS, 0);  // unchecked: never reaches head
    EXPECT_EQ(visible_seqs(r), std::vector<uint32_t>{1});
    // A head outside the image and a block running past it.
    set32(r.image, r.ring + TRACE_HEAD, 0xFFFFFFF0);
    set16(r.image, hidden - 16 + BLOCK_UNITS, 0xFFFF);
    EXPECT_EQ(visible_seqs(r), std::vector<uint32_t>{1});
}

}  // namespace
