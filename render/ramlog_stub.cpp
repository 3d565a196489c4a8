// Stand-in until the RAMLOG printer lands.
#include "render/dump_printers.h"
#include "render/ramlog.h"

void print_ramlog(FILE* stream, std::span<const uint8_t> payload) {
    std::fputc('\n', stream);
    print_hex_dump(stream, payload, 0);
}
