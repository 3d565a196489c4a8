// The manifest form read by mkpmd; see mkpmd.cpp for the description.
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tools/pmd_writer.h"

namespace {

struct parse_error {
    std::string what;
};

[[noreturn]] void fail(const std::string& what) { throw parse_error{what}; }

uint32_t number(const std::string& s) {
    if (s.empty()) fail("missing number");
    char* end = nullptr;
    unsigned long long v = std::strtoull(s.c_str(), &end, 0);
    if (*end != '\0' || v > 0xFFFFFFFFull) fail("bad number '" + s + "'");
    return uint32_t(v);
}

// A quoted text with C escapes, or a bare word up to the next blank.
std::string word(const std::string& line, size_t& i) {
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
            case 'x': {
                if (i + 2 >= line.size()) fail("short \\x escape");
                out.push_back(char(std::strtoul(line.substr(i + 1, 2).c_str(), nullptr, 16)));
                i += 2;
                break;
            }
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

void skip_blanks(const std::string& line, size_t& i) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) i++;
}

// key=value pairs after the first word; a value may be quoted.
std::vector<std::pair<std::string, std::string>> pairs(const std::string& line, size_t i) {
    std::vector<std::pair<std::string, std::string>> out;
    for (;;) {
        skip_blanks(line, i);
        if (i >= line.size()) break;
        size_t eq = line.find('=', i);
        if (eq == std::string::npos) fail("expected key=value in '" + line + "'");
        std::string key = line.substr(i, eq - i);
        i = eq + 1;
        out.emplace_back(key, word(line, i));
    }
    return out;
}

bytes hex_bytes(const std::string& text) {
    bytes out;
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

bytes read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) fail("cannot read " + path);
    return bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

pmd_kind kind_of(const std::string& k) {
    if (k == "memory") return pmd_kind::memory;
    if (k == "error") return pmd_kind::error;
    if (k == "program") return pmd_kind::program;
    if (k == "register") return pmd_kind::reg;
    if (k == "text") return pmd_kind::text;
    if (k == "signal") return pmd_kind::signal;
    if (k == "raw") return pmd_kind::raw;
    fail("unknown section kind '" + k + "'");
}

void section_key(pmd_section& s, const std::string& k, const std::string& v) {
    if (k == "title") s.title = v;
    else if (k == "time") s.time_sec = number(v);
    else if (k == "usec") s.time_usec = number(v);
    else if (k == "address") s.address = number(v);
    else if (k == "level") s.level = int(number(v));
    else if (k == "size") s.size_word = number(v);
    else if (k == "packed") s.packed_word = number(v);
    else if (k == "cut") s.cut = number(v);
    else if (k == "flip") s.flip = number(v);
    else if (k == "user") s.user_called = number(v);
    else if (k == "code") s.error_code = number(v);
    else if (k == "extra") s.extra = number(v);
    else if (k == "proc") s.curr_proc = number(v);
    else if (k == "signo") s.signo = number(v);
    else if (k == "word") s.sig_word = number(v);
    else if (k == "data") s.sig_data = v;
    else if (k == "kindtag") {
        if (v.size() != 8) fail("kindtag needs 8 characters");
        s.kind_tag = v;
    } else if (k == "formlen") s.form_length = number(v);
    else if (k == "patch") {
        size_t colon = v.find(':');
        if (colon == std::string::npos) fail("patch needs OFFSET:HEX");
        s.patches.push_back({number(v.substr(0, colon)), hex_bytes(v.substr(colon + 1))});
    } else fail("unknown section key '" + k + "'");
}

}  // namespace

