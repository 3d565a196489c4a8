// What the walkers of both families share: the state of one walk over a
// signal buffer, the path name buffer, and the limits that keep a lying
// table (cycles through links, absurd nesting) from running away.
#pragma once

#include <algorithm>
#include <cstdio>

#include "signals/sig_table.h"

// Records visited per signal. A real signal needs about one visit per value
// printed and a few per structure: far fewer than this, which still bounds
// what a lying table can make us print.
inline constexpr uint32_t SIG_WALK_BUDGET = 1u << 20;
inline uint32_t sig_walk_budget(uint32_t signal_size) {
    return uint32_t(std::min<uint64_t>(SIG_WALK_BUDGET, 65536 + 16 * uint64_t(signal_size)));
}
// Structures and array levels inside each other.
inline constexpr int SIG_WALK_DEPTH = 64;

struct sig_walk {
    sig_table table;
    char* name;  // SIG_NAME_SIZE bytes
    int compress;
    int swap;
    SsmPrintContext* context;
    sig_callback callback;
    const uint8_t* end;  // the signal's end
    sig_names strings;
    uint32_t budget = SIG_WALK_BUDGET;
    int depth = 0;

    // One more record visited; false when the walk must stop.
    bool visit() {
        if (budget == 0) return false;
        budget--;
        return true;
    }
    // One level deeper; false (and the walk stopped) beyond the limit.
    bool enter() {
        if (depth >= SIG_WALK_DEPTH) budget = 0;
        if (budget == 0) return false;
        depth++;
        return true;
    }
    void leave() { depth--; }
};

// Writes text at pos with its terminator and returns the position behind
// it. A path that would not fit is cut.
inline uint32_t sig_name_put(char* name, uint32_t pos, std::string_view text) {
    pos = std::min<uint32_t>(pos, SIG_NAME_SIZE - 1);
    size_t n = std::min<size_t>(text.size(), SIG_NAME_SIZE - 1 - pos);
    std::copy_n(text.data(), n, name + pos);
    name[pos + n] = '\0';
    return uint32_t(pos + n);
}

inline uint32_t sig_name_index(char* name, uint32_t pos, const char* format, long long i) {
    char text[32];
    int n = std::snprintf(text, sizeof text, format, i);
    return sig_name_put(name, pos, std::string_view(text, size_t(std::max(n, 0))));
}

inline void sig_name_clear(char* name, uint32_t pos) {
    name[std::min<uint32_t>(pos, SIG_NAME_SIZE - 1)] = '\0';
}

// An array's step: the element size times the dimensions behind a level,
// kept below 2^40 (no signal is that long). 0 when a dimension is not
// positive: such an array has nothing to walk. dims holds count entries,
// at most SIG_WALK_DEPTH.
inline int64_t sig_array_step(uint32_t element_size, const int16_t* dims, uint32_t count, uint32_t level) {
    int64_t step = element_size;
    for (uint32_t k = level + 1; k < count; k++) {
        if (dims[k] <= 0) return 0;
        step = std::min<int64_t>(step * dims[k], int64_t(1) << 40);
    }
    return step;
}

// The last steps of a traversal, alike in both families: a signal no longer
// than declared is walked as it is; a longer one either gives its last
// array all its bytes, or has its surplus returned as excess bytes.
// walk(size, variable) walks the signal's structure.
template <class Walk>
uint32_t sig_traverse_top(uint32_t size, uint32_t declared, bool last_is_array, Walk walk) {
    if (declared >= size) {
        walk(size, 0);
        return 0;
    }
    if (!last_is_array) {
        walk(declared, 0);
        return size - declared;
    }
    walk(size, 1);
    return 0;
}
