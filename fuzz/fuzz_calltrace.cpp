// The call trace of arbitrary dumps: register sets, stack images and the
// walk over them, without symbol files.
#include <cstdio>
#include <string>

#include "fuzz/fuzz_dump_file.h"
#include "symbols/calltrace.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    auto dump = open_fuzz_dump("fuzz_calltrace", bytes(data, data + size));
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
