// Stand-ins until the process list printers land.
#include "render/dump_printers.h"
#include "render/process_list.h"

std::vector<process_row> process_rows;
uint32_t process_row_count = 0;
uint32_t process_row_capacity = 0;

void load_process_rows(FILE*, krd_file*, krd_section*) {}
void read_text_process_dump(FILE*, std::span<const uint8_t>) {}
void free_process_rows() {
    process_rows.clear();
    process_row_count = 0;
    process_row_capacity = 0;
}
void print_text_process_dump(FILE* stream, std::span<const uint8_t> text) { print_text_dump(stream, text); }
void print_text_process_swap_dump(FILE* stream, std::span<const uint8_t> text, const char*) {
    print_text_dump(stream, text);
}
