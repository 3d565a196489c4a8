// Bounded big-endian access to the image a trace ring lives in, shared by
// the ring's writer, its check and its reader.
#pragma once

#include <cstdint>
#include <span>

#include "errlog/trace_ring.h"
#include "support/byte_cursor.h"

inline bool img_has(std::span<const uint8_t> img, uint64_t pos, uint64_t n) {
    return pos <= img.size() && n <= img.size() - pos;
}

inline uint32_t img_u32(std::span<const uint8_t> img, uint64_t pos) { return be32_at(img, size_t(pos)); }
inline uint16_t img_u16(std::span<const uint8_t> img, uint64_t pos) {
    byte_cursor c(img, size_t(pos));
    return c.u16();
}
inline uint8_t img_u8(std::span<const uint8_t> img, uint64_t pos) { return img_has(img, pos, 1) ? img[pos] : 0; }

inline void img_put32(std::span<uint8_t> img, uint64_t pos, uint32_t v) {
    if (!img_has(img, pos, 4)) return;
    img[pos] = uint8_t(v >> 24);
    img[pos + 1] = uint8_t(v >> 16);
    img[pos + 2] = uint8_t(v >> 8);
    img[pos + 3] = uint8_t(v);
}
inline void img_put16(std::span<uint8_t> img, uint64_t pos, uint16_t v) {
    if (!img_has(img, pos, 2)) return;
    img[pos] = uint8_t(v >> 8);
    img[pos + 1] = uint8_t(v);
}
inline void img_put8(std::span<uint8_t> img, uint64_t pos, uint8_t v) {
    if (img_has(img, pos, 1)) img[pos] = v;
}

// A block head as the image holds it; fields outside the image read as 0.
struct trace_block {
    uint32_t ticks = 0;
    uint32_t microsecs = 0;
    uint16_t size = 0;
    uint16_t units = 0;
    uint8_t skip = 0;
    uint8_t state = 0;
    uint8_t generation = 0;
    bool whole = false;  // the 16-byte head lies inside the image
};

inline trace_block read_block(std::span<const uint8_t> img, uint64_t pos) {
    trace_block b;
    if (pos > img.size()) return b;
    byte_cursor c(img, size_t(pos));
    b.ticks = c.u32();
    b.microsecs = c.u32();
    b.size = c.u16();
    b.units = c.u16();
    b.skip = c.u8();
    b.state = c.u8();
    b.generation = c.u8();
    c.skip(1);
    b.whole = c.ok();
    return b;
}

// The four address fields of a ring header.
struct trace_bounds {
    uint32_t head, tail, start, end;
};
inline trace_bounds read_bounds(std::span<const uint8_t> img, uint32_t ring) {
    return {img_u32(img, uint64_t(ring) + TRACE_HEAD), img_u32(img, uint64_t(ring) + TRACE_TAIL),
            img_u32(img, uint64_t(ring) + TRACE_START), img_u32(img, uint64_t(ring) + TRACE_END)};
}

inline bool has_trace_magic(std::span<const uint8_t> img, uint64_t ring) {
    if (!img_has(img, ring + TRACE_MAGIC, 8)) return false;
    for (uint32_t i = 0; i < 8; i++)
        if (img[ring + TRACE_MAGIC + i] != uint8_t(TRACE_MAGIC_TEXT[i])) return false;
    return true;
}
