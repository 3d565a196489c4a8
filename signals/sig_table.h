// Signal tables: the description of a load module's signals (numbers,
// names, structure layouts) as it lies in a signal symbol file.
//
// A table is given by the image that holds it and the position of its
// header there. Every position (pools, records, references) is an index
// into that image, never a host pointer, and every read is checked against
// the image and against the pool it belongs to: a table that lies prints
// less, it never makes us read outside the image.
//
// Two families share one set of generic operations, chosen by the table's
// first word: sigdb (the one signal symbol files hold) and confsig.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "signals/signals.h"

// No pool, no record, no reference.
inline constexpr uint32_t SIG_NULL = 0xFFFFFFFF;

struct sig_lookup;

struct sig_table {
    std::span<uint8_t> image;
    uint32_t at = SIG_NULL;  // position of the header
    // What the lookups of a table that no longer changes have worked out
    // before; null: they work it out each time.
    const sig_lookup* lookup = nullptr;
};

// Header fields, common to both families.
inline constexpr uint32_t SYM_MAGIC = 0;
inline constexpr uint32_t SYM_POOLS = 4;       // five positions
inline constexpr uint32_t SYM_SIZES = 24;      // five sizes
inline constexpr uint32_t SYM_TEXT = 44;       // sigdb only
inline constexpr uint32_t SYMDESC_SIZE = 300;  // sigdb header
inline constexpr uint32_t CONFSIG_HEADER_SIZE = 44;
inline constexpr uint32_t SYM_TEXT_SIZE = 256;

enum sig_pool_kind { POOL_SIGDESC, POOL_VARDESC, POOL_ENUM, POOL_STRING, POOL_INDEX, POOL_COUNT };

inline constexpr uint32_t SIGDB_SIGDESC_SIZE = 12;
inline constexpr uint32_t SIGDB_VARDESC_SIZE = 20;
inline constexpr uint32_t CONFSIG_VARDESC_SIZE = 28;
inline constexpr uint32_t SIG_ENUM_SIZE = 8;

inline constexpr uint16_t SIGDB_NO_LINK = 0xFFFF;
inline constexpr uint32_t SIGDB_MAX_TYPE = 18;
inline constexpr uint32_t CONFSIG_MAX_TYPE = 14;

// vardesc flags.
inline constexpr uint16_t VAR_FIRST = 1;
inline constexpr uint16_t VAR_LAST = 2;  // confsig: another member follows
inline constexpr uint16_t VAR_PASS = 4;
inline constexpr uint16_t VAR_HIDDEN = 8;
inline constexpr uint16_t VAR_TEXT = 64;

inline constexpr uint16_t SIG_TYPE_ENUM = 0;
inline constexpr uint16_t SIG_TYPE_STRUCT = 13;
inline constexpr uint16_t SIG_TYPE_UNION = 14;

// The fixed beginning of the text in a sigdb header, and of the text
// behind each pool.
inline constexpr std::string_view SIGDB_MAGIC_TEXT = "This is a sigdesc structure (ose_symbols";

// Host-order access to an image; what lies outside reads as 0 and is not written.
inline bool sig_fits(std::span<const uint8_t> img, uint64_t pos, uint64_t size) {
    return pos <= img.size() && size <= img.size() - pos;
}
inline uint16_t sig_u16(std::span<const uint8_t> img, uint64_t pos) {
    uint16_t v = 0;
    if (sig_fits(img, pos, 2)) std::memcpy(&v, img.data() + pos, 2);
    return v;
}
inline uint32_t sig_u32(std::span<const uint8_t> img, uint64_t pos) {
    uint32_t v = 0;
    if (sig_fits(img, pos, 4)) std::memcpy(&v, img.data() + pos, 4);
    return v;
}
inline void sig_put16(std::span<uint8_t> img, uint64_t pos, uint16_t v) {
    if (sig_fits(img, pos, 2)) std::memcpy(img.data() + pos, &v, 2);
}
inline void sig_put32(std::span<uint8_t> img, uint64_t pos, uint32_t v) {
    if (sig_fits(img, pos, 4)) std::memcpy(img.data() + pos, &v, 4);
}

