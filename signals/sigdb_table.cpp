// The sigdb family: lookups in a table that has been made usable, and the
// walk over a signal buffer by the table's description.
//
// Records are reached by index: a sigdesc names its structure's vardesc,
// a structure's link names its first member, and a member list runs from
// a record with flag 1 to the matching one with flag 2, nested lists
// standing in line.
#include "signals/sig_walk.h"

int sigdb_check_endian(sig_table table) {
    if (table.at == SIG_NULL || !sig_fits(table.image, table.at, 2)) return 3;
    switch (sig_u16(table.image, table.at)) {
    case 2:
    case 3:
        return 0;
    case 512:
    case 768:
        return 1;
    default:
        return 3;
    }
}

static bool sigdb_sigdesc_at(sig_table table, const sig_pool& pool, uint32_t index, sigdesc* out) {
    const uint64_t off = uint64_t(index) * SIGDB_SIGDESC_SIZE;
    if (off + SIGDB_SIGDESC_SIZE > pool.size) return false;
    const uint64_t at = pool.at + off;
    out->at = uint32_t(at);
    out->name = sig_u32(table.image, at);
    out->signo = sig_u32(table.image, at + 4);
    out->vardesc = sig_u32(table.image, at + 8);
    return true;
}

bool sigdb_vardesc_at(sig_table table, uint32_t index, vardesc* out) {
    const sig_pool pool = sig_pool_of(table, POOL_VARDESC);
    const uint64_t off = uint64_t(index) * SIGDB_VARDESC_SIZE;
    if (!pool.present() || off + SIGDB_VARDESC_SIZE > pool.size) return false;
    const uint64_t at = pool.at + off;
    const std::span<const uint8_t> img = table.image;
    out->at = index;
    out->name = sig_u32(img, at);
    out->size = sig_u16(img, at + 4);
    out->offset = sig_u16(img, at + 6);
    out->index = sig_u16(img, at + 8);
    out->link = sig_u16(img, at + 10);
    out->type = sig_u16(img, at + 12);
    out->flags = sig_u16(img, at + 14);
    out->dimensions = sig_u16(img, at + 16);
    return true;
}

// The last record of the member list that begins at first: where the depth
// counted by flags 1 and 2 is back to 0 on a record with flag 2. SIG_NULL
// when a record of size 0 (the pool's end mark) or the pool's end comes first.
static uint32_t sigdb_list_end(sig_table table, uint32_t first, uint32_t* budget) {
    int depth = 0;
    vardesc r;
    for (uint32_t i = first; sigdb_vardesc_at(table, i, &r); i++) {
        if (*budget == 0) return SIG_NULL;
        --*budget;
        if (r.size == 0) return SIG_NULL;
        if (r.flags & VAR_FIRST) depth++;
        if (r.flags & VAR_LAST) depth--;
        if (depth == 0 && (r.flags & VAR_LAST)) return i;
    }
    return SIG_NULL;
}

bool sigdb_find_last_member(sig_table table, uint32_t first, vardesc* last) {
    uint32_t budget = SIG_WALK_BUDGET;
    const uint32_t i = sigdb_list_end(table, first, &budget);
    return i != SIG_NULL && sigdb_vardesc_at(table, i, last);
}

int sigdb_signo_size(sig_table table) {
    if (table.at == SIG_NULL) return 0;
    if (table.lookup) return table.lookup->signo_size;
    const sig_pool sigs = sig_pool_of(table, POOL_SIGDESC);
    const sig_pool vars = sig_pool_of(table, POOL_VARDESC);
    if (sigs.size == 0 || vars.size == 0) return 4;
    sigdesc sd;
    vardesc top, first, second;
    for (uint32_t i = 0; sigdb_sigdesc_at(table, sigs, i, &sd); i++) {
        if (!sigdb_vardesc_at(table, sd.vardesc, &top) || top.type != SIG_TYPE_STRUCT) continue;
        if (top.link == SIGDB_NO_LINK || !sigdb_vardesc_at(table, top.link, &first)) continue;
        if (first.flags & VAR_LAST) continue;
        if (sigdb_vardesc_at(table, top.link + 1, &second)) return int(second.offset);
    }
    return 0;
}

