#include "signals/text_scan.h"

#include <cstdarg>
#include <cstring>

const char* text_limit(const char* text, size_t size) {
    if (size == 0) return text;
    const void* zero = std::memchr(text, 0, size);
    return zero ? static_cast<const char*>(zero) : text + size;
}

const char* text_find(const char* p, const char* end, std::string_view pattern) {
    if (p >= end) return nullptr;
    std::string_view text(p, size_t(end - p));
    size_t at = text.find(pattern);
    if (at == std::string_view::npos) return nullptr;
    if (std::memchr(p, 0, at)) return nullptr;
    return p + at;
}

const char* text_find_next(text_finder& finder, const char* p, const char* end) {
    // A remembered search from at or before p still answers while its hit
    // is not behind p, or, when it found none, while p has not passed the
    // zero byte that stopped it.
    bool known = finder.from && finder.from <= p && p <= (finder.hit ? finder.hit : finder.none_until);
    if (!known) {
        finder.from = p;
        finder.hit = text_find(p, end, finder.pattern);
        if (!finder.hit) finder.none_until = p < end ? text_limit(p, size_t(end - p)) : p;
    }
    return finder.hit;
}

static int digit_value(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The digits of a number in base 10 or 16, in 64 bits with saturation,
// behind an optional sign. The sign negates modulo 2^32 unless the value
// overflowed, as strtoul does.
struct number_read {
    uint32_t value = 0;
    bool digits = false;
};

static number_read read_digits(const char*& p, const char* end, int base, bool negative) {
    number_read r;
    uint64_t v = 0;
    bool overflow = false;
    while (!text_ended(p, end)) {
        int d = digit_value(*p);
        if (d < 0 || d >= base) break;
        r.digits = true;
        v = v * uint64_t(base) + uint64_t(d);
        if (v > 0xFFFFFFFFull) {
            overflow = true;
            v = 0xFFFFFFFFull;
        }
        p++;
    }
    if (overflow) r.value = 0xFFFFFFFFu;
    else r.value = negative ? uint32_t(0u - uint32_t(v)) : uint32_t(v);
    return r;
}

uint32_t text_strtoul_hex(const char* p, const char* end, const char** stop) {
    const char* start = p;
    while (!text_ended(p, end) && is_space(*p)) p++;
    bool negative = false;
    if (!text_ended(p, end) && (*p == '+' || *p == '-')) negative = *p++ == '-';
    // "0x" counts only in front of a digit; otherwise the 0 is the number.
    if (!text_ended(p, end) && *p == '0' && end - p > 2 && (p[1] == 'x' || p[1] == 'X') && is_xdigit(p[2]))
        p += 2;
    number_read r = read_digits(p, end, 16, negative);
    *stop = r.digits ? p : start;
    return r.digits ? r.value : 0;
}

// One numeric conversion of scanf: sign, for %x a "0x" prefix (taken even
// when no digit follows, as the C library's scanf does), digits.
static bool scan_number(const char*& p, const char* end, char conv, uint32_t* out) {
    bool negative = false;
    bool any = false;
    if (*p == '+' || *p == '-') {
        negative = *p++ == '-';
        if (text_ended(p, end)) return false;
    }
    int base = conv == 'x' ? 16 : 10;
    if (*p == '0') {
        any = true;
        p++;
        if (base == 16 && !text_ended(p, end) && (*p == 'x' || *p == 'X')) p++;
    }
    number_read r = read_digits(p, end, base, negative);
    if (!r.digits && !any) return false;
    if (out) *out = r.value;
    return true;
}

int text_scanf(const char* p, const char* end, const char* format, ...) {
    va_list args;
    va_start(args, format);
    int done = 0;
    bool input_failure = false;
    const char* f = format;
    while (*f) {
        if (is_space(*f)) {
            while (is_space(*f)) f++;
            while (!text_ended(p, end) && is_space(*p)) p++;
            continue;
        }
        if (*f != '%') {
            if (text_ended(p, end)) {
                input_failure = true;
                break;
            }
            if (*p != *f) break;
            p++;
            f++;
            continue;
        }
        f++;
        bool assign = *f != '*';
        if (!assign) f++;
        size_t width = 0;
        while (*f >= '0' && *f <= '9') width = width * 10 + size_t(*f++ - '0');
        char conv = *f++;
        while (!text_ended(p, end) && is_space(*p)) p++;
        if (text_ended(p, end)) {
            input_failure = true;
            break;
        }
        if (conv == 's') {
            char* out = assign ? va_arg(args, char*) : nullptr;
            size_t n = 0;
            while (!text_ended(p, end) && !is_space(*p) && (width == 0 || n < width)) {
                if (out) out[n] = *p;
                n++;
                p++;
            }
            if (out) out[n] = 0;
        } else {
            uint32_t* out = assign ? va_arg(args, uint32_t*) : nullptr;
            if (!scan_number(p, end, conv, out)) break;
        }
        if (assign) done++;
    }
    va_end(args);
    return input_failure && done == 0 ? -1 : done;
}
