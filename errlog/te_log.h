// The trace and error (T&E) log of a "TRACE AND ERROR" section.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

// Prints the T&E log held in the image; the image may be rewritten on the way.
// Returns 0, or a trace error code.
int te_print_log(FILE* stream, std::span<uint8_t> image, const char* timer_text);
