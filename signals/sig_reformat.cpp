// Making a table usable, in place: numbers into host order, pool positions
// found or relocated, every pool tested against the bounds of the image.
// The magic word is never converted, so that check_endian still tells the
// table's own byte order afterwards; that is also the byte order of the
// signals it describes.
//
// Bounds low and high are the positions of the first and the last usable
// byte; they are always kept inside the image.
#include <algorithm>
#include <cstring>
#include <string>

#include "signals/sig_table.h"

static void swap16_at(std::span<uint8_t> img, uint64_t pos) {
    if (sig_fits(img, pos, 2)) swap_field(img.data() + pos, 2);
}
static void swap32_at(std::span<uint8_t> img, uint64_t pos) {
    if (sig_fits(img, pos, 4)) swap_field(img.data() + pos, 4);
}

bool sigdb_check_range(uint32_t position, uint32_t size, uint32_t low, uint32_t high) {
    return position != SIG_NULL && position >= low && int64_t(position) + size - 1 <= int64_t(high);
}
bool confsig_check_range(uint32_t position, uint32_t size, uint32_t low, uint32_t high) {
    return position == SIG_NULL || sigdb_check_range(position, size, low, high);
}
bool sigdb_in_range(uint32_t position, uint32_t low, uint32_t high) { return position >= low && position <= high; }
bool confsig_in_range(uint32_t position, uint32_t low, uint32_t high) { return sigdb_in_range(position, low, high); }

// Bounds inside the image; a null bound stands for the image's end on its
// side. False when nothing is left.
static bool sig_bounds(std::span<const uint8_t> img, uint32_t* low, uint32_t* high) {
    if (img.empty()) return false;
    const uint32_t last = uint32_t(img.size() - 1);
    if (*low == SIG_NULL) *low = 0;
    if (*high == SIG_NULL || *high > last) *high = last;
    return *low <= *high;
}

// The first place at or behind low where pattern starts and ends before
// high: 1 when it cannot fit, 2 without a hit.
int sigdb_find_bytes(std::span<const uint8_t> img, std::string_view pattern, uint32_t low, uint32_t high,
                     uint32_t* found) {
    if (low > high || pattern.size() > uint64_t(high - low)) return 1;
    const void* hit = memmem(img.data() + low, high - low, pattern.data(), pattern.size());
    if (!hit) return 2;
    *found = uint32_t(static_cast<const uint8_t*>(hit) - img.data());
    return 0;
}

// The text behind each pool: its fixed part, the table's name, ")". The
// searches sigdb_find_sigdesc_tab, sigdb_find_vardesc_tab,
// sigdb_find_enum_pool, sigdb_find_string_pool and sigdb_find_index_pool
// are sigdb_find_pool with these texts.
static const char* const pool_texts[POOL_COUNT] = {
    "This is a sigdesc structure (ose_sigdesc_tab", "This is a sigdesc structure (ose_vardesc_tab",
    "This is a sigdesc structure (ose_enum_pool", "This is a sigdesc structure (ose_string_pool",
    "This is a sigdesc structure (ose_index_pool",
};

static int sigdb_find_pool(sig_pool_kind kind, std::span<const uint8_t> img, std::string_view name,
                           uint32_t low, uint32_t high, uint32_t* found) {
    std::string text = pool_texts[kind];
    text.append(name.substr(0, 128));
    text.push_back(')');
    return sigdb_find_bytes(img, text, low, high, found);
}

static uint64_t pool_word(sig_table t, int kind) { return uint64_t(t.at) + SYM_POOLS + 4 * kind; }
static uint64_t size_word(sig_table t, int kind) { return uint64_t(t.at) + SYM_SIZES + 4 * kind; }

// ---- The four sigdb pools; the string pool needs nothing ----

static int sigdb_reformat_sigdesc(sig_table t, bool swap) {
    const sig_pool pool = sig_pool_of(t, POOL_SIGDESC);
    if (pool.size % SIGDB_SIGDESC_SIZE != 0) return 6;
    if (swap)
        for (uint64_t p = pool.at; p < uint64_t(pool.at) + pool.size; p += 4) swap32_at(t.image, p);
    return 0;
}

static int sigdb_reformat_vardesc(sig_table t, bool swap) {
    const sig_pool pool = sig_pool_of(t, POOL_VARDESC);
    if (pool.size % SIGDB_VARDESC_SIZE != 0) return 7;
    if (!swap) return 0;
    const uint64_t end = uint64_t(pool.at) + pool.size;
    for (uint64_t r = pool.at; r < end; r += SIGDB_VARDESC_SIZE) {
        swap32_at(t.image, r);
        for (uint64_t f = 4; f <= 16; f += 2) swap16_at(t.image, r + f);
        // The pool's end mark may carry anything.
        if (sig_u16(t.image, r + 12) > SIGDB_MAX_TYPE && r + SIGDB_VARDESC_SIZE < end) return 7;
    }
    return 0;
}

