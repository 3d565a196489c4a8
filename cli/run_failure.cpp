// Failures that end the run. The libraries report them and stop; the run
// tells them here, in the words and on the streams users know, and ends
// with status 1.
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "cli/report.h"
#include "symbols/cross_tool.h"

void print_symbol_file_failure(const zdb_open_result& failure) {
    errno = failure.error;
    switch (failure.status) {
    case ZDB_OPEN_OK:
        break;
    case ZDB_OPEN_CANNOT_OPEN:
        // Starts by resetting the terminal's attributes.
        std::perror("\033[0mzdb: [open_elf_file]");
        break;
    case ZDB_OPEN_CANNOT_READ:
        std::perror("zdb: [open_elf_file] ");
        break;
    case ZDB_OPEN_NOT_ELF:
        std::printf("zdb: This is not an ELF file\n");
        break;
    case ZDB_OPEN_NOT_EXEC:
        break;  // a relocatable or shared file ends the run without a word
    }
}

// The reader found the dump unreadable in the middle of a section: the run
// ends at once, before anything more of the report is written.
void end_run_on_read_failure(krd_file*, int error) {
    errno = error;
    std::perror("fseek");
    cross_tool_close_all();
    std::exit(1);
}
