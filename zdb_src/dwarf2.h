// The DWARF 2 reader's steps, for the translator and its tests. A narrow
// subset: unit versions 1 to 3, 32-bit addresses and offsets. Data in the
// debug sections is read most significant byte first, whatever the file
// declares; every read is bounded by its section (and an entry by its unit).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "support/byte_cursor.h"
#include "zdb_src/zdb.h"

namespace zdb_dwarf2 {

constexpr uint32_t DW_TAG_compile_unit = 0x11;
constexpr uint32_t DW_TAG_inlined_subroutine = 0x1d;
constexpr uint32_t DW_TAG_subprogram = 0x2e;
constexpr uint32_t DW_AT_name = 0x03;
constexpr uint32_t DW_AT_stmt_list = 0x10;
constexpr uint32_t DW_AT_low_pc = 0x11;
constexpr uint32_t DW_AT_high_pc = 0x12;
constexpr uint32_t DW_AT_comp_dir = 0x1b;
constexpr uint32_t DW_AT_abstract_origin = 0x31;
constexpr uint32_t DW_AT_specification = 0x47;
constexpr uint32_t DW_AT_linkage_name = 0x6e;
constexpr uint32_t DW_AT_MIPS_linkage_name = 0x2007;

// The debug sections of one file, found again at each translation.
struct dwarf2_sections {
    std::span<const uint8_t> info, abbrev, str, line;
};

struct dwarf2_cu {
    uint32_t unit_length = 0;
    uint16_t version = 0;
    uint32_t abbrev_offset = 0;
    uint8_t address_size = 0;
    uint32_t unit_offset = 0;
    uint32_t entries_offset = 0;  // 0 only before the first unit
};

// Offsets of an entry's abbreviation (at its tag) and of its first value;
// `values` 0 means no entry yet.
struct dwarf2_die {
    uint32_t abbrev = 0;
    uint32_t values = 0;
};

// One attribute value: a number, or a string for the string forms.
struct dwarf2_value {
    uint64_t number = 0;
    std::string_view string;
};

uint8_t read_u8(byte_cursor& c);
int8_t read_s8(byte_cursor& c);
uint16_t read_u16(byte_cursor& c);
uint32_t read_u32(byte_cursor& c);
uint64_t read_u64(byte_cursor& c);
// read_uleb128 and read_sleb128 come with the cursor.
std::string_view read_string(byte_cursor& c);

// Where the unit's entries end: where find_cu finds the next unit.
uint32_t unit_end(const dwarf2_sections& s, const dwarf2_cu& cu);

int find_cu(const dwarf2_sections& s, dwarf2_cu* cu);
uint32_t find_abbrev(const dwarf2_sections& s, const dwarf2_cu& cu, uint32_t code);
bool read_attr(const dwarf2_sections& s, byte_cursor& c, uint32_t form, dwarf2_value* value);
int find_tag(const dwarf2_sections& s, const dwarf2_cu& cu, uint32_t tag, dwarf2_die* die);
int find_attribute(const dwarf2_sections& s, const dwarf2_cu& cu, const dwarf2_die& die, uint32_t attribute,
                   dwarf2_value* value);
int get_tag(const dwarf2_sections& s, const dwarf2_cu& cu, uint64_t offset, dwarf2_die* die);
// With file_dir, also the include directory of the file found ("" for none).
int find_fileline(const dwarf2_sections& s, uint64_t offset, uint32_t addr, std::string* file_name,
                  int32_t* line, std::string* file_dir = nullptr);

}  // namespace zdb_dwarf2
