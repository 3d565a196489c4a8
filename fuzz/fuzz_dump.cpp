// Opens arbitrary bytes as a dump and prints every section, as a run would.
#include <cstdio>
#include <string>

#include "cli/report.h"
#include "fuzz/fuzz_dump_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FILE* sink = std::fopen("/dev/null", "w");
    auto dump = open_fuzz_dump("fuzz_dump", bytes(data, data + size));
    if (!dump) return 0;
    start_run();
    krd_options& options = the_run().options;
    the_run().dump_file_name = dump->name.c_str();
    print_dump_header(sink, dump.get());
    print_dump_sections(sink, dump.get(), &options);
    options.flags = KRD_OPT_LIST | KRD_OPT_TIME;
    print_dump_sections(sink, dump.get(), &options);
    return 0;
}