static int sigdb_reformat_enums(sig_table t, bool swap) {
    const sig_pool pool = sig_pool_of(t, POOL_ENUM);
    if (pool.size % SIG_ENUM_SIZE != 0) return 8;
    if (swap)
        for (uint64_t p = pool.at; p < uint64_t(pool.at) + pool.size; p += 4) swap32_at(t.image, p);
    return 0;
}

static int sigdb_reformat_indexes(sig_table t, bool swap) {
    const sig_pool pool = sig_pool_of(t, POOL_INDEX);
    if (pool.size % 2 != 0) return 9;
    if (swap)
        for (uint64_t p = pool.at; p < uint64_t(pool.at) + pool.size; p += 2) swap16_at(t.image, p);
    return 0;
}

static int sigdb_reformat_pools(sig_table t, bool swap) {
    if (int s = sigdb_reformat_sigdesc(t, swap)) return s;
    if (int s = sigdb_reformat_vardesc(t, swap)) return s;
    if (int s = sigdb_reformat_enums(t, swap)) return s;
    return sigdb_reformat_indexes(t, swap);
}

static int sigdb_test_pools(sig_table t, uint32_t low, uint32_t high) {
    for (int k = 0; k < POOL_COUNT; k++)
        if (!sigdb_check_range(sig_u32(t.image, pool_word(t, k)), sig_u32(t.image, size_word(t, k)), low, high))
            return 5;
    return 0;
}

int sigdb_reformat_magic_table(sig_table t, uint32_t, uint32_t low, uint32_t high) {
    if (low == SIG_NULL && high == SIG_NULL) return 1;
    if (!sig_bounds(t.image, &low, &high)) return 1;
    // A header found too near the image's start lies partly before it.
    if (!sigdb_check_range(t.at, 2, low, high)) return 3;
    const int endian = sigdb_check_endian(t);
    if (endian == 3) return 2;
    if (!sigdb_check_range(t.at, SYMDESC_SIZE, low, high)) return 3;
    const char* text = reinterpret_cast<const char*>(t.image.data() + t.at + SYM_TEXT);
    if (std::memcmp(text, SIGDB_MAGIC_TEXT.data(), SIGDB_MAGIC_TEXT.size()) != 0) return 3;

    // The name lies between the fixed text and the closing bracket.
    const size_t text_len = strnlen(text, SYM_TEXT_SIZE);
    if (text_len < SIGDB_MAGIC_TEXT.size() + 1) return 9;
    const size_t name_len = text_len - SIGDB_MAGIC_TEXT.size() - 1;
    if (name_len > 127) return 9;
    const std::string name(text + SIGDB_MAGIC_TEXT.size(), name_len);

    const bool swap = endian == 1;
    if (swap) {
        swap16_at(t.image, uint64_t(t.at) + 2);
        for (int k = 0; k < POOL_COUNT; k++) swap32_at(t.image, size_word(t, k));
    }
    // Each pool ends where its text begins. A pool that is empty or whose
    // text is missing has no position, and fails the test below.
    int last_search = 0;
    for (int k = 0; k < POOL_COUNT; k++) {
        const uint32_t size = sig_u32(t.image, size_word(t, k));
        uint32_t position = SIG_NULL, hit = 0;
        if (size != 0) {
            last_search = sigdb_find_pool(sig_pool_kind(k), t.image, name, low, high, &hit);
            if (last_search == 0 && hit >= size) position = hit - size;
        }
        sig_put32(t.image, pool_word(t, k), position);
    }
    if (sigdb_test_pools(t, low, high) != 0 || last_search != 0) return 5;
    return sigdb_reformat_pools(t, swap);
}

int sigdb_reformat_table(sig_table t, uint32_t link_address, uint32_t low, uint32_t high) {
    if (!sig_bounds(t.image, &low, &high)) return 3;
    const int endian = sigdb_check_endian(t);
    if (endian == 3) return 2;
    if (!sigdb_check_range(t.at, SYMDESC_SIZE, low, high)) return 3;
    const bool swap = endian == 1;
    if (swap) swap16_at(t.image, uint64_t(t.at) + 2);
    const uint32_t delta = t.at - link_address;
    bool failed = false;
    for (int k = 0; k < POOL_COUNT; k++) {
        // sigdb_relocate_position
        uint32_t w = sig_u32(t.image, pool_word(t, k));
        if (swap) w = __builtin_bswap32(w);
        if (w != 0) {
            w += delta;
            if (!sigdb_in_range(w, low, high)) failed = true;
        } else {
            w = SIG_NULL;
        }
        sig_put32(t.image, pool_word(t, k), w);
    }
    if (swap)
        for (int k = 0; k < POOL_COUNT; k++) swap32_at(t.image, size_word(t, k));
    if (failed) return 4;
    if (sigdb_test_pools(t, low, high) != 0) return 5;
    return sigdb_reformat_pools(t, swap);
}

