// The cross tool, started with an argument vector (no shell: file names with
// blanks, quotes or ";" pass as they are) and kept running for its file.
#include "symbols/cross_tool.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <map>
#include <unordered_map>

#include "run/krd_run.h"

extern char** environ;

namespace {

struct tool_process {
    pid_t pid = -1;
    int to_tool = -1;
    int from_tool = -1;
    std::string pending;  // read and not yet taken as a line
    bool dead = true;     // not started, or gone
};

struct tool_file {
    tool_process process;
    int fruitless = 0;      // fresh processes in a row that answered nothing
    bool given_up = false;  // a tool that cannot answer is not started for every address
    // Looked up once per translated address: a long Nexus trace asks millions of times.
    std::unordered_map<uint32_t, cross_tool_answer> answers;
};

}  // namespace

// The run's (the_run().cross_tool): the tool's path and one process per
// symbol file, with its answers.
struct cross_tool_state {
    bool looked_up = false;
    std::string path;
    std::map<std::string, tool_file> files;
};

namespace {

cross_tool_state& state() { return the_run().cross_tool.get(); }

constexpr size_t line_limit = 1022;

bool is_executable_file(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && access(path.c_str(), X_OK) == 0;
}

void end_process(tool_process& p) {
    if (p.to_tool >= 0) close(p.to_tool);
    if (p.from_tool >= 0) close(p.from_tool);
    if (p.pid > 0) {
        int status;
        while (waitpid(p.pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
    p = tool_process{};
}

tool_process start_process(const std::string& tool, const std::string& elf_file) {
    tool_process p;
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
    int rc = tool.empty() ? ENOENT : posix_spawn(&pid, tool.c_str(), &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    if (rc != 0) {
        close(in[1]);
        close(out[0]);
        return p;
    }
    // Requests are written while answers are read: the writes must not block.
    fcntl(in[1], F_SETFL, fcntl(in[1], F_GETFL) | O_NONBLOCK);
    p.pid = pid;
    p.to_tool = in[1];
    p.from_tool = out[0];
    p.dead = false;
    return p;
}

// The next complete line of the tool's output, without its newline.
bool take_line(tool_process& p, std::string* line) {
    size_t nl = p.pending.find('\n');
    if (nl == std::string::npos) return false;
    line->assign(p.pending, 0, nl);
    p.pending.erase(0, nl + 1);
    return true;
}

// Writes the requests and reads two lines per address until all are answered
// or the tool goes. Returns how many were answered; a last one may be half
// answered in *half_line.
size_t run_batch(tool_process& p, const std::vector<uint32_t>& lookups, std::vector<cross_tool_answer>* answers,
                 std::string* half_line, bool* half) {
    *half = false;
    if (p.to_tool < 0 || p.from_tool < 0) {
        p.dead = true;
        return 0;
    }
    std::string requests;
    for (uint32_t a : lookups) {
        char text[16];
        int n = std::snprintf(text, sizeof text, "0x%08x\n", a);
        requests.append(text, size_t(n));
    }
    size_t written = 0;
    std::string first;
    bool have_first = false;
    while (answers->size() < lookups.size()) {
        pollfd fds[2] = {{p.from_tool, POLLIN, 0}, {written < requests.size() ? p.to_tool : -1, POLLOUT, 0}};
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR) continue;
            break;
        }
        if (fds[1].revents & (POLLOUT | POLLERR | POLLHUP)) {
            ssize_t w = write(p.to_tool, requests.data() + written, requests.size() - written);
            if (w > 0) written += size_t(w);
            else if (w < 0 && errno != EAGAIN && errno != EINTR) written = requests.size();  // gone: read what came
        }
        if (fds[0].revents & (POLLIN | POLLHUP | POLLERR)) {
            char buf[1 << 14];
            ssize_t r = read(p.from_tool, buf, sizeof buf);
            if (r < 0 && (errno == EINTR || errno == EAGAIN)) continue;
            if (r <= 0) break;
            p.pending.append(buf, size_t(r));
            std::string line;
            while (answers->size() < lookups.size() && take_line(p, &line)) {
                if (!have_first) {
                    first = line;
                    have_first = true;
                } else {
                    answers->push_back(cross_tool_cut_answer(first, line, 2));
                    have_first = false;
                }
            }
        }
    }
    if (answers->size() < lookups.size()) {
        p.dead = true;
        *half = have_first;
        *half_line = first;
    }
    return answers->size();
}

// Asks the tool of one file for addresses it has not answered yet. A tool
// that goes away is started anew for the rest, as a run per address would be.
void ask_file(const std::string& elf_file, tool_file& tf, std::vector<uint32_t> lookups) {
    sigset_t pipe_set, old;
    sigemptyset(&pipe_set);
    sigaddset(&pipe_set, SIGPIPE);
    sigprocmask(SIG_BLOCK, &pipe_set, &old);
    while (!lookups.empty()) {
        bool fresh = false;
        if (tf.process.dead) {
            end_process(tf.process);
            if (!tf.given_up) {
                tf.process = start_process(cross_tool_path(), elf_file);
                fresh = true;
            }
        }
        std::vector<cross_tool_answer> answers;
        std::string half_line;
        bool half = false;
        if (!tf.process.dead) run_batch(tf.process, lookups, &answers, &half_line, &half);
        for (size_t i = 0; i < answers.size(); i++) tf.answers[lookups[i]] = answers[i];
        if (answers.size() == lookups.size()) {
            tf.fruitless = 0;
            break;
        }
        // The address the tool went away on gets what it printed of it.
        tf.answers[lookups[answers.size()]] = cross_tool_cut_answer(half_line, "", half ? 1 : 0);
        if (!answers.empty()) tf.fruitless = 0;
        else if (fresh && ++tf.fruitless == 2) tf.given_up = true;
        lookups.erase(lookups.begin(), lookups.begin() + long(answers.size()) + 1);
        if (tf.given_up)
            for (uint32_t a : lookups) tf.answers[a] = cross_tool_cut_answer("", "", 0);
        if (tf.given_up) break;
    }
    sigset_t pending;
    sigpending(&pending);
    if (sigismember(&pending, SIGPIPE)) {
        int sig;
        sigwait(&pipe_set, &sig);
    }
    sigprocmask(SIG_SETMASK, &old, nullptr);
}

tool_file& file_state(const std::string& elf_file) { return state().files[elf_file]; }

}  // namespace

std::string cross_tool_search_path(const char* name, const char* path_list) {
    std::string list = path_list ? path_list : "/bin:/usr/bin";
    size_t start = 0;
    for (;;) {
        size_t end = list.find(':', start);
        std::string dir = list.substr(start, end == std::string::npos ? std::string::npos : end - start);
        // push_back, not = ".": g++ 12 at -O3 warns falsely about the latter.
        if (dir.empty()) dir.push_back('.');
        std::string candidate = dir + "/" + name;
        if (is_executable_file(candidate)) return candidate;
        if (end == std::string::npos) return {};
        start = end + 1;
    }
}

const std::string& cross_tool_path() {
    cross_tool_state& s = state();
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

const cross_tool_answer& cross_tool_translate(const std::string& elf_file, uint32_t lookup) {
    tool_file& tf = file_state(elf_file);
    auto hit = tf.answers.find(lookup);
    if (hit == tf.answers.end()) {
        ask_file(elf_file, tf, {lookup});
        hit = tf.answers.find(lookup);
    }
    return hit->second;
}

void cross_tool_prefetch(const std::vector<cross_tool_request>& requests) {
    std::map<std::string, std::vector<uint32_t>> by_file;
    for (const cross_tool_request& r : requests) {
        tool_file& tf = file_state(r.elf_file);
        if (!tf.answers.count(r.lookup)) by_file[r.elf_file].push_back(r.lookup);
    }
    for (auto& [file, lookups] : by_file) {
        std::sort(lookups.begin(), lookups.end());
        lookups.erase(std::unique(lookups.begin(), lookups.end()), lookups.end());
        ask_file(file, file_state(file), lookups);
    }
}

void cross_tool_close_all() {
    cross_tool_state& s = state();
    for (auto& [file, tf] : s.files) end_process(tf.process);
    s.files.clear();
    s.looked_up = false;
    s.path.clear();
}
