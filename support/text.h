// Small text helpers. The character tests are those of the C locale, without
// its sign trouble: any char may be passed.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// The blanks of scanf and strtoul: blank, tab, line feed, vertical tab, form
// feed, carriage return.
inline bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
inline bool is_digit(char c) { return c >= '0' && c <= '9'; }
inline bool is_xdigit(char c) { return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// Case-insensitive substring search. No haystack, no needle or an empty
// needle give the haystack itself.
const char* xstrcasestr(const char* haystack, const char* needle);

// The NUL-terminated text at `offset` in `bytes`, cut at the end of the bytes
// when the NUL is missing; empty when the offset lies outside.
std::string_view string_at(std::span<const uint8_t> bytes, uint64_t offset);
