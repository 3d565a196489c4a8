// One address of a call trace: the load module that holds it, the address as
// linked in the symbol file, and function, file and line for it.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "run/krd_run.h"
#include "symbols/iberty.h"
#include "support/out_buffer.h"
#include "symbols/address_print.h"
#include "symbols/cross_tool.h"

namespace {

// Demangler options per -C style: 1 leaves out return types, 2 shows them.
constexpr int demangle_options[] = {0, 256, DMGL_PARAMS | DMGL_VERBOSE | DMGL_TYPES | DMGL_GNU_V3};

const char* info_string(const zdb_addr_info& info, uint32_t offset) {
    return offset < info.text.size() ? info.text.c_str() + offset : "";
}

void print_tool_answer(out_buffer& out, const cross_tool_answer& a) {
    if (a.function.starts_with("??") && a.position.starts_with("??")) out.put('\n');
    else out_printf(out, "%s   %s  \n", a.position.c_str(), a.function.c_str());
}

void tell_tool_missing() {
    int& told = the_run().cross_tool_missing_told;
    if (told) return;
    told = 1;
    std::fprintf(stderr, "krd: cross tool %s not found, addresses are translated in process\n", CROSS_TOOL_NAME);
}

}  // namespace

// What the cross tool would answer, from the in-process translator, for a
// run where no tool can be found: the innermost function's name demangled as
// the tool's -C does, and the position as the tool writes it ("??" for an
// unknown file, "?" for an unknown line, "??:0" for an unknown address).
cross_tool_answer in_process_answer(zdb_file* file, uint32_t lookup) {
    zdb_addr_result r = file ? zdb_translate_addr(file, lookup) : nullptr;
    if (!r) return cross_tool_cut_answer("??", "??:0", 2);
    std::string function = info_string(*r, r->tool_function_offset ? r->tool_function_offset : r->function_offset);
    if (char* demangled = cplus_demangle(function.c_str(), DMGL_PARAMS | DMGL_ANSI)) {
        function = demangled;
        std::free(demangled);
    }
    if (function.empty()) function = "??";

    std::string path;
    if (r->tool_path_offset) {
        path = info_string(*r, r->tool_path_offset);
    } else {
        // A DWARF 1 record: the unit's name, behind its directory if relative.
        const char* unit = info_string(*r, r->path_a_offset);
        const char* dir = info_string(*r, r->path_b_offset);
        path = *unit == '/' || !*dir || !*unit ? unit : std::string(dir) + "/" + unit;
    }
    std::string position = (path.empty() ? "??" : path) + ":";
    position += r->line > 0 ? std::to_string(r->line) : "?";
    return cross_tool_cut_answer(function, position, 2);
}

void print_in_process(out_buffer& out, zdb_file* file, uint32_t lookup, uint32_t demangle_style) {
    zdb_addr_result r = file ? zdb_translate_addr(file, lookup) : nullptr;
    if (r) {
        const char* a = info_string(*r, r->path_a_offset);
        const char* b = info_string(*r, r->path_b_offset);
        if (*a && *b) {
            // The two readers store directory and file in opposite order.
            const char* dir = *a == '/' ? a : b;
            const char* name = dir == a ? b : a;
            out_printf(out, "%s/%s:%d  ", dir, name, int(r->line));
        } else if (*b) {
            out_printf(out, "%s:%d  ", b, int(r->line));
        } else {
            out_printf(out, "??:0  ");
        }
        if (r->function_offset != 0) {
            const char* raw = info_string(*r, r->function_offset);
            char* demangled = nullptr;
            if (demangle_style >= 1 && demangle_style <= 2)
                demangled = cplus_demangle_v3(raw, demangle_options[demangle_style]);
            out_printf(out, "%s", demangled ? demangled : raw);
            std::free(demangled);
        }
    }
    out.put('\n');
}

