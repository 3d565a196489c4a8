// The line printer of an address, into the call trace's block buffer.
#pragma once

#include <cstdint>

#include "render/out_buffer.h"
#include "symbols/calltrace.h"

void print_address_to(out_buffer& out, zdb_file* symbols, const lm_list* list, uint32_t addr,
                      const krd_options* options, const char* product_id);
// Position and function as the in-process translator gives them; ends the line.
void print_in_process(out_buffer& out, zdb_file* file, uint32_t lookup, uint32_t demangle_style);
// Drops what print_pc_addr keeps for the run.
void print_pc_addr_release();
