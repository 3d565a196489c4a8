// Writes the benchmark dump: memory blocks of binary and of text, half each.
//   bench_gen OUTPUT MEGABYTES SECTIONS
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tools/pmd_writer.h"

static uint32_t rng_state = 0x12345678;
static uint32_t next_random() {
    rng_state ^= rng_state << 13;
    rng_state ^= rng_state >> 17;
    rng_state ^= rng_state << 5;
    return rng_state;
}

// Target memory: runs of zeros, counters, pointers and noise.
static bytes binary_area(size_t n) {
    bytes b;
    b.reserve(n);
    uint32_t counter = 0;
    while (b.size() < n) {
        uint32_t kind = next_random() % 4, len = 16 + next_random() % 256;
        for (uint32_t i = 0; i < len && b.size() < n; i += 4) {
            uint32_t w = kind == 0 ? 0 : kind == 1 ? counter++ : kind == 2 ? 0x00100000 + (next_random() & 0xFFFC) : next_random();
            put_u32(b, w);
        }
    }
    b.resize(n);
    return b;
}

static bytes text_area(size_t n) {
    static const char* words[] = {"send", "receive", "timeout", "alloc", "free", "ok", "error", "restart", "link up"};
    bytes b;
    b.reserve(n + 100);
    char line[160];
    uint32_t t = 0;
    while (b.size() < n) {
        t += next_random() % 1000;
        int len = std::snprintf(line, sizeof line, "%010u [proc_%02u] %s: value=0x%08x count=%u\n", t,
                                next_random() % 64, words[next_random() % 9], next_random(), next_random() % 100000);
        b.insert(b.end(), line, line + len);
    }
    b.resize(n);
    return b;
}

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: bench_gen OUTPUT MEGABYTES SECTIONS\n");
        return 2;
    }
    size_t total = size_t(std::atol(argv[2])) << 20;
    int sections = std::atoi(argv[3]);
    size_t each = total / size_t(sections);
    pmd_dump d;
    d.dump_id = 0xBE4C0001;
    for (int i = 0; i < sections; i++) {
        pmd_section s;
        s.kind = pmd_kind::memory;
        s.time_sec = 1700000000 + uint32_t(i);
        if (i % 2 == 0) {
            s.title = "MEMORY AREA " + std::to_string(i);
            s.address = 0x01000000 + uint32_t(i) * 0x01000000;
            s.payload = binary_area(each);
        } else {
            s.title = " TEXT LOG " + std::to_string(i);
            s.payload = text_area(each);
        }
        d.sections.push_back(std::move(s));
    }
    return pmd_write_file(argv[1], pmd_build_dump(d)) ? 0 : 1;
}
