// The process swap-in list: each line gets the process's name and type and
// the time since the swap-in before it.
#include <cstring>
#include <iterator>
#include <memory>
#include <string>

#include "render/process_list.h"
#include "support/out_buffer.h"
#include "support/text.h"

namespace {

// Searched in this order; the last row stands behind the search, for an
// unknown or empty board name.
constexpr swap_board swap_board_table[] = {
    {"tkr4", 21},     {"tkr5", 25},     {"vnl", 78},      {"vnl2", 195},
    {"vnl3", 486},    {"tkr6", 150},    {"fzh4", 75},     {"mrq", 75},
    {"tkr7", 150},    {"fzh3", 66},     {"QOT1", 50},     {"default", 66},
};

// Stamps come from a 32-bit timer that counts down; they are kept in
// extended precision so that the differences show exact hundredths.
struct swap_times {
    long double divisor;
    long double previous = 0;
    long double current = 0;
    long double difference = 0;
    bool first_due = false;
};

void print_stamp(out_buffer& out, swap_times& t, const char* word) {
    std::sscanf(word, "%Lf", &t.current);
    if (t.previous != 0) {
        if (t.previous >= t.current) t.difference = (t.previous - t.current) / t.divisor;
        else if (t.previous < t.current) t.difference = (t.previous + 4294967296.0L - t.current) / t.divisor;
    }
    t.previous = t.current;
    if (t.first_due) {
        t.difference = 0;
        t.first_due = false;
    }
    out_printf(out, "  (%.2Lf)\n", t.difference);
}

}  // namespace

uint32_t swap_ticks_per_us(const char* board) {
    const swap_board* b = swap_board_table;
    const swap_board* last = std::end(swap_board_table) - 1;
    while (b != last && !(board && std::strcmp(board, b->name) == 0)) b++;
    return b->ticks_per_us;
}

void print_text_process_swap_dump(FILE* stream, std::span<const uint8_t> text, const char* board) {
    auto out = std::make_unique<out_buffer>(stream);
    swap_times times{(long double)swap_ticks_per_us(board)};
    // Longer words are cut; they still end at the next white space.
    char word[20] = {};
    size_t word_len = 0;
    bool word_open = false, line_start = false;
    out->put("  ", 2);
    for (uint8_t c : text) {
        if (c == 0 || c == '\r') continue;
        if (!is_space(c)) {
            if (word_len < sizeof word - 1) word[word_len++] = char(c);
            word_open = true;
        } else if (word_open) {
            word[word_len] = '\0';
            if (word[0] == '0' && line_start) {
                char key[24];
                std::snprintf(key, sizeof key, "0x%s", word);
                const process_row* row = find_process_row(key);
                out_printf(*out, "   %-30s  %-10s", row ? row->name : "--", row ? row->type : "--");
            } else if (std::strncmp(word, "pid", 3) == 0) {
                out_printf(*out, "   %-30s  %-10s   ", "Process name", "Type");
                times.first_due = true;
            } else if (std::strncmp(word, "time", 4) == 0) {
                out_printf(*out, "  (%s) ", "delta time in \xB5s");
            } else if (is_digit(word[1])) {
                print_stamp(*out, times, word);
            }
            word_len = 0;
            word[0] = '\0';
            word_open = false;
            line_start = false;
        }
        out->put(char(c));
        if (c == '\n') {
            out->put("  ", 2);
            line_start = true;
        }
    }
    out->put('\n');
}
