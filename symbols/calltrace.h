// Call traces of the dump's processes, and one address translated for others.
#pragma once

#include <cstdint>
#include <cstdio>

#include "pmd/krd_file.h"
#include "run/krd_options.h"
#include "symbols/load_module.h"
#include "zdb_src/zdb.h"

struct out_buffer;

// Modules are linked for this address; a module address is reckoned from it.
inline constexpr uint32_t LM_LINK_BASE = 0x10000000;
// Exception vectors of the system call range.
inline constexpr uint32_t SYSCALL_FIRST = 0xC00;
inline constexpr uint32_t SYSCALL_LAST = 0xFFF;

// Both print nothing when the -e file, or an -m file, cannot be read as a
// symbol file; they return why, and the run ends.
zdb_open_result print_calltrace(FILE* stream, krd_file* f, krd_options* options);
zdb_open_result print_pc_addr(FILE* stream, krd_file* f, krd_options* options, uint32_t addr);
// The same into a caller's buffer, for callers that print many addresses.
zdb_open_result print_pc_addr(out_buffer& out, krd_file* f, krd_options* options, uint32_t addr);
