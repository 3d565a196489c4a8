// The process row table: names and types of processes by their identity,
// read from the process list once per run.
#include <cstring>
#include <new>
#include <string_view>
#include <unordered_map>

#include "pmd/section_payload.h"
#include "render/process_list.h"
#include "run/krd_run.h"
#include "support/text.h"

process_table& run_process_rows() { return the_run().process_rows.get(); }

namespace {

constexpr uint32_t rows_per_step = 1024;

// Another step of cleared rows; false at the limit or with no memory.
bool grow_rows(process_table& t) {
    if (t.process_row_capacity >= process_row_limit) return false;
    try {
        t.rows.resize(t.process_row_capacity + rows_per_step, process_row{});
    } catch (const std::bad_alloc&) {
        return false;
    }
    t.process_row_capacity += rows_per_step;
    return true;
}

// Stores a byte of field 0, 1 or 14; a field is cut where it would lose
// its terminating zero.
void store(process_row& row, uint32_t field, uint64_t col, uint8_t c) {
    char* text = field == 0 ? row.name : field == 1 ? row.type : row.pid;
    const size_t width = field == 0 ? sizeof row.name : field == 1 ? sizeof row.type : sizeof row.pid;
    if (col < width - 1) text[col] = char(c);
}

}  // namespace

// Headings, listing lines and swap-in lines look a name up over and over,
// and a list may name thousands of processes: they ask an index.
using row_index = std::unordered_map<std::string_view, const process_row*>;

static std::string_view first10(const char* text) { return {text, strnlen(text, 10)}; }

static const process_row* lookup(const row_index& index, std::string_view key) {
    auto hit = index.find(key);
    return hit == index.end() ? nullptr : hit->second;
}

void index_process_rows() {
    process_table& t = run_process_rows();
    t.rows_by_pid.clear();
    t.rows_by_pid10.clear();
    if (t.process_row_capacity == 0) return;
    for (uint32_t i = 0; i <= t.process_row_count && i < t.rows.size(); i++) {
        t.rows_by_pid.emplace(t.rows[i].pid, &t.rows[i]);
        t.rows_by_pid10.emplace(first10(t.rows[i].pid), &t.rows[i]);
    }
}

const process_row* find_process_row(const char* pid) { return lookup(run_process_rows().rows_by_pid, pid); }
const process_row* find_process_row_10(const char* key) {
    return lookup(run_process_rows().rows_by_pid10, first10(key));
}

void free_process_rows() { run_process_rows() = process_table{}; }

void read_text_process_dump(FILE*, std::span<const uint8_t> text) {
    free_process_rows();
    process_table& t = run_process_rows();
    if (!grow_rows(t)) {
        std::fputs("Error: Unable to allocate memory for process list information!\n", stderr);
        return;
    }
    uint32_t row = 0, field = 0;
    uint64_t col = 0;
    bool word_open = false, entry_started = false;
    for (uint8_t c : text) {
        if (row >= t.process_row_capacity && !grow_rows(t)) break;
        if (c == 0 || c == '\r') continue;
        if (c == '"' || entry_started) {
            entry_started = true;
            if (is_space(c)) {
                if (word_open) {
                    word_open = false;
                    field++;
                    if (field == 1 || field == 2 || field == 15) col = 0;
                }
            } else {
                word_open = true;
                // A backslash continues an entry on the next line.
                if (field == 0 || field == 1 || field == 14) {
                    if (c == '\\') word_open = false;
                    else store(t.rows[row], field, col++, c);
                }
            }
        }
        // A newline ends the entry only once its type has been read.
        if (c == '\n' && field > 1) {
            entry_started = false;
            field = 0;
            row++;
        }
    }
    // The row behind the last complete one is looked up too: it must exist.
    if (row >= t.process_row_capacity && !grow_rows(t)) row = t.process_row_capacity - 1;
    t.process_row_count = row;
    index_process_rows();
}

void load_process_rows(FILE* stream, krd_file* f, krd_section* chain) {
    krd_payload payload;
    switch (krd_read_chain_payload(f, chain, &payload)) {
    case KRD_PAYLOAD_CORRUPT: std::fputs("  Corrupt Section.\n", stream); return;
    case KRD_PAYLOAD_EMPTY: std::fprintf(stream, "\n %s is Empty !!!! \n", chain->title.c_str()); return;
    case KRD_PAYLOAD_INFLATE: return;
    case KRD_PAYLOAD_OK: break;
    }
    read_text_process_dump(stream, std::span<const uint8_t>(payload.bytes.get(), payload.size));
}
