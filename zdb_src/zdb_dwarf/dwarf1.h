// The DWARF 1 reader's steps, for the translator and its tests. Every value
// is read in the file's byte order (`order`, as Z_EC32 and Z_EC16 read it)
// and may stand at any alignment; every read is bounded by its entry and
// section.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>

#include "support/byte_cursor.h"

namespace zdb_dwarf1 {

constexpr uint16_t TAG_global_subroutine = 0x06;
constexpr uint16_t TAG_compile_unit = 0x11;
constexpr uint16_t TAG_subroutine = 0x14;
constexpr uint16_t AT_name = 0x38;
constexpr uint16_t AT_stmt_list = 0x106;
constexpr uint16_t AT_low_pc = 0x111;
constexpr uint16_t AT_high_pc = 0x121;
constexpr uint16_t AT_comp_dir = 0x1b8;

using dwarf1_tags = std::initializer_list<uint16_t>;

// Positions are offsets into `.debug`. `cursor` is 0 for the first
// attribute, else the `next` of the step before.
int zdb_get_next_attr(byte_order order, std::span<const uint8_t> debug, uint32_t entry, uint32_t cursor,
                      uint32_t* attribute, uint32_t* size, uint32_t* value, uint32_t* next);
int find_attr(byte_order order, std::span<const uint8_t> debug, uint32_t entry, uint32_t attribute, uint32_t* size,
              uint32_t* value);

std::optional<uint32_t> dwarf1_find_entry_of_tag(byte_order order, std::span<const uint8_t> debug, uint32_t from,
                                                 uint64_t limit, dwarf1_tags tags);
std::optional<uint32_t> dwarf1_find_entry_for_addr(byte_order order, std::span<const uint8_t> debug, uint32_t from,
                                                   uint64_t* limit, uint32_t addr, dwarf1_tags tags);
// The line of the address in the unit's `.line` table, or -1.
int32_t dwarf1_find_line(byte_order order, std::span<const uint8_t> debug, std::span<const uint8_t> line,
                         uint32_t entry, uint32_t addr);

}  // namespace zdb_dwarf1