address_plan plan_address(zdb_file* symbols, const lm_list* list, uint32_t addr, const krd_options* options,
                          const char* product_id) {
    address_plan plan;
    plan.lm = find_load_module(list, addr);
    const load_module* lm = plan.lm;
    const bool have_symbol_file = options->symbol_file != nullptr;
    if (!lm && !have_symbol_file) {
        plan.system_call = addr >= SYSCALL_FIRST && addr <= SYSCALL_LAST;
        plan.nothing_to_ask = true;
        return plan;
    }

    const uint32_t module_addr = lm ? addr - lm->code_start + LM_LINK_BASE : 0;
    plan.in_use = symbols;
    if (!have_symbol_file) {
        plan.lookup = lm->absolute ? addr : module_addr;
        if (lm->symbols) plan.in_use = lm->symbols.get();
    } else if (options->symbol_offset != 0) {
        plan.lookup = addr - options->symbol_offset;
    } else if (lm) {
        plan.lookup = lm->absolute ? addr : module_addr;
    } else {
        plan.lookup = addr;
    }

    // An address outside the file's code may still be the module's own.
    if (plan.in_use && plan.in_use->base && lm && !zdb_elf_translate_addr(plan.in_use, plan.lookup)) {
        if (!have_symbol_file || lm->name == product_id) plan.lookup = module_addr;
    }

    if (have_symbol_file) plan.tool_file = options->symbol_file;
    else plan.tool_file = lm->elf_path;
    return plan;
}

void print_address_to(out_buffer& out, zdb_file* symbols, const lm_list* list, uint32_t addr,
                      const krd_options* options, const char* product_id) {
    const address_plan plan = plan_address(symbols, list, addr, options, product_id);
    if (plan.nothing_to_ask) {
        if (plan.system_call) out_printf(out, "%45s  ", "System call");
        out.put('\n');
        return;
    }
    if (plan.lm) out_printf(out, "[%08x],%-22s ", plan.lookup, plan.lm->name.c_str());
    if (plan.tool_file.empty()) {
        print_in_process(out, plan.in_use, plan.lookup, options->demangle_style);
    } else if (!cross_tool_path().empty()) {
        print_tool_answer(out, cross_tool_translate(plan.tool_file, plan.lookup));
    } else {
        tell_tool_missing();
        print_tool_answer(out, in_process_answer(plan.in_use, plan.lookup));
    }
}

// What print_pc_addr keeps between its calls in one run (the_run().pc_addr):
// the dump's load module list and the open -e file. Both are what a fresh
// read would give.
struct pc_addr_cache {
    uint64_t dump_serial = 0;  // the dump handle's serial; 0 for none
    lm_table list;
    bool have_symbols = false;
    std::string symbol_file;
    zdb_file symbols;
};

namespace {

pc_addr_cache& cache() { return the_run().pc_addr.get(); }

}  // namespace

void print_pc_addr_release() {
    pc_addr_cache& c = cache();
    if (c.have_symbols) zdb_close_file(&c.symbols);
    c.have_symbols = false;
    c.list.reset();
    c.dump_serial = 0;
}

zdb_open_result print_pc_addr(out_buffer& out, krd_file* f, krd_options* options, uint32_t addr) {
    pc_addr_cache& c = cache();
    const char* wanted = options->symbol_file;
    if (c.dump_serial != f->serial || c.have_symbols != (wanted != nullptr) || (wanted && c.symbol_file != wanted)) {
        print_pc_addr_release();
        c.dump_serial = f->serial;
        zdb_open_result opened = zdb_open_file(&c.symbols, wanted);
        if (!opened.ok()) {
            c.dump_serial = 0;
            return opened;
        }
        c.have_symbols = wanted != nullptr;
        c.symbol_file = wanted ? wanted : "";
        c.list = parse_lm_table(f);
    }
    print_address_to(out, &c.symbols, c.list.get(), addr, options, "");
    return {};
}

zdb_open_result print_pc_addr(FILE* stream, krd_file* f, krd_options* options, uint32_t addr) {
    auto out = std::make_unique<out_buffer>(stream);
    return print_pc_addr(*out, f, options, addr);
}
