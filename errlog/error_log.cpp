// The error log section of a dump: every record of the area, in walking order.
#include "errlog/error_log.h"

#include <cstdint>

#include "errlog/error_record.h"
#include "errlog/log_area.h"

int lg_print_dump(FILE* stream, std::span<const uint8_t> image, int check_magic) {
    // The framed form holds the area between its two guard words.
    uint64_t area_size = check_magic ? (image.size() >= 8 ? image.size() - 8 : 0) : image.size();
    uint32_t size = area_size > UINT32_MAX ? UINT32_MAX : uint32_t(area_size);
    lg_size = size;
    uint32_t count = 0;
    int walk = lg_find_entries(image, 0, size, &count, check_magic);
    if (walk != LG_AREA_OK) return walk;
    for (uint32_t i = 0; i < count; i++) {
        lg_read_entry(i);
        lg_print_entry(stream, i);
    }
    return 0;
}
