// Stand-in until the T&E printer lands: the image as a hex dump.
#include "errlog/te_log.h"
#include "render/dump_printers.h"

int te_print_log(FILE* stream, std::span<uint8_t> image, const char*) {
    print_hex_dump(stream, image, 0);
    return 0;
}
