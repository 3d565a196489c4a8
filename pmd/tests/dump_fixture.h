// Dumps written to a temporary file and opened for a test.
#pragma once

#include <unistd.h>

#include <string>

#include "pmd/krd_file.h"
#include "tools/pmd_writer.h"

inline std::string temp_path(const char* stem) {
    return std::string("/tmp/krd_test_") + stem + "_" + std::to_string(getpid());
}

struct dump_fixture {
    std::string path;
    std::unique_ptr<krd_file> file;

    explicit dump_fixture(const bytes& image, const char* stem = "dump") : path(temp_path(stem)) {
        pmd_write_file(path, image);
        uint8_t error = 0;
        file = krd_open_file(0, path.c_str(), &error);
    }
    explicit dump_fixture(const pmd_dump& d, const char* stem = "dump") : dump_fixture(pmd_build_dump(d), stem) {}
    ~dump_fixture() { unlink(path.c_str()); }
    krd_file* f() { return file.get(); }
};

inline pmd_section memory_section(const std::string& title, const std::string& text, uint32_t time = 0) {
    pmd_section s;
    s.kind = pmd_kind::memory;
    s.title = title;
    s.payload.assign(text.begin(), text.end());
    s.time_sec = time;
    return s;
}