// A pool of a table: SIG_NULL and 0 unless it lies wholly in the image.
struct sig_pool {
    uint32_t at = SIG_NULL;
    uint32_t size = 0;
    bool present() const { return at != SIG_NULL; }
};
sig_pool sig_pool_of(sig_table table, sig_pool_kind kind);

// A zero-terminated text that starts at pos and ends at the latest at
// limit; a null view when pos lies outside [0, limit) of the image.
std::string_view sig_text_at(std::span<const uint8_t> img, uint64_t pos, uint64_t limit);

// One signal record and one member record, decoded; the fields of both
// families, references widened to positions.
struct sigdesc {
    uint32_t at = SIG_NULL;  // position of the record
    uint32_t name = 0;
    uint32_t signo = 0;
    uint32_t vardesc = 0;    // sigdb: index; confsig: position
};
struct vardesc {
    uint32_t at = SIG_NULL;  // sigdb: index in the pool; confsig: position
    uint32_t name = 0;
    uint32_t size = 0;
    uint32_t offset = 0;
    uint32_t index = 0;      // first dimension: sigdb index, confsig position
    uint32_t link = 0;
    uint32_t type = 0;
    uint32_t flags = 0;
    uint32_t dimensions = 0;
};

// Where the name fields of a table point: sigdb offsets count from its
// string pool; confsig names are references, positions in the image.
struct sig_names {
    std::span<const uint8_t> base;
    bool references = false;
};
// The text a name field stands for; a null view for no text.
std::string_view sig_name_at(const sig_names& names, uint32_t name);
bool sig_name_is_none(const sig_names& names, uint32_t name);

// The printer's context, handed through the walk.
struct SsmPrintContext {
    ssm_putc_fn put_char = nullptr;
    int first = 1;
    char* buffer = nullptr;  // 1024 bytes
    const char* first_separator = nullptr;
    const char* separator = nullptr;
};
inline constexpr size_t SSM_PRINT_BUFFER = 1024;

// One value or run of values found by the walk.
struct sig_value {
    const char* name;             // path, zero-terminated
    const uint8_t* address;       // first element, inside the signal
    uint8_t size;                 // element size
    uint16_t count;               // elements
    std::string_view format;      // from the table, unchecked; null view: none
    uint8_t type;
    std::span<const uint8_t> enum_entries;  // first entry to the pool's end; empty: none
    uint16_t flags;               // bits 4 and 8 only
    int swap;                     // values are in the other byte order
    sig_names strings;            // where the entries' names point
    const uint8_t* end;           // end of the signal: no value is read behind it
    const uint8_t* text_end;      // end of the member's bytes: where a text stops at the latest
};
using sig_callback = void (*)(const sig_value& value, SsmPrintContext* context);

// The path name buffer of each family.
inline constexpr size_t SIG_NAME_SIZE = 256;

// Generic operations; the family is chosen by the table's first word.
bool is_sigdb_table(uint16_t word);
void swap_field(uint8_t* bytes, int size);
int check_endian(sig_table table);
int signo_size(sig_table table);
uint32_t get_sig_no(sig_table table, std::span<const uint8_t> signal);
int list_sig_by_name(const char* pattern, sig_table table, uint32_t* cursor, std::string_view* name,
                     uint32_t* size, uint32_t* var_size, uint32_t* signo);
int list_sig_by_number(uint32_t signo, sig_table table, uint32_t* cursor, std::string_view* name,
                       uint32_t* size, uint32_t* var_size);
uint32_t traverse_sig(sig_table table, uint32_t sigdesc, std::span<const uint8_t> signal, int compress,
                      SsmPrintContext* context, sig_callback callback);
int reformat_table(sig_table table, uint32_t link_address, uint32_t low, uint32_t high);
int reformat_magic_table(sig_table table, uint32_t link_address, uint32_t low, uint32_t high);
int swap_symdesc(sig_table table);
int get_type_name(const vardesc& var, std::string_view* name);

