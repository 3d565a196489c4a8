// One signal in the report: symbolic through the archive manager, which
// writes a character at a time into a block that is flushed as it fills.
#include <cstdio>

#include "render/dump_printers.h"
#include "signals/signals.h"

static char sig_out_buffer[4096];
static int sig_out_count = 0;
static FILE* sig_out_stream = nullptr;

void print_signal(FILE* out, const krd_signal_record* record, const char* text, uint32_t text_len) {
    if (text_len != 0) print_text_dump(out, as_bytes(text, text_len));
    std::span<const uint8_t> data(record->data, record->data ? record->size : 0);
    if (!record->lmid) {
        print_hex_dump(out, data, 0);
        std::fputc('\n', out);
        return;
    }
    sig_out_stream = out;
    sig_out_count = 0;
    int r = ssmPrint(record->lmid, record->data, record->size, krd_fputs);
    if (sig_out_count > 0) {
        sig_out_buffer[sig_out_count] = '\0';
        std::fputs(sig_out_buffer, out);
    }
    if (r != 0) print_hex_dump(out, data, 0);
    std::fputs("\n\n", out);
}

int krd_fputs(int ch) {
    sig_out_buffer[sig_out_count++] = char(ch);
    if (sig_out_count >= 4095) {
        sig_out_buffer[sig_out_count] = '\0';
        sig_out_count = 0;
        return std::fputs(sig_out_buffer, sig_out_stream);
    }
    return 0;
}
