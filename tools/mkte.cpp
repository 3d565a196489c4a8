// mkte: builds the memory image of a T&E ring, for a "TRACE AND ERROR"
// section's payload, with the trace ring's own writer.
//
//   mkte SCRIPT OUTPUT
//
// A script is a list of lines; "#" starts a comment line. Values are numbers
// (0x for hex) or texts, quoted with C escapes where they hold blanks.
//
//   image size=N [fill=BYTE] [address=N]
//       The image, filled with one byte; address is the target address of
//       its first byte (default 0).
//   ring at=N size=N [name="..."]
//       A fresh ring in the area of size bytes at position at, enabled.
//       The name defaults to "Trace&ErrorLog". Later lines work on it.
//   enable | disable | clear
//   clock ticks=N [usec=N] [step=N]
//       The time stamp of the next block; every block moves the ticks on by
//       step (default 1).
//   entry key=value ...
//       A T&E entry: seconds= base= (the base ticks) line= group= file=
//       msg= suffix= bin=HEX. msgpos= filepos= suffixpos= binpos= binlen=
//       replace the laid-out positions. ticks= usec= set the clock first.
//       size= the size asked for (default: the entry's bytes).
//       state=done (default) | open (never freed) | sub | subdone.
//       count=N writes it N times, "{n}" in msg counting from 1.
//       An entry the ring refuses is an error, unless refuse=ok.
//   block [hex=...] [size=N] [state=...]
//       A block of raw data.
//   header key=value ...
//       Writes over the ring's header: head= tail= start= end= as positions
//       in the image, or +N / -N from the field's value; version= enabled=
//       generation= name=.
//   mark n=N key=value ...
//       Writes over the head of the block of the Nth allocation (from 0)
//       in the latest ring: units= size= (also +N / -N) skip= state=
//       generation= ticks=.
//   poke at=N hex=...
//       Bytes written over the image.
//
// At the end, each ring's address fields become target addresses: the
// image's address is added to them.
#include <cstdio>
#include <fstream>
#include <sstream>

#include "tools/te_writer.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: mkte SCRIPT OUTPUT\n");
        return 2;
    }
    std::ifstream in(argv[1]);
    if (!in) {
        std::fprintf(stderr, "mkte: cannot read %s\n", argv[1]);
        return 1;
    }
    std::stringstream text;
    text << in.rdbuf();
    bytes image;
    std::string error;
    if (!te_build_script(text.str(), &image, &error)) {
        std::fprintf(stderr, "mkte: %s: %s\n", argv[1], error.c_str());
        return 1;
    }
    if (!pmd_write_file(argv[2], image)) {
        std::fprintf(stderr, "mkte: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
