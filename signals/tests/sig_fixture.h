// Test fixtures for the signal tables: member images built by our writer,
// zip archives made from them by the zip tool, and a character sink.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/run_program.h"
#include "tools/sigdb_writer.h"

// What put_char received.
inline std::string sink;
inline int sink_put(int ch) {
    sink += char(ch);
    return 0;
}

inline std::vector<sigdb_member_file> describe(const std::string& description) {
    std::vector<sigdb_member_file> files;
    std::string error;
    EXPECT_TRUE(sigdb_parse_description(description, &files, &error)) << error;
    return files;
}

// The image of the one member a description holds.
inline std::vector<uint8_t> member_image(const std::string& description, std::vector<sigdb_layout>* layouts = nullptr) {
    auto files = describe(description);
    EXPECT_EQ(files.size(), 1u);
    return files.empty() ? std::vector<uint8_t>() : sigdb_build_file(files[0], layouts);
}

// A fresh folder for one test, removed afterwards.
struct scratch_dir {
    std::filesystem::path path;
    scratch_dir() {
        char name[] = "/tmp/krd_sig_XXXXXX";
        path = mkdtemp(name);
    }
    ~scratch_dir() { std::filesystem::remove_all(path); }
    std::string operator/(const std::string& name) const { return (path / name).string(); }

    void write(const std::string& name, const std::vector<uint8_t>& bytes) const {
        std::ofstream out(path / name, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    }

    // A zip archive of the members of a description, in their order.
    // extra are further zip options (e.g. "-0" to store).
    std::string archive(const std::string& zip_name, const std::string& description,
                        const std::vector<std::string>& extra = {}) const {
        const std::filesystem::path members = path / (zip_name + ".members");
        std::filesystem::create_directories(members);
        std::vector<std::string> args = {"zip", "-q", "-j", "-X"};
        args.insert(args.end(), extra.begin(), extra.end());
        args.push_back((path / zip_name).string());
        for (const auto& f : describe(description)) {
            const std::vector<uint8_t> bytes = sigdb_build_file(f);
            std::ofstream out(members / f.name, std::ios::binary);
            out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
            out.close();
            args.push_back((members / f.name).string());
        }
        EXPECT_EQ(run_program(args).status, 0);
        return (path / zip_name).string();
    }

    // Renames the archive's entry at index to the name of the entry
    // before it, with zipnote: two entries of one name.
    void repeat_name(const std::string& zip, int index) const {
        const child_result listed = run_program({"zipnote", zip});
        ASSERT_EQ(listed.status, 0);
        std::istringstream in(listed.out);
        std::string text, line, previous;
        for (int entry = -1; std::getline(in, line);) {
            text += line + "\n";
            if (line.starts_with("@ ") && line != "@ (comment above this line)" &&
                line != "@ (zip file comment below this line)") {
                if (++entry == index) text += "@=" + previous + "\n";
                previous = line.substr(2);
            }
        }
        const std::string notes = (path / "notes").string();
        std::ofstream(notes) << text;
        ASSERT_EQ(run_program({"zipnote", "-w", zip}, notes).status, 0);
    }
};
