// One signal in the report: symbolic through the archive manager, which
// writes a character at a time straight into the report stream's buffer.
#include <cstdio>

#include "render/dump_printers.h"
#include "signals/signals.h"

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
    int r = ssmPrint(record->lmid, record->data, record->size, krd_fputs);
    if (r != 0) print_hex_dump(out, data, 0);
    std::fputs("\n\n", out);
}

// The stream is ours alone while a signal is printed: no lock per character.
int krd_fputs(int ch) { return putc_unlocked(ch, sig_out_stream); }
