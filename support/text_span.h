// Pieces of a report written straight into the block buffer. A report of
// millions of fields (a Nexus trace) would spend most of its time in a printf
// call, or even a bound check, per field: a printer reserves room for a whole
// piece at once and writes into it. Each writer names the conversion it
// stands for.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "support/out_buffer.h"

// Room reserved in the block buffer, filled from the front and committed
// when the span ends. The writer must not write more than it reserved.
struct text_span {
    out_buffer& out;
    char* start;
    char* p;

    text_span(out_buffer& o, size_t room) : out(o), start(o.reserve(room)), p(start) {}
    ~text_span() { commit(); }
    text_span(const text_span&) = delete;
    text_span& operator=(const text_span&) = delete;

    void commit() {
        out.commit(size_t(p - start));
        start = p;
    }
    // After others wrote to the buffer: new room behind what they wrote.
    void reopen(size_t room) { start = p = out.reserve(room); }

    template <size_t N>
    void text(const char (&s)[N]) {
        std::memcpy(p, s, N - 1);
        p += N - 1;
    }
    // "%s" of a name known to be at most `limit` characters long; the room
    // reserved counts on the limit.
    void cstr(const char* s, size_t limit) {
        for (size_t n = 0; n < limit && s[n] != '\0'; n++) *p++ = s[n];
    }
    // "%08x": the eight nibbles spread to one byte each, then turned into
    // digits all at once.
    void hex8(uint32_t v) {
        uint64_t x = v;
        x = (x & 0xFFFF0000u) << 16 | (x & 0xFFFFu);
        x = (x & 0x0000FF000000FF00u) << 8 | (x & 0x000000FF000000FFu);
        x = (x & 0x00F000F000F000F0u) << 4 | (x & 0x000F000F000F000Fu);
        const uint64_t letters = ((x + 0x0606060606060606u) >> 4) & 0x0101010101010101u;
        x += 0x3030303030303030u + letters * ('a' - '0' - 10);
        if constexpr (std::endian::native == std::endian::little) x = __builtin_bswap64(x);
        std::memcpy(p, &x, 8);
        p += 8;
    }
    // "%x"
    void hex(uint32_t v) {
        static const char digits[] = "0123456789abcdef";
        int n = 1;
        for (uint32_t rest = v >> 4; rest != 0; rest >>= 4) n++;
        p += n;
        char* q = p;
        for (int i = 0; i < n; i++, v >>= 4) *--q = digits[v & 15];
    }
    // "%u", or "%d" of a value that cannot be negative, zero-padded to at
    // least min_digits (at most 10): "%02d" is dec(v, 2).
    void dec(uint32_t v, int min_digits = 1) {
        static constexpr uint32_t powers[] = {10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
        static constexpr char pairs[] =
            "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
            "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
            "8081828384858687888990919293949596979899";
        int n = 1;
        while (n < 10 && v >= powers[n - 1]) n++;
        if (n < min_digits) n = min_digits > 10 ? 10 : min_digits;
        p += n;
        char* q = p;
        // Two digits at a time from the back; zeros fill up to n.
        for (int left = n; left > 0;) {
            if (left >= 2) {
                q -= 2;
                std::memcpy(q, pairs + 2 * (v % 100), 2);
                v /= 100;
                left -= 2;
            } else {
                *--q = char('0' + v % 10);
                left--;
            }
        }
    }
};