bool pmd_parse_manifest(const std::string& text, const std::string& base_dir, pmd_dump* out, std::string* error) {
    std::istringstream in(text);
    std::string line;
    int lineno = 0;
    pmd_section* cur = nullptr;
    auto need_section = [&]() -> pmd_section& {
        if (!cur) fail("payload before any section");
        return *cur;
    };
    // The lines of a heredoc up to its end word.
    auto heredoc = [&](const std::string& endword) {
        std::string body, l;
        while (std::getline(in, l)) {
            lineno++;
            if (l == endword) return body;
            body += l + "\n";
        }
        fail("missing " + endword);
    };
    try {
        while (std::getline(in, line)) {
            lineno++;
            size_t i = 0;
            skip_blanks(line, i);
            if (i >= line.size() || line[i] == '#') continue;
            std::string cmd = word(line, i);
            skip_blanks(line, i);
            std::string rest = line.substr(i);
            if (cmd == "dump") {
                for (auto& [k, v] : pairs(line, i)) {
                    if (k == "id") out->dump_id = number(v);
                    else if (k == "version") out->version = number(v);
                    else if (k == "time") out->default_time = number(v);
                    else if (k == "length") out->length_word = number(v);
                    else if (k == "truncate") out->truncate = number(v);
                    else fail("unknown dump key '" + k + "'");
                }
            } else if (cmd == "include") {
                // Another manifest's sections, in place; its files are relative to it.
                size_t j = i;
                std::string path = word(line, j);
                if (!path.empty() && path[0] != '/') path = base_dir + "/" + path;
                bytes inc = read_file(path);
                size_t slash = path.rfind('/');
                std::string inc_error;
                if (!pmd_parse_manifest(std::string(inc.begin(), inc.end()), path.substr(0, slash), out, &inc_error))
                    fail(path + ": " + inc_error);
                cur = out->sections.empty() ? nullptr : &out->sections.back();
            } else if (cmd == "section") {
                std::string kind = word(line, i);
                out->sections.emplace_back();
                cur = &out->sections.back();
                cur->kind = kind_of(kind);
                cur->time_sec = out->default_time;
                for (auto& [k, v] : pairs(line, i)) section_key(*cur, k, v);
            } else if (cmd == "text") {
                pmd_section& s = need_section();
                std::string t;
                if (rest.compare(0, 2, "<<") == 0) t = heredoc(rest.substr(2));
                else {
                    size_t j = i;
                    t = word(line, j);
                }
                s.payload.insert(s.payload.end(), t.begin(), t.end());
            } else if (cmd == "hex") {
                pmd_section& s = need_section();
                bytes b = hex_bytes(rest.compare(0, 2, "<<") == 0 ? heredoc(rest.substr(2)) : rest);
                put_bytes(s.payload, b);
            } else if (cmd == "file") {
                pmd_section& s = need_section();
                size_t j = i;
                std::string path = word(line, j);
                if (!path.empty() && path[0] != '/') path = base_dir + "/" + path;
                put_bytes(s.payload, read_file(path));
            } else if (cmd == "u32") {
                pmd_section& s = need_section();
                size_t j = i;
                while (skip_blanks(line, j), j < line.size()) put_u32(s.payload, number(word(line, j)));
            } else if (cmd == "fill") {
                pmd_section& s = need_section();
                size_t j = i;
                uint32_t count = number(word(line, j));
                skip_blanks(line, j);
                uint32_t value = number(word(line, j));
                s.payload.insert(s.payload.end(), count, uint8_t(value));
            } else if (cmd == "program") {
                pmd_program p;
                for (auto& [k, v] : pairs(line, i)) {
                    if (k == "pid") p.pid = number(v);
                    else if (k == "word") p.word = number(v);
                    else if (k == "resident") p.resident = number(v);
                    else if (k == "status") p.status = number(v);
                    else if (k == "lmid") p.lmid = v;
                    else if (k == "regions") {
                        std::istringstream rs(v);
                        std::string r;
                        while (std::getline(rs, r, ',')) p.regions.push_back(number(r));
                    } else fail("unknown program key '" + k + "'");
                }
                need_section().programs.push_back(p);
            } else if (cmd == "reg") {
                size_t j = i;
                pmd_register r;
                r.name = word(line, j);
                skip_blanks(line, j);
                r.value = number(word(line, j));
                need_section().registers.push_back(r);
            } else if (cmd == "arch") {
                put_bytes(need_section().arch, hex_bytes(rest));
            } else {
                fail("unknown directive '" + cmd + "'");
            }
        }
    } catch (const parse_error& e) {
        *error = "line " + std::to_string(lineno) + ": " + e.what;
        return false;
    }
    return true;
}
