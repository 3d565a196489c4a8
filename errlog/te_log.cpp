// Finding the T&E ring in a section's image and printing its entries.
#include <cstring>

#include "errlog/te_log.h"
#include "errlog/trace_image.h"

// The ring's address fields are target addresses until they are rebased.
static void rebase(std::span<uint8_t> img, uint32_t ring, uint32_t delta) {
    for (uint32_t field : {TRACE_HEAD, TRACE_TAIL, TRACE_START, TRACE_END}) {
        const uint64_t at = uint64_t(ring) + field;
        img_put32(img, at, img_u32(img, at) - delta);
    }
}

std::optional<uint32_t> te_locate_ring(std::span<uint8_t> image, uint32_t& size) {
    if (image.size() < size) size = uint32_t(image.size());
    if (size <= TRACE_HEADER_SIZE) return std::nullopt;
    std::optional<uint32_t> found;
    // Positions 0 to size - 46: none in an image of 45 bytes.
    for (uint32_t i = 0; i + 46 <= size; i++) {
        if (image[size_t(i) + TRACE_MAGIC] == 'I' && has_trace_magic(image, i)) {
            found = i;
            break;
        }
    }
    if (!found) return std::nullopt;
    const uint32_t ring = *found;
    trace_bounds r = read_bounds(image, ring);
    size = r.end - r.start + 60;
    const uint32_t delta = r.start - (ring + TRACE_HEADER_SIZE);
    rebase(image, ring, delta);
    r = read_bounds(image, ring);

    // A ring that has never wrapped ends at its first unwritten block. The
    // walk stops at the image's end: what lies beyond is for the check.
    uint64_t p = r.tail;
    while (p < r.end) {
        const trace_block b = read_block(image, p);
        if (!b.whole) break;
        if (b.units == 0) {
            img_put32(image, uint64_t(ring) + TRACE_END, uint32_t(p));
            size = uint32_t(p) - r.start + 60;
            break;
        }
        p += uint64_t(b.units) * TRACE_UNIT;
    }
    return ring;
}

int te_print_log(FILE* stream, std::span<uint8_t> image, const char* timer_text) {
    char timer[20] = {};
    if (timer_text) std::strncpy(timer, timer_text, sizeof timer - 1);
    uint32_t size = image.size() > UINT32_MAX ? UINT32_MAX : uint32_t(image.size());
    const std::optional<uint32_t> ring = te_locate_ring(image, size);
    if (!ring) return 1;
    // The ring is replaced by a fresh one when this fails; the image is
    // thrown away after the section anyway.
    if (int code = recover_trace(image, *ring, size, "Trace&ErrorLog")) return code;
    trace_cursor cursor;
    if (!find_trace(image, *ring, size, "", &cursor)) {
        std::fputs("  Trace empty\n", stream);
        return 0;
    }
    // Every entry takes at least one unit of the image.
    const size_t max_entries = image.size() / TRACE_UNIT + 1;
    size_t printed = 0;
    do {
        te_print_entry(stream, cursor, timer);
    } while (++printed < max_entries && get_trace(&cursor));
    return 0;
}
