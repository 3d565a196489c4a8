// The open dump: buffered, position-based access to a PMD file and its tags.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

inline constexpr uint32_t PMD_SECTION_START = 48;
inline constexpr uint32_t KRD_BUFFER_SIZE = 16352;

// Indices into hdr_table; a section's kind is one of them.
enum hdr_index : uint32_t {
    HDR_ARCH = 0,
    HDR_BLHD = 1,
    HDR_BLOC = 2,
    HDR_DATA = 3,
    HDR_DESC = 4,
    HDR_DPID = 5,
    HDR_ERBL = 6,
    HDR_FORM = 7,
    HDR_LIST = 8,
    HDR_LMID = 9,
    HDR_MBL = 10,
    HDR_MHD = 11,
    HDR_VERS = 12,
    HDR_PRBL = 13,
    HDR_PREG = 14,
    HDR_PROG_FORM = 15,
    HDR_PROG_PRHD = 16,
    HDR_RBL = 17,
    HDR_RENT = 18,
    HDR_TXBL = 19,
    HDR_ZDAT = 20,
    HDR_SGBL = 21,
    HDR_NOTFOUND = 23,
};

// 24 slots searched in order; slot 22 is empty and ends the search.
extern const char* const hdr_table[24];

uint64_t krd_next_serial();

struct krd_file {
    uint32_t dump_id = 0;
    uint32_t size = 0;       // outermost length word + 8, trusted as it stands
    uint32_t time_sec = 0;
    uint32_t time_usec = 0;
    uint32_t is_file = 0;
    uint32_t pos = 0;
    std::unique_ptr<uint8_t[]> buffer;  // KRD_BUFFER_SIZE bytes once filled
    uint32_t buf_count = 0;
    uint32_t buf_start = 0;
    std::string name;

    // The file stays open for the life of the handle instead of being
    // reopened at every fill.
    int fd = -1;
    int read_error = 0;      // errno of a read that failed; from then on reads give zeros
    uint64_t real_size = 0;  // bytes the file really holds (for allocation bounds)

    // Where a title searched from the first section was found (or that it
    // was not): the file does not change during a run, and renderers look
    // the same sections up again for every section they print.
    std::unordered_map<std::string, uint32_t> find_memo;

    // Tells this handle from every other of the run, also one that takes
    // its place in memory: what a renderer derives from the dump once is
    // kept against it.
    const uint64_t serial = krd_next_serial();

    ~krd_file();
};

struct krd_header {
    uint32_t total_size;
    uint32_t version;
    uint32_t dump_id;
};

// The resident dump store's entry: 16 bytes on the target.
struct krd_dump_entry {
    uint32_t dump_id;
    uint32_t size;
    uint32_t time_sec;
    uint32_t time_usec;
};

// The reader's hooks below (z_alloc, z_free, krd_get_byte, krd_read_failed)
// are global on purpose: where a host or a test puts its own function,
// before a run. They are no state of the run.

// Allocation hooks of the reader. z_free takes the address of the variable
// holding the block and does not clear it.
using z_alloc_fn = void* (*)(size_t size, uint32_t unused);
using z_free_fn = void (*)(void* block_var);
extern z_alloc_fn z_alloc;
extern z_free_fn z_free;
void* default_z_alloc(size_t size, uint32_t unused);
void free_buf(void* block_var);

// A block from z_alloc, released through z_free.
struct z_deleter {
    void operator()(uint8_t* p) const {
        void* v = p;
        z_free(&v);
    }
};
using z_buffer = std::unique_ptr<uint8_t[], z_deleter>;

// The byte getter used by the payload code: a hook.
using krd_get_byte_fn = uint8_t (*)(krd_file* f);
extern krd_get_byte_fn krd_get_byte;

// A hook called when the dump cannot be read at a fill, with the errno of the read.
// The reader carries on as past the file's end; a host that cannot go on
// without the bytes ends the run here. None by default.
using krd_read_failed_fn = void (*)(krd_file* f, int error);
extern krd_read_failed_fn krd_read_failed;

// Exactly one of dump_id (non-zero) and file_name must be given. error: 0
// success, 1 not a PMD file, 2 cannot be opened, 3 wrong arguments.
std::unique_ptr<krd_file> krd_open_file(uint32_t dump_id, const char* file_name, uint8_t* error);
void krd_close_file(std::unique_ptr<krd_file>* f);
void krd_seek(krd_file* f, uint32_t offset, uint8_t whence);
uint32_t krd_tell(const krd_file* f);
void krd_fill_buffer(krd_file* f);
uint8_t krd_read_byte(krd_file* f);
uint32_t krd_read_word(krd_file* f);
uint32_t krd_read_tag(krd_file* f, uint32_t* length);
std::unique_ptr<krd_header> krd_get_header(krd_file* f);

// Up to n bytes at the current position, straight from the file, for bulk
// readers (inflation). Bytes past the end of the file read as zero. Advances
// the position by n.
void krd_read_bytes(krd_file* f, uint8_t* dst, uint32_t n);

// Bytes the file really holds from offset on (0 past its end).
uint64_t krd_bytes_after(const krd_file* f, uint64_t offset);

uint32_t krd_get_dump_id(uint32_t word);
void* krd_get_dump_info();

// The resident dump store. On a workstation there is none: all four are empty.
uint32_t pmd_get_dump_id(uint32_t word);
void* pmd_get_dump_info(uint32_t dump_id);
uint32_t pmd_read_dump(uint32_t dump_id, uint32_t offset, uint8_t* dst, uint32_t capacity);
void* pmd_get_dumps();
