// The signal queue of a process, as the target prints it: per signal a line
// "signo = N FROM name (pid)" and the bytes behind "<hex> = ". Each signal is
// printed by its fields where a signal symbol file describes it.
#include <cstring>

#include "render/dump_printers.h"
#include "signals/sig_text.h"
#include "signals/ssm.h"
#include "signals/text_scan.h"

int find_signal_symbols(FILE* stream, krd_signal_record* record, krd_options* options, const char** sender_lm) {
    int r = 1;
    *sender_lm = nullptr;
    if (find_LMID(record->from_pid, record)) {
        *sender_lm = record->lmid;
        r = load_sigsymb_file(stream, record, options);
        if (r == 0) return 0;
    }
    find_LMID(record->to_pid, record);
    return load_sigsymb_file(stream, record, options);
}

// The entry's line with the sender's load module id in front of its name.
static void print_line_with_lmid(FILE* stream, const char* line, const char* from, const char* line_end,
                                 const char* lmid) {
    std::fputs("  ", stream);
    print_string(stream, line, size_t(from + 5 - line));
    std::fputs(lmid, stream);
    std::fputc(':', stream);
    print_string(stream, from + 5, size_t(line_end - (from + 5)));
    std::fputc('\n', stream);
}

void print_signalqueue(FILE* stream, std::span<const uint8_t> image, uint32_t pid, krd_options* options) {
    signal_text st;
    if (!open_signal_text(stream, image, &st)) return;
    const char* end = st.end;
    const char* p = st.text;

    // What a scan does not reach keeps what the entry before left there.
    uint32_t signo = 0, from_pid = 0;
    char name[256] = "";
    krd_signal_record record;
    const bool zip = options->flags & KRD_OPT_ZIP;
    while (p < end) {
        int n = text_scanf(p, end, "signo = %u FROM %255s (%x)", &signo, name, &from_pid);
        if (std::strncmp(name, "pid", 3) == 0) n = text_scanf(p, end, "signo = %u FROM pid = %x", &signo, &from_pid);
        if (n < 2) {
            // Short leftovers and the note on a longer list are no surprise.
            size_t left = 0;
            while (left <= 18 && !text_ended(p + left, end)) left++;
            if (left > 18 && std::memcmp(p, "The list is longer", 18) != 0)
                std::fputs("Warning: Unsupported signal format in signal queue.\n", stderr);
            break;
        }
        const char* line = p;
        const char* line_end = text_find(line, end, "\n");
        if (!line_end) break;
        // The weave needs "FROM " on the entry's own line.
        const char* from = text_find(line, line_end, "FROM");
        if (from && line_end - from < 5) from = nullptr;

        size_t remaining = size_t(end - p);
        uint32_t hex_signo = 0;
        uint32_t count = read_hex_signal(p, remaining, st.data, &hex_signo);
        if (count == 0) break;
        record.from_pid = from_pid;
        record.to_pid = pid;
        record.size = count;
        record.data = st.data.data();
        if (signo != hex_signo) {
            std::fprintf(stderr, "Warning: signo = %d differs from parsed signal number = %d\n", int(signo),
                         int(hex_signo));
            record.lmid = nullptr;
            print_signal(stream, &record, line, uint32_t(p - line - 1));
            continue;
        }
        record.signo = hex_signo;
        const char* sender_lm = nullptr;
        int loaded = find_signal_symbols(stream, &record, options, &sender_lm);
        if (options->sigsym_failed == 1 && !(options->flags & KRD_OPT_CONTINUE)) break;
        if (loaded != 0 || !zip) record.lmid = nullptr;
        if (sender_lm && from && zip) {
            print_line_with_lmid(stream, line, from, line_end, sender_lm);
            print_signal(stream, &record, nullptr, 0);
        } else {
            print_signal(stream, &record, line, uint32_t(line_end - line));
        }
    }
    if (p < st.section_end && *p != 0) print_text_dump(stream, image.subspan(size_t(p - st.text)));
}
