#include "render/ramlog.h"

#include <memory>

#include "support/byte_cursor.h"
#include "support/out_buffer.h"

void print_ramlog_text_dump(FILE* stream, std::span<const uint8_t> text) {
    auto out = std::make_unique<out_buffer>(stream);
    for (uint8_t b : text) {
        if (b == 0 || b == '\r') continue;
        out->put(char(b));
        if (b == '\n') out->put("  ", 2);
    }
}

void print_ramlog(FILE* stream, std::span<const uint8_t> payload) {
    // Words missing from a short payload read as 0.
    byte_cursor c(payload);
    const uint32_t a_count = c.u32();
    const uint32_t b_count = c.u32();
    const uint32_t size = c.u32();
    if (size == 0) {
        std::fprintf(stdout, "\n RAMLOG is empty or corrupt as the size is = %d !!!!!\n", int(size));
        return;
    }
    // The size word may claim more than the payload holds: the stretches
    // are cut to the bytes that are there.
    std::span<const uint8_t> ring = payload.size() > 12 ? payload.subspan(12) : std::span<const uint8_t>();
    auto stretch = [&](uint32_t from, uint32_t to) {
        if (from >= ring.size()) return;
        if (to > ring.size()) to = uint32_t(ring.size());
        if (from < to) print_ramlog_text_dump(stream, ring.subspan(from, to - from));
    };
    const uint32_t a = a_count % size;
    const uint32_t b = b_count % size;
    if (a > b) {
        stretch(a, size);
        stretch(0, b);
        stretch(b, a);
    } else {
        stretch(b, size);
        stretch(0, a);
    }
}
