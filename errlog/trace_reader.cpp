// The reading half of the trace ring: finding a ring and walking its
// visible blocks in reading order, from tail to end and from start to head.
#include <cstring>

#include "errlog/trace_image.h"
#include "errlog/trace_ring.h"

namespace {

bool name_matches(std::span<const uint8_t> img, uint64_t ring, const char* name) {
    if (name == nullptr || name[0] == '\0') return true;
    const size_t n = std::strlen(name);
    if (n > TRACE_NAME_SIZE) return false;
    for (size_t i = 0; i < TRACE_NAME_SIZE; i++) {
        const uint8_t want = i < n ? uint8_t(name[i]) : 0;
        if (img_u8(img, ring + TRACE_NAME + i) != want) return false;
        if (want == 0) break;
    }
    return true;
}

bool visible(std::span<const uint8_t> img, uint32_t ring, const trace_block& b) {
    return b.whole && b.generation == img_u8(img, uint64_t(ring) + TRACE_GENERATION) && b.skip != 1 &&
           b.state == TRACE_FINISHED;
}

void fill_cursor(trace_cursor* c, uint64_t block, const trace_block& b) {
    c->data = uint32_t(block + TRACE_UNIT);
    c->size = b.size;
    c->ticks = b.ticks;
    c->microsecs = b.microsecs;
}

// One step from the block at b to the next in reading order. False where
// the walk must end: the ring has wrapped up to head at end, or the block
// head is not in the image.
bool step(std::span<const uint8_t> img, const trace_bounds& r, uint64_t& b) {
    const trace_block blk = read_block(img, b);
    if (!blk.whole) return false;
    b += uint64_t(blk.units) * TRACE_UNIT;
    if (b == r.end) {
        if (r.head == r.end) return false;
        b = r.start;
    }
    return true;
}

}  // namespace

int get_trace(trace_cursor* cursor) {
    std::span<const uint8_t> img = cursor->image;
    const trace_bounds r = read_bounds(img, cursor->ring);
    uint64_t b = uint64_t(cursor->data) - TRACE_UNIT;
    if (b != r.head && !step(img, r, b)) return 0;
    // A checked ring reaches head; the bound keeps a lying one (a block of
    // 0 units, a head that is no block start) from going round forever.
    const uint64_t max_steps = img.size() / TRACE_UNIT + 2;
    for (uint64_t n = 0; n < max_steps; n++) {
        if (b == r.head) return 0;
        const trace_block blk = read_block(img, b);
        if (visible(img, cursor->ring, blk)) {
            fill_cursor(cursor, b, blk);
            return 1;
        }
        if (!step(img, r, b)) return 0;
    }
    return 0;
}

int find_trace(std::span<uint8_t> image, uint32_t area, uint32_t size, const char* name, trace_cursor* cursor) {
    if (size <= TRACE_HEADER_SIZE) return 0;
    uint64_t ring = 0;
    bool found = false;
    // Positions 0 to size - 46 from the area, as far as the image goes.
    for (uint64_t i = 0; i + 46 <= size && uint64_t(area) + i + TRACE_HEADER_SIZE <= image.size(); i++) {
        const uint64_t at = uint64_t(area) + i;
        if (has_trace_magic(image, at) && name_matches(image, at, name)) {
            ring = at;
            found = true;
            break;
        }
    }
    if (!found) return 0;
    // A ring being read takes no more blocks.
    disable_trace(image, uint32_t(ring));
    const trace_bounds r = read_bounds(image, uint32_t(ring));
    const trace_block tail = read_block(image, r.tail);
    cursor->image = image;
    cursor->ring = uint32_t(ring);
    fill_cursor(cursor, r.tail, tail);
    cursor->version = img_u8(image, ring + TRACE_VERSION);
    for (uint32_t i = 0; i < TRACE_NAME_SIZE; i++) cursor->name[i] = char(img_u8(image, ring + TRACE_NAME + i));
    cursor->name[TRACE_NAME_SIZE] = '\0';
    if (r.head == r.tail) return 0;
    if (visible(image, cursor->ring, tail)) return 1;
    return get_trace(cursor);
}
