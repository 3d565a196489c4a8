// The process list (names for process identities) and the swap-in list.
#include <cstdint>
#include <cstdio>
#include <span>
#include <vector>

#include "pmd/krd_file.h"
#include "pmd/section_chain.h"
#pragma once

// One row of the process list: three zero-terminated texts.
struct process_row {
    char name[100];
    char type[100];
    char pid[50];
};

// Rows 0 to process_row_count, that one included, may hold a process.
extern std::vector<process_row> process_rows;
extern uint32_t process_row_count;
extern uint32_t process_row_capacity;

void load_process_rows(FILE* stream, krd_file* f, krd_section* chain);
void read_text_process_dump(FILE* stream, std::span<const uint8_t> text);
void free_process_rows();
void print_text_process_dump(FILE* stream, std::span<const uint8_t> text);
void print_text_process_swap_dump(FILE* stream, std::span<const uint8_t> text, const char* board);
