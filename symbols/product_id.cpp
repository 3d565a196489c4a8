// The product string of a symbol file, found in process. The result is what
// the board's tool chain gets from
//   strings -n 20 FILE | grep '@(#)LQZ' | cut -c 5- | cut -d' ' -f1,2 | tr ' ' '_' | tr -d '\n'
// read up to 29 characters: every printable run of 20 or more characters that
// holds "@(#)LQZ", less its first four characters, cut to its first two words
// joined by "_", all runs back to back.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include "symbols/iberty.h"
#include "symbols/load_module.h"

namespace {

constexpr size_t min_run = 20;
constexpr size_t max_output = 29;
constexpr size_t cut_columns = 4;
// A run's output never needs more of the run than this.
constexpr size_t keep = cut_columns + max_output;
constexpr char marker[] = "@(#)LQZ";
constexpr size_t marker_len = sizeof marker - 1;

struct product_scanner {
    std::string out;
    std::string head;  // the run's first characters
    size_t run_len = 0;
    bool marked = false;
    std::array<char, marker_len> tail{};  // the run's last characters, as a ring

    bool done() const { return out.size() >= max_output; }

    static bool printable(uint8_t c) { return c == '\t' || (c >= 0x20 && c <= 0x7e); }

    void end_run() {
        if (run_len >= min_run && marked) {
            std::string line = head.size() > cut_columns ? head.substr(cut_columns) : std::string();
            size_t first = line.find(' ');
            if (first != std::string::npos) {
                size_t second = line.find(' ', first + 1);
                if (second != std::string::npos) line.resize(second);
                line[first] = '_';
            }
            out += line;
            if (out.size() > max_output) out.resize(max_output);
        }
        head.clear();
        run_len = 0;
        marked = false;
    }

    void add(uint8_t c) {
        if (!printable(c)) {
            if (run_len) end_run();
            return;
        }
        if (head.size() < keep) head.push_back(char(c));
        tail[run_len % marker_len] = char(c);
        run_len++;
        if (!marked && run_len >= marker_len) {
            // The ring's oldest slot is the one the next character goes to.
            bool same = true;
            for (size_t i = 0; i < marker_len && same; i++)
                same = tail[(run_len + i) % marker_len] == marker[i];
            marked = same;
        }
    }

    void feed(std::span<const uint8_t> bytes) {
        for (uint8_t c : bytes) {
            if (done()) return;
            add(c);
        }
    }
};

}  // namespace

std::string lm_product_string(std::span<const uint8_t> bytes) {
    product_scanner s;
    s.feed(bytes);
    if (!s.done()) s.end_run();
    return s.out;
}

std::string lm_product_id(const char* file_name) {
    product_scanner s;
    // Non-blocking: a FIFO given by mistake must not wait for a writer.
    int fd = open(file_name, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd >= 0) {
        static std::array<uint8_t, 1 << 16> chunk;
        ssize_t n;
        while (!s.done() && (n = read(fd, chunk.data(), chunk.size())) > 0)
            s.feed(std::span<const uint8_t>(chunk.data(), size_t(n)));
        close(fd);
        if (!s.done()) s.end_run();
    }
    if (!s.out.empty()) return s.out;
    std::string base = lbasename(file_name);
    size_t dot = base.find('.');
    if (dot != std::string::npos) base.resize(dot);
    return base;
}
