#include <cstring>
#include <string>

#include "pmd/section_payload.h"
#include "render/section_blocks.h"
#include "run/krd_run.h"

// The key's line: from its first occurrence anywhere in the text to the
// next newline, without double quotes.
static std::string param_line(std::string_view text, const char* key) {
    std::string line;
    size_t at = text.find(key);
    if (at == std::string_view::npos) return line;
    for (size_t i = at; i < text.size() && text[i] != '\n'; i++)
        if (text[i] != '"') line.push_back(text[i]);
    return line;
}

static system_params read_system_params(krd_file* f, krd_section* chain) {
    system_params params;
    params.found = true;
    params.title = chain->title;
    krd_payload payload;
    params.status = krd_read_chain_payload(f, chain, &payload);
    if (params.status != KRD_PAYLOAD_OK) return params;
    // The text may hold no terminating zero: its size bounds the search.
    std::string_view text(reinterpret_cast<const char*>(payload.bytes.get()), payload.size);
    text = text.substr(0, text.find('\0'));
    params.timer_line = param_line(text, "krn/system_timer");
    params.board_line = param_line(text, "target_board");
    return params;
}

const char* get_system_param(FILE* stream, const system_params& params, const char* key) {
    switch (params.status) {
    case KRD_PAYLOAD_CORRUPT:
        std::fputs("  Corrupt Section.\n", stream);
        return nullptr;
    case KRD_PAYLOAD_EMPTY:
        std::fprintf(stream, "\n %s is Empty !!!! \n", params.title.c_str());
        return nullptr;
    case KRD_PAYLOAD_INFLATE:
        return "";
    case KRD_PAYLOAD_OK:
        break;
    }
    if (std::strcmp(key, "krn/system_timer") == 0) return params.timer_line.c_str();
    if (std::strcmp(key, "target_board") == 0) return params.board_line.c_str();
    return "";
}

// Every T&E and swap-in section asks, so the section is read on the first
// lookup in a dump only; a failed read is told again at each.
std::string system_param_value(FILE* stream, krd_file* f, const char* key) {
    krd_run& run = the_run();
    system_params& params = run.system_params_read.get();
    if (run.system_params_serial != f->serial) {
        run.system_params_serial = f->serial;
        krd_chain chain = krd_find_section(f, nullptr, "SYSTEM PARAMETERS");
        params = chain ? read_system_params(f, chain.get()) : system_params{};
        krd_free_chain(chain);
    }
    std::string value;
    if (params.found) {
        const char* line = get_system_param(stream, params, key);
        size_t skip = std::strlen(key) + 1;
        if (line && std::strlen(line) > skip) value = line + skip;
    }
    return value;
}
