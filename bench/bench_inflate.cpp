// The reference: bare zlib inflation of every memory block of a dump, in
// large pieces, optionally written to standard output.
//   bench_inflate DUMP [--write]
#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "pmd/section_payload.h"

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    bool write = argc > 2 && std::strcmp(argv[2], "--write") == 0;
    uint8_t error = 0;
    auto f = krd_open_file(0, argv[1], &error);
    if (!f) return 1;
    FILE* raw = std::fopen(argv[1], "rb");
    std::vector<uint8_t> in, out;
    uint32_t cursor = 0;
    for (krd_chain c = krd_find_section(f.get(), &cursor, ""); c; c = krd_get_section(f.get(), &cursor)) {
        for (krd_section* n = c.get(); n; n = n->next.get()) {
            auto img = krd_read_image_info(f.get(), n);
            if (!img) continue;
            in.resize(img->packed_size);
            out.resize(img->size);
            std::fseek(raw, long(img->data_offset), SEEK_SET);
            if (std::fread(in.data(), 1, in.size(), raw) != in.size()) return 1;
            uLongf len = uLongf(out.size());
            if (uncompress(out.data(), &len, in.data(), uLong(in.size())) != Z_OK) return 1;
            if (write) std::fwrite(out.data(), 1, len, stdout);
        }
    }
    std::fclose(raw);
    return 0;
}
