// Examines arbitrary bytes as a symbol file, as zdb_open_file would after
// mapping it, and translates addresses with the ELF reader and both DWARF
// readers. A bad file gives a status here instead of ending the process.
#include <cstdio>
#include <vector>

#include "zdb_src/zdb.h"
#include "zdb_src/zdb_internal.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // The readers' messages would drown the fuzzer's own output; the
    // sanitizers report on the descriptor, not through this stream.
    if (FILE* quiet = std::fopen("/dev/null", "w")) stderr = quiet;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > UINT32_MAX) return 0;
    zdb_file file;
    file.base = data;
    file.size = uint32_t(size);
    if (open_elf_file(&file) == ZDB_OPEN_OK) {
        std::vector<uint32_t> addrs = {0, 0x10000000};
        if (file.text) {
            uint32_t low = zdb_sh_addr(&file, file.text), length = zdb_sh_size(&file, file.text);
            addrs.insert(addrs.end(), {low, low + length, low + length / 2, low + length + 1});
        }
        if (size >= 4) addrs.push_back(Z_EC32(&file, data + size - 4));
        for (uint32_t addr : addrs) {
            zdb_translate_addr(&file, addr);
            // Straight to the readers too: the ELF gate would keep most inputs out.
            zdb_dwarf2_translate_addr(&file, addr);
            zdb_dwarf_translate_addr(&file, addr);
        }
    }
    file.base = nullptr;  // not a mapping: nothing to unmap
    zdb_close_file(&file);
    return 0;
}
