#include <cstring>
#include <memory>

#include "render/dump_printers.h"
#include "render/out_buffer.h"

static const char lower_hex[] = "0123456789abcdef";
static const char upper_hex[] = "0123456789ABCDEF";

// The printable column of the current line. It is never cleared; only the
// part written for the current line is shown.
static char printable[16];

static char* put_address(char* p, uint32_t addr) {
    *p++ = ' ';
    for (int shift = 28; shift >= 0; shift -= 4) *p++ = upper_hex[(addr >> shift) & 0xF];
    *p++ = ':';
    *p++ = ' ';
    return p;
}

void print_hex_dump(FILE* stream, std::span<const uint8_t> data, uint32_t base) {
    if (data.empty()) return;
    auto out = std::make_unique<out_buffer>(stream);
    const size_t size = data.size();
    for (size_t line = 0; line < size; line += 16) {
        const size_t k = size - line < 16 ? size - line : 16;
        char* start = out->reserve(80);
        char* p = put_address(start, uint32_t(line) + base);
        for (size_t i = 0; i < k; i++) {
            uint8_t b = data[line + i];
            *p++ = lower_hex[b >> 4];
            *p++ = lower_hex[b & 0xF];
            if (i % 4 == 3) *p++ = ' ';
            printable[i] = (b < 32 || b > 126) ? '.' : char(b);
        }
        // Pad so that the opening quote stands in the same column on every line.
        size_t pad = 38 - 2 * k - k / 4;
        std::memset(p, ' ', pad);
        p += pad;
        *p++ = '"';
        std::memcpy(p, printable, k);
        p += k;
        *p++ = '"';
        *p++ = '\n';
        out->commit(size_t(p - start));
    }
}

void print_hex_bytes(FILE* stream, std::span<const uint8_t> data) {
    auto out = std::make_unique<out_buffer>(stream);
    for (size_t i = 0; i < data.size(); i++) {
        char* p = out->reserve(4);
        char* s = p;
        *p++ = lower_hex[data[i] >> 4];
        *p++ = lower_hex[data[i] & 0xF];
        if (i % 4 == 3) *p++ = ' ';
        if (i % 16 == 15) *p++ = '\n';
        out->commit(size_t(p - s));
    }
}

uint32_t find_empty_stack_run(std::span<const uint8_t> data) {
    const size_t size = data.size();
    if (size < 4) return 0;
    if (data[0] != data[1] || data[1] != data[2] || data[2] != data[3]) return 0;
    size_t run = 4;
    while (run + 4 <= size && std::memcmp(data.data() + run, data.data(), 4) == 0) run += 4;
    run &= ~size_t(15);
    if (run >= 16 && size - run > 15) return uint32_t(run);
    return 0;
}

void print_stack_dump(FILE* stream, std::span<const uint8_t> data, uint32_t base) {
    uint32_t run = find_empty_stack_run(data);
    if (run == 0) {
        print_hex_dump(stream, data, base);
        return;
    }
    print_hex_dump(stream, data.first(16), base);
    std::fputs(" ........:< Skipping empty part of the stack  >\n", stream);
    print_hex_dump(stream, data.subspan(run), base + run);
}
