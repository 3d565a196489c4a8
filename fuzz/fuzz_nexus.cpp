// The Nexus report of arbitrary trace words: plain, with process names from a
// process list file, and with names and source positions from the test
// program's symbol file (translated in process: no cross tool on the PATH).
// The first input byte chooses the mode; the process list file holds a few
// fixed lines and the input itself.
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "fuzz/fuzz_dump_file.h"
#include "nexus/nexus.h"

namespace {

struct fixture {
    FILE* sink = nullptr;
    std::unique_ptr<krd_file> dump;
    std::string elf;  // empty when the test program was not built
};

fixture& setup() {
    static fixture fx = [] {
        fixture f;
        // Proc_list_temp.txt is written in the working directory: one of our own.
        char dir[] = "/tmp/krd_fuzz_nexus.XXXXXX";
        if (mkdtemp(dir) == nullptr || chdir(dir) != 0) std::abort();
        setenv("PATH", "/nonexistent", 1);
        f.sink = std::fopen("/dev/null", "w");
        pmd_dump d;
        pmd_section lm;
        lm.title = "LOADED PROGRAMS";
        const std::string text = "Load module id: LQZ1234567_R1A\n  Start code: 0x10000000 Size: 0x00001000\n";
        lm.payload.assign(text.begin(), text.end());
        d.sections.push_back(lm);
        f.dump = open_fuzz_dump("fuzz_nexus", pmd_build_dump(d));
        const std::string elf = std::string(KRD_BINARY_DIR) + "/tests/elf/ppc_app.elf";
        if (access(elf.c_str(), R_OK) == 0) f.elf = elf;
        return f;
    }();
    return fx;
}

void write_process_list(const uint8_t* data, size_t size) {
    FILE* f = std::fopen("Proc_list_temp.txt", "w");
    if (!f) return;
    std::fputs("  \"ose_main\"   prioritized  0x00010001 0x00010001 basic\n"
               "  \"ctrl_main\"  prioritized  0x00010020 0x00010023 ctrl_app\n",
               f);
    std::fwrite(data, 1, size, f);
    std::fclose(f);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fixture& fx = setup();
    if (size == 0 || !fx.dump) return 0;
    const int mode = data[0] % 3;
    std::span<const uint8_t> words(data + 1, size - 1);
    krd_options options;
    if (mode >= 1) {
        options.flags |= KRD_OPT_NEXUS_NAMES;
        write_process_list(words.data(), words.size() < 4096 ? words.size() : 4096);
    }
    if (mode == 2 && !fx.elf.empty()) options.symbol_file = fx.elf.c_str();
    zdb_open_result symbols;
    handle_nexus_log(fx.sink, fx.dump.get(), &options, words, &symbols);
    return 0;
}
