// Address to unit, directory, line and function from DWARF 1 (.debug and
// .line), the format of the older load modules.
#include <algorithm>
#include <string_view>

#include "zdb_src/zdb_dwarf/dwarf1.h"
#include "zdb_src/zdb_internal.h"

namespace zdb_dwarf1 {

namespace {

bool read32(byte_order order, std::span<const uint8_t> bytes, uint64_t at, uint32_t* v) {
    if (at > bytes.size()) return false;
    byte_cursor c(bytes, size_t(at), order);
    *v = c.u32();
    return c.ok();
}

bool read16(byte_order order, std::span<const uint8_t> bytes, uint64_t at, uint32_t* v) {
    if (at > bytes.size()) return false;
    byte_cursor c(bytes, size_t(at), order);
    *v = c.u16();
    return c.ok();
}

bool has_tag(dwarf1_tags tags, uint32_t tag) {
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

// The value's offset from the attribute's name and its size, by the form in
// the name's low four bits. Forms without a size end the walk.
bool dwarf1_attr_size(byte_order order, std::span<const uint8_t> entry_bytes, uint64_t at, uint32_t form,
                      uint64_t* value, uint64_t* size) {
    uint32_t n = 0;
    switch (form) {
    case 1: case 2: case 6:
        *value = at + 2, *size = 4;
        return true;
    case 3:
        *value = at + 4;
        if (!read16(order, entry_bytes, at + 2, &n)) return false;
        *size = n;
        return true;
    case 4:
        *value = at + 6;
        if (!read32(order, entry_bytes, at + 2, &n)) return false;
        *size = n;
        return true;
    case 5:
        *value = at + 2, *size = 2;
        return true;
    case 7:
        *value = at + 2, *size = 8;
        return true;
    case 8: {
        *value = at + 2;
        if (*value >= entry_bytes.size()) return false;
        std::string_view s = string_at(entry_bytes, *value);
        if (*value + s.size() >= entry_bytes.size()) return false;  // no NUL inside the entry
        *size = s.size() + 1;
        return true;
    }
    default:
        return false;
    }
}

std::optional<std::string_view> attr_string(byte_order order, std::span<const uint8_t> debug, uint32_t entry,
                                            uint32_t attribute) {
    uint32_t size, value;
    if (!find_attr(order, debug, entry, attribute, &size, &value)) return std::nullopt;
    return string_at(debug.subspan(value, size), 0);
}

// A string that isn't there takes no room: its offset is that of the next.
uint32_t add_if_found(zdb_addr_info* info, std::optional<std::string_view> s) {
    uint32_t offset = uint32_t(info->text.size());
    if (s) zdb_add_string(info, *s);
    return offset;
}

}  // namespace

int zdb_get_next_attr(byte_order order, std::span<const uint8_t> debug, uint32_t entry, uint32_t cursor,
                      uint32_t* attribute, uint32_t* size, uint32_t* value, uint32_t* next) {
    uint32_t length;
    if (!read32(order, debug, entry, &length) || length < 8) return 0;
    uint64_t end = std::min<uint64_t>(uint64_t(entry) + length, debug.size());
    auto entry_bytes = debug.first(end);
    uint64_t at = cursor ? cursor : uint64_t(entry) + 6;
    uint32_t name;
    if (!read16(order, entry_bytes, at, &name)) return 0;
    uint64_t value_at, value_size;
    if (!dwarf1_attr_size(order, entry_bytes, at, name & 0xF, &value_at, &value_size)) return 0;
    if (value_at > end || end - value_at < value_size) return 0;
    *attribute = name;
    if (size) *size = uint32_t(value_size);
    *value = uint32_t(value_at);
    *next = uint32_t(value_at + value_size);
    return 1;
}

int find_attr(byte_order order, std::span<const uint8_t> debug, uint32_t entry, uint32_t attribute, uint32_t* size,
              uint32_t* value) {
    uint32_t cursor = 0, name, next;
    while (zdb_get_next_attr(order, debug, entry, cursor, &name, size, value, &next)) {
        if (name == attribute) return 1;
        cursor = next;
    }
    return 0;
}

std::optional<uint32_t> dwarf1_find_entry_of_tag(byte_order order, std::span<const uint8_t> debug, uint32_t from,
                                                 uint64_t limit, dwarf1_tags tags) {
    uint64_t at = from;
    while (at < limit) {
        uint32_t length, tag;
        if (!read32(order, debug, at, &length)) return std::nullopt;
        // A short entry holds no tag of its own.
        if (length >= 6 && read16(order, debug, at + 4, &tag) && has_tag(tags, tag)) return uint32_t(at);
        if (length == 0) return std::nullopt;
        at += length;
    }
    return std::nullopt;
}

std::optional<uint32_t> dwarf1_find_entry_for_addr(byte_order order, std::span<const uint8_t> debug, uint32_t from,
                                                   uint64_t* limit, uint32_t addr, dwarf1_tags tags) {
    auto first = dwarf1_find_entry_of_tag(order, debug, from, *limit, tags);
    if (!first) return std::nullopt;
    // From here on along siblings only, up to the first of another tag.
    for (uint64_t at = *first; at < *limit;) {
        uint32_t tag, sibling;
        if (!read16(order, debug, at + 4, &tag) || !has_tag(tags, tag)) return std::nullopt;
        if (!read32(order, debug, at + 8, &sibling)) return std::nullopt;
        uint32_t size, low_at, high_at;
        // An entry without both addresses doesn't hold the address.
        if (find_attr(order, debug, uint32_t(at), AT_low_pc, &size, &low_at) && size == 4 &&
            find_attr(order, debug, uint32_t(at), AT_high_pc, &size, &high_at) && size == 4) {
            uint32_t low = 0, high = 0;
            read32(order, debug, low_at, &low);
            read32(order, debug, high_at, &high);
            if (low <= addr && addr < high) {
                *limit = sibling;
                return uint32_t(at);
            }
        }
        if (sibling <= at) return std::nullopt;  // a chain that doesn't go forward
        at = sibling;
    }
    return std::nullopt;
}

int32_t dwarf1_find_line(byte_order order, std::span<const uint8_t> debug, std::span<const uint8_t> line,
                         uint32_t entry, uint32_t addr) {
    uint32_t size, value, table, length, base;
    if (!find_attr(order, debug, entry, AT_stmt_list, &size, &value) || size != 4) return -1;
    if (!read32(order, debug, value, &table)) return -1;
    if (!read32(order, line, table, &length) || !read32(order, line, uint64_t(table) + 4, &base)) return -1;
    uint64_t end = uint64_t(table) + length;
    uint32_t delta = addr - base;
    for (uint64_t row = uint64_t(table) + 8; row < end; row += 10) {
        uint32_t number, row_delta, next_delta;
        if (!read32(order, line, row, &number) || number == 0) return -1;
        // The row behind closes this row's range, the ending row included.
        if (!read32(order, line, row + 6, &row_delta) || !read32(order, line, row + 16, &next_delta)) return -1;
        if (row_delta <= delta && next_delta > delta) return int32_t(number);
    }
    return -1;
}

}  // namespace zdb_dwarf1

using namespace zdb_dwarf1;

zdb_addr_result zdb_dwarf_translate_addr(zdb_file* file, uint32_t addr) {
    if (!file->base || !file->debug) return nullptr;
    auto debug = zdb_section_bytes(file, file->debug);
    const byte_order order = file->order;
    uint64_t limit = debug.size();

    auto unit = dwarf1_find_entry_for_addr(order, debug, 0, &limit, addr, {TAG_compile_unit});
    if (!unit) return nullptr;
    auto info = std::make_unique<zdb_addr_info>();
    info->line = dwarf1_find_line(order, debug, zdb_section_bytes(file, file->line), *unit, addr);

    info->path_a_offset = add_if_found(info.get(), attr_string(order, debug, *unit, AT_name));
    info->path_b_offset = add_if_found(info.get(), attr_string(order, debug, *unit, AT_comp_dir));
    auto function = dwarf1_find_entry_for_addr(order, debug, *unit, &limit, addr, {TAG_subroutine, TAG_global_subroutine});
    std::optional<std::string_view> name;
    if (function) name = attr_string(order, debug, *function, AT_name);
    info->function_offset = add_if_found(info.get(), name);
    return info;
}
