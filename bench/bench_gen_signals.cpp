// Writes the signal benchmark dump, SCALE times:
// - a process list of 2,000 processes in blocks of 20, each block named by
//   the load module of its processes, LQZ0000000_R1A to LQZ0000009_R1A
//   (block b belongs to module b % 10);
// - signal queues of 20,000 signals in all, whose senders belong to even
//   and odd modules by turns (the benchmark puts even and odd modules into
//   two archives, so that every signal switches archives);
// - a kernel trace of about 20 MB whose signal events switch the same way;
//   its last tenth are signal events without signal bytes, so that every
//   search for them runs to the end of the text;
// - a damaged trace whose events all lead to the same far parties and bytes.
// Signal numbers are those of the modules' tables, 1000 to 1499.
//   bench_gen_signals OUTPUT SCALE
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
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

static constexpr unsigned block_size = 20, modules = 10;

// A process of an even (parity 0) or odd module, picked by k.
static unsigned process_of(unsigned k, unsigned parity, unsigned processes) {
    unsigned pairs = processes / block_size / 2;
    unsigned block = (k * 7 % pairs) * 2 + parity;
    return block * block_size + k % block_size;
}

static void append_party(bytes& b, const char* label, unsigned process) {
    append(b, "  %s LQZ%07u_R1A:proc_%u(0x%08x)\n", label, process / block_size % modules, process,
           0x20000 + process);
}

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_gen_signals OUTPUT SCALE\n");
        return 2;
    }
    unsigned scale = unsigned(std::atoi(argv[2]));
    unsigned processes = 2000 * scale, queues = 200 * scale;
    size_t trace_bytes = size_t(20) * 1000000 * scale;
    pmd_dump d;
    d.dump_id = 0xBE5C0001;

    // The identity stands twice: the pid table reads the 13th word behind
    // the name, the headings the 14th.
    pmd_section list;
    list.title = " PROCESS LIST";
    append(list.payload, "Name Type Prio State Sigq Stack Used Block Load Cpu Uid Sigsel Tmo Id Pid\n");
    for (unsigned i = 0; i < processes; i++) {
        unsigned block = i / block_size;
        if (i % block_size == 0)
            append(list.payload, "\"LQZ%07u_R1A\" BLOCK 0x%08x %x\n", block % modules, 0x10000 + block, block + 1);
        append(list.payload, "\"proc_%u\" prioritized 16 ready 0 4096 1024 0x%08x 0 0 0 0 0 0x%08x 0x%08x\n", i,
               0x10000 + block, 0x20000 + i, 0x20000 + i);
    }
    d.sections.push_back(list);

    // 100 signals in each queue, from processes all over the list.
    for (unsigned q = 0; q < queues; q++) {
        pmd_section s;
        char title[64];
        std::snprintf(title, sizeof title, " SIGNAL QUEUE FOR PROCESS 0x%08x ", 0x20000 + q);
        s.title = title;
        for (unsigned k = 0; k < 100; k++) {
            unsigned signo = 1000 + (q * 100 + k) % 500, from = process_of(q * 100 + k, k % 2, processes);
            append(s.payload, "signo = %u FROM proc_%u (0x%08x)\n", signo, from, 0x20000 + from);
            append_hex(s.payload, signo, 8 + k % 60);
        }
        d.sections.push_back(s);
    }

    pmd_section trace;
    trace.title = " KERNEL TRACE CONTENTS";
    append(trace.payload, "Kernel trace, oldest event first ...\n\n");
    for (unsigned e = 0; trace.payload.size() < trace_bytes; e++) {
        unsigned from = process_of(e, e % 2, processes), to = process_of(e / 2, 0, processes),
                 signo = 1000 + e % 500;
        if (trace.payload.size() > trace_bytes / 10 * 9) {
            append(trace.payload, "Send    sig=%u tick=%u (not recorded)\n\n", signo, e);
            append(trace.payload, "Receive sig=%u tick=%u\n", signo, e);
            append_party(trace.payload, "from:", from);
            append_party(trace.payload, "to:  ", to);
            append(trace.payload, "\n");
        } else if (e % 3 == 0) {
            append(trace.payload, "Dispatch tick=%u proc_%u\n\n", e, to);
        } else {
            append(trace.payload, "%s sig=%u tick=%u\n", e % 2 ? "Send   " : "Receive", signo, e);
            append_party(trace.payload, "from:", from);
            append_party(trace.payload, "to:  ", to);
            append(trace.payload, "  ");
            append_hex(trace.payload, signo, 8 + e % 60);
            append(trace.payload, "\n");
        }
    }
    d.sections.push_back(trace);

    // A damaged trace: events whose parties and bytes all lie far ahead,
    // behind long runs of white space and digits.
    pmd_section damaged;
    damaged.title = " KERNEL TRACE CONTENTS OF CORE 1";
    append(damaged.payload, "Kernel trace ...\n\n");
    for (unsigned e = 0; e < 20000 * scale; e++) append(damaged.payload, "Send    tick=%u\n\n", e);
    for (unsigned e = 0; e < 20000 * scale; e++) append(damaged.payload, "Send    from: \n\n");
    append(damaged.payload, "from: LQZ:proc(");
    damaged.payload.resize(damaged.payload.size() + 1000000 * scale, ' ');
    damaged.payload.resize(damaged.payload.size() + 1000000 * scale, '7');
    append(damaged.payload, ")\n\nSend to:   LQZ:proc(1)\n<hex> = \n\n");
    damaged.payload.resize(damaged.payload.size() + 1000000 * scale, ' ');
    d.sections.push_back(damaged);
    for (auto& s : d.sections) s.time_sec = 1700000000;
    return pmd_write_file(argv[1], pmd_build_dump(d)) ? 0 : 1;
}
