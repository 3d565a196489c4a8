// The kernel trace as the target prints it: a heading up to "...", then
// events separated by empty lines. Send and receive events carry a signal,
// which is printed by its fields in place of its hex text; every other event
// passes through as it stands.
#include <cstring>
#include <string>

#include "render/dump_printers.h"
#include "signals/sig_text.h"
#include "signals/ssm.h"
#include "signals/text_scan.h"

namespace {

// A party's reading: its searches, and the pid last read with where it was
// read. Many events can lead to the same "from: " or "(" far ahead; the
// pid behind it is read once.
struct party_reader {
    text_finder colon{":"};
    text_finder bracket{"("};
    const char* read_at = nullptr;
    bool read_ok = false;
    uint32_t read_pid = 0;
};

// What the events of one section search for, each search remembering its
// next hit: a trace of many events must not be rescanned to its end for
// every one of them.
struct trace_scan {
    text_finder from{"from: "};
    text_finder to{"to:   "};
    text_finder hex{"<hex> = "};
    text_finder empty_line{"\n\n"};
    text_finder line_end{"\n"};
    party_reader from_party, to_party;
    // The white space in front of an event's first word.
    const char* space_from = nullptr;
    const char* space_to = nullptr;
    // A "<hex> = " behind which no byte could be read.
    const char* hex_without_bytes = nullptr;
};

// The first character at or behind p that is no white space.
const char* skip_space(trace_scan& scan, const char* p, const char* end) {
    if (!(scan.space_from && scan.space_from <= p && p <= scan.space_to)) {
        scan.space_from = scan.space_to = p;
        while (!text_ended(scan.space_to, end) && is_space(*scan.space_to)) scan.space_to++;
    }
    return scan.space_to;
}

// "lmid:name(pid)", the id being optional. Neither search stops at the end
// of the line. Returns false when no pid can be read; *pid_at is where the
// pid was read.
bool parse_party(const char* p, const char* end, party_reader& party, std::string* lmid, uint32_t* pid,
                 const char** pid_at) {
    lmid->clear();
    if (const char* c = text_find_next(party.colon, p, end)) {
        // The id has room for 255 characters; its length wraps as a byte.
        lmid->assign(p, size_t(c - p) % 256);
        p = c + 1;
    }
    if (const char* b = text_find_next(party.bracket, p, end)) p = b + 1;
    *pid_at = p;
    if (party.read_at != p) {
        party.read_at = p;
        party.read_ok = text_scanf(p, end, "%x", &party.read_pid) == 1;
    }
    if (party.read_ok) *pid = party.read_pid;
    return party.read_ok;
}

const char unsupported_signal[] = "Warning: Unsupported signal format in section [KERNEL TRACE CONTENTS].\n";

enum class event_kind { signal, other, stop };

// One event at p. A signal event gets its pids, lmids and bytes, the end of
// its first line and the end of its bytes; every other event is told apart
// with the warning it deserves.
event_kind parse_event(const char* p, const char* end, trace_scan& find, std::span<uint8_t> data,
                       krd_signal_record* record, std::string* from_lm, std::string* to_lm,
                       const char** line_end, const char** signal_end) {
    char word[256];
    if (text_scanf(skip_space(find, p, end), end, "%255s", word) < 1) {
        std::fputs("Warning: Unsupported event format in section [KERNEL TRACE CONTENTS].\n", stderr);
        return event_kind::other;
    }
    if (std::strncmp(word, "Receive", 7) != 0 && std::strncmp(word, "Send", 4) != 0) return event_kind::other;
    const char* pid_at = nullptr;
    const char* from = text_find_next(find.from, p, end);
    if (!from) {
        std::fputs(unsupported_signal, stderr);
        return event_kind::other;
    }
    if (!parse_party(from + 6, end, find.from_party, from_lm, &record->from_pid, &pid_at)) {
        std::fputs("Warning: Illegal process ID for a sending process in section [KERNEL TRACE CONTENTS].\n", stderr);
        return event_kind::other;
    }
    const char* to = text_find_next(find.to, p, end);
    if (!to) {
        std::fputs(unsupported_signal, stderr);
        return event_kind::other;
    }
    if (!parse_party(to + 6, end, find.to_party, to_lm, &record->to_pid, &pid_at)) {
        std::fputs("Warning: Illegal process ID for sender process in section [KERNEL TRACE CONTENTS].\n", stderr);
        return event_kind::other;
    }
    *line_end = text_find_next(find.line_end, pid_at, end);
    if (!*line_end) return event_kind::stop;
    // Reading from the remembered hit is reading from the pid on: nothing
    // between them is "<hex> = ".
    const char* hex = text_find_next(find.hex, pid_at, end);
    const char* hex_at = hex;
    size_t remaining = hex ? size_t(end - hex) : 0;
    uint32_t count = hex && hex != find.hex_without_bytes ? read_hex_signal(hex, remaining, data, &record->signo) : 0;
    if (count == 0) {
        find.hex_without_bytes = hex_at;
        std::fputs(unsupported_signal, stderr);
        return event_kind::other;
    }
    record->data = data.data();
    record->size = count;
    *signal_end = hex;
    return event_kind::signal;
}

}  // namespace

void print_kernel_trace_signals(FILE* stream, std::span<const uint8_t> image, krd_options* options) {
    signal_text st;
    if (!open_signal_text(stream, image, &st)) return;
    const char* text = st.text;
    const char* end = st.end;
    auto from_to = [&](const char* a, const char* b) { return image.subspan(size_t(a - text), size_t(b - a)); };

    const char* dots = text_find(text, end, "...");
    if (!dots) {
        std::fputs("Warning: Illegal syntax in section [KERNEL TRACE CONTENTS]. (\"...\" not found)\n", stderr);
        print_text_dump(stream, image);
        return;
    }
    const char* p = dots + 3;
    skip_formatting(p, end);
    print_text_dump(stream, from_to(text, p));

    trace_scan find;
    krd_signal_record record;
    std::string from_lm, to_lm;
    const bool zip = options->flags & KRD_OPT_ZIP;
    while (p < end) {
        const char *line_end = nullptr, *signal_end = nullptr;
        event_kind kind = parse_event(p, end, find, st.data, &record, &from_lm, &to_lm, &line_end, &signal_end);
        if (kind == event_kind::stop) break;
        if (kind == event_kind::other) {
            // The event as it stands, through its empty line.
            const char* empty = text_find_next(find.empty_line, p, end);
            if (!empty) break;
            print_text_dump(stream, from_to(p, empty + 2));
            p = empty + 2;
            skip_formatting(p, end);
            continue;
        }
        int loaded = 1;
        if (!from_lm.empty()) {
            record.lmid = from_lm.c_str();
            loaded = load_sigsymb_file(stream, &record, options);
        }
        if (loaded != 0 && !to_lm.empty()) {
            record.lmid = to_lm.c_str();
            loaded = load_sigsymb_file(stream, &record, options);
        }
        if (loaded != 0) {
            const char* sender_lm;
            loaded = find_signal_symbols(stream, &record, options, &sender_lm);
        }
        if (options->sigsym_failed == 1 && !(options->flags & KRD_OPT_CONTINUE)) return;
        if (loaded != 0 || !zip) record.lmid = nullptr;
        print_signal(stream, &record, p, uint32_t(line_end - p));
        p = signal_end;
        skip_formatting(p, end);
    }
    if (p < st.section_end && *p != 0) print_text_dump(stream, from_to(p, st.section_end));
}
