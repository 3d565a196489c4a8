// The writing half of the trace ring.
#include "errlog/trace_ring.h"

#include "errlog/trace_image.h"

uint32_t get_systime(uint32_t* microsecs) { return *microsecs / 4000; }

uint32_t (*trace_systime)(uint32_t* microsecs) = get_systime;

void create_trace(std::span<uint8_t> image, uint32_t ring, uint32_t size, const char* name) {
    const uint64_t r = ring;
    const uint32_t start = ring + TRACE_HEADER_SIZE;
    const uint32_t end = start + ((size - TRACE_HEADER_SIZE) & ~(TRACE_UNIT - 1)) - TRACE_UNIT;
    img_put32(image, r + TRACE_START, start);
    img_put32(image, r + TRACE_END, end);
    img_put32(image, r + TRACE_TAIL, start);
    img_put32(image, r + TRACE_HEAD, start + TRACE_UNIT);
    // A filler of one unit, so that the ring is never without a block.
    img_put16(image, uint64_t(start) + BLOCK_UNITS, 1);
    img_put8(image, uint64_t(start) + BLOCK_SKIP, 1);
    img_put8(image, uint64_t(start) + BLOCK_STATE, TRACE_FINISHED);
    img_put8(image, r + TRACE_ENABLED, 0);
    img_put8(image, r + TRACE_GENERATION, 0);
    img_put8(image, r + TRACE_VERSION, 1);
    bool ended = name == nullptr;
    for (uint32_t i = 0; i < TRACE_NAME_SIZE; i++) {
        if (!ended && name[i] == '\0') ended = true;
        img_put8(image, r + TRACE_NAME + i, ended ? 0 : uint8_t(name[i]));
    }
    img_put8(image, r + TRACE_HEADER_SIZE - 1, 0);
    // The magic last: a ring interrupted while being made is not found again.
    for (uint32_t i = 0; i < 8; i++) img_put8(image, r + TRACE_MAGIC + i, uint8_t(TRACE_MAGIC_TEXT[i]));
}

void clear_trace(std::span<uint8_t> image, uint32_t ring) {
    const uint64_t at = uint64_t(ring) + TRACE_GENERATION;
    img_put8(image, at, uint8_t(img_u8(image, at) + 1));
}

void enable_trace(std::span<uint8_t> image, uint32_t ring) { img_put8(image, uint64_t(ring) + TRACE_ENABLED, 1); }

void disable_trace(std::span<uint8_t> image, uint32_t ring) { img_put8(image, uint64_t(ring) + TRACE_ENABLED, 0); }

int get_trace_status(std::span<const uint8_t> image, uint32_t ring) {
    return img_u8(image, uint64_t(ring) + TRACE_ENABLED);
}

static void put_filler(std::span<uint8_t> image, uint64_t at, uint64_t units) {
    img_put16(image, at + BLOCK_UNITS, uint16_t(units));
    img_put8(image, at + BLOCK_SKIP, 1);
    img_put8(image, at + BLOCK_STATE, TRACE_FINISHED);
}

// Finds room for `need` units, dropping the oldest blocks and jumping over
// those still in use. Returns the block's position, or 0.
static uint64_t make_room(std::span<uint8_t> image, uint32_t ring, uint64_t need) {
    const trace_bounds r = read_bounds(image, ring);
    const uint64_t start = r.start, end = r.end;
    const uint64_t ring_pos = uint64_t(ring);
    // No placement leaves less than one unit of the ring to other blocks: a
    // larger request is refused before any block is dropped.
    if (end < start || need * TRACE_UNIT + TRACE_UNIT > end - start) return 0;
    uint64_t h = r.head, t = r.tail;
    if (h > end || t > end || h < start || t < start) return 0;
    int wraps = 0;
    // In a sound ring every pass moves t on or sends h back to start, and
    // the second wrap ends the loop; the bound only guards a broken ring.
    const uint64_t max_steps = 4 * ((end - start) / TRACE_UNIT + 2);
    for (uint64_t step = 0; step < max_steps; step++) {
        if (t < h) {
            if (h + need * TRACE_UNIT <= end) return h;
            put_filler(image, h, (end - h) / TRACE_UNIT);
            h = start;
            continue;
        }
        if (h + need * TRACE_UNIT < t) return h;
        const trace_block b = read_block(image, t);
        if (b.units == 0) return 0;
        const bool in_use = b.state != TRACE_FINISHED;
        if (in_use) {
            if (h != t) put_filler(image, h, (t - h) / TRACE_UNIT);
            img_put8(image, t + BLOCK_SKIP, 1);
            img_put8(image, t + BLOCK_STATE, uint8_t(b.state & 3));
        }
        t += uint64_t(b.units) * TRACE_UNIT;
        if (t >= end) {
            t = start;
            if (++wraps == 2) {
                // Giving up: blocks lie from start to h and from the stored
                // tail to end, so h becomes the head that keeps both true.
                img_put32(image, ring_pos + TRACE_HEAD, uint32_t(h));
                return 0;
            }
        }
        if (in_use) h = t;
        img_put32(image, ring_pos + TRACE_TAIL, uint32_t(t));
    }
    return 0;
}

static uint32_t alloc_block(std::span<uint8_t> image, uint32_t ring, uint16_t size, uint8_t state, uint8_t skip) {
    if (img_u8(image, uint64_t(ring) + TRACE_ENABLED) == 0) return 0;
    const uint64_t need = trace_units_for(size);
    const uint64_t h = make_room(image, ring, need);
    if (h == 0) return 0;
    img_put16(image, h + BLOCK_UNITS, uint16_t(need));
    img_put8(image, h + BLOCK_STATE, state);
    img_put8(image, h + BLOCK_SKIP, skip);
    img_put32(image, uint64_t(ring) + TRACE_HEAD, uint32_t(h + need * TRACE_UNIT));
    img_put8(image, h + BLOCK_GENERATION, img_u8(image, uint64_t(ring) + TRACE_GENERATION));
    uint32_t microsecs = img_u32(image, h + BLOCK_MICROSECS);
    const uint32_t ticks = trace_systime(&microsecs);
    img_put32(image, h + BLOCK_TICKS, ticks);
    img_put32(image, h + BLOCK_MICROSECS, microsecs);
    img_put16(image, h + BLOCK_SIZE, size);
    return uint32_t(h + TRACE_UNIT);
}

uint32_t alloc_trace(std::span<uint8_t> image, uint32_t ring, uint16_t size) {
    return alloc_block(image, ring, size, TRACE_WRITING, 0);
}

uint32_t alloc_subtrace(std::span<uint8_t> image, uint32_t ring, uint16_t size) {
    return alloc_block(image, ring, size, TRACE_SUB_WRITING, 1);
}

void free_trace(std::span<uint8_t> image, uint32_t data) {
    if (data >= TRACE_UNIT) img_put8(image, uint64_t(data) - TRACE_UNIT + BLOCK_STATE, TRACE_FINISHED);
}

void free_subtrace(std::span<uint8_t> image, uint32_t data) {
    if (data >= TRACE_UNIT) img_put8(image, uint64_t(data) - TRACE_UNIT + BLOCK_STATE, TRACE_SUB_FINISHED);
}
