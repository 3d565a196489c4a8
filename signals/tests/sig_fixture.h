// Test fixtures for the signal tables: member images built by our writer,
// zip archives made from them by the zip tool, and a character sink.
#pragma once

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tools/sigdb_writer.h"

extern char** environ;

// What put_char received.
inline std::string sink;
inline int sink_put(int ch) {
    sink += char(ch);
    return 0;
}

// Runs a program by its argument vector, standard input and output
// optionally from and to files; its exit status.
inline int run_tool(const std::vector<std::string>& args, const std::string& in = "", const std::string& out = "") {
    std::vector<char*> argv;
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!in.empty()) posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
    if (!out.empty()) posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_t pid;
    const int spawned = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) return -1;
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// What a call wrote to the standard error stream.
template <class F>
std::string capture_stderr(F call) {
    std::fflush(stderr);
    const int saved = dup(2);
    FILE* tmp = std::tmpfile();
    dup2(fileno(tmp), 2);
    call();
    std::fflush(stderr);
    dup2(saved, 2);
    close(saved);
    std::rewind(tmp);
    std::string text;
    for (int c; (c = std::fgetc(tmp)) != EOF;) text += char(c);
    std::fclose(tmp);
    return text;
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
        EXPECT_EQ(run_tool(args), 0);
        return (path / zip_name).string();
    }

    // Renames the archive's entry at index to the name of the entry
    // before it, with zipnote: two entries of one name.
    void repeat_name(const std::string& zip, int index) const {
        const std::string notes = (path / "notes").string();
        ASSERT_EQ(run_tool({"zipnote", zip}, "", notes), 0);
        std::ifstream in(notes);
        std::string text, line, previous;
        for (int entry = -1; std::getline(in, line);) {
            text += line + "\n";
            if (line.starts_with("@ ") && line != "@ (comment above this line)" &&
                line != "@ (zip file comment below this line)") {
                if (++entry == index) text += "@=" + previous + "\n";
                previous = line.substr(2);
            }
        }
        in.close();
        std::ofstream(notes) << text;
        ASSERT_EQ(run_tool({"zipnote", "-w", zip}, notes), 0);
    }
};
