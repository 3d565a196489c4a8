#include <cctype>

#include "render/text_search.h"

const char* xstrcasestr(const char* haystack, const char* needle) {
    if (!haystack || !needle || !*needle) return haystack;
    for (const char* h = haystack; *h; h++) {
        const char* a = h;
        const char* b = needle;
        while (*a && *b && std::tolower(uint8_t(*a)) == std::tolower(uint8_t(*b))) {
            a++;
            b++;
        }
        if (!*b) return h;
    }
    return nullptr;
}