// What the lookups by number find in a sigdb table that has been made
// usable and is only read from then on: the signal number's width, the
// records of each number in pool order, and what a hit reports of a
// record, noted the first time it is asked for (a lying table can make
// that a long search). All of it follows from the table's bytes alone, so
// the lookups give with it exactly what they give by scanning the pool.
struct sig_record_facts {
    bool known = false;
    uint32_t size = 0;           // declared size, as a hit reports it
    uint32_t var_size = 0;       // element size of a last member that is an array
    bool last_is_array = false;  // what traverse_sig decides by
};
struct sig_lookup {
    int signo_size = 0;
    std::vector<std::pair<uint32_t, uint32_t>> by_number;  // (signo, record), sorted
    mutable std::vector<sig_record_facts> records;          // by record index
};
sig_lookup sigdb_lookup_of(sig_table table);

// sigdb family (sigdb_table.cpp, sig_reformat.cpp).
int sigdb_check_endian(sig_table table);
int sigdb_signo_size(sig_table table);
uint32_t sigdb_get_sig_no(sig_table table, std::span<const uint8_t> signal);
int sigdb_list_sig_by_name(const char* pattern, sig_table table, uint32_t* cursor, std::string_view* name,
                           uint32_t* size, uint32_t* var_size, uint32_t* signo);
int sigdb_list_sig_by_number(uint32_t signo, sig_table table, uint32_t* cursor, std::string_view* name,
                             uint32_t* size, uint32_t* var_size);
uint32_t sigdb_traverse_sig(sig_table table, uint32_t sigdesc, std::span<const uint8_t> signal, int compress,
                            SsmPrintContext* context, sig_callback callback);
int sigdb_reformat_table(sig_table table, uint32_t link_address, uint32_t low, uint32_t high);
int sigdb_reformat_magic_table(sig_table table, uint32_t link_address, uint32_t low, uint32_t high);
int sigdb_swap_symdesc(sig_table table);
bool sigdb_match_name(std::string_view candidate, const char* pattern);
bool sigdb_vardesc_at(sig_table table, uint32_t index, vardesc* out);
bool sigdb_find_last_member(sig_table table, uint32_t first, vardesc* last);

// confsig family (confsig_table.cpp).
int confsig_check_endian(sig_table table);
int confsig_signo_size(sig_table table);
uint32_t confsig_get_sig_no(sig_table table, std::span<const uint8_t> signal);
int confsig_list_sig_by_name(const char* pattern, sig_table table, uint32_t* cursor, std::string_view* name,
                             uint32_t* size, uint32_t* var_size, uint32_t* signo);
int confsig_list_sig_by_number(uint32_t signo, sig_table table, uint32_t* cursor, std::string_view* name,
                               uint32_t* size, uint32_t* var_size);
uint32_t confsig_traverse_sig(sig_table table, uint32_t sigdesc, std::span<const uint8_t> signal, int compress,
                              SsmPrintContext* context, sig_callback callback);
int confsig_reformat_table(sig_table table, uint32_t link_address, uint32_t low, uint32_t high);
int confsig_swap_symdesc(sig_table table);
bool confsig_match_name(std::string_view candidate, const char* pattern);

// Range tests of the reformatting (sig_reformat.cpp): a pool of size bytes
// at position, a single position; confsig lets a null position pass.
bool sigdb_check_range(uint32_t position, uint32_t size, uint32_t low, uint32_t high);
bool confsig_check_range(uint32_t position, uint32_t size, uint32_t low, uint32_t high);
bool sigdb_in_range(uint32_t position, uint32_t low, uint32_t high);
bool confsig_in_range(uint32_t position, uint32_t low, uint32_t high);
// The first place of pattern in [low, high), the last byte not reached:
// 0 and its position, 1 when it cannot fit, 2 without a hit.
int sigdb_find_bytes(std::span<const uint8_t> img, std::string_view pattern, uint32_t low, uint32_t high,
                     uint32_t* found);

// Shared by both families' get_sig_no: width bytes from the signal's start,
// in the table's byte order.
uint32_t sig_read_signo(std::span<const uint8_t> signal, int width, int endian);
