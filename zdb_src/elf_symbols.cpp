// Address to symbol name from the ELF symbol table: the last symbol at or
// below the address, whatever its size.
#include <algorithm>

#include "zdb_src/zdb_internal.h"

namespace {

constexpr uint32_t STT_NOTYPE = 0, STT_OBJECT = 1, STT_FUNC = 2;

int zdb_compare_symbols(const zdb_file* file, const uint8_t* a, const uint8_t* b) {
    uint32_t va = zdb_st_value(file, a), vb = zdb_st_value(file, b);
    return va > vb ? 1 : va < vb ? -1 : 0;
}

// Section and file symbols name no code; the null symbol stays in.
void zdb_sort_symbols(zdb_file* file) {
    auto table = zdb_section_bytes(file, file->symtab);
    auto index = std::make_unique<std::vector<const uint8_t*>>();
    for (size_t at = 0; at + ZDB_SYM_SIZE <= table.size(); at += ZDB_SYM_SIZE) {
        const uint8_t* sym = table.data() + at;
        uint32_t type = zdb_st_type(sym);
        if (type == STT_NOTYPE || type == STT_OBJECT || type == STT_FUNC) index->push_back(sym);
    }
    std::stable_sort(index->begin(), index->end(), [file](const uint8_t* a, const uint8_t* b) {
        return zdb_compare_symbols(file, a, b) < 0;
    });
    file->symbols = std::move(index);
}

// The first entry above the address.
size_t first_above(const zdb_file* file, uint32_t addr) {
    const auto& index = *file->symbols;
    auto above = std::upper_bound(index.begin(), index.end(), addr,
                                  [file](uint32_t a, const uint8_t* sym) { return a < zdb_st_value(file, sym); });
    return size_t(above - index.begin());
}

}  // namespace

zdb_addr_result zdb_elf_translate_addr(zdb_file* file, uint32_t addr) {
    if (!file->base || !file->text || !file->symtab || !file->strtab) return nullptr;
    uint64_t low = zdb_sh_addr(file, file->text);
    uint64_t high = low + zdb_sh_size(file, file->text);  // one past the end still counts
    if (addr < low || addr > high) return nullptr;

    if (!file->symbols) zdb_sort_symbols(file);
    size_t above = first_above(file, addr);
    if (above == 0) return nullptr;
    const uint8_t* sym = (*file->symbols)[above - 1];

    auto info = std::make_unique<zdb_addr_info>();
    info->function_offset =
        zdb_add_string(info.get(), string_at(zdb_section_bytes(file, file->strtab), zdb_st_name(file, sym)));
    return info;
}
