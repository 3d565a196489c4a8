// The binary kernel trace: the pid name list that its name records fill, and
// the printer of a signal inside a trace.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>

#include "support/out_buffer.h"

// Names of processes as the trace's name records give them. A later name for
// a pid hides an earlier one, so only the newest is kept.
struct pid_name_list {
    std::unordered_map<uint32_t, std::string> newest;
};

// The run's list (the_run().pidNameList): it outlives a trace that ends
// with an end-of-trace record.
pid_name_list& run_pid_name_list();

void add_pidNameList(pid_name_list& list, uint32_t pid, std::string name);
// The newest name of the pid, or null.
const char* find_pidName(const pid_name_list& list, uint32_t pid);
void free_pidNameList(pid_name_list& list);

void print_trace_signal(out_buffer& out, std::span<const uint8_t> data, uint32_t signo);
