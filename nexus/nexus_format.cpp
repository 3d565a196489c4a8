#include "nexus/nexus_format.h"

#include <cstdarg>
#include <cstdint>
#include <cstring>

namespace {

// Digits of v in the base, right-aligned in a field of width, into out.
void put_number(out_buffer& out, unsigned long v, unsigned base, bool negative, char pad, int width) {
    static const char digits[] = "0123456789abcdef";
    char text[24];
    int n = 0;
    do {
        text[n++] = digits[v % base];
        v /= base;
    } while (v != 0);
    int len = n + (negative ? 1 : 0);
    if (width > 64) width = 64;
    char* p = out.reserve(size_t(len > width ? len : width));
    char* start = p;
    if (negative && pad == '0') *p++ = '-';
    for (int i = len; i < width; i++) *p++ = pad;
    if (negative && pad != '0') *p++ = '-';
    while (n > 0) *p++ = text[--n];
    out.commit(size_t(p - start));
}

}  // namespace

void nexus_printf(out_buffer& out, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const char* p = format;
    for (;;) {
        const char* q = p;
        while (*q != '\0' && *q != '%') q++;
        if (q != p) out.put(p, size_t(q - p));
        if (*q == '\0') break;
        p = q + 1;
        char pad = ' ';
        if (*p == '0') {
            pad = '0';
            p++;
        }
        int width = 0;
        while (*p >= '0' && *p <= '9') width = width * 10 + (*p++ - '0');
        bool is_long = false;
        if (*p == 'l') {
            is_long = true;
            p++;
        }
        switch (*p) {
        case 'd': {
            long v = is_long ? va_arg(args, long) : va_arg(args, int);
            unsigned long magnitude = v < 0 ? 0ul - (unsigned long)v : (unsigned long)v;
            put_number(out, magnitude, 10, v < 0, pad, width);
            break;
        }
        case 'u':
        case 'x': {
            unsigned long v = is_long ? va_arg(args, unsigned long) : va_arg(args, unsigned);
            put_number(out, v, *p == 'u' ? 10 : 16, false, pad, width);
            break;
        }
        case 's': {
            const char* s = va_arg(args, const char*);
            size_t len = std::strlen(s);
            for (size_t i = len; i < size_t(width); i++) out.put(' ');
            out.put(s, len);
            break;
        }
        case '%': out.put('%'); break;
        default: va_end(args); return;  // not a conversion of ours: the rest is dropped
        }
        p++;
    }
    va_end(args);
}
