// The signal text of the target: the pid table built from the process list,
// and the pieces shared by the signal queue and kernel trace parsers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "run/krd_options.h"
#include "signals/signals.h"

// One process of the process list and the load module of its block.
struct pid_lm_row {
    std::string lmid;
    uint32_t segment_id = 0;  // 0 is the basic OS segment
    uint32_t pid = 0;
};

// Per segment, the counted rows without a true ("LQZ") id and the last row
// with one.
struct segment_rows {
    std::vector<uint32_t> without_true_id;
    int64_t last_true_id = -1;
};

// The run's pid table (the_run().pid_lm_rows). Rows in the order of the
// process list; rows from pid_lm_count on are room (the one at pid_lm_count
// may be prepared by a BLOCK line).
struct pid_table {
    std::vector<pid_lm_row> rows;
    uint32_t pid_lm_count = 0;
    uint32_t pid_lm_capacity = 0;
    // Indexes over the rows, so that neither a lookup nor a BLOCK line walks
    // the whole table: the first row of each pid, and each segment's rows.
    std::unordered_map<uint32_t, uint32_t> first_row_of_pid;
    std::unordered_map<uint32_t, segment_rows> rows_of_segment;
};
pid_table& run_pid_table();

// The first row of this pid sets record->lmid: 1. None: lmid null, 0.
int find_LMID(uint32_t pid, krd_signal_record* record);

// Reads the bytes of a signal behind the next "<hex> = ", at most
// data.size() of them; text and remaining move on past what was read. Stores
// the signal number of the first four bytes in *signo. Returns the count.
uint32_t read_hex_signal(const char*& text, size_t& remaining, std::span<uint8_t> data, uint32_t* signo);

// Moves text over blanks, carriage returns and line feeds.
void skip_formatting(const char*& text, const char* end);

// At most count characters of text, up to a zero byte.
void print_string(FILE* stream, const char* text, size_t count);

// The symbols of a signal, as for a queued one: the sender's load module,
// then the addressee's. Leaves record->lmid at the id last tried; returns
// what the last load_sigsymb_file returned (1 when none was tried), and the
// sender's lmid, or null, in *sender_lm.
int find_signal_symbols(FILE* stream, krd_signal_record* record, krd_options* options, const char** sender_lm);

// A section's text for the parsers, with room for the bytes of one signal:
// a third of the text, which no hex run can outgrow.
struct signal_text {
    std::unique_ptr<uint8_t[]> buffer;
    std::span<uint8_t> data;
    const char* text = nullptr;
    const char* end = nullptr;          // scans stop here: a zero byte or the end
    const char* section_end = nullptr;  // what is left is printed up to here
};

// False when there is no memory for the signal bytes: the message and the
// whole text are out.
bool open_signal_text(FILE* stream, std::span<const uint8_t> image, signal_text* out);
