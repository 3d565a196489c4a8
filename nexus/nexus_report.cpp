// The report of the NPC trace buffer: the words cut into messages, each
// message decoded and printed with the addresses rebuilt from it.
#include <cstdio>
#include <cstring>
#include <memory>

#include "nexus/nexus.h"
#include "nexus/process_names.h"
#include "run/krd_run.h"
#include "support/byte_cursor.h"
#include "support/text_span.h"
#include "symbols/calltrace.h"

// The process list, read at the first identity a section looks up and
// dropped with the file at the section's end.
struct nexus_names {
    enum { unread, present, missing } state = unread;
    proc_list_file file;
    std::vector<uint32_t> hits;
};

namespace {

constexpr const char* proc_list_name = "Proc_list_temp.txt";
// Longest name of a message or field in the tables.
constexpr size_t name_limit = 16;

constexpr uint32_t krd_run::* F_ADDR_cores[8] = {
    &krd_run::F_ADDR_core0, &krd_run::F_ADDR_core1, &krd_run::F_ADDR_core2, &krd_run::F_ADDR_core3,
    &krd_run::F_ADDR_core4, &krd_run::F_ADDR_core5, &krd_run::F_ADDR_core6, &krd_run::F_ADDR_core7};

// Names and source positions need both -n and a symbol file.
bool names_condition(const krd_options* options) {
    return options->symbol_file != nullptr && (options->flags & KRD_OPT_NEXUS_NAMES) != 0;
}

bool print_address_line(out_buffer& out, krd_file* f, krd_options* options, uint32_t addr,
                        zdb_open_result* symbols) {
    out.put('\n');
    zdb_open_result opened = print_pc_addr(out, f, options, addr);
    if (!opened.ok()) *symbols = opened;
    return opened.ok();
}

void print_words(out_buffer& out, int number, const uint32_t* words, int count) {
    // "#%d ", then "[0x%08x] " for each word
    text_span t(out, 16 + 13 * NEXUS_MAX_WORDS);
    t.text("#");
    t.dec(uint32_t(number));
    t.text(" ");
    for (int i = 0; i < count; i++) {
        t.text("[0x");
        t.hex8(words[i]);
        t.text("] ");
    }
}

// msg is the section's one record, set up anew for each message.
void print_complete_message(out_buffer& out, krd_file* f, krd_options* options, nexus_msg& msg, nexus_names& names,
                            const uint32_t* words, int count, zdb_open_result* symbols) {
    const uint8_t tcode = nexus_tcode(words[0]);
    int row = 0;
    const bool known = validate_tcode(tcode, &row);
    if (tcode == 8 && count > 2) {
        // An Error Message has at most two words.
        out_printf(out, "Unsupported/Reserved Error message with TCODE (%2d) !!!!! \n", tcode);
    } else if (!known) {
        out_printf(out, "Unsupported/Reserved TCODE (%2d) !!!!! \n", tcode);
    } else {
        msg.word_count = uint8_t(count);
        msg.tcode = tcode;
        msg.src = nexus_src(words[0]);
        // Names and widths stay from a message of the same kind before.
        if (msg.name != nexus_messages[row].name) {
            msg.name = nexus_messages[row].name;
            msg.field_count = get_msg_field_count(row);
            get_msg_field_details(&msg, words[0], row);
        }
        get_msg_field_values(&msg, std::span<const uint32_t>(words, size_t(count)));
        print_message(out, f, options, msg, names, symbols);
    }
}

}  // namespace

int search_in_file(out_buffer& out, nexus_names& names, const char* text) {
    if (names.state == nexus_names::unread) {
        names.state = proc_list_read(proc_list_name, &names.file) ? nexus_names::present : nexus_names::missing;
        if (names.state == nexus_names::present) proc_list_build_index(&names.file);
    }
    if (names.state == nexus_names::missing) return -1;
    proc_list_find(names.file, text, &names.hits);
    for (uint32_t line : names.hits) {
        const std::string name = proc_list_first_word(names.file.lines[line]);
        out.put(name.data(), name.size());
        out.put(' ');
    }
    return 0;
}

