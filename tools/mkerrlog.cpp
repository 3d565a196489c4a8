// mkerrlog: expands error log images inside a dump manifest.
//
//   mkerrlog INPUT OUTPUT
//
// Copies a manifest (see mkpmd.cpp) line by line, except that each block
//
//   ring size=N [start=N] [first=N] [last=N] [fill=N] [framed=1]
//   record code=N [reporter=N] [flags=N] [date=D,D,D] [time=D,D,D]
//          [queued=N] [owned=N] [line=N] [file="..."] [process="..."]
//          [restart=N] [pmd=N] [rank=N] [ext=N] [length=N] [head=N]
//   hex AA BB ...   u32 N ...   text "C-escaped"   fill COUNT BYTE
//   ...
//   end
//
// becomes the "hex" lines of that area's bytes, to follow a section line.
// ring: the area's size (a multiple of 4), the ring offset of the first
// record, the head's two offsets when they should lie, the free bytes' value.
// record: one record, laid behind the previous one. Any of queued, owned,
// line, file and process gives it the process block; flags 0x80 and 0x08 the
// restart block (restart, pmd) and the rank byte. ext, length and head
// override the head length, the length word and the head word's upper bytes.
// The hex, u32, text and fill lines after a record are its data.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tools/errlog_image.h"
#include "tools/manifest_words.h"

namespace {

struct bad_input : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void three(const std::string& v, uint8_t* out) {
    std::istringstream in(v);
    std::string part;
    for (int k = 0; k < 3; k++) {
        if (!std::getline(in, part, ',')) throw bad_input("expected three numbers in '" + v + "'");
        out[k] = uint8_t(manifest_number(part));
    }
}

void record_key(lg_image_record& r, const std::string& k, const std::string& v) {
    if (k == "code") r.code = manifest_number(v);
    else if (k == "reporter") r.reporter = uint8_t(manifest_number(v));
    else if (k == "flags") r.flags = uint8_t(manifest_number(v));
    else if (k == "date") three(v, r.date);
    else if (k == "time") three(v, r.time);
    else if (k == "queued") r.queued = manifest_number(v), r.process_block = true;
    else if (k == "owned") r.owned = manifest_number(v), r.process_block = true;
    else if (k == "line") r.line = manifest_number(v), r.process_block = true;
    else if (k == "file") r.file = v, r.process_block = true;
    else if (k == "process") r.process = v, r.process_block = true;
    else if (k == "restart") r.restart_type = uint8_t(manifest_number(v));
    else if (k == "pmd") r.pmd_identity = manifest_number(v);
    else if (k == "rank") r.rank = uint8_t(manifest_number(v));
    else if (k == "ext") r.ext_len = manifest_number(v);
    else if (k == "length") r.length = manifest_number(v);
    else if (k == "head") r.head_upper = manifest_number(v);
    else throw bad_input("unknown record key '" + k + "'");
}

// The manifest lines of one area: a comment per record and 16 bytes a line.
void write_ring(std::ostream& out, const lg_image_ring& ring, const std::vector<lg_image_record>& recs) {
    std::vector<uint32_t> at = lg_record_offsets(ring);
    for (size_t k = 0; k < recs.size(); k++) {
        char c[128];
        std::snprintf(c, sizeof c, "# record %zu at ring offset 0x%X: code 0x%08X, %zu bytes\n", k + 1, at[k],
                      recs[k].code, ring.records[k].size());
        out << c;
    }
    std::vector<uint8_t> image = lg_build_ring(ring);
    for (size_t i = 0; i < image.size(); i += 16) {
        out << "hex";
        for (size_t j = i; j < image.size() && j < i + 16; j++) {
            char h[4];
            std::snprintf(h, sizeof h, " %02X", image[j]);
            out << h;
        }
        out << "\n";
    }
}

void expand(std::istream& in, std::ostream& out) {
    std::string line;
    int lineno = 0;
    bool in_ring = false;
    lg_image_ring ring;
    std::vector<lg_image_record> recs;
    try {
        while (std::getline(in, line)) {
            lineno++;
            size_t i = 0;
            manifest_skip_blanks(line, i);
            std::string cmd = manifest_word(line, i);
            if (!in_ring) {
                if (cmd != "ring") {
                    out << line << "\n";
                    continue;
                }
                in_ring = true;
                ring = lg_image_ring{};
                recs.clear();
                for (auto& [k, v] : manifest_pairs(line, i)) {
                    if (k == "size") ring.size = manifest_number(v);
                    else if (k == "start") ring.start = manifest_number(v);
                    else if (k == "first") ring.first = manifest_number(v);
                    else if (k == "last") ring.last = manifest_number(v);
                    else if (k == "fill") ring.fill = uint8_t(manifest_number(v));
                    else if (k == "framed") ring.framed = manifest_number(v) != 0;
                    else throw bad_input("unknown ring key '" + k + "'");
                }
                if (ring.size % 4) throw bad_input("ring size must be a multiple of 4");
                continue;
            }
            if (cmd.empty() || cmd[0] == '#') continue;
            if (cmd == "end") {
                for (auto& r : recs) ring.records.push_back(lg_build_record(r));
                write_ring(out, ring, recs);
                in_ring = false;
            } else if (cmd == "record") {
                recs.emplace_back();
                for (auto& [k, v] : manifest_pairs(line, i)) record_key(recs.back(), k, v);
            } else {
                if (recs.empty()) throw bad_input("data before any record");
                std::vector<uint8_t>& d = recs.back().data;
                manifest_skip_blanks(line, i);
                if (cmd == "hex") {
                    auto b = manifest_hex(line.substr(i));
                    d.insert(d.end(), b.begin(), b.end());
                } else if (cmd == "u32") {
                    while (manifest_skip_blanks(line, i), i < line.size()) lg_put_u32(d, manifest_number(manifest_word(line, i)));
                } else if (cmd == "text") {
                    std::string t = manifest_word(line, i);
                    d.insert(d.end(), t.begin(), t.end());
                } else if (cmd == "fill") {
                    uint32_t count = manifest_number(manifest_word(line, i));
                    manifest_skip_blanks(line, i);
                    d.insert(d.end(), count, uint8_t(manifest_number(manifest_word(line, i))));
                } else {
                    throw bad_input("unknown directive '" + cmd + "'");
                }
            }
        }
        if (in_ring) throw bad_input("ring without end");
    } catch (const std::exception& e) {
        throw bad_input("line " + std::to_string(lineno) + ": " + e.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: mkerrlog INPUT OUTPUT\n");
        return 2;
    }
    std::ifstream in(argv[1]);
    if (!in) {
        std::fprintf(stderr, "mkerrlog: cannot read %s\n", argv[1]);
        return 1;
    }
    std::ostringstream out;
    try {
        expand(in, out);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "mkerrlog: %s: %s\n", argv[1], e.what());
        return 1;
    }
    std::ofstream o(argv[2]);
    o << out.str();
    if (!o) {
        std::fprintf(stderr, "mkerrlog: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
