// Writes signal symbol files: sigdb tables (a 300-byte header, then five
// pools, each followed by its text) in either byte order, inside member
// files that may hold other bytes around them. The description format that
// mksigdb reads is documented at the top of tools/mksigdb.cpp.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A signal's structure, or one of its members.
struct sigdb_member {
    std::string name;
    uint16_t type = 5;
    uint16_t size = 0;     // element size; of a structure its whole size
    uint16_t offset = 0;
    std::vector<int16_t> dims;
    uint16_t flags = 0;    // 4, 8, 64; the list bits 1 and 2 are the writer's
    std::string format;    // printf format, for types other than enum, struct, union
    std::vector<std::pair<std::string, uint32_t>> values;  // enumeration entries
    std::vector<sigdb_member> members;                    // structure or union
};

struct sigdb_signal {
    std::string name;
    uint32_t signo = 0;
    sigdb_member layout;  // type 13
};

struct sigdb_table_desc {
    std::string name;
    bool big_endian = true;
    uint16_t magic = 2;
    std::vector<sigdb_signal> signals;
};

// A piece of a member file: raw bytes, or a table.
struct sigdb_piece {
    std::vector<uint8_t> bytes;
    bool is_table = false;
    sigdb_table_desc table;
};

struct sigdb_member_file {
    std::string name;
    std::vector<sigdb_piece> pieces;
};

// Where a table's parts landed in the file, for tests that damage them.
struct sigdb_layout {
    size_t header = 0;
    size_t pools[5] = {};  // sigdesc, vardesc, enum, string, index
    size_t sizes[5] = {};
};

std::vector<uint8_t> sigdb_build_file(const sigdb_member_file& file, std::vector<sigdb_layout>* layouts = nullptr);

// Reads a description; false with a message naming the line.
bool sigdb_parse_description(const std::string& text, std::vector<sigdb_member_file>* files, std::string* error);

// Type codes by the description's names.
int sigdb_type_code(const std::string& name);
