// The two parsers of process text: the process row table and the swap-in
// list, which looks names up in it.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "cli/report.h"
#include "render/process_list.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FILE* sink = std::fopen("/dev/null", "w");
    static const char* boards[] = {"tkr5", "vnl3", "", "unknown"};
    // The first half fills the rows, the whole is printed as a swap-in list.
    std::vector<uint8_t> text(data, data + size);
    read_text_process_dump(sink, std::span<const uint8_t>(text).first(size / 2));
    print_text_process_swap_dump(sink, text, boards[size % 4]);
    std::string title = "SIGNAL QUEUE FOR PROCESS ";
    title.append(reinterpret_cast<const char*>(data), strnlen(reinterpret_cast<const char*>(data), std::min<size_t>(size, 16)));
    find_process_name(title.c_str());
    free_process_rows();
    return 0;
}
