#include <cstdio>
#include <cstring>
#include <string>

#include "cli/report.h"
#include "render/dump_printers.h"
#include "render/section_blocks.h"

run_step print_section(FILE* out, krd_file* f, krd_section* chain, krd_options* options) {
    const std::string& title = chain->title;
    const char* t = title.c_str();
    while (*t == ' ') t++;
    if (*t == '[') {
        std::fprintf(out, "\n%s\n", t);
    } else if (title == "TRACE AND ERROR") {
        std::fputc('\n', out);
        if (!the_run().te_heading_done) {
            std::fprintf(out, "\n[%s]\n\n", t);
            the_run().te_heading_done = 1;
        }
    } else if (title.starts_with("SIGNAL QUEUE FOR PROCESS")) {
        std::fputc('\n', out);
        const char* name = find_process_name(title.c_str());
        if (name) std::fprintf(out, "\n[%s %s]\n", t, name);
        else std::fprintf(out, "\n[%s]\n", t);
    } else {
        std::fprintf(out, "\n[%s]\n", t);
    }

    switch (chain->kind) {
    case KRD_KIND_ERROR: print_error_info(out, f, chain); break;
    case KRD_KIND_MEMORY: return print_memory_block(out, f, chain, options, 0);
    case KRD_KIND_PROGRAM: print_program_list(out, f, chain); break;
    case KRD_KIND_REGISTER: print_register_block(out, f, chain); break;
    case KRD_KIND_TEXT: print_text_block(out, f, chain); break;
    case KRD_KIND_SIGNAL: print_signal_block(out, f, chain); break;
    default: break;
    }
    return RUN_GO_ON;
}

void print_signal_block(FILE* out, krd_file* f, krd_section* chain) {
    auto sig = krd_read_sigdef_info(f, chain);
    if (!sig) {
        std::fputs("This sections signal definition area cannot be read.\n", out);
        return;
    }
    // The size word and the bytes the block really carries may disagree.
    std::span<const uint8_t> data(sig->data);
    if (data.size() > sig->size) data = data.first(sig->size);
    if (sig->signo == KRD_KERNEL_TRACE_SIGNO) {
        print_trace_sect(out, data);
    } else if (sig->has_data) {
        std::fputs("\n  Signal data:\n", out);
        print_hex_dump(out, data, 0);
    } else {
        std::fputs("Cannot do anything with this section.\n", out);
    }
}
