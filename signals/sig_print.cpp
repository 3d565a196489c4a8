// Turning the walk's values into text, and the drivers that print one
// signal: its name, its values, and what its description does not cover.
#include "signals/sig_print.h"

#include <algorithm>
#include <bit>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "signals/sig_format.h"

void ssmPutString(const char* text, ssm_putc_fn put_char) {
    for (; *text; text++) put_char(static_cast<unsigned char>(*text));
}

void ose_put_string(const char* text, ssm_putc_fn put_char) { ssmPutString(text, put_char); }

// printf into the context's buffer, then out.
static void put_printf(SsmPrintContext* ctx, const char* format, ...) __attribute__((format(printf, 2, 3)));
static void put_printf(SsmPrintContext* ctx, const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vsnprintf(ctx->buffer, SSM_PRINT_BUFFER, format, args);
    va_end(args);
    ssmPutString(ctx->buffer, ctx->put_char);
}

// text, then value in hex of at least digits digits, as " 0x%x", "%08X: "
// and their kin print it, without printf.
static void put_hex(SsmPrintContext* ctx, const char* text, uint64_t value, int digits = 1, char conv = 'x',
                    const char* after = "") {
    sig_int_layout layout;
    layout.conv = conv;
    layout.precision = digits;
    char number[24];
    const size_t n = sig_put_integer(number, layout, value);
    ssmPutString(text, ctx->put_char);
    for (size_t i = 0; i < n; i++) ctx->put_char(number[i]);
    ssmPutString(after, ctx->put_char);
}

// text, then at most limit characters of name.
static void put_name_text(SsmPrintContext* ctx, const char* text, std::string_view name, size_t limit) {
    ssmPutString(text, ctx->put_char);
    for (size_t i = 0; i < std::min(name.size(), limit); i++) ctx->put_char(static_cast<unsigned char>(name[i]));
}

static bool printable(unsigned c) { return c >= 0x20 && c <= 0x7E; }

// One element as a number: sizes 1, 2, 4, 8 and 12 are read, in the
// signal's byte order; of 12 bytes the low 64 bits. Other sizes read as 0.
static uint64_t read_value(const uint8_t* at, unsigned size, int swap) {
    uint8_t b[12];
    if (size != 1 && size != 2 && size != 4 && size != 8 && size != 12) return 0;
    std::memcpy(b, at, size);
    if (swap == 1 && size > 1) swap_field(b, int(size));
    if (size == 1) return b[0];
    if (size == 2) {
        uint16_t v;
        std::memcpy(&v, b, 2);
        return v;
    }
    if (size == 4) {
        uint32_t v;
        std::memcpy(&v, b, 4);
        return v;
    }
    uint64_t v;
    std::memcpy(&v, std::endian::native == std::endian::little ? b : b + size - 8, 8);
    return v;
}

static double read_float(const uint8_t* at, unsigned size, int swap) {
    const uint64_t bits = read_value(at, size, swap);
    if (size == 4) return double(std::bit_cast<float>(uint32_t(bits)));
    return std::bit_cast<double>(bits);
}

// A floating value of a size we do not read: its bytes, most significant first.
static void put_float_bytes(SsmPrintContext* ctx, const uint8_t* at, unsigned size, int swap) {
    const bool big = (swap == 1) == (std::endian::native == std::endian::little);
    ssmPutString(" 0x", ctx->put_char);
    for (unsigned i = 0; i < size; i++) put_hex(ctx, "", at[big ? i : size - 1 - i], 2);
}

static void put_enum(SsmPrintContext* ctx, const sig_value& v, uint64_t value) {
    const unsigned size = v.size;
    auto narrow = [size](uint64_t x) -> uint32_t {
        return size == 4 ? uint32_t(x) : size == 2 ? uint16_t(x) : uint8_t(x);
    };
    const std::span<const uint8_t> e = v.enum_entries;
    for (size_t off = 0; off + SIG_ENUM_SIZE <= e.size(); off += SIG_ENUM_SIZE) {
        const uint32_t entry_value = sig_u32(e, off);
        const uint32_t name = sig_u32(e, off + 4);
        if (sig_name_is_none(v.strings, name)) break;
        if (narrow(entry_value) != narrow(value)) continue;
        const std::string_view text = sig_name_at(v.strings, name);
        if (!text.data()) break;
        // One piece of output: the blank and a name cut to the print buffer.
        put_name_text(ctx, " ", text, SSM_PRINT_BUFFER - 2);
        return;
    }
    if (size == 2) put_hex(ctx, " 0x", uint16_t(value));
    else put_hex(ctx, " 0x", uint32_t(value));
}

