// Runs a program by its argument vector, never through a shell: for tests
// that compare with a real tool or build their fixtures with one.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

extern char** environ;

// Its exit status (-1 if it did not exit) and its standard output.
struct child_result {
    int status = -1;
    std::string out;
};

// Standard input from the file `in` when given; standard error is dropped.
inline child_result run_program(const std::vector<std::string>& argv, const std::string& in = "") {
    child_result r;
    int pipe_fds[2];
    if (pipe(pipe_fds) != 0) return r;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe_fds[1], 1);
    posix_spawn_file_actions_addclose(&actions, pipe_fds[0]);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    if (!in.empty()) posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
    std::vector<char*> args;
    for (const auto& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid;
    const int spawned = posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipe_fds[1]);
    if (spawned == 0) {
        char buf[4096];
        for (ssize_t n; (n = read(pipe_fds[0], buf, sizeof buf)) > 0;) r.out.append(buf, size_t(n));
        int status = 0;
        waitpid(pid, &status, 0);
        if (WIFEXITED(status)) r.status = WEXITSTATUS(status);
    }
    close(pipe_fds[0]);
    return r;
}
