// Checking and applying a printf format taken from a signal table.
#include "signals/sig_format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

// Widths and precisions above this would only pad the output.
static constexpr int max_field = 255;

// Digits at f[*i] as a number no larger than max_field; false beyond it.
static bool read_field(std::string_view f, size_t* i, char* out, size_t* n, int* number) {
    int value = 0;
    while (*i < f.size() && f[*i] >= '0' && f[*i] <= '9') {
        value = value * 10 + (f[*i] - '0');
        if (value > max_field) return false;
        out[(*n)++] = f[(*i)++];
    }
    *number = value;
    return true;
}

static void note_flag(sig_int_layout* layout, char flag) {
    switch (flag) {
    case '-': layout->left = true; break;
    case '+': layout->plus = true; break;
    case ' ': layout->space = true; break;
    case '#': layout->alt = true; break;
    default: layout->zero = true; break;
    }
}

sig_format sig_check_format(std::string_view f) {
    if (!f.data() || f.size() > SIG_FORMAT_MAX) return sig_format{};
    sig_format r;
    size_t n = 0, lit = 0;
    int conversions = 0;
    for (size_t i = 0; i < f.size(); i++) {
        if (f[i] != '%') {
            r.text[n++] = f[i];
            r.literal[lit++] = f[i];
            continue;
        }
        if (i + 1 < f.size() && f[i + 1] == '%') {
            r.text[n++] = '%';
            r.text[n++] = '%';
            r.literal[lit++] = '%';
            i++;
            continue;
        }
        if (++conversions > 1) return sig_format{};
        r.before = lit;
        r.text[n++] = f[i++];
        while (i < f.size() && std::strchr("-+ #0", f[i]) && f[i] != '\0') {
            note_flag(&r.layout, f[i]);
            r.text[n++] = f[i++];
        }
        if (!read_field(f, &i, r.text, &n, &r.layout.width)) return sig_format{};
        if (i < f.size() && f[i] == '.') {
            r.text[n++] = f[i++];
            if (!read_field(f, &i, r.text, &n, &r.layout.precision)) return sig_format{};
        }
        // The length as the target reads it: long and size_t are 32 bits.
        std::string_view rest = f.substr(i);
        int bits = 32;
        bool long_double = false;
        for (auto [text, width] : {std::pair{"hh", 8}, {"ll", 64}, {"h", 16}, {"l", 32}, {"q", 64},
                                   {"j", 64}, {"z", 32}, {"t", 32}, {"L", 0}}) {
            if (rest.starts_with(text)) {
                bits = width;
                long_double = width == 0;
                i += std::strlen(text);
                break;
            }
        }
        if (i >= f.size()) return sig_format{};
        const char conv = f[i];
        if (std::strchr("diouxXc", conv) && conv != '\0') {
            if (long_double || (conv == 'c' && bits != 32)) return sig_format{};
            r.kind = sig_format::INTEGER;
            r.bits = conv == 'c' ? 8 : bits;
            r.is_signed = conv == 'd' || conv == 'i';
            r.is_char = conv == 'c';
        } else if (std::strchr("fFeEgGaA", conv) && conv != '\0') {
            if (bits != 32 && !long_double) return sig_format{};
            r.kind = sig_format::FLOATING;
        } else {
            return sig_format{};
        }
        r.text[n++] = conv;
        r.layout.conv = conv;
    }
    if (conversions > 1 || n == 0) return sig_format{};
    if (conversions == 0) {
        r.kind = sig_format::PLAIN;
        r.before = lit;
    }
    r.text[n] = '\0';
    r.literal_size = lit;
    return r;
}

// The verdict depends on the format's bytes alone, so a verdict kept with
// the text it was given for is the verdict for that text again.
const sig_format& sig_checked_format(std::string_view f) {
    static const sig_format none{};
    if (!f.data()) return none;
    struct kept_verdict {
        std::string text;
        sig_format format;
    };
    static kept_verdict kept[8];
    static size_t used = 0, next = 0;
    for (size_t k = 0; k < used; k++)
        if (kept[k].text == f) return kept[k].format;
    kept_verdict& slot = kept[next];
    next = (next + 1) % std::size(kept);
    used = std::min(used + 1, std::size(kept));
    slot.text.assign(f);
    slot.format = sig_check_format(f);
    return slot.format;
}

