// The load module table from arbitrary text, in both section forms, and from
// arbitrary dumps; then the lookups and the address line over what it gave.
#include <cstdio>
#include <string>

#include "fuzz/fuzz_dump_file.h"
#include "symbols/address_print.h"
#include "tools/pmd_writer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const uint8_t mode = data[0] % 3;
    bytes text(data + 1, data + size);
    bytes image;
    if (mode == 2) {
        image = text;
    } else {
        pmd_dump d;
        pmd_section s;
        if (mode == 0) {
            s.kind = pmd_kind::memory;
            s.title = "LOADED PROGRAMS";
            s.level = 1;
            s.payload = text;
        } else {
            s.kind = pmd_kind::text;
            std::string heading = "LOAD MODULE INFORMATION\n";
            s.payload.assign(heading.begin(), heading.end());
            s.payload.insert(s.payload.end(), text.begin(), text.end());
        }
        d.sections.push_back(s);
        image = pmd_build_dump(d);
    }
    auto dump = open_fuzz_dump("fuzz_lm_table", image);
    if (!dump) return 0;
    lm_table list = parse_lm_table(dump.get());

    static FILE* sink = std::fopen("/dev/null", "w");
    static out_buffer out(sink);
    zdb_file empty;
    krd_options options;
    std::string name = lm_product_string(text);
    lm_find_by_name(list.get(), name.c_str());
    if (list) {
        for (const load_module& lm : *list) {
            lm_find_by_name(list.get(), lm.name.c_str());
            for (uint32_t addr : {lm.code_start, lm.code_start + lm.code_size, lm.code_start - 1})
                print_address_to(out, &empty, list.get(), addr, &options, "");
        }
    }
    print_address_to(out, &empty, list.get(), 0xC00, &options, "");
    return 0;
}
