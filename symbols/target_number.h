// strtoul as the target's 32-bit long reads a number: a value too large
// becomes 0xFFFFFFFF, a negative one wraps modulo 2^32.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "support/text.h"

inline uint32_t strtoul32(const char* s, int base) {
    while (is_space(*s)) s++;
    bool negative = *s == '-';
    if (*s == '-' || *s == '+') s++;
    if (*s == '-' || *s == '+') return 0;
    unsigned long long v = std::strtoull(s, nullptr, base);
    if (v > 0xFFFFFFFFull) return 0xFFFFFFFFu;
    return negative ? uint32_t(0u - uint32_t(v)) : uint32_t(v);
}
