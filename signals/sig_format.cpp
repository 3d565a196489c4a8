// Checking and applying a printf format taken from a signal table.
#include "signals/sig_format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

// Widths and precisions above this would only pad the output.
static constexpr int max_field = 255;

// Digits at f[*i] as a number no larger than max_field; false beyond it.
static bool read_field(std::string_view f, size_t* i, char* out, size_t* n) {
    int value = 0;
    while (*i < f.size() && f[*i] >= '0' && f[*i] <= '9') {
        value = value * 10 + (f[*i] - '0');
        if (value > max_field) return false;
        out[(*n)++] = f[(*i)++];
    }
    return true;
}

sig_format sig_check_format(std::string_view f) {
    if (!f.data() || f.size() > SIG_FORMAT_MAX) return sig_format{};
    sig_format r;
    size_t n = 0;
    int conversions = 0;
    for (size_t i = 0; i < f.size(); i++) {
        if (f[i] != '%') {
            r.text[n++] = f[i];
            continue;
        }
        if (i + 1 < f.size() && f[i + 1] == '%') {
            r.text[n++] = '%';
            r.text[n++] = '%';
            i++;
            continue;
        }
        if (++conversions > 1) return sig_format{};
        r.text[n++] = f[i++];
        while (i < f.size() && std::strchr("-+ #0", f[i]) && f[i] != '\0') r.text[n++] = f[i++];
        if (!read_field(f, &i, r.text, &n)) return sig_format{};
        if (i < f.size() && f[i] == '.') {
            r.text[n++] = f[i++];
            if (!read_field(f, &i, r.text, &n)) return sig_format{};
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
            if (!r.is_char) {
                r.text[n++] = 'l';
                r.text[n++] = 'l';
            }
        } else if (std::strchr("fFeEgGaA", conv) && conv != '\0') {
            if (bits != 32 && !long_double) return sig_format{};
            r.kind = sig_format::FLOATING;
        } else {
            return sig_format{};
        }
        r.text[n++] = conv;
    }
    if (conversions > 1 || n == 0) return sig_format{};
    if (conversions == 0) r.kind = sig_format::PLAIN;
    r.text[n] = '\0';
    return r;
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
    value = widen(value, value_bits, value_signed);
    if (format.bits < 64) value &= (uint64_t(1) << format.bits) - 1;
    int n;
    if (format.is_char) {
        n = std::snprintf(buffer, size, format.text, int(value));
    } else if (format.is_signed) {
        n = std::snprintf(buffer, size, format.text, (long long)widen(value, format.bits, true));
    } else {
        n = std::snprintf(buffer, size, format.text, (unsigned long long)value);
    }
    return n < 0 ? 0 : std::min(size_t(n), size - 1);
}

size_t sig_format_floating(const sig_format& format, double value, char* buffer, size_t size) {
    const int n = std::snprintf(buffer, size, format.text, value);
    return n < 0 ? 0 : std::min(size_t(n), size - 1);
}
