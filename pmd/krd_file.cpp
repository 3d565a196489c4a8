#include "pmd/krd_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "support/byte_cursor.h"

const char* const hdr_table[24] = {
    "ARCH",     "BLHD",     "BLOC",     "DATA",     "DESC",     "DPID",
    "ERBLERIN", "FORM",     "LIST",     "LMID",     "MBL DESC", "MHD ",
    "PMD VERS", "PRBLLIST", "PREG",     "PROGFORM", "PROGPRHD", "RBL DESC",
    "RENT",     "TXBLDESC", "ZDATZDEF", "SGBLSGHD", nullptr,    "NOTFOUND",
};

void* default_z_alloc(size_t size, uint32_t) { return std::malloc(size ? size : 1); }

void free_buf(void* block_var) {
    void** var = static_cast<void**>(block_var);
    if (var) std::free(*var);
}

z_alloc_fn z_alloc = default_z_alloc;
z_free_fn z_free = free_buf;
krd_get_byte_fn krd_get_byte = krd_read_byte;
krd_read_failed_fn krd_read_failed = nullptr;

uint64_t krd_next_serial() {
    static uint64_t last = 0;
    return ++last;
}

krd_file::~krd_file() {
    if (fd >= 0) ::close(fd);
}

// pread until n bytes or the end of the file; -1 on a read error.
static ssize_t read_at(int fd, uint8_t* dst, size_t n, uint64_t off) {
    size_t got = 0;
    while (got < n) {
        ssize_t r = ::pread(fd, dst + got, n - got, off_t(off + got));
        if (r < 0) {
            if (errno == EINTR) continue;
            return -1;
        }
        if (r == 0) break;
        got += size_t(r);
    }
    return ssize_t(got);
}

std::unique_ptr<krd_file> krd_open_file(uint32_t dump_id, const char* file_name, uint8_t* error) {
    *error = 0;
    if ((dump_id == 0) == (file_name == nullptr)) {
        *error = 3;
        return nullptr;
    }
    auto f = std::make_unique<krd_file>();
    if (dump_id != 0) {
        void* info = pmd_get_dump_info(dump_id);
        if (!info) {
            *error = 2;
            return nullptr;
        }
        // The store's record is four host words.
        const uint32_t* w = static_cast<const uint32_t*>(info);
        f->dump_id = w[0];
        f->size = w[1];
        f->time_sec = w[2];
        f->time_usec = w[3];
        f->is_file = 0;
        f->real_size = f->size;
        free_buf(&info);
        return f;
    }

    int fd = ::open(file_name, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        *error = 2;
        return nullptr;
    }
    f->fd = fd;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
        *error = 2;
        return nullptr;
    }
    f->real_size = uint64_t(st.st_size);

    uint8_t head[100] = {};
    ssize_t got = read_at(fd, head, sizeof head, 0);
    if (got < 59 || head[56] != 'B' || head[57] != 'L' || head[58] != 'O') {
        *error = 1;
        return nullptr;
    }
    // Words the short read did not deliver read as 0.
    std::span<const uint8_t> read(head, size_t(got));
    f->dump_id = be32_at(read, 32);
    f->size = be32_at(read, 4) + 8;
    f->time_sec = be32_at(read, 76);
    f->time_usec = be32_at(read, 80);
    f->is_file = 1;
    f->name = file_name;
    return f;
}

void krd_close_file(std::unique_ptr<krd_file>* f) {
    if (f) f->reset();
}

void krd_seek(krd_file* f, uint32_t offset, uint8_t whence) {
    switch (whence) {
    case 0: f->pos = offset; break;
    case 1: f->pos += offset; break;
    case 2: f->pos = f->size - offset; break;
    default: break;
    }
}

uint32_t krd_tell(const krd_file* f) { return f->pos; }

uint64_t krd_bytes_after(const krd_file* f, uint64_t offset) {
    return offset < f->real_size ? f->real_size - offset : 0;
}

static void read_failed(krd_file* f, int error) {
    f->read_error = error ? error : EIO;
    if (krd_read_failed) krd_read_failed(f, f->read_error);
}

