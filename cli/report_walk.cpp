#include <cstring>
#include <ctime>

#include "cli/report.h"
#include "render/process_list.h"
#include "support/text.h"

void print_dump_header(FILE* out, krd_file* f) {
    std::fputs("\n[OUTPUT OF DUMP INFORMATION]\n\n", out);
    std::fprintf(out, "  KRD Product ID: %s\n", KRD_PRODUCT_ID);
    std::fprintf(out, "  KRD Version   : %s\n\n", KRD_VERSION);
    auto header = krd_get_header(f);
    if (!header) {
        std::fputs("  Corrupt header.\n", out);
        return;
    }
    std::fprintf(out, "  Dump identity :   0x%08x\n", header->dump_id);
    time_t t = time_t(f->time_sec);
    struct tm tm {};
    gmtime_r(&t, &tm);
    std::fprintf(out, "  Dump created  :   %4d-%02d-%02d  %02d:%02d:%02d.%d\n", tm.tm_year + 1900, tm.tm_mon + 1,
                 tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec, int(f->time_usec));
}

const char* find_process_name(const char* title) {
    const char* zero = std::strchr(title, '0');
    if (!zero || zero[1] == '\0') return nullptr;
    const char* d = zero + 2;
    size_t n = std::strlen(d);
    if (n > 10) return nullptr;
    char key[32] = "0x";
    size_t at = 2;
    if (n > 0)
        for (size_t z = 9 > n ? 9 - n : 0; z > 0; z--) key[at++] = '0';
    std::memcpy(key + at, d, n + 1);
    if (run_process_rows().process_row_count == 0) return nullptr;
    const process_row* row = find_process_row_10(key);
    return row ? row->name : nullptr;
}

void print_section_line(FILE* out, krd_file*, krd_section* chain, uint32_t flags, uint32_t* base_sec,
                        uint32_t* base_usec) {
    uint32_t total = 0;
    for (krd_section* n = chain; n; n = n->next.get()) total += n->size;
    std::fprintf(out, "  %6d     ", int(total));
    if (flags & KRD_OPT_TIME) {
        if (*base_sec == 0 && *base_usec == 0) {
            *base_sec = chain->time_sec;
            *base_usec = chain->time_usec;
            std::fprintf(out, " [%d.%06d ]  ", 0, 0);
        } else {
            uint32_t diff = (chain->time_sec - *base_sec) * 1000000u + (chain->time_usec - *base_usec);
            if (flags & KRD_OPT_TIME_RELATIVE) {
                *base_sec = chain->time_sec;
                *base_usec = chain->time_usec;
            }
            std::fprintf(out, " [%d.%06d ]  ", int(diff / 1000000), int(diff % 1000000));
        }
    }
    const char* title = chain->title.c_str();
    const char* name = nullptr;
    if (std::strncmp(title, "SIGNAL QUEUE FOR PROCESS", 24) == 0) name = find_process_name(title);
    if (name) std::fprintf(out, "%s %s\n", title, name);
    else std::fprintf(out, "%s\n", title);
}

run_step print_dump_sections(FILE* out, krd_file* f, krd_options* options) {
    if (options->flags & KRD_OPT_ERROR) {
        krd_chain c = krd_find_section(f, nullptr, "ERROR CODE");
        if (!c) c = krd_find_section(f, nullptr, "[GENERAL INFORMATION]");
        return c ? print_section(out, f, c.get(), options) : RUN_GO_ON;
    }
    const bool list = options->flags & KRD_OPT_LIST;
    if (list) {
        std::fputs("\n   Sections included in dump information:\n\n", out);
        if (options->flags & KRD_OPT_TIME) std::fputs("   Size       Timestamp    Section name\n", out);
        else std::fputs("   Size      Section name\n", out);
        std::fputs("   =======================================", out);
        std::fputs("==========================================\n", out);
    }
    uint32_t cursor = 0, base_sec = 0, base_usec = 0;
    if (krd_chain plist = krd_find_section(f, nullptr, "PROCESS LIST")) load_process_rows(out, f, plist.get());

    run_step step = RUN_GO_ON;
    krd_chain chain = krd_find_section(f, &cursor, "");
    if (chain) {
        if ((options->flags & KRD_OPT_ZIP) && handle_sigsymb_file(out, options) != 0) return RUN_GO_ON;
        const char* filter = options->section_filter ? options->section_filter : "";
        while (chain) {
            if (list) print_section_line(out, f, chain.get(), options->flags, &base_sec, &base_usec);
            else if (xstrcasestr(chain->title.c_str(), filter)) step = print_section(out, f, chain.get(), options);
            krd_free_chain(chain);
            if (step == RUN_ENDED) break;
            if (!(options->flags & KRD_OPT_CONTINUE) && options->sigsym_failed == 1) break;
            chain = krd_get_section(f, &cursor);
        }
    }
    if (run_process_rows().process_row_capacity != 0) free_process_rows();
    if (options->flags & KRD_OPT_ZIP) {
        ssmUnloadAll();
        free_process_list();
    }
    return step;
}
