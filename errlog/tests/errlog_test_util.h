// Helpers of the error log tests: images built from records, printed to text.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "errlog/error_log.h"
#include "tests/capture.h"
#include "tools/errlog_image.h"

inline std::string print_log(const std::vector<uint8_t>& image, int* result = nullptr, int check_magic = 0) {
    return capture([&](FILE* f) {
        int r = lg_print_dump(f, image, check_magic);
        if (result) *result = r;
    });
}

// A ring of 256 bytes holding the given records from offset 0.
inline std::vector<uint8_t> ring_of(const std::vector<lg_image_record>& recs, uint32_t size = 256,
                                    uint32_t start = 0) {
    lg_image_ring ring;
    ring.size = size;
    ring.start = start;
    for (const auto& r : recs) ring.records.push_back(lg_build_record(r));
    return lg_build_ring(ring);
}

