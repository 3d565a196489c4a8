// Writes the Nexus benchmark dump: a process list, a load module, and an NPC
// trace of the given size in the mix a busy two-core board sends: branch and
// sync messages of program trace, process switches, data writes, now and
// then a message of an unknown kind.
//   bench_nexus_gen OUTPUT MEGABYTES TITLE ADDRESSES
// TITLE is the trace section's title ("NPC TRACE BUFFER", or another one to
// have the same payload printed as a hex dump); ADDRESSES is a file of
// function addresses in decimal, one a line, from the board program.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tools/pmd_writer.h"

namespace {

uint32_t rng_state = 0x9E3779B9;
uint32_t next_random() {
    rng_state ^= rng_state << 13;
    rng_state ^= rng_state >> 17;
    rng_state ^= rng_state << 5;
    return rng_state;
}

constexpr int processes = 200;

uint32_t word(uint32_t payload, uint32_t mseo) { return (payload & 0x3FFFFFFF) << 2 | mseo; }
uint32_t head(uint32_t tcode, uint32_t src, uint32_t fields, uint32_t mseo) {
    return word(fields | src << 6 | tcode, mseo);
}

struct trace_writer {
    bytes out;
    const std::vector<uint32_t>& functions;
    uint32_t stamp = 0;
    uint32_t pc[2] = {};

    void put(std::initializer_list<uint32_t> words) {
        for (uint32_t w : words) put_u32(out, w);
    }
    uint32_t some_address() { return functions[next_random() % functions.size()] + 4 * (next_random() % 12); }

    void message() {
        const uint32_t core = next_random() & 1, src = core << 1;
        stamp += 1 + next_random() % 40;
        const uint32_t pick = next_random() % 64;
        if (pick == 0) {
            put({head(3 + next_random() % 5, src, next_random() << 12, 1), word(stamp, 3)});
        } else if (pick < 5) {
            // A process switch: the identity's low 13 bits, then the rest.
            const uint32_t pid = 0x10000 + next_random() % processes;
            put({head(2, src, 5u << 12 | (pid & 0x1FFF) << 16, 0), word(pid >> 13, 3)});
        } else if (pick < 9) {
            put({head(13, src, 2u << 12 | (next_random() & 0x1FFF) << 16, 1), word(next_random(), 1), word(stamp, 3)});
        } else if (pick < 24) {
            pc[core] = some_address();
            put({head(9, src, 1u << 12 | (next_random() & 0xFF) << 13, 1), word(pc[core], 1), word(stamp, 3)});
        } else {
            // A branch relative to the core's last sync address.
            const uint32_t to = some_address();
            put({head(28, src, (next_random() & 3) << 12 | (next_random() & 0xFF) << 14, 1), word(pc[core] ^ to, 1),
                 word(next_random(), 1), word(stamp, 3)});
        }
    }
};

pmd_section text_section(const std::string& title, const std::string& text) {
    pmd_section s;
    s.title = title;
    s.time_sec = 1700000000;
    s.payload.assign(text.begin(), text.end());
    return s;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "usage: bench_nexus_gen OUTPUT MEGABYTES TITLE ADDRESSES\n");
        return 2;
    }
    const size_t size = size_t(std::atol(argv[2])) << 20;
    std::vector<uint32_t> functions;
    if (FILE* in = std::fopen(argv[4], "r")) {
        unsigned long a;
        while (std::fscanf(in, "%lu", &a) == 1) functions.push_back(uint32_t(a));
        std::fclose(in);
    }
    if (functions.empty()) {
        std::fprintf(stderr, "bench_nexus_gen: no addresses in %s\n", argv[4]);
        return 1;
    }

    pmd_dump d;
    d.dump_id = 0xBE4E0001;
    std::string list = "Name                 Type         Prio State  Sigq Stack Used Block      Pid\n";
    char line[160];
    for (int i = 0; i < processes; i++) {
        std::snprintf(line, sizeof line, "\"proc_%03d\"           prioritized  %-4d ready  0    4096  1024 0x00020000 0x%08x\n",
                      i, i % 32, 0x10000 + i);
        list += line;
    }
    d.sections.push_back(text_section(" PROCESS LIST", list));
    d.sections.push_back(text_section("LOADED PROGRAMS", "Load module id: LQZ7770001_R1A\n"
                                                         "  Start code: 0x10000000 Size: 0x00100000\n"));

    trace_writer trace{{}, functions};
    trace.out.reserve(size + 64);
    while (trace.out.size() < size) trace.message();
    trace.out.resize(size);
    pmd_section npc;
    npc.title = argv[3];
    npc.time_sec = 1700000000;
    npc.payload = std::move(trace.out);
    d.sections.push_back(std::move(npc));
    return pmd_write_file(argv[1], pmd_build_dump(d)) ? 0 : 1;
}
