// The process list (names for process identities) and the swap-in list.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "pmd/krd_file.h"
#include "pmd/section_chain.h"

// One row of the process list: three zero-terminated texts.
struct process_row {
    char name[100];
    char type[100];
    char pid[50];
};

// The run's process row table (the_run().process_rows). Rows 0 to
// process_row_count, that one included, may hold a process: the row behind
// the last complete one holds a last line without a newline.
struct process_table {
    std::vector<process_row> rows;
    uint32_t process_row_count = 0;
    uint32_t process_row_capacity = 0;
    // Rows by their whole pid text and by its first 10 characters, the
    // first row of an identity holding it.
    std::unordered_map<std::string_view, const process_row*> rows_by_pid, rows_by_pid10;
};
process_table& run_process_rows();

// The rows are never more than this; a longer list keeps its first rows.
inline constexpr uint32_t process_row_limit = 1u << 17;

void load_process_rows(FILE* stream, krd_file* f, krd_section* chain);
void read_text_process_dump(FILE* stream, std::span<const uint8_t> text);
void free_process_rows();
// The first row whose pid text equals the key, or none.
const process_row* find_process_row(const char* pid);
// The first row whose pid text agrees with the key in their first 10
// characters (as strncmp compares them), or none. Both are served from an
// index that index_process_rows builds; read_text_process_dump builds it.
const process_row* find_process_row_10(const char* key);
void index_process_rows();

// Prints the process list and writes the same lines to "Proc_list_temp.txt".
void print_text_process_dump(FILE* stream, std::span<const uint8_t> text);

// A board's timer rate, the divisor of the swap-in list's time differences.
struct swap_board {
    const char* name;
    uint32_t ticks_per_us;
};
uint32_t swap_ticks_per_us(const char* board);
void print_text_process_swap_dump(FILE* stream, std::span<const uint8_t> text, const char* board);
