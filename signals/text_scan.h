// Reading target text the way scanf and strtoul read a zero-terminated
// string, without a terminator: the text ends at its end pointer or at the
// first zero byte, whichever comes first. The C library's own scanners
// measure the whole rest of the string on every call, which makes a loop
// over a big section quadratic.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "support/text.h"

// Where a text of this size really ends: at its first zero byte, if any.
const char* text_limit(const char* text, size_t size);

inline bool text_ended(const char* p, const char* end) { return p >= end || *p == 0; }

// First place at or behind p where the pattern starts, or null; a zero byte
// ends the text as it would end a C string.
const char* text_find(const char* p, const char* end, std::string_view pattern);

// strtoul with base 16 and a 32-bit unsigned long: white space, a sign, a
// "0x" in front of a digit, the digits; too large saturates. *stop is p when
// nothing was converted.
uint32_t text_strtoul_hex(const char* p, const char* end, const char** stop);

// sscanf over the text, for the conversions %s (with a width), %d, %u and
// %x, each with an optional '*'; numbers are stored as uint32_t. Returns the
// count of assigned values, or -1 when the text ends before the first one.
int text_scanf(const char* p, const char* end, const char* format, ...);

// A forward search that remembers its hit: searches from positions that
// only move forward cost as much, all together, as one pass over the text.
struct text_finder {
    std::string_view pattern;
    const char* from = nullptr;  // where the remembered search started
    const char* hit = nullptr;   // its result, null for none
    const char* none_until = nullptr;  // for none: where the text ended
};

const char* text_find_next(text_finder& finder, const char* p, const char* end);