// The C types of the type codes that are signed: enum, char, short, int,
// long, long long.
static bool signed_type(unsigned type) {
    return type == 0 || type == 1 || type == 3 || type == 5 || type == 7 || type == 17;
}

static void put_with_format(SsmPrintContext* ctx, const sig_format& f, uint64_t value, int bits, unsigned type) {
    ctx->put_char(' ');
    sig_format_integer(f, value, bits, signed_type(type), ctx->buffer, SSM_PRINT_BUFFER);
    ssmPutString(ctx->buffer, ctx->put_char);
}

static int value_bits(unsigned size) { return size >= 8 ? 64 : int(size) * 8; }

// Characters: a text, a run through "%c", a checked format per element,
// or without a format one number, or a run mixing quoted text and numbers.
static void put_chars(SsmPrintContext* ctx, const sig_value& v, const sig_format& f, uint32_t count) {
    const unsigned size = v.size;
    if (v.format == "%s") {
        // A text ends at its zero, at the end of its member, or where the
        // print buffer would be full.
        ctx->put_char(' ');
        const uint8_t* end = std::min(v.text_end ? v.text_end : v.end, v.end);
        end = std::min(end, v.address + std::min<size_t>(size_t(v.end - v.address), SSM_PRINT_BUFFER - 1));
        for (const uint8_t* p = v.address; p < end && *p; p++) ctx->put_char(*p);
        return;
    }
    auto element = [&](uint32_t i) { return uint8_t(read_value(v.address + size_t(i) * size, size, v.swap)); };
    if (v.format == "%c") {
        ctx->put_char(' ');
        for (uint32_t i = 0; i < count; i++) {
            const uint8_t c = element(i);
            ctx->put_char(printable(c) ? c : '.');
        }
        return;
    }
    if (f.takes_integer()) {
        for (uint32_t i = 0; i < count; i++) put_with_format(ctx, f, element(i), 8, v.type);
        return;
    }
    if (count == 1) {
        put_hex(ctx, " 0x", uint32_t(read_value(v.address, size, v.swap)));
        return;
    }
    bool quoted = false;
    for (uint32_t i = 0; i < count; i++) {
        const uint8_t c = element(i);
        if (printable(c) != quoted) {
            ssmPutString(quoted ? "\"" : " \"", ctx->put_char);
            quoted = !quoted;
        }
        if (quoted) ctx->put_char(c);
        else put_hex(ctx, " 0x", c, 2);
    }
    if (quoted) ctx->put_char('"');
}

static void put_value(SsmPrintContext* ctx, const sig_value& v, const sig_format& f, const uint8_t* at) {
    const unsigned size = v.size;
    const uint64_t value = read_value(at, size, v.swap);
    const bool integer_format = f.takes_integer();
    switch (v.type) {
    case 0:
        if (integer_format) put_with_format(ctx, f, value, size == 4 ? 32 : 16, v.type);
        else put_enum(ctx, v, value);
        return;
    case 3: case 4: case 5: case 6: case 7: case 8:
        if (integer_format) put_with_format(ctx, f, value, value_bits(size), v.type);
        else if (size == 2) put_hex(ctx, " 0x", uint16_t(value));
        else if (size == 4) put_hex(ctx, " 0x", uint32_t(value));
        else put_hex(ctx, " 0x", value);
        return;
    case 9: case 10: case 11:
        if (size != 4 && size != 8) {
            put_float_bytes(ctx, at, size, v.swap);
        } else if (f.takes_floating()) {
            ctx->put_char(' ');
            sig_format_floating(f, read_float(at, size, v.swap), ctx->buffer, SSM_PRINT_BUFFER);
            ssmPutString(ctx->buffer, ctx->put_char);
        } else {
            put_printf(ctx, " %g", read_float(at, size, v.swap));
        }
        return;
    case 12:
        if (integer_format) put_with_format(ctx, f, value, size == 8 ? 64 : 32, v.type);
        else if (size == 4) put_hex(ctx, " 0x", uint32_t(value));
        else put_hex(ctx, " 0x", value);
        return;
    case 17: case 18:
        if (integer_format) put_with_format(ctx, f, value, size == 8 ? 64 : 32, v.type);
        else if (size == 8) put_hex(ctx, " 0x", value);
        else put_hex(ctx, " ", uint32_t(value));
        return;
    default:
        put_hex(ctx, " 0x", uint32_t(value));
    }
}

