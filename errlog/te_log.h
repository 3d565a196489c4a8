// The trace and error (T&E) log of a "TRACE AND ERROR" section.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>

#include "errlog/trace_ring.h"

// Prints the T&E log held in the image; the image may be rewritten on the way.
// Returns 0, or a trace error code.
int te_print_log(FILE* stream, std::span<uint8_t> image, const char* timer_text);

// Finds the ring in the image and moves its addresses into the image.
// `size` comes back as the size of the ring's area. Returns the ring's
// position, or nothing.
std::optional<uint32_t> te_locate_ring(std::span<uint8_t> image, uint32_t& size);

// Prints the entry at the cursor.
void te_print_entry(FILE* stream, const trace_cursor& cursor, const char* timer_text);

// The name of a trace group; "UNKNOWN" for any number not in the table.
const char* te_group_name(uint32_t group);
