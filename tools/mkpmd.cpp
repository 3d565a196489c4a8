// mkpmd: builds a PMD dump from a readable manifest.
//
//   mkpmd MANIFEST OUTPUT
//
// A manifest is a list of lines; "#" starts a comment line.
//
//   dump id=N version=N [time=SECONDS] [length=N] [truncate=N]
//       The file header. time is the default time of the sections below;
//       length overrides the outermost length word; truncate cuts the file.
//
//   section KIND key=value ...
//       KIND is memory, error, program, register, text, signal or raw.
//       Keys: title="..." time=N usec=N address=N level=N (zlib level, 0 stores)
//       size=N (uncompressed size word) packed=N (compressed size word)
//       cut=N (keep only N stream bytes) flip=N (invert stream byte N)
//       user=N code=N extra=N proc=N (error block) signo=N word=N
//       data=raw|zlib|none (signal block) kindtag="XXXXXXXX" formlen=N
//       patch=OFFSET:HEXBYTES (written over the built section).
//       A memory block whose title begins with a blank is marked as text.
//
// Lines after a section append to its payload (memory, signal, text, raw):
//   text "C-escaped text"      text <<END ... END (each line with its newline)
//   hex AA BB ..               hex <<END ... END
//   file PATH (relative to the manifest)
//   u32 N N ...                big-endian words
//   fill COUNT BYTE
// and describe program and register blocks:
//   program pid=N word=N resident=N status=N lmid="..." regions=N,N,...
//   reg NAME VALUE             arch HEXBYTES
//
//   include PATH
//       the sections of another manifest, in place.
#include <cstdio>
#include <fstream>
#include <sstream>

#include "tools/pmd_writer.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: mkpmd MANIFEST OUTPUT\n");
        return 2;
    }
    std::ifstream in(argv[1]);
    if (!in) {
        std::fprintf(stderr, "mkpmd: cannot read %s\n", argv[1]);
        return 1;
    }
    std::stringstream text;
    text << in.rdbuf();
    std::string base = argv[1];
    size_t slash = base.rfind('/');
    base = slash == std::string::npos ? "." : base.substr(0, slash);
    pmd_dump dump;
    std::string error;
    if (!pmd_parse_manifest(text.str(), base, &dump, &error)) {
        std::fprintf(stderr, "mkpmd: %s: %s\n", argv[1], error.c_str());
        return 1;
    }
    if (!pmd_write_file(argv[2], pmd_build_dump(dump))) {
        std::fprintf(stderr, "mkpmd: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
