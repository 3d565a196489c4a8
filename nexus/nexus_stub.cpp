// Stand-in until the Nexus report lands: the trace words as a hex dump.
#include "nexus/nexus.h"
#include "render/dump_printers.h"

int handle_nexus_log(FILE* stream, krd_file*, krd_options*, std::span<const uint8_t> payload) {
    std::fputc('\n', stream);
    print_hex_dump(stream, payload, 0);
    return 0;
}
