// The signal text parsers on hostile text: a process list fills the pid
// table, then the rest is read as a signal queue and as a kernel trace.
// Byte 0 chooses -z, -b and -c; a line "=====" parts the process list from
// the signal text (without it, the whole input is both).
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

#include "signals/sig_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FILE* sink = std::fopen("/dev/null", "w");
    if (size < 1) return 0;
    krd_options options;
    if (data[0] & 1) options.flags |= KRD_OPT_ZIP;
    if (data[0] & 2) options.flags |= KRD_OPT_BASIC_LMID;
    if (data[0] & 4) options.flags |= KRD_OPT_CONTINUE;
    options.basic_lmid = "LQZ_FUZZ";
    // Copies of exactly the input's bytes, so that any read past them is seen.
    std::string_view in(reinterpret_cast<const char*>(data) + 1, size - 1);
    size_t cut = in.find("=====\n");
    std::string_view list = cut == in.npos ? in : in.substr(0, cut);
    std::string_view text = cut == in.npos ? in : in.substr(cut + 6);
    std::vector<uint8_t> list_bytes(list.begin(), list.end());
    std::vector<uint8_t> text_bytes(text.begin(), text.end());
    get_process_list(list_bytes, &options);
    uint32_t pid = 0;
    if (text.size() >= 4) std::memcpy(&pid, text.data(), 4);
    print_signalqueue(sink, text_bytes, pid, &options);
    print_kernel_trace_signals(sink, text_bytes, &options);
    free_process_list();
    return 0;
}
