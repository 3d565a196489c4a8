// The line printer of an address, into the call trace's block buffer.
#pragma once

#include <cstdint>
#include <string>

#include "support/out_buffer.h"
#include "symbols/calltrace.h"
#include "symbols/cross_tool.h"

// What an address comes to: its module, the address asked for, and where.
struct address_plan {
    const load_module* lm = nullptr;
    bool nothing_to_ask = false;  // no module and no -e file
    bool system_call = false;
    uint32_t lookup = 0;
    zdb_file* in_use = nullptr;
    std::string tool_file;  // the file the tool is asked about, if any
};
address_plan plan_address(zdb_file* symbols, const lm_list* list, uint32_t addr, const krd_options* options,
                          const char* product_id);
void print_address_to(out_buffer& out, zdb_file* symbols, const lm_list* list, uint32_t addr,
                      const krd_options* options, const char* product_id);
// Position and function as the in-process translator gives them; ends the line.
void print_in_process(out_buffer& out, zdb_file* file, uint32_t lookup, uint32_t demangle_style);
// The cross tool's answer as the in-process translator makes it, for a run
// where no tool can be found.
cross_tool_answer in_process_answer(zdb_file* file, uint32_t lookup);
// Drops what print_pc_addr keeps for the run.
void print_pc_addr_release();
