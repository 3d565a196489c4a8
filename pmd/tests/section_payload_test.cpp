#include <gtest/gtest.h>

#include <random>

#include "pmd/section_payload.h"
#include "pmd/tests/dump_fixture.h"

namespace {

uint8_t byte_getter_wrapper(krd_file* f) { return krd_read_byte(f); }

struct inflate_result {
    int status;
    bytes out;
};

// Inflates the first section of the dump, in large pieces or (through a
// replaced byte getter) one byte per call.
inflate_result inflate_first(const bytes& image, bool bytewise) {
    dump_fixture d(image);
    uint32_t cursor = 0;
    krd_chain c = krd_find_section(d.f(), &cursor, "");
    if (!c) return {-1, {}};
    c->image = krd_read_image_info(d.f(), c.get());
    if (!c->image) return {-2, {}};
    bytes out(c->image->size, 0);
    if (bytewise) krd_get_byte = byte_getter_wrapper;
    int r = krd_inflate_image(d.f(), c.get(), out.data());
    krd_get_byte = krd_read_byte;
    return {r, out};
}

bytes sample(size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    bytes b(n);
    // Compressible but not trivial: runs and noise.
    for (size_t i = 0; i < n; i++) b[i] = (i / 37) % 3 == 0 ? uint8_t(rng()) : uint8_t('a' + (i % 11));
    return b;
}

TEST(Inflate, PiecesAgreeWithTheByteLoop) {
    std::mt19937 rng(1234);
    for (int round = 0; round < 300; round++) {
        pmd_section s = memory_section("M", "");
        s.payload = sample(1000 + rng() % 70000, round);
        s.level = int(rng() % 10);
        bytes stream = zlib_compress(s.payload, s.level);
        switch (round % 5) {
        case 0: break;                                                   // whole
        case 1: s.size_word = uint32_t(rng() % (s.payload.size() + 1)); break;  // cut by the size word
        case 2: s.cut = uint32_t(rng() % stream.size()); break;          // stream ends early
        case 3: s.packed_word = uint32_t(rng() % stream.size()); break;  // packed size too small
        case 4:                                                          // corrupt somewhere
            s.flip = uint32_t(rng() % stream.size());
            if (rng() % 2) s.size_word = uint32_t(rng() % (s.payload.size() + 1));
            break;
        }
        pmd_dump d;
        d.sections.push_back(s);
        bytes image = pmd_build_dump(d);
        inflate_result a = inflate_first(image, false);
        inflate_result b = inflate_first(image, true);
        ASSERT_EQ(a.status, b.status) << "round " << round;
        ASSERT_EQ(a.out, b.out) << "round " << round;
        if (round % 5 == 0) {
            EXPECT_EQ(a.status, 0);
            EXPECT_EQ(a.out, s.payload);
        }
    }
}

krd_payload_status chain_payload(const pmd_dump& d, krd_payload* p) {
    static std::unique_ptr<dump_fixture> keep;
    keep = std::make_unique<dump_fixture>(d);
    uint32_t cursor = 0;
    krd_chain c = krd_find_section(keep->f(), &cursor, "");
    return krd_read_chain_payload(keep->f(), c.get(), p);
}

TEST(ChainPayload, RefusesImpossibleSizes) {
    krd_payload p;
    // No stream of a few bytes inflates to 4 GB: not allocated.
    pmd_dump h;
    pmd_section big = memory_section("R", "abc");
    big.size_word = 0xFFFFFFF0;
    h.sections.push_back(big);
    EXPECT_EQ(chain_payload(h, &p), KRD_PAYLOAD_CORRUPT);

    // Sizes that add up beyond 32 bits.
    pmd_dump o;
    pmd_section half = memory_section("R", std::string(4, 'a'));
    half.size_word = 0x90000000;
    o.sections.push_back(half);
    o.sections.push_back(half);
    EXPECT_EQ(chain_payload(o, &p), KRD_PAYLOAD_CORRUPT);

    pmd_dump w;
    pmd_section wrong = memory_section("R", "abc");
    wrong.patches.push_back({58, {'X'}});  // "MHD " spoiled
    w.sections.push_back(wrong);
    EXPECT_EQ(chain_payload(w, &p), KRD_PAYLOAD_CORRUPT);

    pmd_dump bad;
    pmd_section flipped = memory_section("R", std::string(5000, 'q'));
    flipped.flip = 3;
    bad.sections.push_back(flipped);
    EXPECT_EQ(chain_payload(bad, &p), KRD_PAYLOAD_INFLATE);
}

// The first section of a dump, kept open for the record readers.
struct first_section {
    dump_fixture d;
    krd_chain c;
    explicit first_section(const pmd_section& s) : d(make(s)) {
        uint32_t cursor = 0;
        c = krd_find_section(d.f(), &cursor, "");
    }
    static pmd_dump make(const pmd_section& s) {
        pmd_dump d;
        d.sections.push_back(s);
        return d;
    }
};

// The text form of the error information is read from at most 65504 bytes.
TEST(Records, ErrorInformationTextHasALimit) {
    std::string text = "1 2 3";
    first_section fits(memory_section("E", text + std::string(65504 - text.size(), ' ')));
    EXPECT_TRUE(krd_read_errinfo(fits.d.f(), fits.c.get()));
    first_section over(memory_section("E", text + std::string(65505 - text.size(), ' ')));
    EXPECT_FALSE(krd_read_errinfo(over.d.f(), over.c.get()));
}

}  // namespace
