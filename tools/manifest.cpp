// The manifest form read by mkpmd; see mkpmd.cpp for the description.
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <stdexcept>

#include "tools/manifest_words.h"
#include "tools/pmd_writer.h"

namespace {

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }


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
    else if (k == "time") s.time_sec = manifest_number(v);
    else if (k == "usec") s.time_usec = manifest_number(v);
    else if (k == "address") s.address = manifest_number(v);
    else if (k == "level") s.level = int(manifest_number(v));
    else if (k == "size") s.size_word = manifest_number(v);
    else if (k == "packed") s.packed_word = manifest_number(v);
    else if (k == "cut") s.cut = manifest_number(v);
    else if (k == "flip") s.flip = manifest_number(v);
    else if (k == "user") s.user_called = manifest_number(v);
    else if (k == "code") s.error_code = manifest_number(v);
    else if (k == "extra") s.extra = manifest_number(v);
    else if (k == "proc") s.curr_proc = manifest_number(v);
    else if (k == "signo") s.signo = manifest_number(v);
    else if (k == "word") s.sig_word = manifest_number(v);
    else if (k == "data") s.sig_data = v;
    else if (k == "kindtag") {
        if (v.size() != 8) fail("kindtag needs 8 characters");
        s.kind_tag = v;
    } else if (k == "formlen") s.form_length = manifest_number(v);
    else if (k == "patch") {
        size_t colon = v.find(':');
        if (colon == std::string::npos) fail("patch needs OFFSET:HEX");
        s.patches.push_back({manifest_number(v.substr(0, colon)), manifest_hex(v.substr(colon + 1))});
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
            manifest_skip_blanks(line, i);
            if (i >= line.size() || line[i] == '#') continue;
            std::string cmd = manifest_word(line, i);
            manifest_skip_blanks(line, i);
            std::string rest = line.substr(i);
            if (cmd == "dump") {
                for (auto& [k, v] : manifest_pairs(line, i)) {
                    if (k == "id") out->dump_id = manifest_number(v);
                    else if (k == "version") out->version = manifest_number(v);
                    else if (k == "time") out->default_time = manifest_number(v);
                    else if (k == "length") out->length_word = manifest_number(v);
                    else if (k == "truncate") out->truncate = manifest_number(v);
                    else fail("unknown dump key '" + k + "'");
                }
            } else if (cmd == "include") {
                // Another manifest's sections, in place; its files are relative to it.
                size_t j = i;
                std::string path = manifest_word(line, j);
                if (!path.empty() && path[0] != '/') path = base_dir + "/" + path;
                bytes inc = read_file(path);
                size_t slash = path.rfind('/');
                std::string inc_error;
                if (!pmd_parse_manifest(std::string(inc.begin(), inc.end()), path.substr(0, slash), out, &inc_error))
                    fail(path + ": " + inc_error);
                cur = out->sections.empty() ? nullptr : &out->sections.back();
            } else if (cmd == "section") {
                std::string kind = manifest_word(line, i);
                out->sections.emplace_back();
                cur = &out->sections.back();
                cur->kind = kind_of(kind);
                cur->time_sec = out->default_time;
                for (auto& [k, v] : manifest_pairs(line, i)) section_key(*cur, k, v);
            } else if (cmd == "text") {
                pmd_section& s = need_section();
                std::string t;
                if (rest.compare(0, 2, "<<") == 0) t = heredoc(rest.substr(2));
                else {
                    size_t j = i;
                    t = manifest_word(line, j);
                }
                s.payload.insert(s.payload.end(), t.begin(), t.end());
            } else if (cmd == "hex") {
                pmd_section& s = need_section();
                bytes b = manifest_hex(rest.compare(0, 2, "<<") == 0 ? heredoc(rest.substr(2)) : rest);
                put_bytes(s.payload, b);
            } else if (cmd == "file") {
                pmd_section& s = need_section();
                size_t j = i;
                std::string path = manifest_word(line, j);
                if (!path.empty() && path[0] != '/') path = base_dir + "/" + path;
                put_bytes(s.payload, read_file(path));
            } else if (cmd == "u32") {
                pmd_section& s = need_section();
                size_t j = i;
                while (manifest_skip_blanks(line, j), j < line.size()) put_u32(s.payload, manifest_number(manifest_word(line, j)));
            } else if (cmd == "fill") {
                pmd_section& s = need_section();
                size_t j = i;
                uint32_t count = manifest_number(manifest_word(line, j));
                manifest_skip_blanks(line, j);
                uint32_t value = manifest_number(manifest_word(line, j));
                s.payload.insert(s.payload.end(), count, uint8_t(value));
            } else if (cmd == "program") {
                pmd_program p;
                for (auto& [k, v] : manifest_pairs(line, i)) {
                    if (k == "pid") p.pid = manifest_number(v);
                    else if (k == "word") p.word = manifest_number(v);
                    else if (k == "resident") p.resident = manifest_number(v);
                    else if (k == "status") p.status = manifest_number(v);
                    else if (k == "lmid") p.lmid = v;
                    else if (k == "regions") {
                        std::istringstream rs(v);
                        std::string r;
                        while (std::getline(rs, r, ',')) p.regions.push_back(manifest_number(r));
                    } else fail("unknown program key '" + k + "'");
                }
                need_section().programs.push_back(p);
            } else if (cmd == "reg") {
                size_t j = i;
                pmd_register r;
                r.name = manifest_word(line, j);
                manifest_skip_blanks(line, j);
                r.value = manifest_number(manifest_word(line, j));
                need_section().registers.push_back(r);
            } else if (cmd == "arch") {
                put_bytes(need_section().arch, manifest_hex(rest));
            } else {
                fail("unknown directive '" + cmd + "'");
            }
        }
    } catch (const std::runtime_error& e) {
        *error = "line " + std::to_string(lineno) + ": " + e.what();
        return false;
    }
    return true;
}
