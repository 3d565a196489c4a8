// Opens arbitrary bytes as a dump and prints every section, as a run would.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "cli/report.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::string path = "/tmp/fuzz_dump." + std::to_string(getpid()) + ".pmd";
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);
    static FILE* sink = std::fopen("/dev/null", "w");
    uint8_t error = 0;
    auto dump = krd_open_file(0, path.c_str(), &error);
    if (!dump) return 0;
    static krd_options options;
    options = krd_options{};
    nexus_files = 0;
    dump_file_name = path.c_str();
    print_dump_header(sink, dump.get());
    print_dump_sections(sink, dump.get(), &options);
    options.flags = KRD_OPT_LIST | KRD_OPT_TIME;
    print_dump_sections(sink, dump.get(), &options);
    return 0;
}
