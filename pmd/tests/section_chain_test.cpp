#include <gtest/gtest.h>

#include "pmd/section_chain.h"
#include "pmd/tests/dump_fixture.h"

namespace {

// Titles and chain lengths of a whole walk.
std::vector<std::pair<std::string, int>> walk(krd_file* f) {
    std::vector<std::pair<std::string, int>> out;
    uint32_t cursor = 0;
    for (krd_chain c = krd_find_section(f, &cursor, ""); c; c = krd_get_section(f, &cursor)) {
        int n = 0;
        for (krd_section* s = c.get(); s; s = s->next.get()) n++;
        out.emplace_back(c->title, n);
    }
    return out;
}

using walk_t = std::vector<std::pair<std::string, int>>;

TEST(SectionChain, MergesRunsOfOneTitle) {
    pmd_dump d;
    for (const char* t : {"RAMLOG", "RAMLOG", "RAMLOG", "A", "B", "A", "TRACE AND ERROR", "TRACE AND ERROR"})
        d.sections.push_back(memory_section(t, "x"));
    pmd_section sig;
    sig.kind = pmd_kind::signal;
    sig.signo = 0x1234;
    d.sections.push_back(sig);
    d.sections.push_back(sig);
    dump_fixture f(d);
    EXPECT_EQ(walk(f.f()), (walk_t{{"RAMLOG", 3},
                                   {"A", 1},
                                   {"B", 1},
                                   {"A", 1},
                                   {"TRACE AND ERROR", 1},
                                   {"TRACE AND ERROR", 1},
                                   {"Signal 0x00001234", 1},
                                   {"Signal 0x00001234", 1}}));
}

TEST(SectionChain, FindBySubstringLeavesCursorOnMiss) {
    pmd_dump d;
    d.sections.push_back(memory_section("A", "x"));
    d.sections.push_back(memory_section(" PROCESS LIST", "x"));
    d.sections.push_back(memory_section("MY PROCESS LIST 2", "x"));
    dump_fixture f(d);
    krd_chain c = krd_find_section(f.f(), nullptr, "PROCESS LIST");
    ASSERT_TRUE(c);
    EXPECT_EQ(c->title, "PROCESS LIST");
    EXPECT_EQ(c->is_text, 1u);
    uint32_t cursor = 0;
    ASSERT_TRUE(krd_find_section(f.f(), &cursor, "LIST 2"));
    uint32_t before = cursor;
    EXPECT_FALSE(krd_find_section(f.f(), &cursor, "NOWHERE"));
    EXPECT_EQ(cursor, before);
    EXPECT_FALSE(krd_find_section(f.f(), nullptr, "process list"));  // case matters here
}

TEST(SectionChain, DamagedSectionsEndTheWalkSilently) {
    pmd_dump d;
    d.sections.push_back(memory_section("A", "x"));
    pmd_section bad = memory_section("B", "x");
    bad.kind_tag = "ZZZZDESC";
    d.sections.push_back(bad);
    d.sections.push_back(memory_section("C", "x"));
    dump_fixture f(d);
    EXPECT_EQ(walk(f.f()), (walk_t{{"A", 1}}));

    // A length word that would wrap the cursor back must not loop.
    pmd_dump w;
    w.sections.push_back(memory_section("A", "x"));
    pmd_section wrap = memory_section("B", "x");
    wrap.form_length = 0xFFFFFFF8;
    w.sections.push_back(wrap);
    w.length_word = 0xFFFFFFF0;
    dump_fixture fw(w);
    EXPECT_EQ(walk(fw.f()), (walk_t{{"A", 1}}));

    // A huge title length in a short file.
    pmd_dump t;
    pmd_section big = memory_section("TITLE", "x");
    big.patches.push_back({52, {0xFF, 0xFF, 0xFF, 0xF0}});
    t.sections.push_back(big);
    dump_fixture ft(t);
    auto r = walk(ft.f());
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].first.substr(0, 5), "TITLE");

    // A size of 48 or less holds no section.
    pmd_dump e;
    e.sections.push_back(memory_section("A", "x"));
    e.length_word = 40;
    dump_fixture fe(e);
    EXPECT_TRUE(walk(fe.f()).empty());
}

TEST(SectionChain, LongChainsAreReleasedWithoutRecursion) {
    pmd_dump d;
    for (int i = 0; i < 200000; i++) d.sections.push_back(memory_section("R", "", 0));
    bytes image = pmd_build_dump(d);
    dump_fixture f(image);
    auto r = walk(f.f());
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].second, 200000);
}

}  // namespace
