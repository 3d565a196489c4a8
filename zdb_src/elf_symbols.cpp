// Address to symbol name from the ELF symbol table: the last symbol at or
// below the address, whatever its size.
#include <algorithm>

#include "zdb_src/zdb_internal.h"

namespace {

constexpr uint32_t STT_NOTYPE = 0, STT_OBJECT = 1, STT_FUNC = 2;

int zdb_compare_symbols(const uint8_t* a, const uint8_t* b) {
    uint32_t va = zdb_st_value(a), vb = zdb_st_value(b);
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
    std::stable_sort(index->begin(), index->end(), [](const uint8_t* a, const uint8_t* b) {
        return zdb_compare_symbols(a, b) < 0;
    });
    file->symbols = std::move(index);
}

// The first entry above the address, by halving. Written out rather than
// std::upper_bound: an index sorted under one file's byte order may be read
// under another's, and this stays well-defined on any order.
size_t first_above(const std::vector<const uint8_t*>& index, uint32_t addr) {
    size_t low = 0, high = index.size();
    while (low < high) {
        size_t mid = low + (high - low) / 2;
        if (zdb_st_value(index[mid]) > addr) high = mid;
        else low = mid + 1;
    }
    return low;
}

}  // namespace

zdb_addr_result zdb_elf_translate_addr(zdb_file* file, uint32_t addr) {
    if (!file->base || !file->text || !file->symtab || !file->strtab) return nullptr;
    uint64_t low = zdb_sh_addr(file->text);
    uint64_t high = low + zdb_sh_size(file->text);  // one past the end still counts
    if (addr < low || addr > high) return nullptr;

    if (!file->symbols) zdb_sort_symbols(file);
    const auto& index = *file->symbols;
    size_t above = first_above(index, addr);
    if (above == 0) return nullptr;
    const uint8_t* sym = index[above - 1];

    auto info = std::make_unique<zdb_addr_info>();
    info->function_offset =
        zdb_add_string(info.get(), zdb_string_at(zdb_section_bytes(file, file->strtab), zdb_st_name(sym)));
    return info;
}