void krd_fill_buffer(krd_file* f) {
    if (!f->buffer) f->buffer = std::make_unique<uint8_t[]>(KRD_BUFFER_SIZE);
    f->buf_start = f->pos;
    if (f->is_file) {
        ssize_t got = f->read_error ? 0 : read_at(f->fd, f->buffer.get(), KRD_BUFFER_SIZE, f->pos);
        if (got < 0) {
            read_failed(f, errno);
            got = 0;
        }
        f->buf_count = uint32_t(got);
    } else {
        f->buf_count = pmd_read_dump(f->dump_id, f->pos, f->buffer.get(), KRD_BUFFER_SIZE);
        if (f->buf_count > KRD_BUFFER_SIZE) f->buf_count = KRD_BUFFER_SIZE;
    }
}

uint8_t krd_read_byte(krd_file* f) {
    if (!f->buffer || f->pos - f->buf_start >= f->buf_count) {
        // Past the end of the file there is nothing to fill from: read zeros
        // without asking the file again for every byte.
        if (f->pos >= f->real_size || f->read_error) {
            f->pos++;
            return 0;
        }
        krd_fill_buffer(f);
        if (f->buf_count == 0) {
            f->pos++;
            return 0;
        }
    }
    uint8_t b = f->buffer[f->pos - f->buf_start];
    f->pos++;
    return b;
}

uint32_t krd_read_word(krd_file* f) {
    uint32_t v = 0;
    for (int i = 0; i < 4; i++) v = v << 8 | krd_read_byte(f);
    return v;
}

void krd_read_bytes(krd_file* f, uint8_t* dst, uint32_t n) {
    if (n == 0) return;
    // Serve what the buffer holds, then go to the file directly.
    uint32_t done = 0;
    if (f->buffer && f->pos - f->buf_start < f->buf_count) {
        uint32_t avail = f->buf_count - (f->pos - f->buf_start);
        uint32_t take = avail < n ? avail : n;
        std::memcpy(dst, f->buffer.get() + (f->pos - f->buf_start), take);
        done = take;
        f->pos += take;
    }
    if (done == n) return;
    uint32_t rest = n - done;
    ssize_t got = 0;
    if (f->pos < f->real_size && !f->read_error) {
        if (f->is_file) {
            got = read_at(f->fd, dst + done, rest, f->pos);
            if (got < 0) {
                read_failed(f, errno);
                got = 0;
            }
        } else {
            while (uint32_t(got) < rest) {
                uint32_t want = rest - uint32_t(got);
                if (want > KRD_BUFFER_SIZE) want = KRD_BUFFER_SIZE;
                uint32_t r = pmd_read_dump(f->dump_id, f->pos + uint32_t(got), dst + done + got, want);
                if (r == 0 || r > want) break;
                got += r;
            }
        }
    }
    if (uint32_t(got) < rest) std::memset(dst + done + got, 0, rest - uint32_t(got));
    f->pos += rest;
}

uint32_t krd_read_tag(krd_file* f, uint32_t* length) {
    const uint32_t start = f->pos;
    uint32_t slot = 0;
    size_t ch = 0;
    while (hdr_table[slot] && hdr_table[slot][ch] != '\0') {
        if (krd_read_byte(f) == uint8_t(hdr_table[slot][ch])) {
            ch++;
        } else {
            slot++;
            krd_seek(f, start, 0);
            ch = 0;
        }
    }
    if (!hdr_table[slot]) return slot + 1;
    if (slot == HDR_BLOC) *length = 0;
    else *length = krd_read_word(f);
    return slot;
}

std::unique_ptr<krd_header> krd_get_header(krd_file* f) {
    auto h = std::make_unique<krd_header>();
    uint32_t len = 0;
    if (krd_read_tag(f, &len) != HDR_FORM) return nullptr;
    h->total_size = len + 8;
    if (krd_read_tag(f, &len) != HDR_VERS) return nullptr;
    h->version = krd_read_word(f);
    if (krd_read_tag(f, &len) != HDR_DPID) return nullptr;
    h->dump_id = krd_read_word(f);
    return h;
}

uint32_t krd_get_dump_id(uint32_t word) { return pmd_get_dump_id(word); }

void* krd_get_dump_info() {
    void* dumps = pmd_get_dumps();
    if (!dumps) return nullptr;
    uint32_t count = 0;
    std::memcpy(&count, dumps, 4);
    void* out = std::calloc(size_t(count) * 40 + 44, 1);
    if (out) {
        auto* o = static_cast<uint8_t*>(out);
        std::memcpy(o, &count, 4);
        const auto* in = static_cast<const uint8_t*>(dumps) + 4;
        for (uint32_t i = 0; i < count; i++) std::memcpy(o + 4 + size_t(i) * 40, in + size_t(i) * 16, 16);
    }
    free_buf(&dumps);
    return out;
}