static const uint8_t* signal_base;

static void print_field(const sig_value& v, SsmPrintContext* ctx, bool offsets) {
    if (v.flags & VAR_HIDDEN) return;
    if (ctx->first == 1) {
        ctx->first = 0;
        ssmPutString(ctx->first_separator, ctx->put_char);
        if (offsets) signal_base = v.address;
    } else {
        ssmPutString(ctx->separator, ctx->put_char);
    }
    if (offsets) put_hex(ctx, "", uint32_t(v.address - signal_base), 8, 'X', ": ");
    ssmPutString(v.name, ctx->put_char);
    ssmPutString(" =", ctx->put_char);

    // Never read behind the signal, whatever the walk handed over.
    uint32_t count = v.count;
    if (v.size != 0) count = uint32_t(std::min<uint64_t>(count, uint64_t(v.end - v.address) / v.size));
    const sig_format& f = sig_checked_format(v.format);
    if (v.type == 1 || v.type == 2) {
        put_chars(ctx, v, f, count);
        return;
    }
    for (uint32_t i = 0; i < count; i++) put_value(ctx, v, f, v.address + size_t(i) * v.size);
}

void ssm_print_field(const sig_value& value, SsmPrintContext* context) { print_field(value, context, true); }
void ose_print_field(const sig_value& value, SsmPrintContext* context) { print_field(value, context, false); }

void ssm_print_hex_dump(const uint8_t* data, uint32_t size, uint32_t offset, ssm_putc_fn put_char) {
    if (!data || size == 0) return;
    sig_int_layout offset_digits, byte_digits;
    offset_digits.conv = 'X';
    offset_digits.precision = 8;
    byte_digits.conv = 'x';
    byte_digits.precision = 2;
    char line[96];
    for (uint32_t at = 0; at < size; at += 16) {
        const uint32_t k = std::min<uint32_t>(16, size - at);
        size_t n = sig_put_integer(line, offset_digits, uint32_t(at + offset));
        line[n++] = ':';
        line[n++] = ' ';
        for (uint32_t j = 0; j < k; j++) {
            n += sig_put_integer(line + n, byte_digits, data[at + j]);
            if (j % 4 == 3) line[n++] = ' ';
        }
        // The text column starts at 48, behind the padding and two blanks.
        while (n < 46) line[n++] = ' ';
        line[n++] = ' ';
        line[n++] = ' ';
        line[n++] = '"';
        for (uint32_t j = 0; j < k; j++) line[n++] = printable(data[at + j]) ? char(data[at + j]) : '.';
        line[n++] = '"';
        line[n++] = '\n';
        line[n] = '\0';
        ssmPutString(line, put_char);
    }
}

static char ssm_buffer[SSM_PRINT_BUFFER];
static char ose_buffer[SSM_PRINT_BUFFER];

static bool table_given(sig_table table) { return table.at != SIG_NULL && !table.image.empty(); }

// The signal's record in the table, by the number at its start.
struct sig_hit {
    uint32_t sigdesc = SIG_NULL;
    std::string_view name;
    bool truncated = false;  // shorter than declared
};
static bool find_signal(sig_table table, std::span<const uint8_t> signal, sig_hit* hit) {
    uint32_t declared = 0, var_size = 0;
    if (!table_given(table) ||
        !list_sig_by_number(get_sig_no(table, signal), table, &hit->sigdesc, &hit->name, &declared, &var_size))
        return false;
    hit->truncated = signal.size() < declared;
    return true;
}

