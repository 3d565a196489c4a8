// The process list that the report of the PROCESS LIST section left in
// "Proc_list_temp.txt", read once and searched for process identities.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The file's lines as a reader of at most 511 characters at a time cuts
// them, each up to its first zero byte.
struct proc_list_file {
    std::vector<std::string> lines;
    // Every string of 1 to 8 lower-case hex digits that stands in a line and
    // can be asked for, as (key << 28) | line, sorted; empty when the list is
    // too big for it and lines are searched one by one.
    std::vector<uint64_t> index;
};

bool proc_list_read(const char* path, proc_list_file* file);
void proc_list_build_index(proc_list_file* file);
// The lines that hold text anywhere, in file order.
void proc_list_find(const proc_list_file& file, const char* text, std::vector<uint32_t>* lines);
// A line's first stretch without blanks.
std::string proc_list_first_word(const std::string& line);
