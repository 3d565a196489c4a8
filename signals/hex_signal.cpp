// The bytes of a signal as the target prints them: hexadecimal pairs behind
// "<hex> = ", over as many lines as they need. The target breaks lines
// without regard to bytes, so the two digits of one byte can lie on two lines.
#include <new>

#include "render/dump_printers.h"
#include "signals/sig_text.h"
#include "signals/text_scan.h"

void skip_formatting(const char*& text, const char* end) {
    while (text < end && (*text == ' ' || *text == '\r' || *text == '\n')) text++;
}

void print_string(FILE* stream, const char* text, size_t count) {
    std::fwrite(text, 1, size_t(text_limit(text, count) - text), stream);
}

bool open_signal_text(FILE* stream, std::span<const uint8_t> image, signal_text* out) {
    out->buffer.reset(new (std::nothrow) uint8_t[image.size() / 3]);
    if (!out->buffer) {
        std::fputs("Error: Unable to allocate memory for symbolic signal information!\n", stderr);
        print_text_dump(stream, image);
        return false;
    }
    out->data = {out->buffer.get(), image.size() / 3};
    out->text = reinterpret_cast<const char*>(image.data());
    out->end = text_limit(out->text, image.size());
    out->section_end = out->text + image.size();
    return true;
}

static bool is_line_end(char c) { return c == '\r' || c == '\n'; }

uint32_t read_hex_signal(const char*& text, size_t& remaining, std::span<uint8_t> data, uint32_t* signo) {
    const char* end = text + remaining;
    const char* p = text_find(text, end, "<hex> = ");
    if (!p) return 0;
    p += 8;
    while (p < end && *p == ' ') p++;

    // The signal number: the first four bytes, read ahead.
    const char* at = p;
    uint32_t number = 0;
    for (int shift = 24; shift >= 0; shift -= 8) number += text_strtoul_hex(at, end, &at) << shift;
    *signo = number;

    uint32_t count = 0;
    while (!text_ended(p, end) && !is_line_end(*p) && count < data.size()) {
        while (p < end && *p == ' ') p++;
        const char* stop;
        uint32_t value = text_strtoul_hex(p, end, &stop);
        if (stop == p) break;
        if (stop - p == 1) {
            // One digit: the first half of a byte broken over a line, or
            // the end of the data.
            char pair[2] = {*p, 0};
            skip_formatting(stop, end);
            if (!text_ended(stop, end)) pair[1] = *stop++;
            if (!is_xdigit(pair[1])) {
                p++;
                break;
            }
            value = text_strtoul_hex(pair, pair + 2, &at);
        }
        data[count++] = uint8_t(value);
        p = stop;
        if (p < end && is_line_end(*p)) p++;
    }
    while (p < end && is_line_end(*p)) p++;
    remaining -= size_t(p - text);
    text = p;
    return count;
}
