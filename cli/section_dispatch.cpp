// The body of a memory block: its payload inflated, then the first rule of
// memory_rules that fits the block chooses the renderer. The order of the
// rows is the order of the decision: a later row is tried only when every
// row above it has not fitted (so no text-marked rule sees an unmarked block).
#include <cstdio>
#include <string_view>

#include "cli/report.h"
#include "errlog/error_log.h"
#include "errlog/te_log.h"
#include "nexus/nexus.h"
#include "pmd/section_payload.h"
#include "pmd/section_titles.h"
#include "render/dump_printers.h"
#include "render/process_list.h"
#include "render/ramlog.h"
#include "render/section_blocks.h"

namespace {

// One memory block on its way to a renderer.
struct memory_block {
    FILE* out;
    krd_file* f;
    krd_section* chain;
    krd_options* options;
    std::span<uint8_t> buf;
    uint8_t first_pass;
    std::string_view title;  // the first node's
};

enum class title_test : uint8_t {
    exact,     // the title is `text`
    prefix,    // the title begins with `text`
    when,      // the rule's own test of title, payload or options
    always,    // the last rule
};

struct memory_rule {
    title_test test;
    std::string_view text;
    bool (*when)(const memory_block&);
    run_step (*print)(const memory_block&);
};

bool fits(const memory_rule& rule, const memory_block& b) {
    switch (rule.test) {
    case title_test::exact: return b.title == rule.text;
    case title_test::prefix: return b.title.starts_with(rule.text);
    case title_test::when: return rule.when(b);
    case title_test::always: return true;
    }
    return false;
}

bool is_binary(std::span<const uint8_t> p) {
    for (uint8_t b : p)
        if ((b < 32 && b != 9 && b != 10 && b != 13) || b >= 128) return true;
    return false;
}

// ---- Tests of the rules that need more than one title test ----

bool is_error_log(const memory_block& b) { return b.title == "Error log:" || b.title == "ERROR LOG"; }

// A register text begins with a register's name: a blank in either of the
// first two bytes is the layout of another kind of text.
bool is_register_text(const memory_block& b) {
    return is_register_text_title(b.title) && b.buf[0] != ' ' && (b.buf.size() < 2 || b.buf[1] != ' ');
}

bool is_stack_dump(const memory_block& b) { return is_stack_dump_title(b.title); }
bool is_not_text_marked(const memory_block& b) { return !b.chain->is_text; }
bool is_first_pass(const memory_block& b) { return b.first_pass == 1; }

bool is_named_process_list(const memory_block& b) {
    return b.title.starts_with("PROCESS LIST") && (b.options->flags & KRD_OPT_NEXUS_NAMES);
}

// ---- Renderers, in the order of the rules ----

run_step print_errinfo_block(const memory_block& b) {
    auto e = krd_read_errinfo(b.f, b.chain);
    if (!e) {
        std::fputs("  Cannot read error information.\n", b.out);
        return RUN_GO_ON;
    }
    std::fprintf(b.out, "  user called :  %d ", int(e->user_called));
    std::fprintf(b.out, "(%s)\n", e->user_called ? "Applikation" : "Kernel");
    std::fprintf(b.out, "  error code  :  0x%08x\n", e->error_code);
    std::fprintf(b.out, "  extra       :  0x%08x\n", e->extra);
    return RUN_GO_ON;
}

run_step print_error_log_block(const memory_block& b) {
    int r = lg_print_dump(b.out, b.buf, 0);
    if (r == 1 || r == 2) {
        std::fputs(r == 1 ? "  Error log area is corrupt.\n" : "  Error log area is empty.\n", b.out);
        print_hex_dump(b.out, b.buf, 0);
    }
    return RUN_GO_ON;
}

run_step print_te_block(const memory_block& b) {
    std::string timer = system_param_value(b.out, b.f, "krn/system_timer");
    int r = te_print_log(b.out, b.buf, timer.c_str());
    if (r != 0) std::fprintf(b.out, "  Cannot read T&E log [trace ecode=%d]\n", r);
    return RUN_GO_ON;
}

run_step print_npc_block(const memory_block& b) {
    if (the_run().nexus_files == 1 && !write_nexus_files(b.buf)) return RUN_GO_ON;
    zdb_open_result symbols;
    int r = handle_nexus_log(b.out, b.f, b.options, b.buf, &symbols);
    if (!symbols.ok()) {
        print_symbol_file_failure(symbols);
        return RUN_ENDED;
    }
    if (r != 0) std::fprintf(b.out, "  Cannot read NPC Trace Buffer [trace ecode=%d]\n", r);
    return RUN_GO_ON;
}

run_step print_register_text_block(const memory_block& b) {
    std::fputc('\n', b.out);
    print_reg_text(b.out, b.buf);
    return RUN_GO_ON;
}

run_step print_ramlog_block(const memory_block& b) {
    print_ramlog(b.out, b.buf);
    return RUN_GO_ON;
}

run_step print_stack_block(const memory_block& b) {
    std::fputc('\n', b.out);
    print_stack_dump(b.out, b.buf, b.chain->image->address);
    return RUN_GO_ON;
}

// A block not marked as text is shown as it is: text if every byte is.
run_step print_unmarked_block(const memory_block& b) {
    std::fputc('\n', b.out);
    if (is_binary(b.buf)) print_hex_dump(b.out, b.buf, b.chain->image->address);
    else print_text_dump(b.out, b.buf);
    return RUN_GO_ON;
}

// The first pass reads the pid table and prints nothing into the report.
run_step read_pid_table_block(const memory_block& b) {
    if (b.title == "PROCESS LIST") get_process_list(b.buf, b.options);
    else std::fputs("Error: No PROCESS LIST section found.\n", stderr);
    return RUN_GO_ON;
}

run_step print_signal_queue_block(const memory_block& b) {
    unsigned pid = 0;
    std::sscanf(b.chain->title.c_str(), "SIGNAL QUEUE FOR PROCESS %x", &pid);
    print_signalqueue(b.out, b.buf, pid, b.options);
    return RUN_GO_ON;
}

run_step print_kernel_trace_block(const memory_block& b) {
    print_kernel_trace_signals(b.out, b.buf, b.options);
    return RUN_GO_ON;
}

run_step print_process_list_block(const memory_block& b) {
    print_text_process_dump(b.out, b.buf);
    return RUN_GO_ON;
}

run_step print_swap_list_block(const memory_block& b) {
    std::string board = system_param_value(b.out, b.f, "target_board");
    print_text_process_swap_dump(b.out, b.buf, board.c_str());
    return RUN_GO_ON;
}

run_step print_text_dump_block(const memory_block& b) {
    print_text_dump(b.out, b.buf);
    return RUN_GO_ON;
}

using enum title_test;
constexpr memory_rule memory_rules[] = {
    {exact, "ERROR HANDLER PARAMETERS", nullptr, print_errinfo_block},
    {when, {}, is_error_log, print_error_log_block},
    {exact, "TRACE AND ERROR", nullptr, print_te_block},
    {exact, "NPC TRACE BUFFER", nullptr, print_npc_block},
    {when, {}, is_register_text, print_register_text_block},
    {prefix, "RAMLOG", nullptr, print_ramlog_block},
    {when, {}, is_stack_dump, print_stack_block},
    {when, {}, is_not_text_marked, print_unmarked_block},
    // From here on every block is marked as text.
    {when, {}, is_first_pass, read_pid_table_block},
    {prefix, "SIGNAL QUEUE FOR PROCESS", nullptr, print_signal_queue_block},
    {prefix, "KERNEL TRACE CONTENTS", nullptr, print_kernel_trace_block},
    {when, {}, is_named_process_list, print_process_list_block},
    {exact, "PROCESS SWAP IN LIST", nullptr, print_swap_list_block},
    {always, {}, nullptr, print_text_dump_block},
};

}  // namespace

run_step print_memory_block(FILE* out, krd_file* f, krd_section* chain, krd_options* options, uint8_t first_pass) {
    krd_payload payload;
    switch (krd_read_chain_payload(f, chain, &payload)) {
    case KRD_PAYLOAD_CORRUPT: std::fputs("  Corrupt Section.\n", out); return RUN_GO_ON;
    case KRD_PAYLOAD_EMPTY: std::fprintf(out, "\n %s is Empty !!!! \n", chain->title.c_str()); return RUN_GO_ON;
    case KRD_PAYLOAD_INFLATE: std::fputs("  Cannot decompress section.\n", out); break;
    case KRD_PAYLOAD_OK: break;
    }
    const memory_block block{out, f, chain, options, {payload.bytes.get(), payload.size}, first_pass, chain->title};
    for (const memory_rule& rule : memory_rules)
        if (fits(rule, block)) return rule.print(block);
    return RUN_GO_ON;
}
