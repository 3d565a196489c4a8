#include <cstring>
#include <string>

#include "pmd/section_payload.h"
#include "render/section_blocks.h"

const char* get_system_param(FILE* stream, krd_file* f, krd_section* chain, const char* key) {
    static std::string result;
    result.clear();
    krd_payload payload;
    switch (krd_read_chain_payload(f, chain, &payload)) {
    case KRD_PAYLOAD_CORRUPT:
        std::fputs("  Corrupt Section.\n", stream);
        return nullptr;
    case KRD_PAYLOAD_EMPTY:
        std::fprintf(stream, "\n %s is Empty !!!! \n", chain->title.c_str());
        return nullptr;
    case KRD_PAYLOAD_INFLATE:
        return result.c_str();
    case KRD_PAYLOAD_OK:
        break;
    }
    if (std::strcmp(key, "target_board") != 0 && std::strcmp(key, "krn/system_timer") != 0) return result.c_str();
    // The text may hold no terminating zero: its size bounds the search.
    std::string_view text(reinterpret_cast<const char*>(payload.bytes.get()), payload.size);
    text = text.substr(0, text.find('\0'));
    size_t at = text.find(key);
    if (at == std::string_view::npos) return result.c_str();
    for (size_t i = at; i < text.size() && text[i] != '\n'; i++)
        if (text[i] != '"') result.push_back(text[i]);
    return result.c_str();
}
