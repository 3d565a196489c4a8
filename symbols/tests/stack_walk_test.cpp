// The stack walk where the report cases do not reach it: the index of the
// images against the rule it stands for, and chains longer than any stack.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "pmd/tests/dump_fixture.h"
#include "symbols/stack_walk.h"
#include "tests/capture.h"

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
    return capture([&](FILE* f) {
        out_buffer out(f);
        print_stack_walk(out, stacks, sp, [](out_buffer& o, uint32_t addr) {
            char line[32];
            o.put(line, size_t(std::snprintf(line, sizeof line, "<%x>\n", addr)));
        });
    });
}

std::string frame(uint32_t back_chain, uint32_t lr) {
    char text[96];
    std::snprintf(text, sizeof text, "\n  Back chain word     : %08x\n        %08x  <%x>\n", back_chain, lr, lr);
    return text;
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

}  // namespace
