// The operations on a signal table that do not depend on its family, and
// the generic entries that pass a table to its family's variant.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "signals/sig_table.h"

bool is_sigdb_table(uint16_t word) {
    return word == 2 || word == 3 || word == 512 || word == 768;
}

void swap_field(uint8_t* bytes, int size) {
    switch (size) {
    case 2:
    case 4:
    case 8:
    case 12:
        std::reverse(bytes, bytes + size);
        break;
    default:
        std::printf("Size %d not implemented for endian conversion\n", size);
    }
}

static bool sigdb_family(sig_table table) {
    return is_sigdb_table(sig_u16(table.image, uint64_t(table.at) + SYM_MAGIC));
}

int check_endian(sig_table table) {
    return sigdb_family(table) ? sigdb_check_endian(table) : confsig_check_endian(table);
}

int signo_size(sig_table table) {
    return sigdb_family(table) ? sigdb_signo_size(table) : confsig_signo_size(table);
}

uint32_t get_sig_no(sig_table table, std::span<const uint8_t> signal) {
    return sigdb_family(table) ? sigdb_get_sig_no(table, signal) : confsig_get_sig_no(table, signal);
}

int list_sig_by_name(const char* pattern, sig_table table, uint32_t* cursor, std::string_view* name,
                     uint32_t* size, uint32_t* var_size, uint32_t* signo) {
    return sigdb_family(table) ? sigdb_list_sig_by_name(pattern, table, cursor, name, size, var_size, signo)
                               : confsig_list_sig_by_name(pattern, table, cursor, name, size, var_size, signo);
}

int list_sig_by_number(uint32_t signo, sig_table table, uint32_t* cursor, std::string_view* name,
                       uint32_t* size, uint32_t* var_size) {
    return sigdb_family(table) ? sigdb_list_sig_by_number(signo, table, cursor, name, size, var_size)
                               : confsig_list_sig_by_number(signo, table, cursor, name, size, var_size);
}

uint32_t traverse_sig(sig_table table, uint32_t sigdesc, std::span<const uint8_t> signal, int compress,
                      SsmPrintContext* context, sig_callback callback) {
    return sigdb_family(table) ? sigdb_traverse_sig(table, sigdesc, signal, compress, context, callback)
                               : confsig_traverse_sig(table, sigdesc, signal, compress, context, callback);
}

int reformat_table(sig_table table, uint32_t link_address, uint32_t low, uint32_t high) {
    return sigdb_family(table) ? sigdb_reformat_table(table, link_address, low, high)
                               : confsig_reformat_table(table, link_address, low, high);
}

// Only sigdb tables can be found by their texts.
int reformat_magic_table(sig_table table, uint32_t link_address, uint32_t low, uint32_t high) {
    return sigdb_family(table) ? sigdb_reformat_magic_table(table, link_address, low, high) : 1;
}

int swap_symdesc(sig_table table) {
    return sigdb_family(table) ? sigdb_swap_symdesc(table) : confsig_swap_symdesc(table);
}

static const char* const type_names[] = {
    "(enum)",        "(char)",         "(unsigned char)", "(short)",       "(unsigned short)",
    "(int)",         "(unsigned int)", "(long)",          "(unsigned long)", "(float)",
    "(double)",      "(long double)",  "(a pointer)",     "(struct)",      "(union)",
    "(volatile)",    "(void)",         "(long long)",     "(unsigned long long)",
};

int get_type_name(const vardesc& var, std::string_view* name) {
    if (var.type > SIGDB_MAX_TYPE) {
        *name = "(unknown type)";
        return 1;
    }
    *name = type_names[var.type];
    return 0;
}

sig_pool sig_pool_of(sig_table table, sig_pool_kind kind) {
    const uint64_t header = table.at;
    if (table.at == SIG_NULL || !sig_fits(table.image, header, CONFSIG_HEADER_SIZE)) return {};
    sig_pool pool;
    pool.at = sig_u32(table.image, header + SYM_POOLS + 4 * kind);
    pool.size = sig_u32(table.image, header + SYM_SIZES + 4 * kind);
    if (pool.at == SIG_NULL || !sig_fits(table.image, pool.at, pool.size)) return {};
    return pool;
}

std::string_view sig_text_at(std::span<const uint8_t> img, uint64_t pos, uint64_t limit) {
    limit = std::min<uint64_t>(limit, img.size());
    if (pos >= limit) return {};
    const char* start = reinterpret_cast<const char*>(img.data() + pos);
    return {start, strnlen(start, size_t(limit - pos))};
}

bool sig_name_is_none(const sig_names& names, uint32_t name) {
    return names.references ? name == SIG_NULL : name == 0;
}

std::string_view sig_name_at(const sig_names& names, uint32_t name) {
    if (names.references && name == SIG_NULL) return {};
    return sig_text_at(names.base, name, names.base.size());
}

uint32_t sig_read_signo(std::span<const uint8_t> signal, int width, int endian) {
    if (width != 1 && width != 2 && width != 4) return 0;
    if (signal.size() < size_t(width)) return 0;
    uint8_t bytes[4];
    std::memcpy(bytes, signal.data(), size_t(width));
    if (endian == 1 && width > 1) swap_field(bytes, width);
    if (width == 1) return bytes[0];
    if (width == 2) {
        uint16_t v;
        std::memcpy(&v, bytes, 2);
        return v;
    }
    uint32_t v;
    std::memcpy(&v, bytes, 4);
    return v;
}
