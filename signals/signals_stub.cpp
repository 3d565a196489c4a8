// Stand-ins until the signal symbol code lands: queued signals and kernel
// traces show as text, binary traces as hex, and no signal is known.
#include "render/dump_printers.h"
#include "signals/signals.h"

int handle_sigsymb_file(FILE*, krd_options*) { return 0; }
int ssmUnloadAll() { return 0; }
int ssmPrint(const char*, const uint8_t*, uint32_t, ssm_putc_fn) { return -1; }
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
