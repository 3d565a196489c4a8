// The error log area: a two-word head and a ring of variable-length records,
// read through positions that wrap from the ring's end back to offset 8.
#pragma once

#include <cstdint>
#include <span>

// A byte position inside the image of the last walk; wide enough that no sum
// of a position and a 32-bit offset overflows.
using lg_cursor = uint64_t;

enum : int { LG_AREA_OK = 0, LG_AREA_CORRUPT = 1, LG_AREA_EMPTY = 2 };

constexpr uint32_t LG_GUARD_WORD = 0xABBAABBA;
constexpr uint32_t LG_EMPTY_OFFSET = 0xFFFFFFFF;
// Element 0 holds the base, so a walk finds at most 63 records.
constexpr int LG_MAX_ENTRIES = 64;

// State of the last walk, for the printing of one section: lg_image is that
// section's payload, gone with it. Nothing here outlives the section.
extern uint32_t lg_size;
extern lg_cursor lg_entries[LG_MAX_ENTRIES];
extern std::span<const uint8_t> lg_image;

// Reads at a cursor and moves it on. A cursor at or behind the ring's end is
// first moved back by the ring's length, onto offset 8. Bytes outside the
// image read as 0.
uint8_t lg_getU8(lg_cursor& cursor);
uint32_t lg_getU32(lg_cursor& cursor);

// Walks the area at position `area` of the image: 0 usable (count records,
// their positions in lg_entries[1..count]), 1 corrupt, 2 empty. With
// check_magic the area is framed and `area` is its leading guard word.
int lg_find_entries(std::span<const uint8_t> image, lg_cursor area, uint32_t size, uint32_t* count,
                    int check_magic);

// Where lg_apply finds a framed log: the memory that holds it, the position
// of its base (behind the leading guard word) and its size. Set by the caller.
extern std::span<const uint8_t> lg_area_image;
extern const lg_cursor* lg_area_ptr;
extern const uint32_t* lg_area_size_ptr;

// Calls back for each record of the framed log, in walking order, until a
// callback returns -1 or 1, which is then the result. 0 when all were
// visited; -1 (with a line on standard output) for a corrupt or empty log.
int lg_apply(int (*callback)(void* argument, lg_cursor record), void* argument);
