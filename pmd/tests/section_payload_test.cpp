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

TEST(Inflate, ShortStreamsLeaveZerosAndSizeZeroSucceeds) {
    pmd_section s = memory_section("M", "hello world");
    s.size_word = 64;
    pmd_dump d;
    d.sections.push_back(s);
    inflate_result r = inflate_first(pmd_build_dump(d), false);
    EXPECT_EQ(r.status, 0);
    ASSERT_EQ(r.out.size(), 64u);
    EXPECT_EQ(std::string(r.out.begin(), r.out.begin() + 11), "hello world");
    EXPECT_EQ(r.out[11], 0);

    pmd_dump z;
    z.sections.push_back(memory_section("M", ""));
    EXPECT_EQ(inflate_first(pmd_build_dump(z), false).status, 0);
}

krd_payload_status chain_payload(const pmd_dump& d, krd_payload* p) {
    static std::unique_ptr<dump_fixture> keep;
    keep = std::make_unique<dump_fixture>(d);
    uint32_t cursor = 0;
    krd_chain c = krd_find_section(keep->f(), &cursor, "");
    return krd_read_chain_payload(keep->f(), c.get(), p);
}

TEST(ChainPayload, JoinsNodesAndRefusesImpossibleSizes) {
    pmd_dump d;
    d.sections.push_back(memory_section("R", "abc"));
    d.sections.push_back(memory_section("R", "def"));
    krd_payload p;
    ASSERT_EQ(chain_payload(d, &p), KRD_PAYLOAD_OK);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(p.bytes.get()), p.size), "abcdef");

    pmd_dump e;
    e.sections.push_back(memory_section("R", ""));
    EXPECT_EQ(chain_payload(e, &p), KRD_PAYLOAD_EMPTY);

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

TEST(Records, ErrorInformationInBothForms) {
    pmd_section e;
    e.kind = pmd_kind::error;
    e.title = "ERROR CODE";
    e.user_called = 1, e.error_code = 0x11, e.extra = 2, e.curr_proc = 0x10001;
    first_section a(e);
    auto info = krd_read_errinfo(a.d.f(), a.c.get());
    ASSERT_TRUE(info);
    EXPECT_EQ(info->error_code, 0x11u);
    EXPECT_EQ(info->curr_proc, 0x10001u);

    first_section t(memory_section("ERROR HANDLER PARAMETERS", "  1 0x11   0"));
    info = krd_read_errinfo(t.d.f(), t.c.get());
    ASSERT_TRUE(info);
    EXPECT_EQ(info->user_called, 1u);
    EXPECT_EQ(info->error_code, 0x11u);
    EXPECT_EQ(info->extra, 0u);
    EXPECT_EQ(info->curr_proc, 0xFFFFFFFFu);

    std::string text = "1 2 3";
    first_section fits(memory_section("E", text + std::string(65504 - text.size(), ' ')));
    EXPECT_TRUE(krd_read_errinfo(fits.d.f(), fits.c.get()));
    first_section over(memory_section("E", text + std::string(65505 - text.size(), ' ')));
    EXPECT_FALSE(krd_read_errinfo(over.d.f(), over.c.get()));
}

TEST(Records, SignalBlocksRawCompressedAndEmpty) {
    pmd_section s;
    s.kind = pmd_kind::signal;
    s.signo = 7;
    s.payload = {1, 2, 3, 4, 5};
    first_section raw(s);
    auto sig = krd_read_sigdef_info(raw.d.f(), raw.c.get());
    ASSERT_TRUE(sig);
    EXPECT_EQ(sig->signo, 7u);
    EXPECT_EQ(sig->data, s.payload);

    s.sig_data = "zlib";
    first_section z(s);
    sig = krd_read_sigdef_info(z.d.f(), z.c.get());
    ASSERT_TRUE(sig);
    EXPECT_EQ(sig->data, s.payload);
    ASSERT_TRUE(z.c->image);
    EXPECT_EQ(z.c->image->address, 0u);
    EXPECT_EQ(z.c->image->size, 5u);

    s.sig_data = "none";
    first_section none(s);
    sig = krd_read_sigdef_info(none.d.f(), none.c.get());
    ASSERT_TRUE(sig);
    EXPECT_FALSE(sig->has_data);

    s.sig_data = "raw";
    s.patches.push_back({72, {0x7F, 0xFF, 0xFF, 0xFF}});  // DATA length beyond the file
    first_section huge(s);
    EXPECT_FALSE(krd_read_sigdef_info(huge.d.f(), huge.c.get()));
}

TEST(Records, ProgramsAndRegisters) {
    pmd_section p;
    p.kind = pmd_kind::program;
    pmd_program a;
    a.pid = 0x10001;
    a.resident = 1;
    a.regions = {0x1000, 0x100, 0x2000, 0x200};
    a.lmid = std::string(61, 'a');
    pmd_program b = a;
    b.lmid = std::string(62, 'b');
    p.programs = {a, b};
    first_section fp(p);
    uint32_t pos = 0;
    uint32_t count = krd_init_proginfo(fp.d.f(), fp.c.get(), &pos);
    ASSERT_GT(count, 0u);
    auto r1 = krd_get_proginfo(fp.d.f(), &pos);
    ASSERT_TRUE(r1);
    EXPECT_EQ(std::string(r1->lmid), a.lmid);
    EXPECT_EQ(r1->regions, a.regions);
    auto r2 = krd_get_proginfo(fp.d.f(), &pos);
    ASSERT_TRUE(r2);
    EXPECT_EQ(std::string(r2->lmid), std::string(62, 'b') + ">");

    pmd_section empty;
    empty.kind = pmd_kind::program;
    first_section fe(empty);
    EXPECT_EQ(krd_init_proginfo(fe.d.f(), fe.c.get(), &pos), 0u);

    pmd_section r;
    r.kind = pmd_kind::reg;
    r.title = "R";
    r.arch = bytes(13, 0xEE);
    r.registers = {{"pc", 0x1234}, {"msr", 0x8000}};
    first_section fr(r);
    count = krd_init_reginfo(fr.d.f(), fr.c.get(), &pos);
    EXPECT_EQ(count, 2 * (8 + 1 + 4 + 3) + 1u);
    auto e1 = krd_get_reginfo(fr.d.f(), &pos);
    ASSERT_TRUE(e1);
    EXPECT_EQ(e1->name, "pc");
    EXPECT_EQ(e1->value, 0x1234u);
}

}  // namespace
