// Call traces of the dump's processes, and one address translated for others.
#pragma once

#include <cstdint>
#include <cstdio>

#include "cli/krd_options.h"
#include "pmd/krd_file.h"

void print_calltrace(FILE* stream, krd_file* f, krd_options* options);
void print_pc_addr(FILE* stream, krd_file* f, krd_options* options, uint32_t addr);
