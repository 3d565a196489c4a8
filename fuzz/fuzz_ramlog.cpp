// The RAMLOG printer on hostile payloads.
#include <cstdio>
#include <vector>

#include "render/ramlog.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The size-0 message goes to the standard output.
    static FILE* quiet = std::freopen("/dev/null", "w", stdout);
    static FILE* sink = std::fopen("/dev/null", "w");
    (void)quiet;
    std::vector<uint8_t> payload(data, data + size);
    print_ramlog(sink, payload);
    return 0;
}
