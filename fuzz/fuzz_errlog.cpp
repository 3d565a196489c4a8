// Arbitrary bytes as an error log image: printed bare and framed, and walked
// by lg_apply as a framed log held in memory.
#include <cstdio>
#include <span>

#include "errlog/error_log.h"
#include "errlog/log_area.h"

static int count_record(void* argument, lg_cursor) {
    int* n = static_cast<int*>(argument);
    return ++*n == 40 ? 1 : 0;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // lg_apply tells a bad log on standard output.
    if (!std::freopen("/dev/null", "w", stdout)) return 1;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FILE* sink = std::fopen("/dev/null", "w");
    std::span<const uint8_t> image(data, size);
    lg_print_dump(sink, image, 0);
    lg_print_dump(sink, image, 1);

    lg_cursor base = 4;
    uint32_t claimed = size >= 8 ? uint32_t(size - 8) : 0;
    lg_area_image = image;
    lg_area_ptr = &base;
    lg_area_size_ptr = &claimed;
    int n = 0;
    lg_apply(count_record, &n);
    lg_area_ptr = nullptr;
    lg_area_size_ptr = nullptr;
    return 0;
}