uint32_t sigdb_get_sig_no(sig_table table, std::span<const uint8_t> signal) {
    const int endian = sigdb_check_endian(table);
    if (endian == 3) return 0;
    return sig_read_signo(signal, sigdb_signo_size(table), endian);
}

static sig_names sigdb_names(sig_table table) {
    const sig_pool strings = sig_pool_of(table, POOL_STRING);
    if (!strings.present()) return {};
    return {table.image.subspan(strings.at, strings.size), false};
}

// The first record to look at behind a cursor; a cursor outside the pool
// is no cursor.
static uint32_t sigdb_cursor_next(const sig_pool& pool, const uint32_t* cursor) {
    if (!cursor || *cursor == SIG_NULL || *cursor < pool.at || *cursor - pool.at >= pool.size) return 0;
    return (*cursor - pool.at) / SIGDB_SIGDESC_SIZE + 1;
}

// What a hit reports of record i, and whether its last member is an array.
static sig_record_facts sigdb_facts(sig_table table, const sigdesc& sd, uint32_t i) {
    sig_record_facts* noted = table.lookup && i < table.lookup->records.size() ? &table.lookup->records[i] : nullptr;
    if (noted && noted->known) return *noted;
    sig_record_facts facts;
    vardesc top, last;
    const bool has_top = sigdb_vardesc_at(table, sd.vardesc, &top);
    const bool has_last = has_top && top.link != SIGDB_NO_LINK && sigdb_find_last_member(table, top.link, &last);
    sig_hit_sizes(has_top ? &top : nullptr, has_last ? &last : nullptr, &facts.size, &facts.var_size);
    facts.last_is_array = has_last && last.dimensions != 0;
    facts.known = true;
    if (noted) *noted = facts;
    return facts;
}

// The results of a hit on record i: name, declared size, element size of a last array.
static void sigdb_hit(sig_table table, const sigdesc& sd, uint32_t i, std::string_view* name, uint32_t* size,
                      uint32_t* var_size) {
    const sig_pool strings = sig_pool_of(table, POOL_STRING);
    if (name) *name = strings.present() ? sig_name_at(sigdb_names(table), sd.name) : std::string_view();
    if (!sig_pool_of(table, POOL_VARDESC).present()) return;
    const sig_record_facts facts = sigdb_facts(table, sd, i);
    if (size) *size = facts.size;
    if (var_size) *var_size = facts.var_size;
}

// The first record of this number from record i on, in pool order.
static bool sigdb_next_of_number(sig_table table, const sig_pool& sigs, uint32_t signo, uint32_t* i, sigdesc* sd) {
    if (table.lookup) {
        const auto& numbers = table.lookup->by_number;
        const auto hit = std::lower_bound(numbers.begin(), numbers.end(), std::pair{signo, *i});
        if (hit == numbers.end() || hit->first != signo) return false;
        *i = hit->second;
        return sigdb_sigdesc_at(table, sigs, *i, sd);
    }
    for (; sigdb_sigdesc_at(table, sigs, *i, sd); ++*i)
        if (sd->signo == signo) return true;
    return false;
}

int sigdb_list_sig_by_number(uint32_t signo, sig_table table, uint32_t* cursor, std::string_view* name,
                             uint32_t* size, uint32_t* var_size) {
    if (sigdb_check_endian(table) == 3) return 0;
    const sig_pool sigs = sig_pool_of(table, POOL_SIGDESC);
    if (!sigs.present()) return 0;
    sigdesc sd;
    uint32_t i = sigdb_cursor_next(sigs, cursor);
    if (!sigdb_next_of_number(table, sigs, signo, &i, &sd)) return 0;
    if (cursor) *cursor = sd.at;
    sigdb_hit(table, sd, i, name, size, var_size);
    return 1;
}

sig_lookup sigdb_lookup_of(sig_table table) {
    table.lookup = nullptr;
    sig_lookup lookup;
    lookup.signo_size = sigdb_signo_size(table);
    const sig_pool sigs = sig_pool_of(table, POOL_SIGDESC);
    sigdesc sd;
    for (uint32_t i = 0; sigs.present() && sigdb_sigdesc_at(table, sigs, i, &sd); i++)
        lookup.by_number.emplace_back(sd.signo, i);
    std::sort(lookup.by_number.begin(), lookup.by_number.end());
    lookup.records.resize(lookup.by_number.size());
    return lookup;
}

