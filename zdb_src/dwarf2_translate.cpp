// Address to directory, file, line and function from DWARF 2, walked from
// scratch at every call: nothing is kept between translations.
#include <cstdio>

#include "zdb_src/dwarf2.h"
#include "zdb_src/zdb_internal.h"

using namespace zdb_dwarf2;

namespace {

// The entries whose range holds the address, from one walk over the
// subprograms and then the inlined subroutines. A declaration without
// addresses never matches.
struct address_holders {
    // The first holder of each tag, subprogram first: what the function
    // name is taken from.
    dwarf2_die first[2];
    bool have_first[2] = {false, false};
    // Where the cross tool looks for the function: the smallest range; of
    // equal ranges the later one, which is nested deeper.
    dwarf2_die innermost;
    bool have_innermost = false;
};

address_holders find_holders(const dwarf2_sections& s, const dwarf2_cu& cu, uint32_t addr) {
    address_holders h;
    uint64_t best_length = 0;
    const uint32_t tags[2] = {DW_TAG_subprogram, DW_TAG_inlined_subroutine};
    for (int t = 0; t < 2; t++) {
        dwarf2_die die;
        while (find_tag(s, cu, tags[t], &die)) {
            dwarf2_value v;
            const bool have_low = find_attribute(s, cu, die, DW_AT_low_pc, &v);
            const uint64_t low = have_low ? v.number : 0xFFFFFFFFu;
            const bool have_high = find_attribute(s, cu, die, DW_AT_high_pc, &v);
            const uint64_t high = have_high ? v.number : 0;
            if (addr < low || addr >= high) continue;
            if (!h.have_first[t]) {
                h.first[t] = die;
                h.have_first[t] = true;
            }
            if (!have_low) continue;
            const uint64_t length = high - low;
            if (!h.have_innermost || length < best_length ||
                (length == best_length && die.values > h.innermost.values)) {
                h.innermost = die;
                best_length = length;
                h.have_innermost = true;
            }
        }
    }
    return h;
}

// The name the cross tool gives an entry: a linkage name wins, from the
// entry or from the entries its DW_AT_abstract_origin or DW_AT_specification
// lead to; else the first DW_AT_name on that way.
std::string tool_function_name(const dwarf2_sections& s, const dwarf2_cu& cu, dwarf2_die die) {
    std::string name;
    for (int hop = 0; hop < 8; hop++) {
        dwarf2_value v;
        if ((find_attribute(s, cu, die, DW_AT_linkage_name, &v) ||
             find_attribute(s, cu, die, DW_AT_MIPS_linkage_name, &v)) &&
            !v.string.empty())
            return std::string(v.string);
        if (name.empty() && find_attribute(s, cu, die, DW_AT_name, &v)) name.assign(v.string);
        if (!find_attribute(s, cu, die, DW_AT_abstract_origin, &v) &&
            !find_attribute(s, cu, die, DW_AT_specification, &v))
            break;
        if (!get_tag(s, cu, v.number, &die)) break;
    }
    return name;
}

// A relative file name behind its include directory and the unit's
// directory, as the cross tool joins them.
std::string tool_path(const std::string& file, const std::string& include_dir, const std::string* comp_dir) {
    if (file.starts_with('/')) return file;
    const std::string* dir = include_dir.starts_with('/') ? nullptr : comp_dir;
    const std::string* sub = include_dir.empty() ? nullptr : &include_dir;
    if (!dir) std::swap(dir, sub);
    if (!dir) return file;
    return sub ? *dir + "/" + *sub + "/" + file : *dir + "/" + file;
}

}  // namespace

zdb_addr_result zdb_dwarf2_translate_addr(zdb_file* file, uint32_t addr) {
    std::string directory = "<none>", file_name = "<none>", function = "<nofunc>", include_dir;
    int32_t line = 0;
    bool have_file = false, have_directory = false;
    // The record keeps its own byte order and sections from open_elf_file,
    // so no dwarf2_open_elf_file pass is needed before each translation.
    dwarf2_sections s{zdb_section_bytes(file, file->debug_info), zdb_section_bytes(file, file->debug_abbrev),
                      zdb_section_bytes(file, file->debug_str), zdb_section_bytes(file, file->debug_line)};
    if (s.info.empty() || s.abbrev.empty()) return nullptr;

    // Find the unit: by its range where it has one, else by its line program.
    dwarf2_cu cu;
    dwarf2_die unit;
    dwarf2_value v;
    for (;;) {
        if (!find_cu(s, &cu)) return nullptr;
        if (cu.version == 0 || cu.version > 3 || cu.address_size != 4) return nullptr;
        unit = dwarf2_die{};
        if (!find_tag(s, cu, DW_TAG_compile_unit, &unit)) {
            std::fprintf(stderr, "Can't find DW_TAG_compile_unit tag in compile unit.\n");
            return nullptr;
        }
        bool matched = false;
        dwarf2_value low, high;
        if (find_attribute(s, cu, unit, DW_AT_low_pc, &low) && find_attribute(s, cu, unit, DW_AT_high_pc, &high)) {
            if (addr < low.number || addr >= high.number) continue;
            matched = true;
        }
        if (!find_attribute(s, cu, unit, DW_AT_stmt_list, &v)) break;
        if (find_fileline(s, v.number, addr, &file_name, &line, &include_dir)) {
            have_file = true;
            break;
        }
        if (matched) return nullptr;
    }
    if (find_attribute(s, cu, unit, DW_AT_comp_dir, &v)) {
        directory.assign(v.string);
        have_directory = true;
    }

    // A subprogram wins over an inlined subroutine that also holds the address.
    const address_holders holders = find_holders(s, cu, addr);
    if (holders.have_first[0] || holders.have_first[1]) {
        const dwarf2_die& holder = holders.have_first[0] ? holders.first[0] : holders.first[1];
        dwarf2_die named = holder;
        bool have = true;
        if (find_attribute(s, cu, holder, DW_AT_abstract_origin, &v)) have = get_tag(s, cu, v.number, &named);
        if (have && find_attribute(s, cu, named, DW_AT_name, &v)) function.assign(v.string);
    }

    auto info = std::make_unique<zdb_addr_info>();
    info->line = line;
    info->path_a_offset = zdb_add_string(info.get(), file_name.starts_with('/') ? std::string_view() : directory);
    info->path_b_offset = zdb_add_string(info.get(), file_name);
    info->function_offset = zdb_add_string(info.get(), function);

    std::string tool_function;
    if (holders.have_innermost) tool_function = tool_function_name(s, cu, holders.innermost);
    if (!tool_function.empty()) info->tool_function_offset = zdb_add_string(info.get(), tool_function);
    info->tool_path_offset = zdb_add_string(
        info.get(), have_file ? tool_path(file_name, include_dir, have_directory ? &directory : nullptr) : "");
    return info;
}
