// The load module list: the dump's load module text read line by line with
// one extended expression, then completed from the built-in table.
#include <regex.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "pmd/section_chain.h"
#include "pmd/section_payload.h"
#include "symbols/load_module.h"
#include "symbols/target_number.h"

void zdb_file_closer::operator()(zdb_file* file) const {
    zdb_close_file(file);
    delete file;
}

namespace {

// 440 characters, 29 captures. "[a-zA-z]" is as the target's text wants it.
constexpr const char* lm_expression =
    "(^ *Load module id: ([a-zA-Z0-9_%]*))|(^ *Basic:)|"
    "(^ *Load module path: @\\(#\\)([^ ]*) *([a-zA-z][^ ]*)* *([^ ]*)* *.*)|"
    "(^ *Load module version: @\\(#\\)(cr@@[^ ]* *)*([^ ]*) *([^ ]*) *[0-9]{4}-[-0-9]* *([^ ]*) *([^ ]*)* *.*)|"
    "(^ *Start code: *(0x)*([0-9a-fA-F]*) *[Ss]ize: *(0x)*([0-9a-fA-F]*))|"
    "(^ *Start data: *(0x)*([0-9a-fA-F]*) *[Ss]ize: *(0x)*([0-9a-fA-F]*))|"
    "(^ *Start section ([^:]*): *(0x)*([0-9a-fA-F]*) *[Ss]ize: *(0x)*([0-9a-fA-F]*))";
constexpr size_t lm_captures = 30;  // the whole match and 29 groups

struct lm_match {
    const char* line;
    regmatch_t m[lm_captures];

    bool took_part(int i) const { return m[i].rm_so != -1; }
    std::string capture(int i) const {
        if (!took_part(i)) return {};
        return std::string(line + m[i].rm_so, size_t(m[i].rm_eo - m[i].rm_so));
    }
};

// The compiled expression, made once per process.
const regex_t* lm_regex() {
    static regex_t re;
    static bool ready = regcomp(&re, lm_expression, REG_EXTENDED) == 0;
    return ready ? &re : nullptr;
}

struct lm_text {
    std::vector<uint8_t> bytes;
    int text_form = 0;
};

bool read_lm_text(krd_file* f, lm_text* out) {
    krd_chain chain = krd_find_section(f, nullptr, "LOADED PROGRAMS");
    if (chain) {
        chain->image = krd_read_image_info(f, chain.get());
        if (!chain->image || !krd_image_plausible(f, *chain->image)) return false;
        out->bytes.assign(chain->image->size, 0);
        out->text_form = 0;
        bool ok = krd_inflate_image(f, chain.get(), out->bytes.data()) == 0;
        krd_free_chain(chain);
        return ok;
    }
    chain = krd_find_section(f, nullptr, "LOAD MODULE INFORMATION");
    if (!chain) return false;
    uint32_t len = krd_init_text(f, chain.get());
    if (len == 0) return false;
    // Past the file's end the reader gives zeros; one stands for them all.
    uint64_t avail = krd_bytes_after(f, krd_tell(f));
    size_t take = len <= avail ? len : size_t(avail);
    out->bytes.resize(take);
    krd_read_bytes(f, out->bytes.data(), uint32_t(take));
    if (take < len) out->bytes.push_back(0);
    out->text_form = 1;
    krd_free_chain(chain);
    return true;
}

void lm_copy_capture(std::string* field, const lm_match& m, int i, size_t limit) {
    *field = m.capture(i);
    if (field->size() > limit) field->resize(limit);
}

// Hexadecimal from the capture's start in the line, read on as far as the
// number goes (so "0X20" behind "Size: " is 0x20); an empty capture is 0.
uint32_t lm_capture_number(const lm_match& m, int i) {
    if (!m.took_part(i) || m.m[i].rm_so == m.m[i].rm_eo) return 0;
    return strtoul32(m.line + m.m[i].rm_so, 16);
}

void lm_new_record(lm_list* list) { list->emplace_back(); }

void lm_set_id(lm_list* list, const lm_match& m, bool basic) {
    lm_new_record(list);
    if (!basic) lm_copy_capture(&list->back().name, m, 2, LM_NAME_MAX);
}

void lm_set_path(load_module* lm, const lm_match& m) {
    lm_copy_capture(&lm->path, m, 5, LM_PATH_MAX);
    if (m.took_part(6)) lm_copy_capture(&lm->file_name, m, 6, LM_FILE_NAME_MAX);
    if (m.took_part(7)) lm_copy_capture(&lm->target, m, 7, LM_TARGET_MAX);
}

void lm_set_version(load_module* lm, const lm_match& m, int text_form) {
    lm_copy_capture(&lm->product, m, 10, LM_PRODUCT_MAX);
    lm_copy_capture(&lm->revision, m, 11, LM_REVISION_MAX);
    if (text_form != 1) return;
    if (m.took_part(12)) lm_copy_capture(&lm->file_name, m, 12, LM_FILE_NAME_MAX);
    if (m.took_part(13)) lm_copy_capture(&lm->target, m, 13, LM_TARGET_MAX);
}

void lm_set_range(load_module* lm, const lm_match& m) {
    if (m.took_part(14)) {
        lm->code_start = lm_capture_number(m, 16);
        lm->code_size = lm_capture_number(m, 18);
    } else if (m.took_part(19)) {
        lm->data_start = lm_capture_number(m, 21);
        lm->data_size = lm_capture_number(m, 23);
    } else {
        std::string section = m.capture(25);
        if (section.starts_with('0')) {
            lm->code_start = lm_capture_number(m, 27);
            lm->code_size = lm_capture_number(m, 29);
        } else if (section.starts_with('1')) {
            lm->data_start = lm_capture_number(m, 27);
            lm->data_size = lm_capture_number(m, 29);
        }
    }
}

void lm_parse_line(lm_list* list, const regex_t* re, const std::string& line, int text_form) {
    lm_match m;
    m.line = line.c_str();
    if (regexec(re, m.line, lm_captures, m.m, 0) != 0) return;
    if (m.took_part(1) || m.took_part(3)) {
        lm_set_id(list, m, m.took_part(3));
        return;
    }
    // A line before the first id line has no record to change.
    if (list->empty()) return;
    load_module* lm = &list->back();
    if (m.took_part(4)) lm_set_path(lm, m);
    else if (m.took_part(8)) lm_set_version(lm, m, text_form);
    else if (m.took_part(14) || m.took_part(19) || m.took_part(24)) lm_set_range(lm, m);
}

}  // namespace

