// The report of the NPC trace buffer: the words cut into messages, each
// message decoded and printed with the addresses rebuilt from it.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "nexus/nexus.h"
#include "nexus/nexus_format.h"
#include "nexus/process_names.h"
#include "pmd/byte_cursor.h"
#include "symbols/calltrace.h"

uint32_t last_addr = 0;
uint32_t pc_ptbm = 0;
uint32_t F_ADDR_core0 = 0, F_ADDR_core1 = 0, F_ADDR_core2 = 0, F_ADDR_core3 = 0;
uint32_t F_ADDR_core4 = 0, F_ADDR_core5 = 0, F_ADDR_core6 = 0, F_ADDR_core7 = 0;

namespace {

constexpr const char* proc_list_name = "Proc_list_temp.txt";

uint32_t* const F_ADDR_cores[8] = {&F_ADDR_core0, &F_ADDR_core1, &F_ADDR_core2, &F_ADDR_core3,
                                   &F_ADDR_core4, &F_ADDR_core5, &F_ADDR_core6, &F_ADDR_core7};

// The process list, read at the first identity a section looks up and
// dropped with the file at the section's end.
struct names_state {
    enum { unread, present, missing } state = unread;
    proc_list_file file;
    std::vector<uint32_t> hits;
};
names_state names;

bool named(const nexus_field& field, const char* name) { return std::strcmp(field.name, name) == 0; }

// Names and source positions need both -n and a symbol file.
bool names_condition(const krd_options* options) {
    return options->symbol_file != nullptr && (options->flags & KRD_OPT_NEXUS_NAMES) != 0;
}

void print_address_line(out_buffer& out, krd_file* f, krd_options* options, uint32_t addr) {
    out.put('\n');
    out.flush();
    print_pc_addr(out.stream, f, options, addr);
}

void print_words(out_buffer& out, int number, const uint32_t* words, int count) {
    nexus_printf(out, "#%d ", number);
    for (int i = 0; i < count; i++) nexus_printf(out, "[0x%08x] ", words[i]);
}

void print_complete_message(out_buffer& out, krd_file* f, krd_options* options, const uint32_t* words, int count) {
    const uint8_t tcode = nexus_tcode(words[0]);
    int row = 0;
    const bool known = validate_tcode(tcode, &row);
    if (tcode == 8 && count > 2) {
        // An Error Message has at most two words.
        nexus_printf(out, "Unsupported/Reserved Error message with TCODE (%2d) !!!!! \n", tcode);
    } else if (!known) {
        nexus_printf(out, "Unsupported/Reserved TCODE (%2d) !!!!! \n", tcode);
    } else {
        nexus_msg msg;
        msg.word_count = uint8_t(count);
        msg.tcode = tcode;
        msg.src = nexus_src(words[0]);
        msg.name = nexus_messages[row].name;
        msg.field_count = uint8_t(std::strtoul(nexus_messages[row].field_count, nullptr, 10));
        get_msg_field_details(&msg, words[0], row);
        get_msg_field_values(&msg, std::span<const uint32_t>(words, size_t(count)));
        print_message(out, f, options, msg);
    }
}

}  // namespace

int search_in_file(out_buffer& out, const char* text) {
    if (names.state == names_state::unread) {
        names.state = proc_list_read(proc_list_name, &names.file) ? names_state::present : names_state::missing;
        if (names.state == names_state::present) proc_list_build_index(&names.file);
    }
    if (names.state == names_state::missing) return -1;
    proc_list_find(names.file, text, &names.hits);
    for (uint32_t line : names.hits)
        nexus_printf(out, "%s ", proc_list_first_word(names.file.lines[line]).c_str());
    return 0;
}

int print_message(out_buffer& out, krd_file* f, krd_options* options, const nexus_msg& msg) {
    uint32_t pc = 0, uaddr = 0;
    nexus_printf(out, "  :Msg Type = %s", msg.name);
    nexus_printf(out, "\n   TCODE = %02d : SRC = %02d ", msg.tcode, msg.src);
    if ((msg.src & 1) == 0) nexus_printf(out, "[Core = e500mc_core_%02d] ", (msg.src >> 1) & 15);
    else nexus_printf(out, " :");

    for (int i = 2; i < msg.field_count; i++) {
        const nexus_field& field = msg.fields[size_t(i)];
        const auto& v = field.value;
        nexus_printf(out, named(field, "PC") ? " %s/FADDR = " : " %s = ", field.name);
        if (named(field, "TSTAMP")) {
            nexus_printf(out, " %u ", v[0]);
        } else if (named(field, "PROCESS_ID")) {
            const uint32_t id = v[1] << 13 | v[0];
            nexus_printf(out, " 0x%08lx ", (unsigned long)id);
            if (options->flags & KRD_OPT_NEXUS_NAMES) {
                char text[16];
                std::snprintf(text, sizeof text, "%lx", (unsigned long)id);
                search_in_file(out, text);
            }
        } else if (named(field, "PC")) {
            // A second word of up to two bits extends the first.
            pc = v[1] <= 3 ? v[1] << 30 | v[0] : v[0];
            nexus_printf(out, " 0x%lx :", (unsigned long)pc);
            last_addr = pc;
        } else if (named(field, "U-ADDR")) {
            uaddr = v[1] <= 3 ? v[1] << 30 | v[0] : v[0];
            nexus_printf(out, " 0x%lx ", (unsigned long)uaddr);
            pc_ptbm = last_addr ^ uaddr;
            if (v[1] <= 3) last_addr = pc_ptbm;
            nexus_printf(out, ": PC_PTBM = 0x%lx :", (unsigned long)pc_ptbm);
        } else {
            nexus_printf(out, " 0x%x :", v[0]);
        }
    }

    // Source positions: the translated address uses the per-core state,
    // which only a PC field sets.
    const bool translate = names_condition(options);
    const int core = (msg.src >> 1) & 15;
    if (pc >= 2 && translate) {
        print_address_line(out, f, options, pc);
        if (core <= 7) *F_ADDR_cores[core] = pc;
        else nexus_printf(out, "New core : %d", core);
    }
    if (uaddr >= 2 && translate) {
        if (core <= 7) uaddr ^= *F_ADDR_cores[core];
        else nexus_printf(out, "New core : %d", core);
        print_address_line(out, f, options, uaddr);
    }
    // A translation has ended the line already.
    if (!((uaddr >= 2 || pc >= 2) && translate)) out.put('\n');
    return 0;
}

int handle_nexus_log(FILE* stream, krd_file* f, krd_options* options, std::span<const uint8_t> payload) {
    const size_t word_count = payload.size() / 4;
    if (word_count == 0) {
        std::fputs("Empty NPC trace !!!", stream);
        return 0;
    }
    {
        auto out = std::make_unique<out_buffer>(stream);
        be_cursor cursor(payload);
        uint32_t words[NEXUS_MAX_WORDS];
        int count = 0;
        int number = 0;
        for (size_t i = 0; i < word_count; i++) {
            const uint32_t word = cursor.u32();
            words[count++] = word;
            const bool complete = nexus_mseo(word) >= 2;
            if (complete) out->put('\n');
            if (!complete) {
                // Nothing is printed for the words of an over-long message.
                if (count >= NEXUS_MAX_WORDS) count = 0;
                continue;
            }
            print_words(*out, ++number, words, count);
            print_complete_message(*out, f, options, words, count);
            count = 0;
        }
    }
    names = names_state{};
    if (options->flags & KRD_OPT_NEXUS_NAMES) std::remove(proc_list_name);
    return 0;
}
