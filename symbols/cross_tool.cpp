// The cross tool, started with an argument vector (no shell: file names with
// blanks, quotes or ";" pass as they are) and kept running for its file.
#include "symbols/cross_tool.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

extern char** environ;

namespace {

struct tool_process {
    pid_t pid = -1;
    int to_tool = -1;
    FILE* from_tool = nullptr;
    bool dead = false;  // never started, or gone: every answer is empty
};

struct tool_state {
    bool looked_up = false;
    std::string path;
    std::map<std::string, tool_process> processes;  // by symbol file
    bool exit_hook = false;
};

tool_state& state() {
    static tool_state s;
    return s;
}

constexpr size_t line_limit = 1022;

bool is_executable_file(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && access(path.c_str(), X_OK) == 0;
}

void end_process(tool_process& p) {
    if (p.to_tool >= 0) close(p.to_tool);
    if (p.from_tool) std::fclose(p.from_tool);
    if (p.pid > 0) {
        int status;
        while (waitpid(p.pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
    p = tool_process{};
}

tool_process start_process(const std::string& tool, const std::string& elf_file) {
    tool_process p;
    p.dead = true;
    int in[2], out[2];
    if (pipe2(in, O_CLOEXEC) != 0) return p;
    if (pipe2(out, O_CLOEXEC) != 0) {
        close(in[0]);
        close(in[1]);
        return p;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    std::string e = "-e", f = "-f", c = "-C";
    std::string file = elf_file, name = tool;
    char* argv[] = {name.data(), e.data(), file.data(), f.data(), c.data(), nullptr};
    pid_t pid;
    int rc = posix_spawn(&pid, tool.c_str(), &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    if (rc != 0) {
        close(in[1]);
        close(out[0]);
        return p;
    }
    p.pid = pid;
    p.to_tool = in[1];
    p.from_tool = fdopen(out[0], "r");
    if (!p.from_tool) {
        close(out[0]);
        end_process(p);
        p.dead = true;
        return p;
    }
    p.dead = false;
    return p;
}

// A tool that has gone away must not end us with SIGPIPE.
bool write_all(int fd, const char* text, size_t n) {
    sigset_t pipe_set, old;
    sigemptyset(&pipe_set);
    sigaddset(&pipe_set, SIGPIPE);
    sigprocmask(SIG_BLOCK, &pipe_set, &old);
    bool ok = true;
    while (n > 0) {
        ssize_t w = write(fd, text, n);
        if (w < 0 && errno == EINTR) continue;
        if (w <= 0) {
            ok = false;
            break;
        }
        text += w;
        n -= size_t(w);
    }
    if (!ok && errno == EPIPE) {
        sigset_t pending;
        sigpending(&pending);
        if (sigismember(&pending, SIGPIPE)) {
            int sig;
            sigwait(&pipe_set, &sig);
        }
    }
    sigprocmask(SIG_SETMASK, &old, nullptr);
    return ok;
}

bool read_line(FILE* from, std::string* line) {
    char* buf = nullptr;
    size_t cap = 0;
    ssize_t n = getline(&buf, &cap, from);
    if (n < 0) {
        std::free(buf);
        return false;
    }
    line->assign(buf, size_t(n));
    std::free(buf);
    if (!line->empty() && line->back() == '\n') line->pop_back();
    return true;
}

}  // namespace

std::string cross_tool_search_path(const char* name, const char* path_list) {
    std::string list = path_list ? path_list : "/bin:/usr/bin";
    size_t start = 0;
    for (;;) {
        size_t end = list.find(':', start);
        std::string dir = list.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (dir.empty()) dir = ".";
        std::string candidate = dir + "/" + name;
        if (is_executable_file(candidate)) return candidate;
        if (end == std::string::npos) return {};
        start = end + 1;
    }
}

const std::string& cross_tool_path() {
    tool_state& s = state();
    if (!s.looked_up) {
        s.looked_up = true;
        const char* path_list = std::getenv("PATH");
        if (is_executable_file(CROSS_TOOL_SITE_PATH)) s.path = CROSS_TOOL_SITE_PATH;
        else s.path = cross_tool_search_path(CROSS_TOOL_NAME, path_list);
        if (s.path.empty()) s.path = cross_tool_search_path(CROSS_TOOL_FALLBACK, path_list);
    }
    return s.path;
}

cross_tool_answer cross_tool_cut_answer(const std::string& first, const std::string& second, int lines_read) {
    std::string stream;
    if (lines_read >= 1) stream += first + "\n";
    if (lines_read >= 2) stream += second + "\n";
    std::string chunks[2];
    int got = 0;
    size_t at = 0;
    while (got < 2 && at < stream.size()) {
        size_t nl = stream.find('\n', at);
        size_t len = nl == std::string::npos ? stream.size() - at : nl - at + 1;
        if (len > line_limit) len = line_limit;
        std::string chunk = stream.substr(at, len);
        at += len;
        size_t last = chunk.rfind('\n');
        if (last != std::string::npos) chunk.resize(last);
        chunks[got++] = chunk;
    }
    for (int i = got; i < 2; i++) chunks[i] = "??";
    return {chunks[0], chunks[1]};
}

cross_tool_answer cross_tool_translate(const std::string& elf_file, uint32_t lookup) {
    tool_state& s = state();
    if (!s.exit_hook) {
        s.exit_hook = true;
        std::atexit(cross_tool_close_all);
    }
    auto it = s.processes.find(elf_file);
    if (it == s.processes.end()) it = s.processes.emplace(elf_file, start_process(cross_tool_path(), elf_file)).first;
    tool_process& p = it->second;
    std::string first, second;
    int lines = 0;
    if (!p.dead) {
        char request[16];
        int n = std::snprintf(request, sizeof request, "0x%08x\n", lookup);
        if (write_all(p.to_tool, request, size_t(n))) {
            if (read_line(p.from_tool, &first)) lines++;
            if (lines == 1 && read_line(p.from_tool, &second)) lines++;
        }
        if (lines < 2) p.dead = true;
    }
    return cross_tool_cut_answer(first, second, lines);
}

void cross_tool_close_all() {
    tool_state& s = state();
    for (auto& [file, p] : s.processes) end_process(p);
    s.processes.clear();
    s.looked_up = false;
    s.path.clear();
}