bool sigdb_match_name(std::string_view candidate, const char* pattern) {
    for (size_t i = 0;; i++) {
        if (pattern[i] == '*') return true;
        if (i == candidate.size()) return pattern[i] == '\0';
        if (pattern[i] == '\0' || pattern[i] != candidate[i]) return false;
    }
}

int sigdb_list_sig_by_name(const char* pattern, sig_table table, uint32_t* cursor, std::string_view* name,
                           uint32_t* size, uint32_t* var_size, uint32_t* signo) {
    if (!pattern || sigdb_check_endian(table) == 3) return 0;
    const sig_pool sigs = sig_pool_of(table, POOL_SIGDESC);
    if (!sigs.present() || !sig_pool_of(table, POOL_STRING).present() ||
        !sig_pool_of(table, POOL_VARDESC).present())
        return 0;
    const sig_names names = sigdb_names(table);
    sigdesc sd;
    for (uint32_t i = sigdb_cursor_next(sigs, cursor); sigdb_sigdesc_at(table, sigs, i, &sd); i++) {
        const std::string_view candidate = sig_name_at(names, sd.name);
        if (!candidate.data() || !sigdb_match_name(candidate, pattern)) continue;
        if (cursor) *cursor = sd.at;
        if (signo) *signo = sd.signo;
        sigdb_hit(table, sd, i, name, size, var_size);
        return 1;
    }
    return 0;
}

// ---- The walk ----

static char sigdb_name_buffer[SIG_NAME_SIZE];

static void sigdb_emit(sig_walk& w, const vardesc& r, const uint8_t* at, uint32_t count, const uint8_t* member_end) {
    std::span<const uint8_t> entries;
    std::string_view format;
    const sig_pool enums = sig_pool_of(w.table, POOL_ENUM);
    if (r.type == SIG_TYPE_ENUM && enums.size != 0) {
        const uint64_t off = uint64_t(r.link) * SIG_ENUM_SIZE;
        if (off < enums.size) entries = w.table.image.subspan(enums.at + off, enums.size - off);
    } else if (r.link != SIGDB_NO_LINK && w.strings.base.data()) {
        format = sig_name_at(w.strings, r.link);
    }
    sig_emit(w, r, at, count, member_end, entries, format);
}

// A member's dimensions, outermost first; false when they do not lie in
// the index pool or are more than a walk may nest.
static bool sigdb_dims(const sig_walk& w, const vardesc& v, int16_t* dims) {
    const sig_pool pool = sig_pool_of(w.table, POOL_INDEX);
    if (v.dimensions > uint32_t(SIG_WALK_DEPTH) || !pool.present()) return false;
    if ((uint64_t(v.index) + v.dimensions) * 2 > pool.size) return false;
    for (uint32_t k = 0; k < v.dimensions; k++)
        dims[k] = int16_t(sig_u16(w.table.image, pool.at + (uint64_t(v.index) + k) * 2));
    return true;
}

static uint32_t sigdb_walk_members(sig_walk& w, uint32_t first, const uint8_t* data, uint32_t size,
                                   uint32_t position, int variable);
static uint32_t sigdb_walk_struct(sig_walk& w, const vardesc& v, const uint8_t* data, uint32_t size,
                                  uint32_t position, int variable, int element);

struct sigdb_family {
    static constexpr uint32_t count_mask = 0xFFFF;
    static bool dims(const sig_walk& w, const vardesc& v, int16_t* d) { return sigdb_dims(w, v, d); }
    static uint32_t walk_struct(sig_walk& w, const vardesc& v, const uint8_t* data, uint32_t size, uint32_t position,
                                int variable, int element) {
        return sigdb_walk_struct(w, v, data, size, position, variable, element);
    }
    static void emit(sig_walk& w, const vardesc& r, const uint8_t* at, uint32_t count, const uint8_t* member_end) {
        sigdb_emit(w, r, at, count, member_end);
    }
};

static uint32_t sigdb_walk_array(sig_walk& w, const vardesc& v, const uint8_t* data, uint32_t size,
                                 uint32_t position, int variable, uint32_t level) {
    return sig_walk_array<sigdb_family>(w, v, data, size, position, variable, level);
}

