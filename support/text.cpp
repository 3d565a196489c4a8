#include "support/text.h"

#include <cstring>

static char lower(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

const char* xstrcasestr(const char* haystack, const char* needle) {
    if (!haystack || !needle || !*needle) return haystack;
    for (const char* h = haystack; *h; h++) {
        const char* a = h;
        const char* b = needle;
        while (*a && *b && lower(*a) == lower(*b)) {
            a++;
            b++;
        }
        if (!*b) return h;
    }
    return nullptr;
}

std::string_view string_at(std::span<const uint8_t> bytes, uint64_t offset) {
    if (offset >= bytes.size()) return {};
    const char* start = reinterpret_cast<const char*>(bytes.data()) + offset;
    size_t room = bytes.size() - size_t(offset);
    const void* nul = std::memchr(start, 0, room);
    return {start, nul ? size_t(static_cast<const char*>(nul) - start) : room};
}
