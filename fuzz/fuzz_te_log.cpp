// The T&E printer on hostile images, and the trace ring's writer as an
// oracle: a ring written only through its own operations must always pass
// the check and read back in order.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "errlog/te_log.h"
#include "errlog/trace_ring.h"

namespace {

FILE* sink() {
    static FILE* f = std::fopen("/dev/null", "w");
    return f;
}

uint32_t be32(const std::vector<uint8_t>& v, size_t at) {
    return uint32_t(v[at]) << 24 | uint32_t(v[at + 1]) << 16 | uint32_t(v[at + 2]) << 8 | v[at + 3];
}

// Builds a ring with the operations the input spells out, checks it, then
// lets the rest of the input damage it before it is printed.
void written_ring(const uint8_t* data, size_t size) {
    if (size < 4) return;
    const uint32_t area = 76 + (uint32_t(data[0]) << 4 | data[1] >> 4) % 2048;
    const uint32_t at = data[1] & 15;
    std::vector<uint8_t> image(at + area + 16, 0);
    create_trace(image, at, area, "Trace&ErrorLog");
    enable_trace(image, at);
    std::vector<uint32_t> held;
    uint32_t seq = 0;
    size_t i = 2;
    for (; i + 1 < size && data[i] != 0xFF; i += 2) {
        const uint8_t op = data[i] & 7, arg = data[i + 1];
        if (op <= 3) {
            uint32_t d = alloc_trace(image, at, uint16_t(arg * (data[i] >> 3)));
            if (d && d + 4 <= image.size()) {
                ++seq;
                for (int k = 0; k < 4; k++) image[d + k] = uint8_t(seq >> (24 - 8 * k));
                if (op == 3) held.push_back(d);
                else free_trace(image, d);
            }
        } else if (op == 4 && !held.empty()) {
            free_trace(image, held.back());
            held.pop_back();
        } else if (op == 5) {
            uint32_t d = alloc_subtrace(image, at, arg);
            if (d && arg & 1) free_subtrace(image, d);
        } else if (op == 6 && arg == 0) {
            clear_trace(image, at);
        }
    }
    std::vector<uint8_t> copy = image;
    if (recover_trace(copy, at, area, "Trace&ErrorLog") != 0) std::abort();
    trace_cursor c;
    uint32_t last = 0;
    for (int more = find_trace(copy, at, area, "", &c); more; more = get_trace(&c)) {
        const uint32_t s = c.size >= 4 ? be32(copy, c.data) : 0;
        if (s == 0) continue;
        if (s <= last) std::abort();
        last = s;
    }
    // The rest of the input: pokes of one byte each, position and value.
    for (i++; i + 2 < size; i += 3) {
        const size_t pos = (size_t(data[i]) << 8 | data[i + 1]) % image.size();
        image[pos] = data[i + 2];
    }
    te_print_log(sink(), image, "4");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<uint8_t> image(data, data + size);
    te_print_log(sink(), image, size && data[0] & 1 ? "1" : "4294967295");
    written_ring(data, size);
    return 0;
}
