// The call trace of arbitrary dumps: register sets, stack images and the
// walk over them, without symbol files.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "symbols/calltrace.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::string path = "/tmp/fuzz_calltrace." + std::to_string(getpid()) + ".pmd";
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);
    uint8_t error = 0;
    auto dump = krd_open_file(0, path.c_str(), &error);
    if (!dump) return 0;
    static FILE* sink = std::fopen("/dev/null", "w");
    static krd_options options;
    options = krd_options{};
    print_calltrace(sink, dump.get(), &options);
    // A given stack pointer: the last four bytes of the input.
    if (size >= 4) {
        options.stack_pointer = uint32_t(data[size - 4]) << 24 | data[size - 3] << 16 | data[size - 2] << 8 | data[size - 1];
        print_calltrace(sink, dump.get(), &options);
    }
    return 0;
}
