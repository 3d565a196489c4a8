#include "tools/manifest_words.h"

#include <cstdlib>
#include <stdexcept>

[[noreturn]] static void fail(const std::string& what) { throw std::runtime_error(what); }

uint32_t manifest_number(const std::string& s) {
    if (s.empty()) fail("missing number");
    char* end = nullptr;
    unsigned long long v = std::strtoull(s.c_str(), &end, 0);
    if (*end != '\0' || v > 0xFFFFFFFFull) fail("bad number '" + s + "'");
    return uint32_t(v);
}

void manifest_skip_blanks(const std::string& line, size_t& i) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) i++;
}

std::string manifest_word(const std::string& line, size_t& i) {
    std::string out;
    if (i < line.size() && line[i] == '"') {
        for (i++; i < line.size() && line[i] != '"'; i++) {
            char c = line[i];
            if (c != '\\') {
                out.push_back(c);
                continue;
            }
            if (++i >= line.size()) fail("escape at end of line");
            switch (line[i]) {
            case 'n': out.push_back('\n'); break;
            case 't': out.push_back('\t'); break;
            case 'r': out.push_back('\r'); break;
            case '0': out.push_back('\0'); break;
            case '\\': out.push_back('\\'); break;
            case '"': out.push_back('"'); break;
            case 'x':
                if (i + 2 >= line.size()) fail("short \\x escape");
                out.push_back(char(std::strtoul(line.substr(i + 1, 2).c_str(), nullptr, 16)));
                i += 2;
                break;
            default: fail(std::string("unknown escape \\") + line[i]);
            }
        }
        if (i >= line.size()) fail("unterminated quote");
        i++;
        return out;
    }
    while (i < line.size() && line[i] != ' ' && line[i] != '\t') out.push_back(line[i++]);
    return out;
}

key_values manifest_pairs(const std::string& line, size_t i) {
    key_values out;
    for (;;) {
        manifest_skip_blanks(line, i);
        if (i >= line.size()) return out;
        size_t eq = line.find('=', i);
        if (eq == std::string::npos) fail("expected key=value in '" + line + "'");
        std::string key = line.substr(i, eq - i);
        i = eq + 1;
        out.emplace_back(key, manifest_word(line, i));
    }
}

std::vector<uint8_t> manifest_hex(const std::string& text) {
    std::vector<uint8_t> out;
    int nibbles = 0;
    uint8_t cur = 0;
    for (char c : text) {
        int v;
        if (c >= '0' && c <= '9') v = c - '0';
        else if (c >= 'a' && c <= 'f') v = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F') v = c - 'A' + 10;
        else if (c == ' ' || c == '\t' || c == '\n' || c == '\r') continue;
        else fail(std::string("bad hex digit '") + c + "'");
        cur = uint8_t(cur << 4 | v);
        if (++nibbles % 2 == 0) out.push_back(cur);
    }
    if (nibbles % 2) fail("odd number of hex digits");
    return out;
}
