// Building sigdb tables and member files; reading their description.
#include "tools/sigdb_writer.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>

// ---- Types ----

static const struct {
    const char* name;
    uint16_t code;
    uint16_t size;
} type_table[] = {
    {"enum", 0, 4},    {"char", 1, 1},    {"uchar", 2, 1},     {"short", 3, 2},  {"ushort", 4, 2},
    {"int", 5, 4},     {"uint", 6, 4},    {"long", 7, 4},      {"ulong", 8, 4},  {"float", 9, 4},
    {"double", 10, 8}, {"ldouble", 11, 8}, {"ptr", 12, 4},     {"struct", 13, 0}, {"union", 14, 0},
    {"volatile", 15, 4}, {"void", 16, 0}, {"llong", 17, 8},    {"ullong", 18, 8},
};

int sigdb_type_code(const std::string& name) {
    for (const auto& t : type_table)
        if (name == t.name) return t.code;
    return -1;
}

static uint16_t default_size(uint16_t code) {
    for (const auto& t : type_table)
        if (t.code == code) return t.size;
    return 4;
}

// ---- Building a table ----

namespace {

static const char* const pool_names[5] = {"sigdesc_tab", "vardesc_tab", "enum_pool", "string_pool", "index_pool"};

struct table_builder {
    bool big = true;
    std::vector<uint8_t> pools[5];
    std::map<std::string, uint32_t> string_offsets;
    uint32_t var_count = 0;

    void put16(std::vector<uint8_t>& v, uint32_t x) {
        if (big) v.insert(v.end(), {uint8_t(x >> 8), uint8_t(x)});
        else v.insert(v.end(), {uint8_t(x), uint8_t(x >> 8)});
    }
    void put32(std::vector<uint8_t>& v, uint32_t x) {
        if (big) v.insert(v.end(), {uint8_t(x >> 24), uint8_t(x >> 16), uint8_t(x >> 8), uint8_t(x)});
        else v.insert(v.end(), {uint8_t(x), uint8_t(x >> 8), uint8_t(x >> 16), uint8_t(x >> 24)});
    }
    uint32_t text(const std::string& s) {
        if (s.empty()) return 0;
        auto [it, fresh] = string_offsets.emplace(s, uint32_t(pools[3].size()));
        if (fresh) {
            pools[3].insert(pools[3].end(), s.begin(), s.end());
            pools[3].push_back(0);
        }
        return it->second;
    }
    void vardesc(uint32_t name, const sigdb_member& m, uint16_t index, uint16_t link, uint16_t flags) {
        auto& v = pools[1];
        put32(v, name);
        put16(v, m.size);
        put16(v, m.offset);
        put16(v, index);
        put16(v, link);
        put16(v, m.type);
        put16(v, flags);
        put16(v, uint32_t(m.dims.size()));
        v.insert(v.end(), {0, 0});
        var_count++;
    }
    // One record, and a structure's own list in line behind it.
    void member(const sigdb_member& m, uint16_t list_flags) {
        uint16_t index = 0;
        if (!m.dims.empty()) {
            index = uint16_t(pools[4].size() / 2);
            for (int16_t d : m.dims) put16(pools[4], uint16_t(d));
        }
        uint16_t link = 0xFFFF;
        const bool aggregate = m.type == 13 || m.type == 14;
        if (aggregate && !m.members.empty()) {
            link = uint16_t(var_count + 1);
        } else if (m.type == 0) {
            link = uint16_t(pools[2].size() / 8);
            for (const auto& [name, value] : m.values) {
                put32(pools[2], value);
                put32(pools[2], text(name));
            }
            put32(pools[2], 0);
            put32(pools[2], 0);
        } else if (!m.format.empty()) {
            link = uint16_t(text(m.format));
        }
        vardesc(text(m.name), m, index, link, uint16_t(m.flags | list_flags));
        if (aggregate) list(m.members);
    }
    void list(const std::vector<sigdb_member>& members) {
        for (size_t i = 0; i < members.size(); i++)
            member(members[i], uint16_t((i == 0 ? 1 : 0) | (i + 1 == members.size() ? 2 : 0)));
    }
};

}  // namespace