int print_message(out_buffer& out, krd_file* f, krd_options* options, const nexus_msg& msg, nexus_names& names,
                  zdb_open_result* symbols) {
    krd_run& run = the_run();
    uint32_t pc = 0, uaddr = 0;
    {
        // The block up to the addresses' translations: at most 80 characters
        // in front of the fields, and a field's label and value take at most
        // 28 and 36.
        constexpr size_t room = 80 + 64 * NEXUS_MAX_FIELDS;
        text_span t(out, room);
        // "  :Msg Type = %s", "\n   TCODE = %02d : SRC = %02d "
        t.text("  :Msg Type = ");
        t.cstr(msg.name, name_limit);
        t.text("\n   TCODE = ");
        t.dec(msg.tcode, 2);
        t.text(" : SRC = ");
        t.dec(msg.src, 2);
        t.text(" ");
        if ((msg.src & 1) == 0) {
            // "[Core = e500mc_core_%02d] "
            t.text("[Core = e500mc_core_");
            t.dec((msg.src >> 1) & 15, 2);
            t.text("] ");
        } else {
            t.text(" :");
        }

        for (int i = 2; i < msg.field_count && i < NEXUS_MAX_FIELDS; i++) {
            const nexus_field& field = msg.fields[size_t(i)];
            const auto& v = field.value;
            // " %s/FADDR = " for the PC, " %s = " for the others
            t.text(" ");
            t.cstr(field.name, name_limit);
            if (field.role == nexus_role::pc) t.text("/FADDR = ");
            else t.text(" = ");

            switch (field.role) {
            case nexus_role::tstamp:
                // " %u "
                t.text(" ");
                t.dec(v[0]);
                t.text(" ");
                break;
            case nexus_role::process_id: {
                // " 0x%08lx ", then the names of the lines that hold "%lx"
                const uint32_t id = v[1] << 13 | v[0];
                t.text(" 0x");
                t.hex8(id);
                t.text(" ");
                if (options->flags & KRD_OPT_NEXUS_NAMES) {
                    char text[16];
                    std::snprintf(text, sizeof text, "%lx", (unsigned long)id);
                    t.commit();
                    search_in_file(out, names, text);
                    t.reopen(room);
                }
                break;
            }
            case nexus_role::pc:
                // A second word of up to two bits extends the first. " 0x%lx :"
                pc = v[1] <= 3 ? v[1] << 30 | v[0] : v[0];
                t.text(" 0x");
                t.hex(pc);
                t.text(" :");
                run.last_addr = pc;
                break;
            case nexus_role::u_addr:
                // " 0x%lx ", then ": PC_PTBM = 0x%lx :"
                uaddr = v[1] <= 3 ? v[1] << 30 | v[0] : v[0];
                run.pc_ptbm = run.last_addr ^ uaddr;
                if (v[1] <= 3) run.last_addr = run.pc_ptbm;
                t.text(" 0x");
                t.hex(uaddr);
                t.text(" : PC_PTBM = 0x");
                t.hex(run.pc_ptbm);
                t.text(" :");
                break;
            default:
                // " 0x%x :"
                t.text(" 0x");
                t.hex(v[0]);
                t.text(" :");
                break;
            }
        }
    }

    // Source positions: the translated address uses the per-core state,
    // which only a PC field sets.
    const bool translate = names_condition(options);
    const int core = (msg.src >> 1) & 15;
    if (pc >= 2 && translate) {
        if (!print_address_line(out, f, options, pc, symbols)) return 0;
        if (core <= 7) run.*F_ADDR_cores[core] = pc;
        else out_printf(out, "New core : %d", core);
    }
    if (uaddr >= 2 && translate) {
        if (core <= 7) uaddr ^= run.*F_ADDR_cores[core];
        else out_printf(out, "New core : %d", core);
        if (!print_address_line(out, f, options, uaddr, symbols)) return 0;
    }
    // A translation has ended the line already.
    if (!((uaddr >= 2 || pc >= 2) && translate)) out.put('\n');
    return 0;
}

int handle_nexus_log(FILE* stream, krd_file* f, krd_options* options, std::span<const uint8_t> payload,
                     zdb_open_result* symbols) {
    const size_t word_count = payload.size() / 4;
    if (word_count == 0) {
        std::fputs("Empty NPC trace !!!", stream);
        return 0;
    }
    {
        auto out = std::make_unique<out_buffer>(stream);
        auto msg = std::make_unique<nexus_msg>();
        nexus_names names;
        byte_cursor cursor(payload);
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
            zdb_open_result opened;
            print_complete_message(*out, f, options, *msg, names, words, count, &opened);
            if (!opened.ok()) {
                // The run ends: the process list file stays behind.
                *symbols = opened;
                return 0;
            }
            count = 0;
        }
    }
    if (options->flags & KRD_OPT_NEXUS_NAMES) std::remove(proc_list_name);
    return 0;
}
