// The in-process translator: the ELF symbol decides whether the address is
// code at all, the DWARF readers add file and line.
#include "zdb_src/zdb_internal.h"

uint32_t zdb_add_string(zdb_addr_info* info, std::string_view s) {
    uint32_t offset = uint32_t(info->text.size());
    info->text.append(s);
    info->text.push_back('\0');
    return offset;
}

zdb_addr_result zdb_translate_addr(zdb_file* file, uint32_t addr) {
    if (!file->base) return nullptr;
    zdb_addr_result elf = zdb_elf_translate_addr(file, addr);
    if (!elf) return nullptr;

    zdb_addr_result dwarf =
        file->is_dwarf2 ? zdb_dwarf2_translate_addr(file, addr) : zdb_dwarf_translate_addr(file, addr);
    if (!dwarf) return elf;
    // "<nofunc>" and its kind mean the DWARF reader knew no function.
    if (dwarf->function_offset != 0 && dwarf->function()[0] != '<') return dwarf;

    auto merged = std::make_unique<zdb_addr_info>();
    merged->path_a_offset = zdb_add_string(merged.get(), dwarf->path_a());
    merged->path_b_offset = zdb_add_string(merged.get(), dwarf->path_b());
    merged->function_offset = zdb_add_string(merged.get(), elf->function());
    merged->line = dwarf->line;
    if (dwarf->tool_function_offset)
        merged->tool_function_offset = zdb_add_string(merged.get(), dwarf->text.c_str() + dwarf->tool_function_offset);
    if (dwarf->tool_path_offset)
        merged->tool_path_offset = zdb_add_string(merged.get(), dwarf->text.c_str() + dwarf->tool_path_offset);
    return merged;
}
