// Output collected in a block and written in large pieces: the dumps of big
// sections would otherwise cost a stream call per byte.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstring>

struct out_buffer {
    static constexpr size_t capacity = 1 << 16;
    FILE* stream;
    size_t used = 0;
    char buf[capacity];

    explicit out_buffer(FILE* s) : stream(s) {}
    out_buffer(const out_buffer&) = delete;
    out_buffer& operator=(const out_buffer&) = delete;
    ~out_buffer() { flush(); }

    void flush() {
        if (used) std::fwrite(buf, 1, used, stream);
        used = 0;
    }
    // Room for n more characters, flushing first when needed. n is small.
    char* reserve(size_t n) {
        if (used + n > capacity) flush();
        return buf + used;
    }
    void commit(size_t n) { used += n; }
    void put(char c) {
        if (used == capacity) flush();
        buf[used++] = c;
    }
    void put(const char* s, size_t n) {
        if (n > capacity - used) {
            flush();
            if (n > capacity) {
                std::fwrite(s, 1, n, stream);
                return;
            }
        }
        std::memcpy(buf + used, s, n);
        used += n;
    }
};

// printf into the block buffer.
void out_printf(out_buffer& out, const char* format, ...) __attribute__((format(printf, 2, 3)));
