// Runs a command, or a pipeline of two, with its output to /dev/null, and
// prints the best wall time of N runs in seconds and the largest peak RSS of
// any process in MB.
//   bench_time N CMD ARGS... [--pipe CMD2 ARGS...]
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

static pid_t start(char** argv, int in_fd, int out_fd) {
    pid_t pid = fork();
    if (pid == 0) {
        if (in_fd >= 0) dup2(in_fd, 0);
        dup2(out_fd, 1);
        for (int fd = 3; fd < 64; fd++) close(fd);
        execvp(argv[0], argv);
        _exit(127);
    }
    return pid;
}

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    int runs = std::atoi(argv[1]);
    std::vector<char*> first, second;
    bool piped = false;
    for (int i = 2; i < argc; i++) {
        if (std::strcmp(argv[i], "--pipe") == 0) piped = true;
        else (piped ? second : first).push_back(argv[i]);
    }
    first.push_back(nullptr);
    second.push_back(nullptr);
    double best = 1e30;
    long peak_kb = 0;
    for (int r = 0; r < runs; r++) {
        int null_fd = open("/dev/null", O_WRONLY);
        auto t0 = std::chrono::steady_clock::now();
        std::vector<pid_t> pids;
        if (piped) {
            int p[2];
            if (pipe(p) != 0) return 1;
            pids.push_back(start(first.data(), -1, p[1]));
            close(p[1]);
            pids.push_back(start(second.data(), p[0], null_fd));
            close(p[0]);
        } else {
            pids.push_back(start(first.data(), -1, null_fd));
        }
        for (pid_t pid : pids) {
            int status = 0;
            struct rusage ru {};
            wait4(pid, &status, 0, &ru);
            if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
                std::fprintf(stderr, "bench_time: %s failed\n", first[0]);
                return 1;
            }
            if (ru.ru_maxrss > peak_kb) peak_kb = ru.ru_maxrss;
        }
        double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        if (s < best) best = s;
        close(null_fd);
    }
    std::printf("%.3f %.1f\n", best, double(peak_kb) / 1024.0);
    return 0;
}
