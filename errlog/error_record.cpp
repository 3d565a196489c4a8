// Decoding and printing of one error log record.
#include "errlog/error_record.h"

#include <cstring>

#include "errlog/error_catalogue.h"
#include "errlog/error_details.h"

lg_record_fields lg_record;

// The file and process names pass through here for printing; longer names are cut.
static char lg_name_text[256];

bool lg_has_process_block(uint32_t flags, uint32_t ext_len) {
    switch (flags & (LG_FLAG_RESTART | LG_FLAG_RANK)) {
    case LG_FLAG_RESTART | LG_FLAG_RANK: return ext_len != 6;
    case LG_FLAG_RESTART: return ext_len != 5;
    default: return ext_len != 0;
    }
}

// Longest name a record is taken to hold. Only 255 bytes of a name are
// printed; without this bound a large ring without NULs would cost a lap of
// the ring for every name of every record.
constexpr uint32_t LG_NAME_MAX = 4096;

// Steps over a NUL-terminated name, at most one lap of the ring.
static void skip_name(lg_cursor& cursor) {
    const uint32_t most = lg_size < LG_NAME_MAX ? lg_size : LG_NAME_MAX;
    for (uint32_t i = 0; i < most; i++)
        if (lg_getU8(cursor) == 0) return;
}

static const char* copy_name(lg_cursor at) {
    size_t n = 0;
    while (n < sizeof lg_name_text - 1) {
        uint8_t b = lg_getU8(at);
        if (b == 0) break;
        lg_name_text[n++] = char(b);
    }
    lg_name_text[n] = '\0';
    return lg_name_text;
}

void lg_read_entry(uint32_t index) {
    lg_record = lg_record_fields{};
    if (index + 1 >= LG_MAX_ENTRIES) return;
    lg_cursor c = lg_entries[index + 1];
    uint32_t length = lg_getU32(c);
    lg_record.error_code = lg_getU32(c);
    lg_record.ext_len = lg_getU32(c) & 0xFF;
    lg_record.data_len = length - lg_record.ext_len - LG_FIXED_HEAD;
    if (lg_record.data_len > LG_MAX_DATA) lg_record.data_len = LG_OVERSIZE_DATA;
    lg_record.flags = lg_getU8(c);
    lg_record.reporter = lg_getU8(c);
    uint8_t d[3], t[3];
    for (uint8_t& b : d) b = lg_getU8(c);
    for (uint8_t& b : t) b = lg_getU8(c);
    std::snprintf(lg_record.date, sizeof lg_record.date, "%02d-%02d-%02d", d[0], d[1], d[2]);
    std::snprintf(lg_record.time, sizeof lg_record.time, "%02d:%02d:%02d", t[0], t[1], t[2]);

    if (lg_has_process_block(lg_record.flags, lg_record.ext_len)) {
        lg_record.queued_signals = lg_getU32(c);
        lg_record.owned_signals = lg_getU32(c);
        lg_record.line = lg_getU32(c);
        lg_record.file = c;
        skip_name(c);
        lg_record.process = c;
        skip_name(c);
    }
    if (lg_record.flags & LG_FLAG_RESTART) {
        lg_record.restart_type = lg_getU8(c);
        lg_record.pmd_identity = lg_getU32(c);
    }
    if (lg_record.flags & LG_FLAG_RANK) lg_record.restart_rank = lg_getU8(c);
    lg_record.data = c;
}

static const char* reporter_words(uint32_t reporter) {
    switch (reporter) {
    case 0: return "(Reported by OSE Kernel)\n";
    case 1: return "(Reported via the OSE error API)\n";
    case 2: return "(Reported via TAVLO:ERI IF)\n";
    default: return "";
    }
}

static const char* restart_type_words(uint32_t type) {
    switch (type) {
    case 0: return "Program\n";
    case 1: return "Processor\n";
    case 2: return "Warning\n";
    default: return "";
    }
}

static const char* const restart_rank_words[8] = {
    "", "Cold with test", "Cold", "OS switch", "Refresh", "Warm", "Domain", "Application",
};

static void print_description(FILE* stream, const errOse_error& row) {
    std::fprintf(stream, "\n       Error Description  :       [%s]\n", row.name);
    const char* rest = row.text;
    for (;;) {
        const char* lf = std::strchr(rest, '\n');
        if (!lf) {
            std::fprintf(stream, "       %s\n", rest);
            return;
        }
        std::fprintf(stream, "       %.*s\n", int(lf - rest), rest);
        rest = lf + 1;
        if (*rest == '\0') return;
    }
}

