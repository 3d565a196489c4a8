// The call trace after the report: per process the address registers
// translated, then the stack walked along the back chain.
#include <unistd.h>

#include <memory>

#include "support/out_buffer.h"
#include "support/text.h"
#include "symbols/address_print.h"
#include "symbols/calltrace.h"
#include "symbols/cross_tool.h"
#include "symbols/stack_walk.h"

namespace {

struct trace_context {
    zdb_file* symbols;
    const lm_list* list;
    const stack_images* stacks;
    const krd_options* options;
    const char* product_id;
};

struct register_key {
    const char* key;
    const char* format;
};
constexpr register_key address_registers[] = {
    {"PC", "  PC  = %08x  "},
    {"RA", "  RA  = %08x  "},
    {"LR", "  LR  = %08x  "},
    {"DAR", "  DAR = %08x  "},
};

void print_one_trace(out_buffer& out, const trace_context& ctx, const register_set& set) {
    auto print_addr = [&ctx](out_buffer& o, uint32_t addr) {
        print_address_to(o, ctx.symbols, ctx.list, addr, ctx.options, ctx.product_id);
    };
    out_printf(out, "\n\n[%s]\n\n", set.title.c_str());
    if (!ctx.list) out_printf(out, "  info: cannot find load module information in pmd file\n");
    if (ctx.stacks->images.empty()) out_printf(out, "  info: cannot find call stack information in pmd file\n");
    out_printf(out, "  Translation of address registers:\n");
    for (const register_key& r : address_registers) {
        uint32_t value;
        if (!find_register(set.text, r.key, &value)) continue;
        out_printf(out, r.format, value);
        print_addr(out, value);
    }
    out_printf(out, "\n  Stacktrace : \n");
    uint32_t sp = 0;
    if (find_register(set.text, "R1", &sp) && sp != 0) {
        out_printf(out, "  Using stackpointer  : %08x\n", sp);
        print_stack_walk(out, *ctx.stacks, sp, print_addr);
    }
    out.put('\n');
}

// Every address the traces will ask the tool for, asked in one go per file.
void prefetch_answers(const trace_context& ctx, const std::vector<register_set>& sets) {
    if (cross_tool_path().empty()) return;
    std::vector<cross_tool_request> requests;
    auto want = [&](uint32_t addr) {
        address_plan plan = plan_address(ctx.symbols, ctx.list, addr, ctx.options, ctx.product_id);
        if (!plan.tool_file.empty()) requests.push_back({plan.tool_file, plan.lookup});
    };
    for (const register_set& set : sets) {
        if (!xstrcasestr(set.title.c_str(), ctx.options->section_filter)) continue;
        uint32_t value;
        for (const register_key& r : address_registers)
            if (find_register(set.text, r.key, &value)) want(value);
        if (find_register(set.text, "R1", &value) && value != 0) {
            uint32_t end_sp;
            walk_stack(*ctx.stacks, value, [&](const stack_frame& fr) { want(fr.saved_lr); }, &end_sp);
        }
    }
    cross_tool_prefetch(requests);
}

}  // namespace

zdb_open_result print_calltrace(FILE* stream, krd_file* f, krd_options* options) {
    zdb_file symbols;
    zdb_open_result opened = zdb_open_file(&symbols, options->symbol_file);
    if (!opened.ok()) return opened;
    std::string product_id;
    if (options->symbol_file && access(options->symbol_file, F_OK) == 0) product_id = lm_product_id(options->symbol_file);

    lm_table list = parse_lm_table(f);
    stack_images stacks = read_stack_images(f);
    opened = attach_symbols_lm_table(list.get(), options);
    if (!opened.ok()) {
        zdb_close_file(&symbols);
        return opened;
    }

    std::vector<register_set> sets;
    if (options->stack_pointer != 0) sets.push_back(user_register_set(options->stack_pointer));
    else sets = read_register_sets(f);

    {
        auto out = std::make_unique<out_buffer>(stream);
        if (sets.empty()) {
            out_printf(*out, "  [CALLTRACE]\n\n  info: cannot find CPU register information in pmd file\n");
        } else {
            trace_context ctx{&symbols, list.get(), &stacks, options, product_id.c_str()};
            prefetch_answers(ctx, sets);
            for (const register_set& set : sets)
                if (xstrcasestr(set.title.c_str(), options->section_filter)) print_one_trace(*out, ctx, set);
        }
    }

    list.reset();
    zdb_close_file(&symbols);
    print_pc_addr_release();
    cross_tool_close_all();
    return {};
}
