// The check of a trace ring after a restart, with the repair of blocks that
// were being written when the target went down.
#include "errlog/trace_image.h"
#include "errlog/trace_ring.h"

namespace {

// Codes of one walk, by the test that failed.
struct walk_codes {
    int overrun;  // the block passes end
    int units;    // its length disagrees with its size
    int skip;
    int state;
};

constexpr walk_codes first_walk{14, 15, 16, 17};
constexpr walk_codes second_walk{10, 11, 12, 13};
constexpr int zero_units = 18;

bool known_state(uint8_t s) {
    return s == TRACE_FINISHED || s == TRACE_WRITING || s == TRACE_SUB_WRITING || s == TRACE_SUB_FINISHED;
}

// Tests and repairs the blocks from p while p is below stop. Every pass
// moves p on by at least one unit, and blocks outside the image read as 0
// units, so the walk ends within the image.
int check_blocks(std::span<uint8_t> img, uint64_t& p, uint64_t stop, uint64_t end, const walk_codes& codes) {
    while (p < stop) {
        const trace_block b = read_block(img, p);
        const uint64_t next = p + uint64_t(b.units) * TRACE_UNIT;
        if (next > end) return codes.overrun;
        if (b.units == 0) return zero_units;
        if (b.skip == 0 && b.state == TRACE_FINISHED && b.units != trace_units_for(b.size)) return codes.units;
        if (b.skip > 1) return codes.skip;
        if (!known_state(b.state)) return codes.state;
        // A block cut short by the restart is never shown.
        if (b.state != TRACE_FINISHED) img_put8(img, p + BLOCK_SKIP, 1);
        if (b.state == TRACE_WRITING) img_put8(img, p + BLOCK_STATE, TRACE_FINISHED);
        if (b.state == TRACE_SUB_WRITING) img_put8(img, p + BLOCK_STATE, TRACE_SUB_FINISHED);
        p = next;
    }
    return 0;
}

int check_ring(std::span<uint8_t> img, uint32_t ring, uint32_t size, const char* name) {
    const uint64_t r = ring;
    if (!has_trace_magic(img, r)) return 1;
    const trace_bounds b = read_bounds(img, ring);
    if (b.start != ring + TRACE_HEADER_SIZE) return 2;
    if (b.end != b.start + ((size - TRACE_HEADER_SIZE) & ~(TRACE_UNIT - 1)) - TRACE_UNIT) return 3;
    if (b.head < b.start || b.head > b.end) return 4;
    if (b.tail < b.start || b.tail > b.end) return 5;
    if ((b.head - b.start) % TRACE_UNIT != 0) return 6;
    if ((b.tail - b.start) % TRACE_UNIT != 0) return 7;
    if (img_u8(img, r + TRACE_VERSION) != 1) return 8;
    // Only four characters are compared, as the target has always done.
    for (uint32_t i = 0; i < 4; i++) {
        const char want = name ? name[i] : '\0';
        if (uint8_t(want) != img_u8(img, r + TRACE_NAME + i)) return 9;
        if (want == '\0') break;
    }
    uint64_t p = b.start;
    if (int code = check_blocks(img, p, b.head, b.end, first_walk)) return code;
    if (p != b.head) return 19;
    if (b.tail == b.start) return 0;
    uint64_t q = b.tail;
    return check_blocks(img, q, b.end, b.end, second_walk);
}

}  // namespace

int recover_trace(std::span<uint8_t> image, uint32_t ring, uint32_t size, const char* name) {
    const int code = check_ring(image, ring, size, name);
    if (code != 0) {
        create_trace(image, ring, size, name);
        return code;
    }
    disable_trace(image, ring);
    return 0;
}