static void put_text(std::vector<uint8_t>& out, const std::string& text) {
    out.insert(out.end(), text.begin(), text.end());
    out.push_back(0);
}

static void append_table(std::vector<uint8_t>& out, const sigdb_table_desc& t, sigdb_layout* layout) {
    table_builder b;
    b.big = t.big_endian;
    b.pools[3].push_back(0);  // offset 0: no text
    for (const sigdb_signal& s : t.signals) {
        b.put32(b.pools[0], b.text(s.name));
        b.put32(b.pools[0], s.signo);
        b.put32(b.pools[0], b.var_count);
        b.member(s.layout, 0);
    }
    sigdb_member end_mark;  // size 0 ends the pool
    end_mark.type = 0;
    b.vardesc(0, end_mark, 0, 0xFFFF, 0);
    if (b.pools[2].empty()) b.pools[2].resize(8);
    if (b.pools[4].empty()) b.pools[4].resize(2);

    layout->header = out.size();
    out.resize(out.size() + 300);
    for (int k = 0; k < 5; k++) {
        layout->pools[k] = out.size();
        layout->sizes[k] = b.pools[k].size();
        out.insert(out.end(), b.pools[k].begin(), b.pools[k].end());
        put_text(out, std::string("This is a sigdesc structure (ose_") + pool_names[k] + t.name + ")");
        out.resize((out.size() + 3) & ~size_t(3), 0);
    }
    std::vector<uint8_t> h;
    b.put16(h, t.magic);
    b.put16(h, 0);
    // Positions as a link would have left them; a reader finds the pools by their texts.
    for (int k = 0; k < 5; k++) b.put32(h, uint32_t(0x00100000 + layout->pools[k]));
    for (int k = 0; k < 5; k++) b.put32(h, uint32_t(b.pools[k].size()));
    std::string text = "This is a sigdesc structure (ose_symbols" + t.name + ")";
    text.resize(256, '\0');
    h.insert(h.end(), text.begin(), text.end());
    std::copy(h.begin(), h.end(), out.begin() + long(layout->header));
}

std::vector<uint8_t> sigdb_build_file(const sigdb_member_file& file, std::vector<sigdb_layout>* layouts) {
    std::vector<uint8_t> out;
    for (const sigdb_piece& p : file.pieces) {
        if (!p.is_table) {
            out.insert(out.end(), p.bytes.begin(), p.bytes.end());
            continue;
        }
        sigdb_layout layout;
        append_table(out, p.table, &layout);
        if (layouts) layouts->push_back(layout);
    }
    return out;
}

// ---- Reading a description ----

namespace {

struct parser {
    std::vector<sigdb_member_file>* files = nullptr;
    std::string error;
    int line_no = 0;
    std::vector<sigdb_member*> open;  // structures being described, the signal's outermost
    sigdb_table_desc* table = nullptr;

