// Fuzz input opened as a dump: written to a file of this process's own and
// opened like any dump on the command line.
#pragma once

#include <unistd.h>

#include <string>

#include "pmd/krd_file.h"
#include "tools/pmd_writer.h"

inline std::unique_ptr<krd_file> open_fuzz_dump(const char* stem, const bytes& image) {
    static std::string path;
    path = std::string("/tmp/") + stem + "." + std::to_string(getpid()) + ".pmd";
    if (!pmd_write_file(path, image)) return nullptr;
    uint8_t error = 0;
    return krd_open_file(0, path.c_str(), &error);
}
