// Stand-in until the call trace lands: only the text for a dump without
// register sections.
#include <cstring>

#include "pmd/section_chain.h"
#include "symbols/calltrace.h"

void print_calltrace(FILE* stream, krd_file* f, krd_options* options) {
    if (options->stack_pointer != 0) return;
    if (krd_find_section(f, nullptr, "REGISTERS FOR PROCESS ") || krd_find_section(f, nullptr, "CPU registers for pid "))
        return;
    std::fputs("  [CALLTRACE]\n\n  info: cannot find CPU register information in pmd file\n", stream);
}

void print_pc_addr(FILE* stream, krd_file*, krd_options*, uint32_t addr) { std::fprintf(stream, "0x%08x\n", addr); }
