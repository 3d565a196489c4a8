// The confsig family: a table whose pools and records refer to each other
// by address. Relocation (confsig_reformat_table) turns every reference
// into a position in the image, or SIG_NULL for none; the lookups and the
// walk then follow references instead of indices.
//
// Records follow each other in a member list while flag 2 is set; nested
// structures are reached through their link only.
#include "signals/sig_walk.h"

int confsig_check_endian(sig_table table) {
    if (table.at == SIG_NULL || !sig_fits(table.image, table.at, 2)) return 3;
    switch (sig_u16(table.image, table.at)) {
    case 1:
        return 0;
    case 256:
        return 1;
    default:
        return 3;
    }
}

// A record at a position, if it lies wholly in its pool.
static bool confsig_in_pool(sig_table table, sig_pool_kind kind, uint32_t at, uint32_t size) {
    const sig_pool pool = sig_pool_of(table, kind);
    return pool.present() && at != SIG_NULL && at >= pool.at && uint64_t(at) + size <= uint64_t(pool.at) + pool.size;
}

static bool confsig_sigdesc_at(sig_table table, uint32_t at, sigdesc* out) {
    if (!confsig_in_pool(table, POOL_SIGDESC, at, SIGDB_SIGDESC_SIZE)) return false;
    out->at = at;
    out->name = sig_u32(table.image, at);
    out->signo = sig_u32(table.image, uint64_t(at) + 4);
    out->vardesc = sig_u32(table.image, uint64_t(at) + 8);
    return true;
}

static bool confsig_vardesc_at(sig_table table, uint32_t at, vardesc* out) {
    if (!confsig_in_pool(table, POOL_VARDESC, at, CONFSIG_VARDESC_SIZE)) return false;
    const std::span<const uint8_t> img = table.image;
    const uint64_t p = at;
    out->at = at;
    out->flags = sig_u16(img, p);
    out->type = img[p + 2];
    out->dimensions = img[p + 3];
    out->index = sig_u32(img, p + 4);
    out->size = sig_u16(img, p + 8);
    out->offset = sig_u16(img, p + 10);
    out->link = sig_u32(img, p + 12);
    out->name = sig_u32(img, p + 16);
    return true;
}

// The last member of the list that begins at first: the first record
// without flag 2.
static bool confsig_last_member(sig_table table, uint32_t first, vardesc* last, uint32_t* budget) {
    for (uint32_t at = first; confsig_vardesc_at(table, at, last); at += CONFSIG_VARDESC_SIZE) {
        if (*budget == 0) return false;
        --*budget;
        if (!(last->flags & VAR_LAST)) return true;
    }
    return false;
}

// The signal records, in pool order, up to the one with a null name.
template <class Visit>
static void confsig_each_sigdesc(sig_table table, uint32_t from, Visit visit) {
    sigdesc sd;
    for (uint32_t at = from; confsig_sigdesc_at(table, at, &sd) && sd.name != SIG_NULL;
         at += SIGDB_SIGDESC_SIZE)
        if (visit(sd)) return;
}

int confsig_signo_size(sig_table table) {
    if (confsig_check_endian(table) == 3) return 0;
    int width = 0;
    confsig_each_sigdesc(table, sig_pool_of(table, POOL_SIGDESC).at, [&](const sigdesc& sd) {
        vardesc top, first;
        if (!confsig_vardesc_at(table, sd.vardesc, &top) || top.type != SIG_TYPE_STRUCT || top.link == SIG_NULL)
            return false;
        if (!confsig_vardesc_at(table, top.link, &first)) return false;
        width = int(first.offset);
        return true;
    });
    return width;
}

uint32_t confsig_get_sig_no(sig_table table, std::span<const uint8_t> signal) {
    const int endian = confsig_check_endian(table);
    if (endian == 3) return 0;
    return sig_read_signo(signal, confsig_signo_size(table), endian);
}

static sig_names confsig_names(sig_table table) { return {table.image, true}; }

