// The walk over the error log ring and the reads that follow it round.
#include "errlog/log_area.h"

#include <cstdio>

#include "support/byte_cursor.h"

uint32_t lg_size = 0;
lg_cursor lg_entries[LG_MAX_ENTRIES];
std::span<const uint8_t> lg_image;

std::span<const uint8_t> lg_area_image;
const lg_cursor* lg_area_ptr = nullptr;
const uint32_t* lg_area_size_ptr = nullptr;

uint8_t lg_getU8(lg_cursor& cursor) {
    if (cursor >= lg_entries[0] + lg_size) cursor = cursor - lg_size + 8;
    uint8_t b = cursor < lg_image.size() ? lg_image[cursor] : 0;
    cursor++;
    return b;
}

uint32_t lg_getU32(lg_cursor& cursor) {
    uint32_t v = 0;
    for (int i = 0; i < 4; i++) v = v << 8 | lg_getU8(cursor);
    return v;
}

int lg_find_entries(std::span<const uint8_t> image, lg_cursor area, uint32_t size, uint32_t* count,
                    int check_magic) {
    lg_image = image;
    lg_size = size;
    *count = 0;
    lg_cursor limit = area + (size & ~3u) + 4;
    lg_cursor base = area;
    if (check_magic) {
        if (be32_at(lg_image, area) != LG_GUARD_WORD) return LG_AREA_CORRUPT;
        base = area + 4;
        if (be32_at(lg_image, limit) != LG_GUARD_WORD) return LG_AREA_CORRUPT;
    }
    // Shorter than its head the area has no ring to walk, and the wrap
    // would move a cursor forward instead of back.
    if (size < 8) return LG_AREA_CORRUPT;

    lg_entries[0] = base;
    lg_cursor cursor = base;
    uint32_t first = lg_getU32(cursor);
    uint32_t last = lg_getU32(cursor);
    if (first == LG_EMPTY_OFFSET) return LG_AREA_EMPTY;

    lg_cursor pos = base + 8 + (first & ~3u);
    if (pos >= limit) return LG_AREA_CORRUPT;
    for (uint32_t n = 1;; n++) {
        lg_cursor at = pos;
        uint32_t length = lg_getU32(at);
        if (length == 0) {
            *count = n - 1;
            return LG_AREA_OK;
        }
        if (n >= LG_MAX_ENTRIES) return LG_AREA_CORRUPT;
        lg_entries[n] = pos;
        if (pos - base - 8 == last) {
            *count = n;
            return LG_AREA_OK;
        }
        pos += (uint64_t(length) + 3) & ~uint64_t(3);
        // One step back by the ring's length, not a remainder: a length
        // beyond the ring lands out of range below.
        if ((pos - base) / 4 >= size / 4) pos -= uint64_t(size / 4 - 2) * 4;
        if (pos >= limit) return LG_AREA_CORRUPT;
    }
}

int lg_apply(int (*callback)(void* argument, lg_cursor record), void* argument) {
    if (!lg_area_ptr || !lg_area_size_ptr) return -1;
    lg_cursor base = *lg_area_ptr;
    uint32_t count = 0;
    // A base without room for the leading guard word cannot be framed.
    int walk = base < 4 ? LG_AREA_CORRUPT
                        : lg_find_entries(lg_area_image, base - 4, *lg_area_size_ptr, &count, 1);
    if (walk == LG_AREA_CORRUPT) {
        std::puts("Error log corrupted");
        return -1;
    }
    if (walk == LG_AREA_EMPTY) {
        std::puts("Error log empty");
        return -1;
    }
    for (uint32_t i = 1; i <= count; i++) {
        int r = callback(argument, lg_entries[i]);
        if (r == -1 || r == 1) return r;
    }
    return 0;
}
