#pragma once

#include <cstdint>

// Case-insensitive substring search. No haystack, no needle or an empty
// needle give the haystack itself.
const char* xstrcasestr(const char* haystack, const char* needle);
