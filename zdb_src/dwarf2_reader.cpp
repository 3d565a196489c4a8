// Compile units, abbreviations, attribute values and entries of DWARF 2.
#include <cstdio>

#include "zdb_src/dwarf2.h"
#include "zdb_src/zdb_internal.h"

namespace zdb_dwarf2 {

uint8_t read_u8(byte_cursor& c) { return c.u8(); }
int8_t read_s8(byte_cursor& c) { return int8_t(c.u8()); }
uint16_t read_u16(byte_cursor& c) { return c.u16(); }
uint32_t read_u32(byte_cursor& c) { return c.u32(); }

uint64_t read_u64(byte_cursor& c) { return c.u64(); }

// A string in place; one without its NUL inside the bound fails the cursor.
std::string_view read_string(byte_cursor& c) {
    size_t start = c.tell();
    while (c.u8() != 0) {
    }
    if (!c.ok()) return {};
    return {reinterpret_cast<const char*>(c.data.data()) + start, c.tell() - start - 1};
}

uint32_t unit_end(const dwarf2_sections& s, const dwarf2_cu& cu) {
    uint64_t end = uint64_t(cu.unit_offset) + 4 + cu.unit_length;
    return uint32_t(end < s.info.size() ? end : s.info.size());
}

int find_cu(const dwarf2_sections& s, dwarf2_cu* cu) {
    // In 64 bits, so that a huge length cannot lead back to an earlier unit.
    uint64_t next = cu->entries_offset == 0 ? 0 : uint64_t(cu->entries_offset) + cu->unit_length - 7;
    if (next >= s.info.size()) return 0;
    byte_cursor c(s.info, next);
    dwarf2_cu found;
    found.unit_offset = uint32_t(next);
    found.unit_length = read_u32(c);
    found.version = read_u16(c);
    found.abbrev_offset = read_u32(c);
    found.address_size = read_u8(c);
    found.entries_offset = uint32_t(c.tell());
    if (!c.ok()) return 0;
    *cu = found;
    return 1;
}

namespace {

// Steps an abbreviation cursor over tag and children flag to the pairs.
void skip_abbrev_head(byte_cursor& a) {
    read_uleb128(a);
    read_u8(a);
}

// Reads the values of the entry whose abbreviation is at `abbrev`, from the
// info cursor. `last` tells whether the abbreviation ends its table.
bool skip_values(const dwarf2_sections& s, uint32_t abbrev, byte_cursor& c, bool* last) {
    byte_cursor a(s.abbrev, abbrev);
    skip_abbrev_head(a);
    dwarf2_value ignored;
    for (;;) {
        uint32_t name = read_uleb128(a);
        uint32_t form = read_uleb128(a);
        if (!a.ok()) return false;
        if (name == 0) break;
        if (!read_attr(s, c, form, &ignored)) return false;
    }
    *last = a.u8() == 0;  // also at the end of the section
    return true;
}

byte_cursor unit_cursor(const dwarf2_sections& s, const dwarf2_cu& cu, uint64_t at) {
    return byte_cursor(s.info.first(unit_end(s, cu)), at);
}

}  // namespace

uint32_t find_abbrev(const dwarf2_sections& s, const dwarf2_cu& cu, uint32_t code) {
    byte_cursor a(s.abbrev, cu.abbrev_offset);
    for (;;) {
        uint32_t found = read_uleb128(a);
        if (!a.ok() || found == 0) break;
        if (found == code) return uint32_t(a.tell());
        skip_abbrev_head(a);
        while (a.ok() && read_uleb128(a) != 0) read_uleb128(a);
        read_uleb128(a);  // the form of the ending pair
    }
    std::fprintf(stderr, "Abbrev-table for abbrev code %d not found\n", int(code));
    return 0;
}

bool read_attr(const dwarf2_sections& s, byte_cursor& c, uint32_t form, dwarf2_value* value) {
    *value = dwarf2_value{};
    switch (form) {
    case 1: case 6: case 16: case 19:
        value->number = read_u32(c);
        break;
    case 5: case 18:
        value->number = read_u16(c);
        break;
    case 11: case 12: case 17:
        value->number = read_u8(c);
        break;
    case 7: case 20:
        value->number = read_u64(c);
        break;
    case 15: case 21:
        value->number = read_uleb128(c);
        break;
    case 13:
        value->number = read_sleb128(c);
        break;
    case 8:
        value->string = read_string(c);
        break;
    case 14:
        value->number = read_u32(c);
        value->string = string_at(s.str, value->number);
        break;
    case 10: case 3: case 4: case 9: {
        uint32_t length = form == 10 ? read_u8(c) : form == 3 ? read_u16(c) : form == 4 ? read_u32(c) : read_uleb128(c);
        value->number = length;
        c.skip(length);
        break;
    }
    default:
        std::fprintf(stderr, "Attribute type %d unsupported.\n", int(form));
        return false;
    }
    return c.ok();
}

int find_tag(const dwarf2_sections& s, const dwarf2_cu& cu, uint32_t tag, dwarf2_die* die) {
    uint32_t end = unit_end(s, cu);
    byte_cursor c = unit_cursor(s, cu, die->values ? die->values : cu.entries_offset);
    bool last = false;
    if (die->values && !skip_values(s, die->abbrev, c, &last)) return 0;
    for (;;) {
        uint32_t code = read_uleb128(c);
        if (!c.ok() || c.tell() >= end) return 0;
        if (code == 0) continue;
        uint32_t abbrev = find_abbrev(s, cu, code);
        if (abbrev == 0) return 0;
        byte_cursor a(s.abbrev, abbrev);
        if (read_uleb128(a) == tag) {
            *die = {abbrev, uint32_t(c.tell())};
            return 1;
        }
        if (!skip_values(s, abbrev, c, &last) || last) return 0;
    }
}

int find_attribute(const dwarf2_sections& s, const dwarf2_cu& cu, const dwarf2_die& die, uint32_t attribute,
                   dwarf2_value* value) {
    if (die.values == 0) return 0;
    byte_cursor a(s.abbrev, die.abbrev);
    skip_abbrev_head(a);
    byte_cursor c = unit_cursor(s, cu, die.values);
    for (;;) {
        uint32_t name = read_uleb128(a);
        uint32_t form = read_uleb128(a);
        if (!a.ok() || name == 0) return 0;
        if (!read_attr(s, c, form, value)) return 0;
        if (name == attribute) return 1;
    }
}

int get_tag(const dwarf2_sections& s, const dwarf2_cu& cu, uint64_t offset, dwarf2_die* die) {
    uint32_t end = unit_end(s, cu);
    uint64_t at = uint64_t(cu.unit_offset) + offset;
    if (at >= end) return 0;
    byte_cursor c = unit_cursor(s, cu, at);
    uint32_t code = read_uleb128(c);
    if (!c.ok() || c.tell() >= end) return 0;
    // A reference to a null entry is looked up like any code, and not found.
    uint32_t abbrev = find_abbrev(s, cu, code);
    if (abbrev == 0) return 0;
    *die = {abbrev, uint32_t(c.tell())};
    return 1;
}

}  // namespace zdb_dwarf2
