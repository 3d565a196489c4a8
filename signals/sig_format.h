// printf formats that come from a signal table. A table is data from a
// file, so its format is never handed to printf as it stands: it is taken
// apart, accepted only with exactly one numeric conversion and bounded
// widths, and rebuilt for the argument the printer actually passes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

inline constexpr size_t SIG_FORMAT_MAX = 200;  // longest format accepted

struct sig_format {
    enum kind_t { NONE, INTEGER, FLOATING, PLAIN } kind = NONE;
    // INTEGER: the conversion reads "ll" (or is "c"); FLOATING: a double;
    // PLAIN: no conversion, the text alone whatever the value.
    char text[SIG_FORMAT_MAX * 2 + 8];  // valid when kind is not NONE
    int bits = 32;  // how much of the value the format's own length keeps
    bool is_signed = false;
    bool is_char = false;

    bool takes_integer() const { return kind == INTEGER || kind == PLAIN; }
    bool takes_floating() const { return kind == FLOATING || kind == PLAIN; }
};

// NONE when the format is not one we print with.
sig_format sig_check_format(std::string_view format);

// The value through a checked format, into buffer; returns the length
// written (cut to the buffer). The value is value_bits wide and signed or
// not, as a C argument of its type would be: a signed short prints -1
// through "%d", and 0xffffffff through "%x".
size_t sig_format_integer(const sig_format& format, uint64_t value, int value_bits, bool value_signed,
                          char* buffer, size_t size);
size_t sig_format_floating(const sig_format& format, double value, char* buffer, size_t size);
