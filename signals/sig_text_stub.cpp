// Stand-ins until the signal text parsers land: queued signals and kernel
// traces show as text, binary traces as hex.
#include "render/dump_printers.h"
#include "signals/signals.h"

void free_process_list() {}
void get_process_list(std::span<const uint8_t>, krd_options*) {}
void print_signalqueue(FILE* stream, std::span<const uint8_t> text, uint32_t, krd_options*) {
    print_text_dump(stream, text);
}
void print_kernel_trace_signals(FILE* stream, std::span<const uint8_t> text, krd_options*) {
    print_text_dump(stream, text);
}
void print_trace_sect(FILE* stream, std::span<const uint8_t> data) {
    std::fputc('\n', stream);
    print_hex_dump(stream, data, 0);
}