lm_table lm_parse_text(std::span<const uint8_t> text, int text_form) {
    const regex_t* re = lm_regex();
    if (!re) return nullptr;
    auto list = std::make_unique<lm_list>();
    std::string line;
    size_t start = 0;
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] != '\n' && text[i] != 0) continue;
        line.assign(reinterpret_cast<const char*>(text.data()) + start, i - start);
        lm_parse_line(list.get(), re, line, text_form);
        start = i + 1;
    }
    // A last fragment without its line end is not looked at.
    lm_apply_builtin(list.get());
    return list;
}

lm_table parse_lm_table(krd_file* f) {
    lm_text text;
    if (!read_lm_text(f, &text)) return nullptr;
    lm_table list = lm_parse_text(text.bytes, text.text_form);
    // A text that names no module leaves no list, as a missing text does.
    if (list && list->empty()) return nullptr;
    return list;
}

const load_module* find_load_module(const lm_list* list, uint32_t addr) {
    if (!list) return nullptr;
    for (const load_module& lm : *list)
        if (lm.code_start <= addr && uint64_t(addr) <= uint64_t(lm.code_start) + lm.code_size) return &lm;
    return nullptr;
}

load_module* lm_find_by_name(lm_list* list, const char* name) {
    if (!list) return nullptr;
    // "A%B%C" may also stand as "A_B".
    std::string second;
    if (const char* pct = std::strchr(name, '%')) {
        const char* rest = pct + 1;
        size_t rest_len = std::strcspn(rest, "%");
        if (pct != name && rest_len != 0) second = std::string(name, pct) + "_" + std::string(rest, rest_len);
    }
    for (load_module& lm : *list)
        if (lm.name == name || (!second.empty() && lm.name == second)) return &lm;
    return nullptr;
}

zdb_open_result attach_symbols_lm_table(lm_list* list, const krd_options* options) {
    if (!list) return {};
    for (int i = 0; i < options->mapping_count; i++) {
        const char* file = options->mapping_files[i];
        if (!file || access(file, F_OK) != 0) continue;
        std::string product_id = lm_product_id(file);
        load_module* lm = lm_find_by_name(list, product_id.c_str());
        if (!lm) continue;
        zdb_file_ptr symbols(new zdb_file);
        zdb_open_result opened = zdb_open_file(symbols.get(), file);
        if (!opened.ok()) return opened;
        lm->symbols = std::move(symbols);
        // The whole name: it is handed to the tool as one argument.
        lm->elf_path = file;
    }
    return {};
}
