// printf formats that come from a signal table. A table is data from a
// file, so its format is never handed to printf as it stands: it is taken
// apart, accepted only with exactly one numeric conversion and bounded
// widths, and rebuilt for the argument the printer actually passes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

inline constexpr size_t SIG_FORMAT_MAX = 200;  // longest format accepted

// One integer conversion of printf, taken apart.
struct sig_int_layout {
    bool left = false;   // '-'
    bool plus = false;   // '+'
    bool space = false;  // ' '
    bool alt = false;    // '#'
    bool zero = false;   // '0'
    int width = 0;
    int precision = -1;  // -1: none given
    char conv = 'd';     // d, i, o, u, x or X
};

// printf's digits for an integer conversion, without printf: d and i read
// value as a signed, o, u, x and X as an unsigned 64-bit number. Writes at
// most width + precision + 24 characters at out, no terminator, and
// returns how many.
size_t sig_put_integer(char* out, const sig_int_layout& layout, uint64_t value);

struct sig_format {
    enum kind_t { NONE, INTEGER, FLOATING, PLAIN } kind = NONE;
    // The format as printf takes it, for "c" (an int) and FLOATING (a
    // double); other integers and PLAIN are written from literal below.
    char text[SIG_FORMAT_MAX * 2 + 8];  // valid when kind is not NONE
    int bits = 32;  // how much of the value the format's own length keeps
    bool is_signed = false;
    bool is_char = false;
    // The same format for our own digits (INTEGER but "c", and PLAIN):
    // the text around the conversion with "%%" as "%", and the conversion.
    char literal[SIG_FORMAT_MAX + 1];
    size_t before = 0;        // characters of literal in front of the conversion
    size_t literal_size = 0;
    sig_int_layout layout;

    bool takes_integer() const { return kind == INTEGER || kind == PLAIN; }
    bool takes_floating() const { return kind == FLOATING || kind == PLAIN; }
};

// NONE when the format is not one we print with.
sig_format sig_check_format(std::string_view format);
// The same verdict, kept for the formats seen last: a table names few
// formats, for value after value. Valid until the next call.
const sig_format& sig_checked_format(std::string_view format);

// The value through a checked format, into buffer; returns the length
// written (cut to the buffer). The value is value_bits wide and signed or
// not, as a C argument of its type would be: a signed short prints -1
// through "%d", and 0xffffffff through "%x".
size_t sig_format_integer(const sig_format& format, uint64_t value, int value_bits, bool value_signed,
                          char* buffer, size_t size);
size_t sig_format_floating(const sig_format& format, double value, char* buffer, size_t size);
