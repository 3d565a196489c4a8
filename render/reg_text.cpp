#include <cstring>

#include "render/section_blocks.h"

// Slot of a token by its first characters; -1 for a token that has none.
static int reg_slot(const char* p, const char* end) {
    auto at = [&](size_t i) -> char { return p + i < end ? p[i] : '\0'; };
    char a = at(0), b = at(1);
    if (a == 'R') {
        if (b == 'A') return REG_RA;
        if (b < '0' || b > '9') return 0;
        unsigned n = 0;
        for (size_t i = 1; at(i) >= '0' && at(i) <= '9'; i++) {
            n = n * 10 + unsigned(at(i) - '0');
            if (n >= REG_SLOTS) return -1;
        }
        return int(n);
    }
    static const struct {
        char a, b;
        int slot;
    } named[] = {{'P', 'C', REG_PC}, {'M', 'S', REG_MSR}, {'L', 'R', REG_LR}, {'C', 'R', REG_CR},
                 {'X', 'E', REG_XER}, {'C', 'T', REG_CTR}, {'D', 'A', REG_DAR}};
    for (const auto& n : named)
        if (a == n.a && b == n.b) return n.slot;
    return -1;
}

std::unique_ptr<reg_text_table> parse_reg_text(std::span<const uint8_t> payload) {
    auto t = std::make_unique<reg_text_table>();
    const char* p = reinterpret_cast<const char*>(payload.data());
    // The target writes zero-terminated text; the payload's size bounds it too.
    const char* end = p + strnlen(p, payload.size());
    t->end = end;
    for (;;) {
        while (p < end && *p == ' ') p++;
        if (p == end) break;
        int slot = reg_slot(p, end);
        if (slot >= 0) {
            const char* eq = static_cast<const char*>(std::memchr(p, '=', size_t(end - p)));
            if (!eq) break;
            t->slot[slot] = eq + 1;
            p = eq + 1;
        }
        while (p < end && *p != ' ') p++;
    }
    return t;
}

// A value as "%.8s" would show it, bounded by the text's end.
static void put_value(char* dst, const reg_text_table& t, int slot) {
    const char* v = t.slot[slot];
    if (!v) {
        std::strcpy(dst, "--------");
        return;
    }
    size_t n = 0;
    while (n < 8 && v + n < t.end && v[n] != '\0') n++;
    std::memcpy(dst, v, n);
    dst[n] = '\0';
}

void print_reg_text(FILE* stream, std::span<const uint8_t> payload) {
    auto t = parse_reg_text(payload);
    if (!t) {
        std::fputs("  No memory to complete the operation.\n", stderr);
        return;
    }
    char v[4][9];
    put_value(v[0], *t, REG_PC);
    put_value(v[1], *t, 1);
    put_value(v[2], *t, REG_MSR);
    put_value(v[3], *t, REG_LR);
    std::fprintf(stream, "  PC  = %.8s  SP  = %.8s  MSR = %.8s  LR  = %.8s\n\n", v[0], v[1], v[2], v[3]);
    for (int i = 0; i < 8; i++) {
        for (int c = 0; c < 4; c++) put_value(v[c], *t, i + 8 * c);
        std::fprintf(stream, "  R%-2d = %.8s  R%-2d = %.8s  R%-2d = %.8s  R%-2d = %.8s\n", i, v[0], i + 8, v[1],
                     i + 16, v[2], i + 24, v[3]);
    }
    std::fputc('\n', stream);
    put_value(v[0], *t, REG_DAR);
    put_value(v[1], *t, REG_CR);
    put_value(v[2], *t, REG_XER);
    put_value(v[3], *t, REG_CTR);
    std::fprintf(stream, "  DAR = %.8s  CR  = %.8s  XER = %.8s  CTR = %.8s\n", v[0], v[1], v[2], v[3]);
    if (t->slot[REG_RA]) {
        put_value(v[0], *t, REG_RA);
        std::fprintf(stream, "\n  RA  = %.8s\n\n", v[0]);
    }
}
