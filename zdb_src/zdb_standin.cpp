// TEMPORARY stand-in for the symbol file reader, big-endian ELF symbols only,
// so that the call trace can be built and tried. Removed when the reader lands.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "zdb_src/zdb.h"

static uint32_t be32(const uint8_t* p) { return uint32_t(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3]; }
static uint32_t be16(const uint8_t* p) { return uint32_t(p[0]) << 8 | p[1]; }

void zdb_open_file(zdb_file* file, const char* path) {
    *file = zdb_file{};
    if (!path) return;
    int fd = open(path, O_RDONLY);
    if (fd < 0) {
        std::fprintf(stderr, "\033[0mzdb: [open_elf_file]: %s\n", std::strerror(errno));
        std::exit(1);
    }
    struct stat st;
    fstat(fd, &st);
    void* m = mmap(nullptr, size_t(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
    if (m == MAP_FAILED || st.st_size < 52 || std::memcmp(m, "\177ELF", 4) != 0) {
        std::printf("zdb: This is not an ELF file\n");
        std::exit(1);
    }
    file->fd = fd;
    file->size = uint32_t(st.st_size);
    file->base = static_cast<const uint8_t*>(m);
    file->ehdr = file->base;
    file->shdr = file->base + be32(file->base + 32);
    file->text = zdb_find_section(file, ".text");
    file->symtab = zdb_find_section(file, ".symtab");
    file->strtab = zdb_find_section(file, ".strtab");
}

void zdb_close_file(zdb_file* file) {
    if (file->base) munmap(const_cast<uint8_t*>(file->base), file->size);
    if (file->fd) close(file->fd);
    file->symbols.reset();
    file->base = nullptr;
    file->fd = 0;
}

const uint8_t* zdb_find_section(const zdb_file* file, const char* name) {
    uint32_t shnum = be16(file->base + 48), shstrndx = be16(file->base + 50);
    const uint8_t* names = file->base + be32(file->shdr + shstrndx * 40 + 16);
    for (uint32_t i = 0; i < shnum; i++) {
        const uint8_t* sh = file->shdr + i * 40;
        if (std::strcmp(reinterpret_cast<const char*>(names + be32(sh)), name) == 0) return sh;
    }
    return nullptr;
}

zdb_addr_result zdb_elf_translate_addr(zdb_file* file, uint32_t addr) {
    if (!file->base || !file->text || !file->symtab || !file->strtab) return nullptr;
    uint32_t start = be32(file->text + 12), size = be32(file->text + 20);
    if (addr < start || addr > start + size) return nullptr;
    if (!file->symbols) {
        file->symbols = std::make_unique<std::vector<const uint8_t*>>();
        const uint8_t* tab = file->base + be32(file->symtab + 16);
        uint32_t n = be32(file->symtab + 20) / 16;
        for (uint32_t i = 0; i < n; i++)
            if ((tab[i * 16 + 12] & 15) <= 2) file->symbols->push_back(tab + i * 16);
        std::stable_sort(file->symbols->begin(), file->symbols->end(),
                         [](const uint8_t* a, const uint8_t* b) { return be32(a + 4) < be32(b + 4); });
    }
    const uint8_t* best = nullptr;
    for (const uint8_t* s : *file->symbols) {
        if (be32(s + 4) > addr) break;
        best = s;
    }
    if (!best) best = file->symbols->empty() ? nullptr : file->symbols->back();
    if (!best) return nullptr;
    auto r = std::make_unique<zdb_addr_info>();
    r->function_offset = 1;
    r->text += reinterpret_cast<const char*>(file->base + be32(file->strtab + 16) + be32(best));
    r->text.push_back('\0');
    return r;
}

zdb_addr_result zdb_translate_addr(zdb_file* file, uint32_t addr) {
    if (!file->base) return nullptr;
    return zdb_elf_translate_addr(file, addr);
}