// text, the name cut to 1000 characters, after; or none without a name.
static void put_name(SsmPrintContext* ctx, const char* text, std::string_view name, const char* after,
                     const char* none) {
    if (!name.data()) {
        ssmPutString(none, ctx->put_char);
        return;
    }
    put_name_text(ctx, text, name, 1000);
    ssmPutString(after, ctx->put_char);
}

int ssm_print_signal(sig_table table, const uint8_t* signal, uint32_t size, int compress, ssm_putc_fn put_char,
                     const char* first_separator, const char* separator, int hex_on_failure) {
    SsmPrintContext ctx{put_char, 1, ssm_buffer, first_separator ? first_separator : ":\n\n",
                        separator ? separator : "\n"};
    if (!signal || size == 0) return 1;
    const std::span<const uint8_t> bytes(signal, size);
    sig_hit hit;
    if (find_signal(table, bytes, &hit)) {
        put_name(&ctx, "Signal ", hit.name, "", "Signal <SIGNAL_SYMBOL_NAME>");
        const uint32_t left = traverse_sig(table, hit.sigdesc, bytes, compress, &ctx, ssm_print_field);
        if (left != 0) {
            const uint32_t used = size - left;
            ssmPutString("\n<excess bytes>\n", put_char);
            ssm_print_hex_dump(signal + used, left, used, put_char);
        }
        if (hit.truncated) ssmPutString(" ...", put_char);
        return 0;
    }
    if (hex_on_failure) ssm_print_hex_dump(signal, size, 0, put_char);
    return 1;
}

int ssm_print_signal_name(sig_table table, uint32_t signo, ssm_putc_fn put_char) {
    if (!table_given(table)) return 0;
    SsmPrintContext ctx{put_char, 1, ssm_buffer, nullptr, nullptr};
    uint32_t cursor = SIG_NULL;
    std::string_view name;
    int hits = 0;
    while (list_sig_by_number(signo, table, &cursor, &name, nullptr, nullptr)) {
        put_name(&ctx, "", name, " ", "<SIGNAL> ");
        hits++;
    }
    return hits;
}

// The bytes no value covers, as one more value of the line.
static void ose_print_rest(SsmPrintContext* ctx, const uint8_t* rest, uint32_t size) {
    sig_value v{};
    v.name = "<hex>";
    v.address = rest;
    v.size = 1;
    v.count = uint16_t(size);
    v.format = "%02X";
    v.type = 2;
    v.end = rest + size;
    v.text_end = v.end;
    ose_print_field(v, ctx);
}

int ose_print_signal(sig_table table, const uint8_t* signal, uint32_t size, int compress, ssm_putc_fn put_char,
                     const char* first_separator, const char* separator, int hex_on_failure) {
    SsmPrintContext ctx{put_char, 1, ose_buffer, first_separator ? first_separator : " : ",
                        separator ? separator : ", "};
    if (!signal || size == 0) return 1;
    const std::span<const uint8_t> bytes(signal, size);
    sig_hit hit;
    if (find_signal(table, bytes, &hit)) {
        put_name(&ctx, "", hit.name, "", "<SIGNAL>");
        const uint32_t left = traverse_sig(table, hit.sigdesc, bytes, compress, &ctx, ose_print_field);
        if (left != 0 && hex_on_failure) ose_print_rest(&ctx, signal + size - left, left);
        if (hit.truncated) ssmPutString(" ...", put_char);
        return 0;
    }
    const int width = table_given(table) ? signo_size(table) : 0;
    const uint32_t signo = table_given(table) ? get_sig_no(table, bytes) : 0;
    if (!hex_on_failure) return 1;
    const uint8_t* rest = signal;
    uint32_t left = size;
    if (width != 0 && size >= uint32_t(width)) {
        put_printf(&ctx, "%d", int(signo));
        rest += width;
        left -= uint32_t(width);
    } else {
        ssmPutString("??", put_char);
    }
    if (left != 0) ose_print_rest(&ctx, rest, left);
    return 1;
}

int printsig(sig_table table, const uint8_t* signal, uint32_t size, int compress, ssm_putc_fn put_char,
             const char* first_separator, const char* separator) {
    return ose_print_signal(table, signal, size, compress, put_char, first_separator, separator, 1);
}