    bool fail(const std::string& message) {
        error = "line " + std::to_string(line_no) + ": " + message;
        return false;
    }
};

bool split(const std::string& line, std::vector<std::string>* words, std::string* error) {
    size_t i = 0;
    while (i < line.size()) {
        if (std::isspace(static_cast<unsigned char>(line[i]))) {
            i++;
            continue;
        }
        if (line[i] == '#') break;
        std::string word;
        while (i < line.size() && !std::isspace(static_cast<unsigned char>(line[i]))) {
            if (line[i] != '"') {
                word += line[i++];
                continue;
            }
            // A quoted part, with the C escapes \n \t \\ \" \0 \xHH.
            for (i++; i < line.size() && line[i] != '"'; i++) {
                if (line[i] != '\\' || i + 1 >= line.size()) {
                    word += line[i];
                    continue;
                }
                const char e = line[++i];
                if (e == 'n') word += '\n';
                else if (e == 't') word += '\t';
                else if (e == '0') word += '\0';
                else if (e == 'x' && i + 2 < line.size()) {
                    word += char(std::strtol(line.substr(i + 1, 2).c_str(), nullptr, 16));
                    i += 2;
                } else word += e;
            }
            if (i >= line.size()) {
                *error = "unterminated quote";
                return false;
            }
            i++;
        }
        words->push_back(word);
    }
    return true;
}

bool number(const std::string& s, long* out) {
    if (s.empty()) return false;
    char* end;
    *out = std::strtol(s.c_str(), &end, 0);
    return *end == '\0';
}

// "name[2][3]" into a name and dimensions.
bool name_and_dims(const std::string& word, sigdb_member* m) {
    const size_t open = word.find('[');
    m->name = word.substr(0, open);
    for (size_t at = open; at != std::string::npos; at = word.find('[', at + 1)) {
        const size_t close = word.find(']', at);
        long d;
        if (close == std::string::npos || !number(word.substr(at + 1, close - at - 1), &d)) return false;
        m->dims.push_back(int16_t(d));
    }
    return true;
}

size_t align_of(const sigdb_member& m) {
    if (m.type == 13 || m.type == 14) {
        size_t a = 1;
        for (const auto& c : m.members) a = std::max(a, align_of(c));
        return a;
    }
    return std::clamp<size_t>(m.size, 1, 8);
}

size_t total_size(const sigdb_member& m) {
    size_t n = m.size;
    for (int16_t d : m.dims) n *= size_t(std::max<int16_t>(d, 0));
    return n;
}

// Offsets of the members not placed by hand, and the structure's size
// unless it was given: C's layout with natural alignment.
void lay_out(sigdb_member* s, bool size_given, const std::vector<bool>& placed) {
    size_t end = 0;
    for (size_t i = 0; i < s->members.size(); i++) {
        sigdb_member& m = s->members[i];
        if (!placed[i]) {
            const size_t a = align_of(m);
            m.offset = s->type == 14 ? 0 : uint16_t((end + a - 1) / a * a);
        }
        end = std::max(end, m.offset + total_size(m));
    }
    if (!size_given) {
        const size_t a = align_of(*s);
        s->size = uint16_t((end + a - 1) / a * a);
    }
}

struct open_info {
    bool size_given;
    std::vector<bool> placed;
};

bool parse_member(parser& p, const std::vector<std::string>& w, std::vector<open_info>* info) {
    sigdb_member m;
    const int code = sigdb_type_code(w[0]);
    long n;
    if (code >= 0) m.type = uint16_t(code);
    else if (number(w[0], &n)) m.type = uint16_t(n);
    else return p.fail("unknown type " + w[0]);
    if (w.size() < 2 || !name_and_dims(w[1], &m)) return p.fail("a member needs a name");
    m.size = default_size(m.type);
    bool placed = false, size_given = false, opens = false;
    for (size_t i = 2; i < w.size(); i++) {
        const std::string& a = w[i];
        if (a == "{") opens = true;
        else if (a == "hidden") m.flags |= 8;
        else if (a == "text") m.flags |= 64;
        else if (a == "pass") m.flags |= 4;
        else if (a[0] == '@' && number(a.substr(1), &n)) placed = true, m.offset = uint16_t(n);
        else if (a.starts_with("size=") && number(a.substr(5), &n)) size_given = true, m.size = uint16_t(n);
        else if (a.starts_with("flags=") && number(a.substr(6), &n)) m.flags |= uint16_t(n);
        else if (a.starts_with("format=")) m.format = a.substr(7);
        else if (a.starts_with("values=")) {
            std::stringstream list(a.substr(7));
            std::string item;
            while (std::getline(list, item, ',')) {
                const size_t colon = item.find(':');
                if (colon == std::string::npos || !number(item.substr(colon + 1), &n))
                    return p.fail("enumeration values are NAME:NUMBER,...");
                m.values.emplace_back(item.substr(0, colon), uint32_t(n));
            }
        } else return p.fail("unknown word " + a);
    }
    if (opens != (m.type == 13 || m.type == 14)) return p.fail("structures and unions, and only they, open with {");
    sigdb_member* parent = p.open.back();
    parent->members.push_back(m);
    info->back().placed.push_back(placed);
    if (opens) {
        p.open.push_back(&parent->members.back());
        info->push_back({size_given, {}});
    }
    return true;
}

bool parse_line(parser& p, const std::vector<std::string>& w, std::vector<open_info>* info) {
    long n;
    if (w[0] == "}") {
        if (p.open.empty()) return p.fail("} without {");
        lay_out(p.open.back(), info->back().size_given, info->back().placed);
        p.open.pop_back();
        info->pop_back();
        return true;
    }
    if (!p.open.empty()) return parse_member(p, w, info);
    if (w[0] == "member") {
        if (w.size() != 2 || w[1].empty() || w[1].find('/') != std::string::npos)
            return p.fail("member NAME (no /)");
        p.files->push_back({w[1], {}});
        p.table = nullptr;
        return true;
    }
    if (p.files->empty()) return p.fail("a member comes first");
    auto& pieces = p.files->back().pieces;
    if (w[0] == "table") {
        if (w.size() < 2) return p.fail("table NAME");
        sigdb_piece piece;
        piece.is_table = true;
        piece.table.name = w[1];
        for (size_t i = 2; i < w.size(); i++) {
            if (w[i] == "order=big") piece.table.big_endian = true;
            else if (w[i] == "order=little") piece.table.big_endian = false;
            else if (w[i].starts_with("magic=") && number(w[i].substr(6), &n)) piece.table.magic = uint16_t(n);
            else return p.fail("unknown word " + w[i]);
        }
        pieces.push_back(piece);
        p.table = &pieces.back().table;
        return true;
    }
    if (w[0] == "signal") {
        if (!p.table) return p.fail("a signal belongs to a table");
        if (w.size() < 4 || w.back() != "{" || !number(w[2], &n)) return p.fail("signal NAME NUMBER [size=N] {");
        sigdb_signal s;
        s.name = w[1];
        s.signo = uint32_t(n);
        s.layout.name = w[1];
        s.layout.type = 13;
        bool size_given = false;
        for (size_t i = 3; i + 1 < w.size(); i++) {
            if (w[i].starts_with("size=") && number(w[i].substr(5), &n)) size_given = true, s.layout.size = uint16_t(n);
            else return p.fail("unknown word " + w[i]);
        }
        p.table->signals.push_back(s);
        p.open.push_back(&p.table->signals.back().layout);
        info->push_back({size_given, {}});
        return true;
    }
    // Bytes around the tables.
    p.table = nullptr;
    sigdb_piece piece;
    if (w[0] == "fill" && w.size() == 3) {
        long byte;
        if (!number(w[1], &n) || !number(w[2], &byte) || n < 0) return p.fail("fill COUNT BYTE");
        piece.bytes.assign(size_t(n), uint8_t(byte));
    } else if (w[0] == "text" && w.size() == 2) {
        piece.bytes.assign(w[1].begin(), w[1].end());
    } else if (w[0] == "hex") {
        for (size_t i = 1; i < w.size(); i++) {
            long byte;
            if (!number("0x" + w[i], &byte)) return p.fail("hex AA BB ...");
            piece.bytes.push_back(uint8_t(byte));
        }
    } else {
        return p.fail("unknown line " + w[0]);
    }
    pieces.push_back(piece);
    return true;
}

}  // namespace

bool sigdb_parse_description(const std::string& text, std::vector<sigdb_member_file>* files, std::string* error) {
    parser p;
    p.files = files;
    std::vector<open_info> info;
    std::stringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        p.line_no++;
        std::vector<std::string> words;
        std::string split_error;
        if (!split(line, &words, &split_error)) {
            p.fail(split_error);
            *error = p.error;
            return false;
        }
        if (words.empty()) continue;
        if (!parse_line(p, words, &info)) {
            *error = p.error;
            return false;
        }
    }
    if (!p.open.empty()) {
        *error = "a { is not closed";
        return false;
    }
    return true;
}