static uint32_t confsig_cursor_next(sig_table table, const uint32_t* cursor) {
    const sig_pool pool = sig_pool_of(table, POOL_SIGDESC);
    if (!cursor || *cursor == SIG_NULL || *cursor < pool.at || *cursor - pool.at >= pool.size) return pool.at;
    return *cursor + SIGDB_SIGDESC_SIZE;
}

static void confsig_hit(sig_table table, const sigdesc& sd, std::string_view* name, uint32_t* size,
                        uint32_t* var_size) {
    if (name) *name = sig_name_at(confsig_names(table), sd.name);
    if (!sig_pool_of(table, POOL_VARDESC).present()) return;
    vardesc top, last;
    uint32_t budget = SIG_WALK_BUDGET;
    const bool has_top = confsig_vardesc_at(table, sd.vardesc, &top);
    const bool has_last = has_top && top.link != SIG_NULL && confsig_last_member(table, top.link, &last, &budget);
    sig_hit_sizes(has_top ? &top : nullptr, has_last ? &last : nullptr, size, var_size);
}

int confsig_list_sig_by_number(uint32_t signo, sig_table table, uint32_t* cursor, std::string_view* name,
                               uint32_t* size, uint32_t* var_size) {
    if (confsig_check_endian(table) == 3) return 0;
    int found = 0;
    confsig_each_sigdesc(table, confsig_cursor_next(table, cursor), [&](const sigdesc& sd) {
        if (sd.signo != signo) return false;
        if (cursor) *cursor = sd.at;
        confsig_hit(table, sd, name, size, var_size);
        found = 1;
        return true;
    });
    return found;
}

bool confsig_match_name(std::string_view candidate, const char* pattern) {
    return sigdb_match_name(candidate, pattern);
}

int confsig_list_sig_by_name(const char* pattern, sig_table table, uint32_t* cursor, std::string_view* name,
                             uint32_t* size, uint32_t* var_size, uint32_t* signo) {
    if (!pattern || confsig_check_endian(table) == 3) return 0;
    if (!sig_pool_of(table, POOL_STRING).present() || !sig_pool_of(table, POOL_VARDESC).present()) return 0;
    int found = 0;
    confsig_each_sigdesc(table, confsig_cursor_next(table, cursor), [&](const sigdesc& sd) {
        const std::string_view candidate = sig_name_at(confsig_names(table), sd.name);
        if (!candidate.data() || !confsig_match_name(candidate, pattern)) return false;
        if (cursor) *cursor = sd.at;
        if (signo) *signo = sd.signo;
        confsig_hit(table, sd, name, size, var_size);
        found = 1;
        return true;
    });
    return found;
}

// ---- The walk ----

static char confsig_name_buffer[SIG_NAME_SIZE];

static void confsig_emit(sig_walk& w, const vardesc& r, const uint8_t* at, uint32_t count,
                         const uint8_t* member_end) {
    std::span<const uint8_t> entries;
    std::string_view format;
    if (r.type == SIG_TYPE_ENUM && r.link != SIG_NULL) {
        const sig_pool enums = sig_pool_of(w.table, POOL_ENUM);
        if (confsig_in_pool(w.table, POOL_ENUM, r.link, 0) && r.link < uint64_t(enums.at) + enums.size)
            entries = w.table.image.subspan(r.link, enums.at + enums.size - r.link);
    } else if (r.link != SIG_NULL) {
        format = sig_name_at(w.strings, r.link);
    }
    sig_emit(w, r, at, count, member_end, entries, format);
}

static bool confsig_dims(const sig_walk& w, const vardesc& v, int16_t* dims) {
    if (v.dimensions > uint32_t(SIG_WALK_DEPTH)) return false;
    if (!confsig_in_pool(w.table, POOL_INDEX, v.index, v.dimensions * 2)) return false;
    for (uint32_t k = 0; k < v.dimensions; k++) dims[k] = int16_t(sig_u16(w.table.image, uint64_t(v.index) + 2 * k));
    return true;
}

static void confsig_walk_struct(sig_walk& w, const vardesc& v, const uint8_t* data, uint32_t size,
                                uint32_t position, int variable, int element);

