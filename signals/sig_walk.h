// What the walkers of both families share: the state of one walk over a
// signal buffer, the path name buffer, and the limits that keep a lying
// table (cycles through links, absurd nesting) from running away.
#pragma once

#include <algorithm>

#include "signals/sig_format.h"
#include "signals/sig_table.h"

// Records visited per signal. A real signal needs about one visit per value
// printed and one per structure element, which is at most a few per byte
// even with unions; a table that asks for more prints what fits in this.
inline constexpr uint32_t SIG_WALK_BUDGET = 1u << 20;
inline uint32_t sig_walk_budget(uint32_t signal_size) {
    return uint32_t(std::min<uint64_t>(SIG_WALK_BUDGET, 4096 + 4 * uint64_t(signal_size)));
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

// What a lookup tells of a signal besides its name: its structure's size,
// and the element size of a last member that is an array (0 for none).
inline void sig_hit_sizes(const vardesc* top, const vardesc* last, uint32_t* size, uint32_t* var_size) {
    if (size) *size = top ? top->size : 0;
    if (var_size) *var_size = top && last && last->dimensions != 0 ? last->size : 0;
}

// Writes text at pos with its terminator and returns the position behind
// it. A path that would not fit is cut.
inline uint32_t sig_name_put(char* name, uint32_t pos, std::string_view text) {
    pos = std::min<uint32_t>(pos, SIG_NAME_SIZE - 1);
    size_t n = std::min<size_t>(text.size(), SIG_NAME_SIZE - 1 - pos);
    std::copy_n(text.data(), n, name + pos);
    name[pos + n] = '\0';
    return uint32_t(pos + n);
}

// Writes open, i in decimal and "]" at pos: an index "[2]", or a run "[0-7]".
inline uint32_t sig_name_index(char* name, uint32_t pos, std::string_view open, long long i) {
    char text[40];
    size_t n = open.copy(text, 8);
    n += sig_put_integer(text + n, sig_int_layout{}, uint64_t(i));
    text[n++] = ']';
    return sig_name_put(name, pos, std::string_view(text, n));
}

inline void sig_name_clear(char* name, uint32_t pos) {
    name[std::min<uint32_t>(pos, SIG_NAME_SIZE - 1)] = '\0';
}

// An array's step: the element size times the dimensions behind a level,
// kept below 2^40 (no signal is that long). 0 when a dimension is not
// positive. dims holds count entries, at most SIG_WALK_DEPTH.
inline int64_t sig_array_step(uint32_t element_size, const int16_t* dims, uint32_t count, uint32_t level) {
    int64_t step = element_size;
    for (uint32_t k = level + 1; k < count; k++) {
        if (dims[k] <= 0) return 0;
        step = std::min<int64_t>(step * dims[k], int64_t(1) << 40);
    }
    return step;
}

// A member's name in a path: from the table's names, or its type's when
// the table has none for it.
inline std::string_view sig_member_name(const sig_walk& w, const vardesc& r) {
    std::string_view text = sig_name_at(w.strings, r.name);
    if (!text.data()) get_type_name(r, &text);
    return text;
}

// One callback, for count elements at at. member_end is where the
// member's own bytes (an array's row) end; the family has found the
// enumeration or the format that the record names.
inline void sig_emit(sig_walk& w, const vardesc& r, const uint8_t* at, uint32_t count, const uint8_t* member_end,
                     std::span<const uint8_t> enum_entries, std::string_view format) {
    sig_value v{};
    v.name = w.name;
    v.address = at;
    v.size = uint8_t(r.size);
    v.count = uint16_t(count);
    v.format = (r.flags & VAR_TEXT) ? std::string_view("%s") : format;
    v.type = uint8_t(r.type);
    v.enum_entries = enum_entries;
    v.flags = uint16_t(r.flags & (VAR_PASS | VAR_HIDDEN));
    v.swap = w.swap;
    v.strings = w.strings;
    v.end = w.end;
    v.text_end = member_end;
    w.callback(v, w.context);
}

// The walk over an array, alike in both families. Family gives
// dims(w, v, dims), walk_struct(w, v, data, size, position, variable,
// element) with the record it ends on, emit(w, v, at, count, member_end),
// and count_mask, the width of the count of a compressed run.
//
// An array of structures with several dimensions is walked level by level
// like any other array, each element's structure at the last level.
template <class Family>
uint32_t sig_walk_array(sig_walk& w, const vardesc& v, const uint8_t* data, uint32_t size, uint32_t position,
                        int variable, uint32_t level) {
    int16_t dims[SIG_WALK_DEPTH];
    if (level >= v.dimensions || !Family::dims(w, v, dims)) return v.at;
    const int64_t step = sig_array_step(v.size, dims, v.dimensions, level);
    // A run-time length needs elements of some size to count.
    if (step <= 0 && variable == 1) return v.at;
    int64_t n = dims[level];
    int64_t left = size;
    if (variable == 1) n = (left + step - 1) / step;
    else if (left > n * step) left = std::max<int64_t>(n * step, 0);
    if (!w.enter()) return v.at;
    const uint8_t* row_end = data + left;
    const bool last_level = level + 1 == v.dimensions;
    const bool aggregate = v.type == SIG_TYPE_STRUCT || v.type == SIG_TYPE_UNION;
    uint32_t result = v.at;
    for (int64_t i = 0; i < n && w.visit(); i++) {
        const uint32_t part = uint32_t(std::min<int64_t>(left, step));
        if (aggregate) {
            const uint32_t behind = sig_name_index(w.name, position, "[", i);
            if (!last_level) result = sig_walk_array<Family>(w, v, data, part, behind, 0, level + 1);
            else if (left != 0) result = Family::walk_struct(w, v, data, uint32_t(left), behind, 0, 1);
        } else if (!last_level) {
            const uint32_t behind = sig_name_index(w.name, position, "[", i);
            sig_walk_array<Family>(w, v, data, part, behind, 0, level + 1);
        } else if (w.compress == 1) {
            sig_name_index(w.name, position, "[0-", n - 1);
            if (v.size <= left && v.size != 0)
                Family::emit(w, v, data, uint32_t(left / v.size) & Family::count_mask, row_end);
            break;
        } else {
            sig_name_index(w.name, position, "[", i);
            if (v.size <= left) Family::emit(w, v, data, 1, row_end);
        }
        if (left <= step) break;
        data += step;
        left -= step;
    }
    w.leave();
    return result;
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
