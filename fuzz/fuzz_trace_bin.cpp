// The binary kernel trace on hostile records: the input is printed as two
// traces in a row, so that names kept past an end-of-trace record are used.
#include <cstdio>
#include <vector>

#include "signals/kernel_trace_bin.h"
#include "signals/signals.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FILE* sink = std::fopen("/dev/null", "w");
    size_t half = size / 2;
    std::vector<uint8_t> first(data, data + half), second(data + half, data + size);
    print_trace_sect(sink, first);
    print_trace_sect(sink, second);
    free_pidNameList(run_pid_name_list());
    return 0;
}