struct confsig_family {
    static constexpr uint32_t count_mask = 0xFF;
    static bool dims(const sig_walk& w, const vardesc& v, int16_t* d) { return confsig_dims(w, v, d); }
    static uint32_t walk_struct(sig_walk& w, const vardesc& v, const uint8_t* data, uint32_t size, uint32_t position,
                                int variable, int element) {
        confsig_walk_struct(w, v, data, size, position, variable, element);
        return v.at;
    }
    static void emit(sig_walk& w, const vardesc& r, const uint8_t* at, uint32_t count, const uint8_t* member_end) {
        confsig_emit(w, r, at, count, member_end);
    }
};

static void confsig_walk_array(sig_walk& w, const vardesc& v, const uint8_t* data, uint32_t size,
                               uint32_t position, int variable, uint32_t level) {
    sig_walk_array<confsig_family>(w, v, data, size, position, variable, level);
}

static void confsig_walk_members(sig_walk& w, uint32_t first, const uint8_t* data, uint32_t size,
                                 uint32_t position, int variable) {
    vardesc r;
    for (uint32_t at = first; confsig_vardesc_at(w.table, at, &r) && w.visit(); at += CONFSIG_VARDESC_SIZE) {
        if (size == 0) return;
        const int last_variable = (r.flags & VAR_LAST) ? 0 : variable;
        if (r.type == SIG_TYPE_STRUCT || r.type == SIG_TYPE_UNION) {
            if (r.offset < size) confsig_walk_struct(w, r, data + r.offset, size - r.offset, position, 0, 0);
        } else {
            const uint32_t end = sig_name_put(w.name, position, sig_member_name(w, r));
            if (r.dimensions == 0) {
                if (uint64_t(r.offset) + r.size <= size) confsig_emit(w, r, data + r.offset, 1, data + r.offset + r.size);
            } else if (r.offset < size) {
                confsig_walk_array(w, r, data + r.offset, size - r.offset, end, last_variable, 0);
            }
        }
        if (!(r.flags & VAR_LAST)) {
            sig_name_clear(w.name, position);
            return;
        }
    }
}

static void confsig_walk_struct(sig_walk& w, const vardesc& v, const uint8_t* data, uint32_t size,
                                uint32_t position, int variable, int element) {
    // Every named structure is part of the path, the signal's own first.
    if (element != 1 && v.name != SIG_NULL) position = sig_name_put(w.name, position, sig_member_name(w, v));
    if (v.dimensions != 0 && element == 0) {
        confsig_walk_array(w, v, data, size, position, variable, 0);
        return;
    }
    if (v.name != SIG_NULL) position = sig_name_put(w.name, position, ".");
    if (v.link == SIG_NULL || !w.enter()) return;
    confsig_walk_members(w, v.link, data, size, position, variable);
    w.leave();
}

uint32_t confsig_traverse_sig(sig_table table, uint32_t sigdesc_at, std::span<const uint8_t> signal,
                              int compress, SsmPrintContext* context, sig_callback callback) {
    const uint32_t size = uint32_t(signal.size());
    const int endian = confsig_check_endian(table);
    sigdesc sd;
    vardesc top, last;
    if (endian == 3 || !sig_pool_of(table, POOL_VARDESC).present() || !confsig_sigdesc_at(table, sigdesc_at, &sd) ||
        !confsig_vardesc_at(table, sd.vardesc, &top))
        return size;
    uint32_t budget = SIG_WALK_BUDGET;
    const bool last_is_array =
        top.link != SIG_NULL && confsig_last_member(table, top.link, &last, &budget) && last.dimensions != 0;

    sig_walk w{table, confsig_name_buffer, compress, endian == 1, context, callback,
               signal.data() + signal.size(), confsig_names(table)};
    w.name[0] = '\0';
    w.budget = sig_walk_budget(size);
    return sig_traverse_top(size, top.size, last_is_array, [&](uint32_t bytes, int variable) {
        confsig_walk_struct(w, top, signal.data(), bytes, 0, variable, 0);
    });
}
