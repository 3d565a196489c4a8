// The OSE kernel's event trace in binary form, carried by a signal block:
// records of a length word and a body, one paragraph per event.
#include <algorithm>
#include <memory>

#include "run/krd_run.h"
#include "signals/kernel_trace_bin.h"
#include "signals/signals.h"
#include "support/byte_cursor.h"

pid_name_list& run_pid_name_list() { return the_run().pidNameList.get(); }

void add_pidNameList(pid_name_list& list, uint32_t pid, std::string name) {
    list.newest[pid] = std::move(name);
}

const char* find_pidName(const pid_name_list& list, uint32_t pid) {
    auto it = list.newest.find(pid);
    return it == list.newest.end() ? nullptr : it->second.c_str();
}

void free_pidNameList(pid_name_list& list) { list.newest = {}; }

void print_trace_signal(out_buffer& out, std::span<const uint8_t> data, uint32_t signo) {
    out_printf(out, "  signo = 0x%08x, ", signo);
    out_printf(out, "  size = 0x%x\n", unsigned(data.size()));
    out.put("          <hex>", 15);
    static const char digits[] = "0123456789abcdef";
    for (size_t i = 0; i < data.size(); i++) {
        if (i % 16 == 0) out.put("\n          ", 11);
        char* at = out.reserve(3);
        at[0] = digits[data[i] >> 4];
        at[1] = digits[data[i] & 15];
        at[2] = ' ';
        out.commit(3);
    }
    out.put('\n');
}

enum : uint32_t {
    trace_none = 39215,
    trace_name = 39216,
    trace_send = 39217,
    trace_receive = 39218,
    trace_create = 39219,
    trace_kill = 39220,
    trace_dispatch = 39221,
    trace_error = 39222,
    trace_warm_start = 39223,
    trace_end = 39230,
};

namespace {

// The fields of one record, read from its body on. A record is believed:
// its fields, its name and its signal's bytes are read where it says, even
// past a short body, but never outside the trace's data; what is not there
// ends the walk. A name is kept to 255 characters, and all records together
// may print no more bytes from outside their own bodies than the trace
// holds: a damaged trace cannot print its bytes again for every record.
struct trace_record {
    std::span<const uint8_t> data;
    size_t body;
    size_t body_end;
    uint64_t* foreign;  // bytes from outside their records still to print
    bool ok = true;

    uint32_t word(size_t offset) {
        byte_cursor c(data, body + offset);
        uint32_t v = c.u32();
        if (!c.ok()) ok = false;
        return v;
    }
    std::string text(size_t offset) {
        std::string s;
        for (size_t i = body + offset; i < data.size() && data[i] != 0 && s.size() < 255; i++) s += char(data[i]);
        return s;
    }
    std::span<const uint8_t> bytes(uint64_t offset, uint64_t n) {
        const uint64_t at = body + offset;
        if (at > data.size() || n > data.size() - at) {
            ok = false;
            return {};
        }
        const uint64_t inside = at < body_end ? std::min<uint64_t>(n, body_end - at) : 0;
        if (n - inside > *foreign) {
            ok = false;
            return {};
        }
        *foreign -= n - inside;
        return data.subspan(size_t(at), size_t(n));
    }
};

// A pid's name; a pid that no name record named shows as its number.
struct name_of {
    char unnamed[11];
    const char* operator()(uint32_t pid) {
        if (const char* name = find_pidName(run_pid_name_list(), pid)) return name;
        std::snprintf(unnamed, sizeof unnamed, "0x%08x", pid);
        return unnamed;
    }
};

// One event into the buffer. False: a field or the signal lies beyond the
// data, and nothing of the event is printed.
bool print_event(out_buffer& out, trace_record& r, uint32_t kind) {
    uint32_t sequence = r.word(4), ticks = r.word(8), steps = r.word(12);
    if (!r.ok) return false;
    name_of a, b;
    auto heading = [&] { out_printf(out, "\n(%u) Ticks: %u   Steps: %u \nEvent: ", sequence, ticks, steps); };
    switch (kind) {
    case trace_send:
    case trace_receive: {
        uint32_t signo = r.word(24), from = r.word(28), to = r.word(32);
        uint32_t offset = r.word(56), size = r.word(60);
        std::span<const uint8_t> signal = r.bytes(72 + uint64_t(offset), size);
        if (!r.ok) return false;
        heading();
        out_printf(out,
                   kind == trace_send ? "Send <%lu>\n From: %s\n   To: %s\n\n"
                                      : "Receive <%lu>\n From: %s\n   To: %s\n\n",
                   (unsigned long)signo, a(from), b(to));
        print_trace_signal(out, signal, signo);
        return true;
    }
    case trace_create:
    case trace_kill: {
        uint32_t pid = r.word(28);
        if (!r.ok) return false;
        heading();
        out_printf(out, kind == trace_create ? "Create process %s\n" : "Kill process %s\n", a(pid));
        return true;
    }
    case trace_dispatch: {
        uint32_t out_pid = r.word(24), in_pid = r.word(28);
        if (!r.ok) return false;
        heading();
        out_printf(out, "Dispatch From: %s To: %s\n", a(out_pid), b(in_pid));
        return true;
    }
    case trace_error: {
        uint32_t pid = r.word(24), kernel = r.word(28), code = r.word(32), extra = r.word(36);
        if (!r.ok) return false;
        heading();
        out_printf(out,
                   kernel == 1 ? "Process %s causing a OSE kernel error %lx with extra data %lx\n"
                               : "Process %s causing an error %lx with extra data %lx\n",
                   a(pid), (unsigned long)code, (unsigned long)extra);
        return true;
    }
    default:  // warm start
        heading();
        out.put("System warm start\n", 18);
        return true;
    }
}

}  // namespace

void print_trace_sect(FILE* stream, std::span<const uint8_t> data) {
    auto out = std::make_unique<out_buffer>(stream);
    size_t pos = 0;
    uint64_t foreign = data.size();
    while (pos < data.size()) {
        byte_cursor c(data, pos);
        uint32_t length = c.u32();
        if (!c.ok() || length > c.remaining()) break;
        trace_record r{data, pos + 4, pos + 4 + size_t(length), &foreign};
        uint32_t kind = r.word(0);
        if (!r.ok) break;
        if (kind == trace_end) return;
        if (kind == trace_name) {
            uint32_t pid = r.word(4);
            if (!r.ok) break;
            std::string name = r.text(32);
            add_pidNameList(run_pid_name_list(), pid, std::move(name));
        } else if (kind >= trace_send && kind <= trace_warm_start) {
            if (!print_event(*out, r, kind)) break;
        } else if (kind != trace_none) {
            out_printf(*out, "Unknown event type %u\n", kind);
        }
        // The next record starts at the next multiple of 4 from the data's start.
        pos = (pos + 4 + size_t(length) + 3) & ~size_t(3);
    }
    free_pidNameList(run_pid_name_list());
}
