#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "pmd/tests/dump_fixture.h"
#include "symbols/stack_walk.h"

namespace {

stack_image image(uint32_t start, std::vector<uint32_t> words) {
    stack_image img;
    img.start = start;
    for (uint32_t w : words) put_u32(img.data, w);
    img.size = uint32_t(img.data.size());
    return img;
}

// The walk as text; each link register shows as "<lr>".
std::string walk(std::vector<stack_image> images, uint32_t sp) {
    const stack_images stacks = index_stack_images(std::move(images));
    char* buf = nullptr;
    size_t len = 0;
    FILE* f = open_memstream(&buf, &len);
    {
        out_buffer out(f);
        print_stack_walk(out, stacks, sp, [](out_buffer& o, uint32_t addr) {
            char line[32];
            int n = std::snprintf(line, sizeof line, "<%x>\n", addr);
            o.put(line, size_t(n));
        });
    }
    std::fclose(f);
    std::string s(buf, len);
    free(buf);
    return s;
}

std::string frame(uint32_t back_chain, uint32_t lr) {
    char text[96];
    std::snprintf(text, sizeof text, "\n  Back chain word     : %08x\n        %08x  <%x>\n", back_chain, lr, lr);
    return text;
}

TEST(FindRegister, FirstOccurrenceAndTheEqualsBehindIt) {
    const struct {
        const char* text;
        const char* key;
        bool found;
        uint32_t value;
    } cases[] = {
        {"R0=1 R1=00200010 R10=5", "R1", true, 0x200010},
        {"R10=5 R1=7", "R1", true, 5},  // R10 stands first
        {"LR = 0x1234", "LR", true, 0x1234},
        {"PC=zz", "PC", true, 0},
        {"PC=123456789", "PC", true, 0xFFFFFFFF},
        {"R0=1 R2=3", "LR", false, 0},
        {"R0=1 DAR", "DAR", false, 0},  // no "=" behind the key
        {"", "PC", false, 0},
    };
    for (const auto& c : cases) {
        uint32_t v = 0;
        EXPECT_EQ(find_register(c.text, c.key, &v), c.found) << c.text;
        if (c.found) {
            EXPECT_EQ(v, c.value) << c.text;
        }
    }
}

// The index against the rule itself: the first image in dump order that
// holds the address, for images that nest, overlap, repeat, are empty or
// reach the top of the address space.
TEST(FindStackFrame, IndexAgreesWithTheFirstHolderInDumpOrder) {
    uint32_t seed = 12345;
    auto next = [&seed] { return seed = seed * 1103515245u + 12345u; };
    for (int round = 0; round < 50; round++) {
        std::vector<stack_image> images;
        std::vector<uint32_t> probes = {0, 0xFFFFFFFF};
        for (int i = 0, n = int(next() % 40); i < n; i++) {
            stack_image img;
            img.start = next() % 4 == 0 ? 0xFFFFFF00 + next() % 0x100 : 0x1000 + next() % 0x800;
            img.size = next() % 5 == 0 ? 0 : next() % 0x400;
            if (i > 0 && next() % 6 == 0) img = images[next() % images.size()];  // the same range again
            for (uint64_t p : {uint64_t(img.start) - 1, uint64_t(img.start), uint64_t(img.start) + img.size,
                               uint64_t(img.start) + img.size + 1})
                probes.push_back(uint32_t(p));
            images.push_back(img);
        }
        for (int i = 0; i < 200; i++) probes.push_back(0x1000 + next() % 0xC00);
        const stack_images s = index_stack_images(images);
        for (uint32_t sp : probes) {
            const stack_image* want = nullptr;
            for (const stack_image& img : s.images)
                if (img.start <= sp && uint64_t(sp) <= uint64_t(img.start) + img.size) {
                    want = &img;
                    break;
                }
            ASSERT_EQ(find_stack_frame(s, sp), want) << "round " << round << " sp " << std::hex << sp;
        }
    }
}

// A chain longer than any real stack: every word leads to the next.
TEST(StackWalk, EndlessChainsStop) {
    std::vector<uint32_t> words;
    for (uint32_t i = 0; i < 3000; i++) words.push_back(0x1000 + 4 * (i + 1));
    std::string out = walk({image(0x1000, words)}, 0x1000);
    std::string tail = "\n  Stack walk stopped after 1000 frames\n";
    ASSERT_GE(out.size(), tail.size());
    EXPECT_EQ(out.substr(out.size() - tail.size()), tail);
    std::vector<stack_image> pair = {image(0x1000, {0x1008, 1, 0x1000, 2})};
    EXPECT_EQ(walk(pair, 0x1000),
              frame(0x1008, 1) + frame(0x1000, 2) + "\n  Stack walk stopped: the back chain loops to 00001000\n");
}

pmd_section stack_section(const std::string& title, uint32_t address, std::vector<uint32_t> words) {
    pmd_section s;
    s.kind = pmd_kind::memory;
    s.title = title;
    s.address = address;
    for (uint32_t w : words) put_u32(s.payload, w);
    return s;
}

TEST(ReadStackImages, TitlesChainsAndWhatIsPassedOver) {
    pmd_dump d;
    d.sections.push_back(stack_section("PMD stack of main", 0x100, {1, 2}));
    d.sections.push_back(stack_section("PMD stack of main", 0x900, {3}));  // same title: one chain
    d.sections.push_back(stack_section("pmd stack", 0x200, {4}));          // the prefixes compare with case
    d.sections.push_back(stack_section("Stack for pid 0x10001", 0x300, {5}));
    d.sections.push_back(stack_section("Supervisor stack", 0x400, {6}));
    d.sections.push_back(stack_section("USER STACKS " + std::string(200, 'x'), 0x500, {7}));
    d.sections.push_back(stack_section("EMPTY STACK", 0x600, {}));
    pmd_section text;
    text.kind = pmd_kind::text;
    std::string body = "SUPERVISOR STACK\n0000\n";
    text.payload.assign(body.begin(), body.end());
    d.sections.push_back(text);
    dump_fixture fx(d);
    std::vector<stack_image> images = read_stack_images(fx.f()).images;
    ASSERT_EQ(images.size(), 5u);
    EXPECT_EQ(images[0].title, "PMD stack of main");
    EXPECT_EQ(images[0].start, 0x100u);
    EXPECT_EQ(images[0].size, 12u);
    EXPECT_EQ(images[0].data, (bytes{0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 3}));
    EXPECT_EQ(images[1].start, 0x300u);
    EXPECT_EQ(images[2].start, 0x400u);
    EXPECT_EQ(images[3].title.size(), CALLTRACE_TITLE_MAX);
    EXPECT_EQ(images[4].title, "EMPTY STACK");
    EXPECT_EQ(images[4].size, 0u);
}

TEST(ReadRegisterSets, BothTitlesAndTheirOrder) {
    pmd_dump d;
    d.sections.push_back(memory_section("CPU registers for pid 0x00010002", "R1=2"));
    d.sections.push_back(memory_section("REGISTERS FOR PROCESS main", std::string("R1=1\0R1=9", 9)));
    pmd_section block;
    block.kind = pmd_kind::reg;
    block.title = "REGISTERS FOR PROCESS block";
    block.registers.push_back({"pc", 1});
    d.sections.push_back(block);
    d.sections.push_back(memory_section("CPU registers for pid 0x00010003", "R1=3"));
    dump_fixture fx(d);
    std::vector<register_set> sets = read_register_sets(fx.f());
    // The "REGISTERS FOR PROCESS " sections come first; the search for the
    // other title goes on from behind them. A register block has no payload.
    ASSERT_EQ(sets.size(), 2u);
    EXPECT_EQ(sets[0].title, "CALLTRACE FOR PROCESS main");
    EXPECT_EQ(sets[0].text, "R1=1");
    EXPECT_EQ(sets[1].title, "CALLTRACE FOR PROCESS 0x00010003");
    EXPECT_EQ(sets[1].text, "R1=3");

    // Between two such sections the other title is passed over; with none
    // of them every one of the other title counts.
    pmd_dump mixed;
    mixed.sections.push_back(memory_section("REGISTERS FOR PROCESS a", "R1=1"));
    mixed.sections.push_back(memory_section("CPU registers for pid 0x00010002", "R1=2"));
    mixed.sections.push_back(memory_section("REGISTERS FOR PROCESS b", "R1=3"));
    dump_fixture fm(mixed);
    sets = read_register_sets(fm.f());
    ASSERT_EQ(sets.size(), 2u);
    EXPECT_EQ(sets[1].title, "CALLTRACE FOR PROCESS b");
    pmd_dump cpu_only;
    for (const char* pid : {"0x00010001", "0x00010002", "0x00010003"})
        cpu_only.sections.push_back(memory_section(std::string("CPU registers for pid ") + pid, "R1=1"));
    dump_fixture fc(cpu_only);
    sets = read_register_sets(fc.f());
    ASSERT_EQ(sets.size(), 3u);
    EXPECT_EQ(sets[2].title, "CALLTRACE FOR PROCESS 0x00010003");
}

}  // namespace
