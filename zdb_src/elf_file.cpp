// Opening a symbol file: map it read-only, check that the ELF structures we
// read lie inside it, and find the sections by name.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "zdb_src/zdb_internal.h"

namespace {

struct section_slot {
    const char* name;
    const uint8_t* zdb_file::*field;
    bool read;  // its bytes are read, so they must lie inside the file
};

// The open pass, in its order.
constexpr section_slot open_sections[] = {
    {".text", &zdb_file::text, false},
    {".debug", &zdb_file::debug, true},
    {".line", &zdb_file::line, true},
    {".debug_srcinfo", &zdb_file::debug_srcinfo, false},
    {".debug_sfnames", &zdb_file::debug_sfnames, false},
    {".symtab", &zdb_file::symtab, true},
    {".strtab", &zdb_file::strtab, true},
    {".debug_line", &zdb_file::debug_line, true},
    {".debug_info", &zdb_file::debug_info, true},
    {".debug_abbrev", &zdb_file::debug_abbrev, true},
    {".debug_str", &zdb_file::debug_str, true},
};

bool inside_file(const zdb_file* f, uint64_t offset, uint64_t length) {
    return offset <= f->size && length <= f->size - offset;
}

// The section header table, if all of it lies inside the file.
const uint8_t* section_table(const zdb_file* f) {
    uint32_t count = zdb_e_shnum(f);
    if (count == 0) return nullptr;
    uint64_t offset = zdb_e_shoff(f);
    if (!inside_file(f, offset, uint64_t(count) * ZDB_SHDR_SIZE)) return nullptr;
    return f->base + offset;
}

bool section_inside_file(const zdb_file* f, const uint8_t* sh) {
    return zdb_sh_type(f, sh) == ZDB_SHT_NOBITS || inside_file(f, zdb_sh_offset(f, sh), zdb_sh_size(f, sh));
}

// Byte order first: the magic test comes after it.
bool examine_header(zdb_file* f) {
    f->ehdr = f->base;
    f->order = ec_init(f->size > 5 ? f->base[5] : 0);
    if (f->size < ZDB_EHDR_SIZE) return false;
    return std::memcmp(f->base, "\x7f" "ELF", 4) == 0;
}

void find_sections(zdb_file* f, std::span<const section_slot> slots) {
    f->shdr = section_table(f);
    for (const section_slot& s : slots) f->*s.field = zdb_find_section(f, s.name);
}

}  // namespace

std::span<const uint8_t> zdb_image(const zdb_file* f) {
    if (!f->base) return {};
    return {f->base, f->size};
}

std::span<const uint8_t> zdb_section_bytes(const zdb_file* f, const uint8_t* sh) {
    if (!f->base || !sh || zdb_sh_type(f, sh) == ZDB_SHT_NOBITS) return {};
    uint32_t offset = zdb_sh_offset(f, sh);
    uint32_t size = zdb_sh_size(f, sh);
    if (!inside_file(f, offset, size)) return {};
    return zdb_image(f).subspan(offset, size);
}

zdb_open_status open_elf_file(zdb_file* file) {
    if (!examine_header(file)) return ZDB_OPEN_NOT_ELF;
    if (zdb_e_type(file) != ZDB_ET_EXEC) return ZDB_OPEN_NOT_EXEC;

    // A table cut off by the file's end, or a name table outside it, is a
    // damaged file, not one without sections.
    uint32_t count = zdb_e_shnum(file);
    const uint8_t* table = section_table(file);
    if (count != 0 && !table) return ZDB_OPEN_NOT_ELF;
    uint32_t names = zdb_e_shstrndx(file);
    if (names != 0 && (names >= count || !section_inside_file(file, table + names * ZDB_SHDR_SIZE)))
        return ZDB_OPEN_NOT_ELF;

    find_sections(file, open_sections);
    for (const section_slot& s : open_sections) {
        const uint8_t* sh = file->*s.field;
        if (s.read && sh && !section_inside_file(file, sh)) return ZDB_OPEN_NOT_ELF;
    }
    file->is_dwarf2 = file->debug_line ? 1 : 0;
    return ZDB_OPEN_OK;
}

zdb_open_result zdb_open_file(zdb_file* file, const char* path) {
    *file = zdb_file{};
    if (!path) return {};

    // Non-blocking, so that a FIFO given by mistake doesn't wait for a writer.
    int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return {ZDB_OPEN_CANNOT_OPEN, errno};
    file->fd = fd;
    auto failed = [file](zdb_open_status status, int error) {
        zdb_close_file(file);
        return zdb_open_result{status, error};
    };
    struct stat st;
    if (fstat(fd, &st) != 0) return failed(ZDB_OPEN_CANNOT_READ, errno);
    // 32-bit offsets reach no further than this.
    uint64_t size = st.st_size > 0 ? uint64_t(st.st_size) : 0;
    if (size > UINT32_MAX) size = UINT32_MAX;
    if (size < ZDB_EHDR_SIZE) return failed(ZDB_OPEN_NOT_ELF, 0);
    void* map = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
    if (map == MAP_FAILED) return failed(ZDB_OPEN_CANNOT_READ, errno);
    file->base = static_cast<const uint8_t*>(map);
    file->size = uint32_t(size);

    zdb_open_status status = open_elf_file(file);
    if (status != ZDB_OPEN_OK) return failed(status, 0);
    return {};
}

void zdb_close_file(zdb_file* file) {
    if (file->base) munmap(const_cast<uint8_t*>(file->base), file->size);
    if (file->fd != 0) close(file->fd);
    *file = zdb_file{};
}

const uint8_t* zdb_find_section(const zdb_file* file, const char* name) {
    if (!file->base || file->size < ZDB_EHDR_SIZE) return nullptr;
    const uint8_t* table = section_table(file);
    if (!table) return nullptr;
    uint32_t count = zdb_e_shnum(file);
    uint32_t names_index = zdb_e_shstrndx(file);
    if (names_index >= count) return nullptr;
    auto names = zdb_section_bytes(file, table + names_index * ZDB_SHDR_SIZE);
    for (uint32_t i = 0; i < count; i++) {
        const uint8_t* sh = table + i * ZDB_SHDR_SIZE;
        uint32_t at = zdb_sh_name(file, sh);
        std::string_view found = string_at(names, at);
        // A name cut off by the table's end, without its NUL, is no match.
        if (found == name && uint64_t(at) + found.size() < names.size()) return sh;
    }
    return nullptr;
}