static void print_data(FILE* stream, uint32_t kind) {
    switch (kind) {
    case LG_DETAIL_NONE: break;
    case LG_DETAIL_EXTRA:
    case LG_DETAIL_WORD:
    case LG_DETAIL_WORD_40: {
        lg_cursor c = lg_record.data;
        std::fprintf(stream, "\n       Extra information:  0x%08lX\n", (unsigned long)lg_getU32(c));
        break;
    }
    case LG_DETAIL_FRAME:
        if (lg_record.data_len == LG_FRAME_SIZE) lg_print_exception(stream, lg_record.data);
        break;
    case LG_DETAIL_REGDUMP:
        if (lg_record.data_len >= LG_REGDUMP_SIZE) lg_print_regdump(stream, lg_record.data);
        else lg_print_error_info(stream, lg_record.data_len);
        break;
    case LG_DETAIL_HEAP: lg_print_heap_info(stream, lg_record.data); break;
    default: lg_print_error_info(stream, lg_record.data_len); break;
    }
}

void lg_print_entry(FILE* stream, uint32_t index) {
    const lg_record_fields& r = lg_record;
    std::fputs("\n--------------------------------------", stream);
    std::fputs("--------------------------------------\n", stream);
    std::fprintf(stream, "%2ld.    Time           :  %s, %s\n", long(index) + 1, r.date, r.time);
    std::fprintf(stream, "       Error code     :  0x%08lX ", (unsigned long)r.error_code);
    std::fputs(reporter_words(r.reporter), stream);

    uint32_t code = r.error_code & 0x7FFFFFFF;
    if (r.reporter == 2 && code == LG_TAVLO_SOFT_WATCHDOG) {
        lg_print_load_report(stream);
        return;
    }

    if (lg_has_process_block(r.flags, r.ext_len)) {
        lg_cursor c = r.file;
        if (lg_getU8(c) != 0)
            std::fprintf(stream, "       File:line      :  %s:%ld\n", copy_name(r.file), long(int32_t(r.line)));
        c = r.process;
        if (lg_getU8(c) != 0) std::fprintf(stream, "       Process        :  %s\n", copy_name(r.process));
        std::fprintf(stream, "       Queued signals :  %ld\n", long(int32_t(r.queued_signals)));
        std::fprintf(stream, "       Owned signals  :  %ld\n", long(int32_t(r.owned_signals)));
    }

    if (r.flags & LG_FLAG_RESTART) {
        std::fprintf(stream, "       Restart type   :  %s", restart_type_words(r.restart_type));
        std::fprintf(stream, "       OS Run Mode    :  %s\n", r.flags & LG_FLAG_BACKUP ? "BACKUP" : "BASIC");
        if (r.pmd_identity != 0)
            std::fprintf(stream, "       PMD identity   :  %#010lx\n", (unsigned long)r.pmd_identity);
        else
            std::fputs("       PMD identity   :  -\n", stream);
    } else {
        std::fputs("       OS Run Mode    :  BACKUP\n", stream);
    }
    if (r.flags & LG_FLAG_RANK)
        std::fprintf(stream, "       Restart rank   :  %s\n", restart_rank_words[r.restart_rank & 7]);

    if (r.reporter == 2 && code == LG_TAVLO_WRITE_ADDRESS_ZERO) {
        std::fputs("\n       Error Description:       [CS_WRITEADDRESSZERO]\n", stream);
        std::fputs("       A process, running in supervisor mode, have been writing\n", stream);
        std::fputs("       to address zero. This is a fatal fault. The hexdump below\n", stream);
        std::fputs("       is a 32 byte image from address 0x00000000.\n\n", stream);
        lg_hexdump(stream, r.data, r.data_len, 8);
        return;
    }

    const errOse_table* table = nullptr;
    if (r.reporter == 0) {
        // In the register dump error the upper half holds the exception offset.
        if ((r.error_code & 0xFFFF) != LG_REGDUMP_ERROR) {
            if (const char* call = lg_system_call(r.error_code))
                std::fprintf(stream, "       System call    :  %s\n", call);
        }
        table = &errOse_kernel_err;
    } else if (r.reporter == 1) {
        table = lg_find_component(r.error_code, [stream](const errOse_table& hit) {
            std::fprintf(stream, "       OSE Component  :  %s\n", hit.name);
        });
    }
    if (!table) {
        lg_print_error_info(stream, r.data_len);
        return;
    }
    const errOse_error* row = lg_find_error(*table, r.error_code);
    if (row->code != 0) print_description(stream, *row);
    print_data(stream, row->kind);
}