// The header alone into host order, the magic word excepted.
static int sig_swap_header(sig_table t, int endian) {
    if (endian == 3 || !sig_fits(t.image, t.at, CONFSIG_HEADER_SIZE)) return 2;
    if (endian == 1) {
        swap16_at(t.image, uint64_t(t.at) + 2);
        for (uint64_t p = 4; p <= 40; p += 4) swap32_at(t.image, uint64_t(t.at) + p);
    }
    return 0;
}

int sigdb_swap_symdesc(sig_table t) { return sig_swap_header(t, sigdb_check_endian(t)); }

// ---- confsig: every reference is an address to relocate ----

// confsig_relocate_reference: a null reference stays null.
static bool confsig_relocate_reference(sig_table t, uint64_t pos, bool swap, uint32_t delta, uint32_t low,
                                       uint32_t high) {
    uint32_t w = sig_u32(t.image, pos);
    if (swap) w = __builtin_bswap32(w);
    if (w == 0) {
        sig_put32(t.image, pos, SIG_NULL);
        return true;
    }
    w += delta;
    sig_put32(t.image, pos, w);
    return confsig_in_range(w, low, high);
}

int confsig_reformat_table(sig_table t, uint32_t link_address, uint32_t low, uint32_t high) {
    if (!sig_bounds(t.image, &low, &high)) return 3;
    const int endian = confsig_check_endian(t);
    if (endian == 3) return 2;
    if (!sigdb_check_range(t.at, CONFSIG_HEADER_SIZE, low, high)) return 3;
    const bool swap = endian == 1;
    if (swap) swap16_at(t.image, uint64_t(t.at) + 2);
    const uint32_t delta = t.at - link_address;
    bool failed = false;
    for (int k = 0; k < POOL_COUNT; k++)
        if (!confsig_relocate_reference(t, pool_word(t, k), swap, delta, low, high)) failed = true;
    if (swap)
        for (int k = 0; k < POOL_COUNT; k++) swap32_at(t.image, size_word(t, k));
    if (failed) return 4;
    for (int k = 0; k < POOL_COUNT; k++)
        if (!confsig_check_range(sig_u32(t.image, pool_word(t, k)), sig_u32(t.image, size_word(t, k)), low, high))
            return 5;

    auto relocate = [&](uint64_t pos) { return confsig_relocate_reference(t, pos, swap, delta, low, high); };
    // A null pool has nothing to convert.
    auto records = [&](int kind, uint32_t record_size, auto&& convert) {
        const uint32_t at = sig_u32(t.image, pool_word(t, kind));
        const uint32_t size = sig_u32(t.image, size_word(t, kind));
        if (size % record_size != 0) return 6;
        if (at == SIG_NULL) return 0;
        for (uint64_t r = at; r + record_size <= uint64_t(at) + size; r += record_size)
            if (int s = convert(r)) return s;
        return 0;
    };
    int s = records(POOL_SIGDESC, SIGDB_SIGDESC_SIZE, [&](uint64_t r) {
        if (swap) swap32_at(t.image, r + 4);
        return relocate(r) && relocate(r + 8) ? 0 : 7;
    });
    if (s == 0)
        s = records(POOL_VARDESC, CONFSIG_VARDESC_SIZE, [&](uint64_t r) {
            if (swap) {
                swap16_at(t.image, r);
                swap16_at(t.image, r + 8);
                swap16_at(t.image, r + 10);
            }
            for (uint64_t f : {4, 12, 16, 20, 24})
                if (!relocate(r + f)) return 7;
            return t.image[r + 2] > CONFSIG_MAX_TYPE ? 8 : 0;
        });
    // An entry is its value, then a reference to its name.
    if (s == 0)
        s = records(POOL_ENUM, SIG_ENUM_SIZE, [&](uint64_t r) {
            if (swap) swap32_at(t.image, r);
            return relocate(r + 4) ? 0 : 7;
        });
    if (s == 0)
        s = records(POOL_INDEX, 2, [&](uint64_t r) {
            if (swap) swap16_at(t.image, r);
            return 0;
        });
    return s;
}

int confsig_swap_symdesc(sig_table t) { return sig_swap_header(t, confsig_check_endian(t)); }
