// The Nexus (NPC) trace buffer report.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "nexus/nexus_messages.h"
#include "pmd/krd_file.h"
#include "run/krd_options.h"
#include "support/out_buffer.h"
#include "zdb_src/zdb.h"

// The section "NPC TRACE BUFFER": message by message. Always 0. A symbol
// file that cannot be read for a translation stops the section at once, as
// it ends the run: *symbols tells why (else it is left as it was).
int handle_nexus_log(FILE* stream, krd_file* f, krd_options* options, std::span<const uint8_t> payload,
                     zdb_open_result* symbols);
// The addresses rebuilt across messages, sections and cores are the run's
// (the_run().last_addr, pc_ptbm, F_ADDR_core0 to F_ADDR_core7); the process
// list file is read at most once per section, into that section's names.
struct nexus_names;
// One decoded message's block. Always 0; *symbols as above.
int print_message(out_buffer& out, krd_file* f, krd_options* options, const nexus_msg& msg, nexus_names& names,
                  zdb_open_result* symbols);
// Names of the processes whose line in "Proc_list_temp.txt" holds text.
// 0, or -1 if the file cannot be read.
int search_in_file(out_buffer& out, nexus_names& names, const char* text);
