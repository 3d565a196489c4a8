#include <cstdio>
#include <cstring>
#include <string>

#include "cli/report.h"
#include "errlog/error_log.h"
#include "errlog/te_log.h"
#include "nexus/nexus.h"
#include "pmd/section_payload.h"
#include "render/dump_printers.h"
#include "render/process_list.h"
#include "render/ramlog.h"
#include "render/section_blocks.h"

int te_heading_done = 0;

run_step print_section(FILE* out, krd_file* f, krd_section* chain, krd_options* options) {
    const std::string& title = chain->title;
    const char* t = title.c_str();
    while (*t == ' ') t++;
    if (*t == '[') {
        std::fprintf(out, "\n%s\n", t);
    } else if (title == "TRACE AND ERROR") {
        std::fputc('\n', out);
        if (!te_heading_done) {
            std::fprintf(out, "\n[%s]\n\n", t);
            te_heading_done = 1;
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

// The parameter's value: what stands behind the key and its one separator.
// Every T&E and swap-in section asks, so the section is read on the first
// lookup in a dump only; a failed read is told again at each.
static std::string system_param_value(FILE* out, krd_file* f, const char* key) {
    static uint64_t read_from = 0;  // the dump's serial
    static bool have_params = false;
    static system_params params;
    if (read_from != f->serial) {
        read_from = f->serial;
        krd_chain chain = krd_find_section(f, nullptr, "SYSTEM PARAMETERS");
        have_params = chain != nullptr;
        if (chain) params = read_system_params(f, chain.get());
        krd_free_chain(chain);
    }
    std::string value;
    if (have_params) {
        const char* line = system_param_line(out, params, key);
        size_t skip = std::strlen(key) + 1;
        if (line && std::strlen(line) > skip) value = line + skip;
    }
    return value;
}

// The raw NPC trace beside the dump, in hex and in binary.
static bool write_nexus_files(std::span<const uint8_t> payload) {
    std::string hex_name = std::string(dump_file_name) + ".nexus.hex";
    std::string bin_name = std::string(dump_file_name) + ".nexus.bin";
    FILE* hex = std::fopen(hex_name.c_str(), "w");
    if (!hex) {
        std::perror("fopen:");
        return false;
    }
    print_hex_bytes(hex, payload);
    std::fclose(hex);
    FILE* bin = std::fopen(bin_name.c_str(), "w");
    if (!bin) {
        std::perror("fopen:");
        return false;
    }
    std::fwrite(payload.data(), 1, payload.size(), bin);
    std::fclose(bin);
    return true;
}

static bool is_binary(std::span<const uint8_t> p) {
    for (uint8_t b : p)
        if ((b < 32 && b != 9 && b != 10 && b != 13) || b >= 128) return true;
    return false;
}

run_step print_memory_block(FILE* out, krd_file* f, krd_section* chain, krd_options* options, uint8_t first_pass) {
    krd_payload payload;
    switch (krd_read_chain_payload(f, chain, &payload)) {
    case KRD_PAYLOAD_CORRUPT: std::fputs("  Corrupt Section.\n", out); return RUN_GO_ON;
    case KRD_PAYLOAD_EMPTY: std::fprintf(out, "\n %s is Empty !!!! \n", chain->title.c_str()); return RUN_GO_ON;
    case KRD_PAYLOAD_INFLATE: std::fputs("  Cannot decompress section.\n", out); break;
    case KRD_PAYLOAD_OK: break;
    }
    std::span<uint8_t> buf(payload.bytes.get(), payload.size);
    const std::string& title = chain->title;

    if (title == "ERROR HANDLER PARAMETERS") {
        auto e = krd_read_errinfo(f, chain);
        if (!e) {
            std::fputs("  Cannot read error information.\n", out);
        } else {
            std::fprintf(out, "  user called :  %d ", int(e->user_called));
            std::fprintf(out, "(%s)\n", e->user_called ? "Applikation" : "Kernel");
            std::fprintf(out, "  error code  :  0x%08x\n", e->error_code);
            std::fprintf(out, "  extra       :  0x%08x\n", e->extra);
        }
    } else if (title == "Error log:" || title == "ERROR LOG") {
        int r = lg_print_dump(out, buf, 0);
        if (r == 1 || r == 2) {
            std::fputs(r == 1 ? "  Error log area is corrupt.\n" : "  Error log area is empty.\n", out);
            print_hex_dump(out, buf, 0);
        }
    } else if (title == "TRACE AND ERROR") {
        std::string timer = system_param_value(out, f, "krn/system_timer");
        int r = te_print_log(out, buf, timer.c_str());
        if (r != 0) std::fprintf(out, "  Cannot read T&E log [trace ecode=%d]\n", r);
    } else if (title == "NPC TRACE BUFFER") {
        if (nexus_files == 1 && !write_nexus_files(buf)) return RUN_GO_ON;
        zdb_open_result symbols;
        int r = handle_nexus_log(out, f, options, buf, &symbols);
        if (!symbols.ok()) {
            print_symbol_file_failure(symbols);
            return RUN_ENDED;
        }
        if (r != 0) std::fprintf(out, "  Cannot read NPC Trace Buffer [trace ecode=%d]\n", r);
    } else if ((title.starts_with("REGISTERS ") || title.starts_with("CPU registers")) && buf[0] != ' ' &&
               (buf.size() < 2 || buf[1] != ' ')) {
        std::fputc('\n', out);
        print_reg_text(out, buf);
    } else if (title.starts_with("RAMLOG")) {
        print_ramlog(out, buf);
    } else if (title.starts_with("Stack for ") || title.find("STACK FOR") != std::string::npos) {
        std::fputc('\n', out);
        print_stack_dump(out, buf, chain->image->address);
    } else if (!chain->is_text) {
        std::fputc('\n', out);
        if (is_binary(buf)) print_hex_dump(out, buf, chain->image->address);
        else print_text_dump(out, buf);
    } else if (first_pass == 1) {
        if (title == "PROCESS LIST") get_process_list(buf, options);
        else std::fputs("Error: No PROCESS LIST section found.\n", stderr);
    } else if (title.starts_with("SIGNAL QUEUE FOR PROCESS")) {
        unsigned pid = 0;
        std::sscanf(title.c_str(), "SIGNAL QUEUE FOR PROCESS %x", &pid);
        print_signalqueue(out, buf, pid, options);
    } else if (title.starts_with("KERNEL TRACE CONTENTS")) {
        print_kernel_trace_signals(out, buf, options);
    } else if (title.starts_with("PROCESS LIST") && (options->flags & KRD_OPT_NEXUS_NAMES)) {
        print_text_process_dump(out, buf);
    } else if (title == "PROCESS SWAP IN LIST") {
        std::string board = system_param_value(out, f, "target_board");
        print_text_process_swap_dump(out, buf, board.c_str());
    } else {
        print_text_dump(out, buf);
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
