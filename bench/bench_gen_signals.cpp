// Writes the signal text benchmark dump: a process list of 2,000 processes in
// 100 blocks, signal queues of 20,000 signals in all, and a kernel trace of
// about 20 MB whose last tenth holds signal events without signal bytes, so
// that every search for them runs to the end of the text, and a damaged trace
// whose events all lead to the same far parties and bytes. Sizes scale with
// PERCENT; "plain" gives the same texts under titles that are only printed
// as text.
//   bench_gen_signals OUTPUT PERCENT parse|plain
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tools/pmd_writer.h"

static void append(bytes& b, const char* f, ...) __attribute__((format(printf, 2, 3)));
static void append(bytes& b, const char* f, ...) {
    char line[256];
    va_list args;
    va_start(args, f);
    int n = std::vsnprintf(line, sizeof line, f, args);
    va_end(args);
    b.insert(b.end(), line, line + n);
}

// The bytes of a signal as the target prints them, 16 to a line.
static void append_hex(bytes& b, unsigned signo, unsigned size) {
    append(b, "<hex> =");
    for (unsigned i = 0; i < size; i++) {
        unsigned byte = i < 4 ? (signo >> (24 - 8 * i)) & 0xff : (i * 37) & 0xff;
        append(b, i % 16 == 15 ? " %02x\n       " : " %02x", byte);
    }
    append(b, "\n");
}

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: bench_gen_signals OUTPUT PERCENT parse|plain\n");
        return 2;
    }
    unsigned percent = unsigned(std::atoi(argv[2]));
    bool plain = std::strcmp(argv[3], "plain") == 0;
    unsigned processes = 2000 * percent / 100, queues = 200 * percent / 100;
    size_t trace_bytes = size_t(20) * 1000000 * percent / 100;
    pmd_dump d;
    d.dump_id = 0xBE5C0001;

    pmd_section list;
    list.title = plain ? " PROCESS LIST TEXT" : " PROCESS LIST";
    append(list.payload, "Name Type Prio State Sigq Stack Used Block Load Cpu Uid Sigsel Tmo Pid\n");
    for (unsigned i = 0; i < processes; i++) {
        unsigned block = i / 20;
        if (i % 20 == 0) append(list.payload, "\"LQZ%07u_R1A\" BLOCK 0x%08x %x\n", block, 0x10000 + block, block);
        append(list.payload, "\"proc_%u\" prioritized 16 ready 0 4096 1024 0x%08x 0 0 0 0 0 0x%08x\n", i,
               0x10000 + block, 0x20000 + i);
    }
    d.sections.push_back(list);

    // 100 signals in each queue, from processes all over the list.
    for (unsigned q = 0; q < queues; q++) {
        pmd_section s;
        char title[64];
        std::snprintf(title, sizeof title, " SIGNAL %s FOR PROCESS 0x%08x", plain ? "TEXT" : "QUEUE", 0x20000 + q);
        s.title = title;
        for (unsigned k = 0; k < 100; k++) {
            unsigned signo = 1000 + k, from = (q * 7 + k * 13) % processes;
            append(s.payload, "signo = %u FROM proc_%u (0x%08x)\n", signo, from, 0x20000 + from);
            append_hex(s.payload, signo, 8 + k % 40);
        }
        d.sections.push_back(s);
    }

    pmd_section trace;
    trace.title = plain ? " KERNEL TRACE TEXT" : " KERNEL TRACE CONTENTS";
    append(trace.payload, "Kernel trace, oldest event first ...\n\n");
    for (unsigned e = 0; trace.payload.size() < trace_bytes; e++) {
        unsigned from = e % processes, to = (e * 7) % processes, signo = 2000 + e % 50;
        if (trace.payload.size() > trace_bytes / 10 * 9) {
            append(trace.payload, "Send    sig=%u tick=%u (not recorded)\n\n", signo, e);
            append(trace.payload, "Receive sig=%u tick=%u\n", signo, e);
            append(trace.payload, "  from: LQZ%07u_R1A:proc_%u(0x%08x)\n", from / 20, from, 0x20000 + from);
            append(trace.payload, "  to:   LQZ%07u_R1A:proc_%u(0x%08x)\n\n", to / 20, to, 0x20000 + to);
        } else if (e % 3 == 0) {
            append(trace.payload, "Dispatch tick=%u proc_%u\n\n", e, to);
        } else {
            append(trace.payload, "%s sig=%u tick=%u\n", e % 2 ? "Send   " : "Receive", signo, e);
            append(trace.payload, "  from: LQZ%07u_R1A:proc_%u(0x%08x)\n", from / 20, from, 0x20000 + from);
            append(trace.payload, "  to:   LQZ%07u_R1A:proc_%u(0x%08x)\n  ", to / 20, to, 0x20000 + to);
            append_hex(trace.payload, signo, 8 + e % 60);
            append(trace.payload, "\n");
        }
    }
    d.sections.push_back(trace);

    // A damaged trace: events whose parties and bytes all lie far ahead,
    // behind long runs of white space and digits.
    pmd_section damaged;
    damaged.title = plain ? " KERNEL TRACE TEXT OF CORE 1" : " KERNEL TRACE CONTENTS OF CORE 1";
    append(damaged.payload, "Kernel trace ...\n\n");
    for (unsigned e = 0; e < 20000 * percent / 100; e++) append(damaged.payload, "Send    tick=%u\n\n", e);
    for (unsigned e = 0; e < 20000 * percent / 100; e++) append(damaged.payload, "Send    from: \n\n");
    append(damaged.payload, "from: LQZ:proc(");
    damaged.payload.resize(damaged.payload.size() + 1000000 * percent / 100, ' ');
    damaged.payload.resize(damaged.payload.size() + 1000000 * percent / 100, '7');
    append(damaged.payload, ")\n\nSend to:   LQZ:proc(1)\n<hex> = \n\n");
    damaged.payload.resize(damaged.payload.size() + 1000000 * percent / 100, ' ');
    d.sections.push_back(damaged);
    for (auto& s : d.sections) s.time_sec = 1700000000;
    return pmd_write_file(argv[1], pmd_build_dump(d)) ? 0 : 1;
}
