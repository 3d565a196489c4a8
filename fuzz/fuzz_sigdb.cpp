// Signal tables in hostile member images: finding and reformatting them as
// a load does, then every lookup and printer over signals that the tables
// claim to know. The input is the member image; the signals are cut from
// its own bytes, with a number each table knows written over their start.
// The same bytes also go through the relocating reformat of both families.
#include <cstring>
#include <vector>

#include "signals/sig_print.h"
#include "signals/sig_table.h"
#include "signals/ssm.h"

static size_t printed;
static int count_char(int) {
    printed++;
    return 0;
}

// A signal of length size for a number, in the table's byte order.
static std::vector<uint8_t> signal_for(sig_table table, uint32_t signo, const uint8_t* data, size_t n, size_t size) {
    std::vector<uint8_t> s(size);
    for (size_t i = 0; i < size && n; i++) s[i] = data[i % n];
    const int width = signo_size(table);
    uint8_t number[4];
    std::memcpy(number, &signo, 4);
    if (check_endian(table) == 1) swap_field(number, 4);
    if (width == 4 && size >= 4) std::memcpy(s.data(), number, 4);
    if (width == 2 && size >= 2) {
        const uint16_t low = uint16_t(signo);
        std::memcpy(s.data(), &low, 2);
        if (check_endian(table) == 1) swap_field(s.data(), 2);
    }
    if (width == 1 && size >= 1) s[0] = uint8_t(signo);
    return s;
}

static void print_all(sig_table table, const uint8_t* data, size_t n) {
    uint32_t cursor = SIG_NULL, size = 0, var_size = 0, signo = 0;
    std::string_view name;
    for (int hits = 0; hits < 3 && list_sig_by_name("*", table, &cursor, &name, &size, &var_size, &signo); hits++) {
        for (size_t length : {size_t(size), size_t(size / 2), size_t(size) * 2 + 7}) {
            if (length == 0 || length > 1024) continue;
            const std::vector<uint8_t> s = signal_for(table, signo, data, n, length);
            ssm_print_signal(table, s.data(), uint32_t(s.size()), 0, count_char, nullptr, nullptr, 1);
            if (length != size) continue;
            ssm_print_signal(table, s.data(), uint32_t(s.size()), 1, count_char, nullptr, nullptr, 1);
            ose_print_signal(table, s.data(), uint32_t(s.size()), int(hits & 1), count_char, nullptr, nullptr, 1);
        }
        ssm_print_signal_name(table, signo, count_char);
    }
    const std::vector<uint8_t> s(data, data + std::min<size_t>(n, 64));
    ssm_print_signal(table, s.data(), uint32_t(s.size()), 0, count_char, nullptr, nullptr, 1);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > (1u << 20)) return 0;
    // As a load makes a member usable: all tables or none.
    std::vector<uint8_t> image(data, data + size);
    const std::vector<uint32_t> tables = ssmFindTables(image.data(), uint32_t(image.size()));
    bool usable = !tables.empty();
    for (uint32_t at : tables)
        if (usable && reformat_magic_table({image, at}, 0, 0, uint32_t(image.size() - 1)) != 0) usable = false;
    if (usable)
        for (uint32_t at : tables) print_all({image, at}, data, size);

    // A table linked for an address: header position and link address from
    // the first bytes, either family.
    if (size >= 8) {
        std::vector<uint8_t> linked(data, data + size);
        uint32_t at, link;
        std::memcpy(&at, data, 4);
        std::memcpy(&link, data + 4, 4);
        const sig_table table{linked, at % uint32_t(size)};
        if (reformat_table(table, link, SIG_NULL, SIG_NULL) == 0) print_all(table, data, size);
    }
    return 0;
}