size_t sig_put_integer(char* out, const sig_int_layout& layout, uint64_t value) {
    const bool is_signed = layout.conv == 'd' || layout.conv == 'i';
    const bool negative = is_signed && int64_t(value) < 0;
    const uint64_t magnitude = negative ? 0 - value : value;
    const unsigned base = layout.conv == 'o' ? 8 : (layout.conv == 'x' || layout.conv == 'X') ? 16 : 10;
    const char* digit = layout.conv == 'X' ? "0123456789ABCDEF" : "0123456789abcdef";
    char digits[24];  // least significant first
    int count = 0;
    // Each base by its own loop, which the compiler turns into shifts and
    // multiplications.
    if (base == 16)
        for (uint64_t m = magnitude; m != 0; m >>= 4) digits[count++] = digit[m & 15];
    else if (base == 8)
        for (uint64_t m = magnitude; m != 0; m >>= 3) digits[count++] = digit[m & 7];
    else
        for (uint64_t m = magnitude; m != 0; m /= 10) digits[count++] = digit[m % 10];

    // Leading zeros: to the precision (1 without one), and for "#o" one
    // zero in front of the first digit (a lone "0" for 0 at precision 0).
    int zeros = std::max((layout.precision < 0 ? 1 : layout.precision) - count, 0);
    if (layout.alt && base == 8 && zeros == 0) zeros = 1;
    char prefix[2];
    int prefix_size = 0;
    if (negative) prefix[prefix_size++] = '-';
    else if (is_signed && layout.plus) prefix[prefix_size++] = '+';
    else if (is_signed && layout.space) prefix[prefix_size++] = ' ';
    if (layout.alt && base == 16 && magnitude != 0) {
        prefix[prefix_size++] = '0';
        prefix[prefix_size++] = layout.conv;
    }
    // Padding to the width: blanks, behind with '-', or zeros behind the
    // sign with '0' when no precision is given.
    const int pad = std::max(layout.width - (prefix_size + zeros + count), 0);
    const bool pad_zeros = layout.zero && !layout.left && layout.precision < 0;
    char* p = out;
    if (!layout.left && !pad_zeros) p = std::fill_n(p, pad, ' ');
    p = std::copy_n(prefix, prefix_size, p);
    if (pad_zeros) p = std::fill_n(p, pad, '0');
    p = std::fill_n(p, zeros, '0');
    for (int k = count; k > 0; k--) *p++ = digits[k - 1];
    if (layout.left) p = std::fill_n(p, pad, ' ');
    return size_t(p - out);
}

// value, value_bits wide, extended to 64 bits by its sign or by zeros.
static uint64_t widen(uint64_t value, int bits, bool is_signed) {
    if (bits >= 64) return value;
    if (bits <= 0) return 0;  // an element of size 0 holds nothing
    value &= (uint64_t(1) << bits) - 1;
    const uint64_t sign = uint64_t(1) << (bits - 1);
    return is_signed ? (value ^ sign) - sign : value;
}

size_t sig_format_integer(const sig_format& format, uint64_t value, int value_bits, bool value_signed,
                          char* buffer, size_t size) {
    if (size == 0) return 0;
    value = widen(value, value_bits, value_signed);
    if (format.bits < 64) value &= (uint64_t(1) << format.bits) - 1;
    if (format.is_char) {
        const int n = std::snprintf(buffer, size, format.text, int(value));
        return n < 0 ? 0 : std::min(size_t(n), size - 1);
    }
    // The text around the conversion and the digits, cut to the buffer.
    char text[SIG_FORMAT_MAX + 2 * max_field + 32];
    char* p = std::copy_n(format.literal, format.before, text);
    if (format.kind == sig_format::INTEGER)
        p += sig_put_integer(p, format.layout, format.is_signed ? widen(value, format.bits, true) : value);
    p = std::copy(format.literal + format.before, format.literal + format.literal_size, p);
    const size_t n = std::min(size_t(p - text), size - 1);
    std::memcpy(buffer, text, n);
    buffer[n] = '\0';
    return n;
}

size_t sig_format_floating(const sig_format& format, double value, char* buffer, size_t size) {
    const int n = std::snprintf(buffer, size, format.text, value);
    return n < 0 ? 0 : std::min(size_t(n), size - 1);
}
