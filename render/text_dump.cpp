#include <memory>

#include "render/dump_printers.h"
#include "support/out_buffer.h"

// Every line indented by two blanks; zero bytes and carriage returns carry
// no meaning in a text section.
void print_text_dump(FILE* stream, std::span<const uint8_t> text) {
    auto out = std::make_unique<out_buffer>(stream);
    out->put("  ", 2);
    const uint8_t* p = text.data();
    const uint8_t* end = p + text.size();
    while (p < end) {
        // Copy the stretch up to the next byte that needs attention.
        const uint8_t* q = p;
        while (q < end && *q != 0 && *q != '\r' && *q != '\n') q++;
        out->put(reinterpret_cast<const char*>(p), size_t(q - p));
        if (q == end) break;
        if (*q == '\n') out->put("\n  ", 3);
        p = q + 1;
    }
    out->put('\n');
}
