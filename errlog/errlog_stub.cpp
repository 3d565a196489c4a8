// Stand-in until the error log printer lands: the image as a hex dump.
#include "errlog/error_log.h"
#include "render/dump_printers.h"

int lg_print_dump(FILE* stream, std::span<const uint8_t> image, int) {
    std::fputc('\n', stream);
    print_hex_dump(stream, image, 0);
    return 0;
}
