// mksigdb: writes signal symbol files from a readable description.
//
//   mksigdb DESCRIPTION DIRECTORY
//
// Every member of the description becomes a file DIRECTORY/NAME, ready to
// be put into a zip archive (zip -j). "#" starts a comment.
//
//   member NAME
//       Starts a member file; NAME is the load module id it describes.
//
//   fill COUNT BYTE        text "C-escaped text"        hex AA BB ...
//       Bytes of the member outside the tables, such as an object file's
//       own headers in front of them.
//
//   table NAME [order=big|little] [magic=N]
//       Starts a sigdb table (big-endian, magic 2, by default): a header,
//       then the five pools, each followed by its text. The signals below
//       belong to it.
//
//   signal NAME NUMBER [size=N] {
//       MEMBER ...
//   }
//       A signal and its structure. The structure's size and the members'
//       offsets follow C's layout with natural alignment unless given.
//
// A MEMBER line:
//
//   TYPE NAME[D1][D2]... [@OFFSET] [size=N] [format="%d"] [values=A:0,B:1]
//                        [hidden] [text] [pass] [flags=N]
//
//   TYPE is enum, char, uchar, short, ushort, int, uint, long, ulong, float,
//   double, ldouble, ptr, volatile, void, llong, ullong, or a type code as a
//   number; struct and union end their line with "{" and list their
//   members up to a line "}". size is the size of one element (default by
//   type: long and ptr are 4 bytes, as on the target; enum 4). values are
//   an enumeration's entries. hidden, pass and text set the flags 8, 4 and
//   64 (not printed, handed on, printed as text); flags=N adds raw bits.
//
// Example:
//
//   member LQZ1234567_R1A
//   fill 52 0
//   table ctrl_sigs order=big
//   signal MOTOR_CMD 0x1001 {
//       uint sig_no format="%u"
//       enum mode values=IDLE:0,RUN:1
//       struct target {
//           short x
//           short y
//       }
//       char tag[8] text
//   }
#include <cstdio>
#include <fstream>
#include <sstream>

#include "tools/sigdb_writer.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: mksigdb DESCRIPTION DIRECTORY\n");
        return 2;
    }
    std::ifstream in(argv[1]);
    if (!in) {
        std::fprintf(stderr, "mksigdb: cannot read %s\n", argv[1]);
        return 1;
    }
    std::stringstream text;
    text << in.rdbuf();
    std::vector<sigdb_member_file> files;
    std::string error;
    if (!sigdb_parse_description(text.str(), &files, &error)) {
        std::fprintf(stderr, "mksigdb: %s: %s\n", argv[1], error.c_str());
        return 1;
    }
    for (const sigdb_member_file& f : files) {
        const std::vector<uint8_t> bytes = sigdb_build_file(f);
        const std::string path = std::string(argv[2]) + "/" + f.name;
        std::ofstream out(path, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        if (!out) {
            std::fprintf(stderr, "mksigdb: cannot write %s\n", path.c_str());
            return 1;
        }
    }
    return 0;
}
