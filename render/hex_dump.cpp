#include <cstring>
#include <memory>

#include "render/dump_printers.h"
#include "support/out_buffer.h"

static const char lower_hex[] = "0123456789abcdef";

// Two lower-case hex digits, the same as upper-case, and the printable
// column's character, for every byte value.
struct hex_tables {
    char lower[256][2];
    char upper[256][2];
    char shown[256];
    hex_tables() {
        static const char up[] = "0123456789ABCDEF";
        for (int b = 0; b < 256; b++) {
            lower[b][0] = lower_hex[b >> 4];
            lower[b][1] = lower_hex[b & 0xF];
            upper[b][0] = up[b >> 4];
            upper[b][1] = up[b & 0xF];
            shown[b] = (b < 32 || b > 126) ? '.' : char(b);
        }
    }
};
static const hex_tables tables;

// The printable column of the current line. It is never cleared; only the
// part written for the current line is shown.
static char printable[16];

static char* put_address(char* p, uint32_t addr) {
    *p++ = ' ';
    for (int shift = 24; shift >= 0; shift -= 8) {
        std::memcpy(p, tables.upper[(addr >> shift) & 0xFF], 2);
        p += 2;
    }
    *p++ = ':';
    *p++ = ' ';
    return p;
}

void print_hex_dump(FILE* stream, std::span<const uint8_t> data, uint32_t base) {
    if (data.empty()) return;
    auto out = std::make_unique<out_buffer>(stream);
    const size_t size = data.size();
    const uint8_t* d = data.data();
    size_t line = 0;
    // Full lines: 68 characters each, built in a local line that the
    // compiler can keep apart from everything else.
    for (; line + 16 <= size; line += 16) {
        char l[68];
        put_address(l, uint32_t(line) + base);
        const uint8_t* b = d + line;
        char* p = l + 11;
        for (int g = 0; g < 16; g += 4) {
            std::memcpy(p, tables.lower[b[g]], 2);
            std::memcpy(p + 2, tables.lower[b[g + 1]], 2);
            std::memcpy(p + 4, tables.lower[b[g + 2]], 2);
            std::memcpy(p + 6, tables.lower[b[g + 3]], 2);
            p[8] = ' ';
            p += 9;
        }
        p[0] = ' ';
        p[1] = ' ';
        p[2] = '"';
        // Arithmetic rather than a table, so that the compiler can do all 16 at once.
        uint8_t shown[16];
        for (int i = 0; i < 16; i++) shown[i] = uint8_t(b[i] - 32) < 95 ? b[i] : uint8_t('.');
        std::memcpy(p + 3, shown, 16);
        p[19] = '"';
        p[20] = '\n';
        std::memcpy(out->reserve(68), l, 68);
        out->commit(68);
    }
    if (line == size) return;
    // The last line, padded so that its quote stands under the others.
    const size_t k = size - line;
    char* start = out->reserve(80);
    char* p = put_address(start, uint32_t(line) + base);
    for (size_t i = 0; i < k; i++) {
        uint8_t b = d[line + i];
        std::memcpy(p, tables.lower[b], 2);
        p += 2;
        if (i % 4 == 3) *p++ = ' ';
        printable[i] = tables.shown[b];
    }
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