static uint32_t sigdb_walk_struct(sig_walk& w, const vardesc& v, const uint8_t* data, uint32_t size,
                                  uint32_t position, int variable, int element) {
    // The path gets a structure's name only behind a name already there:
    // the signal's own name never starts a path.
    if (element != 1 && w.name[0] != '\0' && v.name != 0)
        position = sig_name_put(w.name, position, sig_member_name(w, v));
    if (v.dimensions != 0 && element == 0) return sigdb_walk_array(w, v, data, size, position, variable, 0);
    if (w.name[0] != '\0' && v.name != 0) position = sig_name_put(w.name, position, ".");
    if (v.link == SIGDB_NO_LINK || !w.enter()) return v.at;
    const uint32_t result = sigdb_walk_members(w, v.link, data, size, position, variable);
    w.leave();
    return result;
}

static uint32_t sigdb_walk_members(sig_walk& w, uint32_t first, const uint8_t* data, uint32_t size,
                                   uint32_t position, int variable) {
    int depth = 0;
    vardesc r;
    uint32_t i = first;
    for (; sigdb_vardesc_at(w.table, i, &r); i++) {
        if (!w.visit()) return i;
        if (r.flags & VAR_FIRST) depth++;
        if (r.flags & VAR_LAST) depth--;
        const uint32_t noted = r.flags;
        if (size == 0) return i;
        const int last_variable = (r.flags & VAR_LAST) ? variable : 0;
        if (r.type == SIG_TYPE_STRUCT || r.type == SIG_TYPE_UNION) {
            // A structure walked goes on behind its own list when that
            // stands in line. One whose bytes are not there is not walked,
            // and the records of its list follow here as members of this
            // list, over this list's bytes.
            if (r.offset < size) {
                const uint32_t behind =
                    sigdb_walk_struct(w, r, data + r.offset, size - r.offset, position, last_variable, 0);
                if (behind != SIG_NULL && behind > i) i = behind;
            }
        } else {
            const uint32_t end = sig_name_put(w.name, position, sig_member_name(w, r));
            if (r.dimensions == 0) {
                if (uint64_t(r.offset) + r.size <= size) sigdb_emit(w, r, data + r.offset, 1, data + r.offset + r.size);
            } else if (r.offset < size) {
                sigdb_walk_array(w, r, data + r.offset, size - r.offset, end, last_variable, 0);
            }
        }
        if (depth == 0 && (noted & VAR_LAST)) {
            sig_name_clear(w.name, position);
            return i;
        }
    }
    return i == first ? first : i - 1;
}

uint32_t sigdb_traverse_sig(sig_table table, uint32_t sigdesc_at, std::span<const uint8_t> signal, int compress,
                            SsmPrintContext* context, sig_callback callback) {
    const uint32_t size = uint32_t(signal.size());
    const int endian = sigdb_check_endian(table);
    const sig_pool sigs = sig_pool_of(table, POOL_SIGDESC);
    if (endian == 3 || sigdesc_at == SIG_NULL || !sig_pool_of(table, POOL_VARDESC).present()) return size;
    // The sigdesc must be a record of this table.
    sigdesc sd;
    const uint32_t record = (sigdesc_at - sigs.at) / SIGDB_SIGDESC_SIZE;
    if (!sigs.present() || sigdesc_at < sigs.at || (sigdesc_at - sigs.at) % SIGDB_SIGDESC_SIZE != 0 ||
        !sigdb_sigdesc_at(table, sigs, record, &sd))
        return size;
    vardesc top;
    if (!sigdb_vardesc_at(table, sd.vardesc, &top)) return size;
    const bool last_is_array = sigdb_facts(table, sd, record).last_is_array;

    sig_walk w{table, sigdb_name_buffer, compress, endian == 1, context, callback,
               signal.data() + signal.size(), sigdb_names(table)};
    w.name[0] = '\0';
    w.budget = sig_walk_budget(size);
    return sig_traverse_top(size, top.size, last_is_array, [&](uint32_t bytes, int variable) {
        sigdb_walk_struct(w, top, signal.data(), bytes, 0, variable, 0);
    });
}
