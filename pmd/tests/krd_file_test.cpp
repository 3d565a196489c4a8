#include <gtest/gtest.h>

#include "pmd/tests/dump_fixture.h"

namespace {

bytes counting_file(size_t n) {
    pmd_dump d;
    d.dump_id = 0x01020304;
    d.sections.push_back(memory_section("X", "abc"));
    bytes b = pmd_build_dump(d);
    // Fill the rest with a byte pattern that tells every position apart.
    while (b.size() < n) b.push_back(uint8_t(b.size() * 7 + 3));
    return b;
}

TEST(KrdOpen, RecognisesByTheFirstSectionOnly) {
    bytes b(100, 0);
    b[56] = 'B', b[57] = 'L', b[58] = 'O';
    b[7] = 100 - 8;   // length word
    b[35] = 0x2a;     // dump identity
    b[79] = 5;        // seconds
    b[83] = 7;        // microseconds
    dump_fixture d(b);
    ASSERT_TRUE(d.file);
    EXPECT_EQ(d.f()->size, 100u);
    EXPECT_EQ(d.f()->dump_id, 0x2au);
    EXPECT_EQ(d.f()->time_sec, 5u);
    EXPECT_EQ(d.f()->time_usec, 7u);
    EXPECT_EQ(d.f()->pos, 0u);
}

TEST(KrdOpen, Failures) {
    bytes shorty(58, 0);
    shorty[56] = 'B', shorty[57] = 'L';
    const std::string p = temp_path("short");
    pmd_write_file(p, shorty);
    // 1: no PMD file; 2: cannot be opened (no resident store here); 3: no name, or both.
    const struct {
        uint32_t dump_id;
        const char* path;
        uint8_t error;
    } cases[] = {{0, p.c_str(), 1}, {0, "/nonexistent/x.pmd", 2}, {0, "/tmp", 2},
                 {7, nullptr, 2},   {0, nullptr, 3},              {7, "x", 3}};
    for (const auto& c : cases) {
        uint8_t error = 9;
        EXPECT_FALSE(krd_open_file(c.dump_id, c.path, &error)) << (c.path ? c.path : "(none)");
        EXPECT_EQ(error, c.error) << (c.path ? c.path : "(none)");
    }
    unlink(p.c_str());
    std::unique_ptr<krd_file> none;
    krd_close_file(&none);
    EXPECT_FALSE(none);
}

TEST(KrdRead, WordsStraddleBufferFillsAndSeeksGoBack) {
    bytes b = counting_file(3 * KRD_BUFFER_SIZE);
    dump_fixture d(b);
    ASSERT_TRUE(d.file);
    krd_file* f = d.f();
    auto word_at = [&](size_t at) {
        return uint32_t(b[at]) << 24 | uint32_t(b[at + 1]) << 16 | uint32_t(b[at + 2]) << 8 | b[at + 3];
    };
    // A word across the end of the first buffer.
    EXPECT_EQ(krd_read_byte(f), b[0]);
    krd_seek(f, KRD_BUFFER_SIZE - 2, 0);
    EXPECT_EQ(krd_read_word(f), word_at(KRD_BUFFER_SIZE - 2));
    EXPECT_EQ(f->buf_start, KRD_BUFFER_SIZE);
    EXPECT_EQ(krd_tell(f), KRD_BUFFER_SIZE + 2);
    // Back before the buffer: refilled from there.
    krd_seek(f, 10, 0);
    EXPECT_EQ(krd_read_byte(f), b[10]);
    EXPECT_EQ(f->buf_start, 10u);
    krd_seek(f, 2, 1);
    EXPECT_EQ(krd_read_byte(f), b[13]);
    krd_seek(f, 0, 2);
    EXPECT_EQ(krd_tell(f), f->size);
    krd_seek(f, 5, 9);  // unknown whence does nothing
    EXPECT_EQ(krd_tell(f), f->size);
    // Bulk reads agree with byte reads, across fills and past the end.
    std::vector<uint8_t> bulk(b.size() + 10);
    krd_seek(f, 0, 0);
    krd_read_bytes(f, bulk.data(), uint32_t(bulk.size()));
    EXPECT_TRUE(std::equal(b.begin(), b.end(), bulk.begin()));
    EXPECT_EQ(bulk.back(), 0);
    krd_seek(f, uint32_t(b.size()) - 1, 0);
    EXPECT_EQ(krd_read_byte(f), b.back());
    EXPECT_EQ(krd_read_byte(f), 0);  // past the end
}

// Tag bytes followed by a length word of 0x11223344.
uint32_t tag_of(const std::string& text, uint32_t* len, uint32_t* consumed) {
    pmd_dump dd;
    dd.sections.push_back(memory_section("X", "abc"));
    bytes b = pmd_build_dump(dd);
    size_t at = b.size();
    b.insert(b.end(), text.begin(), text.end());
    put_u32(b, 0x11223344);
    dump_fixture d(b);
    krd_seek(d.f(), uint32_t(at), 0);
    uint32_t idx = krd_read_tag(d.f(), len);
    *consumed = krd_tell(d.f()) - uint32_t(at);
    return idx;
}

TEST(KrdTag, MatchesInTableOrder) {
    // The first half of an 8-byte entry is no match; BLOC has no length word
    // behind it; unknown tags leave the position and the length alone.
    const struct {
        const char* tag;
        uint32_t index, length, consumed;
    } cases[] = {
        {"FORM", HDR_FORM, 0x11223344, 8},       {"MBL DESC", HDR_MBL, 0x11223344, 12},
        {"PROGPRHD", HDR_PROG_PRHD, 0x11223344, 12}, {"PROGFORM", HDR_PROG_FORM, 0x11223344, 12},
        {"BLOC", HDR_BLOC, 0, 4},                {"MBL XXXX", HDR_NOTFOUND, 77, 0},
        {"ZZZZ", HDR_NOTFOUND, 77, 0},
    };
    for (const auto& c : cases) {
        uint32_t len = 77, used = 0;
        EXPECT_EQ(tag_of(c.tag, &len, &used), c.index) << c.tag;
        EXPECT_EQ(len, c.length) << c.tag;
        EXPECT_EQ(used, c.consumed) << c.tag;
    }
}

}  // namespace
