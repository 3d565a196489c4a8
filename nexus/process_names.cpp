#include "nexus/process_names.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>

namespace {

constexpr size_t line_limit = 511;
constexpr int line_bits = 28;
// Up to 8 index entries per hex digit of the list: a list that needs more
// (far beyond any board's process count) is searched line by line.
constexpr size_t index_limit = size_t(1) << 22;

// Identities are printed with "%lx": lower-case digits only.
bool is_lower_hex_digit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }
uint32_t digit_value(char c) { return c <= '9' ? uint32_t(c - '0') : uint32_t(c - 'a' + 10); }

// An identity is printed without leading zeros, so only such strings are
// keys; any other text is searched line by line.
std::optional<uint64_t> key_of(const char* text, size_t len) {
    if (len == 0 || len > 8 || (text[0] == '0' && len > 1)) return std::nullopt;
    uint64_t value = 0;
    for (size_t i = 0; i < len; i++) {
        if (!is_lower_hex_digit(text[i])) return std::nullopt;
        value = value << 4 | digit_value(text[i]);
    }
    return uint64_t(len) << 32 | value;
}

// Calls add(key) for every key that stands in the line.
template <class Add>
void keys_in_line(const std::string& line, Add&& add) {
    const size_t n = line.size();
    for (size_t start = 0; start < n; start++) {
        if (!is_lower_hex_digit(line[start])) continue;
        if (line[start] == '0') {
            add(uint64_t(1) << 32);
            continue;
        }
        uint64_t value = 0;
        for (size_t len = 1; len <= 8 && start + len <= n && is_lower_hex_digit(line[start + len - 1]); len++) {
            value = value << 4 | digit_value(line[start + len - 1]);
            add(uint64_t(len) << 32 | value);
        }
    }
}

}  // namespace

bool proc_list_read(const char* path, proc_list_file* file) {
    FILE* in = std::fopen(path, "r");
    if (!in) return false;
    file->lines.clear();
    file->index.clear();
    std::string text;
    char buf[1 << 16];
    size_t got;
    while ((got = std::fread(buf, 1, sizeof buf, in)) > 0) text.append(buf, got);
    std::fclose(in);
    for (size_t at = 0; at < text.size();) {
        size_t len = std::min(line_limit, text.size() - at);
        const char* nl = static_cast<const char*>(std::memchr(text.data() + at, '\n', len));
        if (nl) len = size_t(nl - (text.data() + at)) + 1;
        size_t used = strnlen(text.data() + at, len);
        file->lines.emplace_back(text.data() + at, used);
        at += len;
    }
    return true;
}

void proc_list_build_index(proc_list_file* file) {
    file->index.clear();
    if (file->lines.size() >= (size_t(1) << line_bits)) return;
    size_t entries = 0;
    for (const std::string& line : file->lines) keys_in_line(line, [&](uint64_t) { entries++; });
    if (entries > index_limit) return;
    file->index.reserve(entries);
    for (size_t i = 0; i < file->lines.size(); i++)
        keys_in_line(file->lines[i], [&](uint64_t key) { file->index.push_back(key << line_bits | i); });
    std::sort(file->index.begin(), file->index.end());
    file->index.erase(std::unique(file->index.begin(), file->index.end()), file->index.end());
}

void proc_list_find(const proc_list_file& file, const char* text, std::vector<uint32_t>* lines) {
    lines->clear();
    const size_t len = std::strlen(text);
    std::optional<uint64_t> key = key_of(text, len);
    if (key && !file.index.empty()) {
        const uint64_t first = *key << line_bits, end = (*key + 1) << line_bits;
        for (auto it = std::lower_bound(file.index.begin(), file.index.end(), first);
             it != file.index.end() && *it < end; ++it)
            lines->push_back(uint32_t(*it & ((uint64_t(1) << line_bits) - 1)));
        return;
    }
    for (size_t i = 0; i < file.lines.size(); i++)
        if (file.lines[i].find(text, 0, len) != std::string::npos) lines->push_back(uint32_t(i));
}

std::string proc_list_first_word(const std::string& line) {
    // Blanks alone part the words: a tab stays in the word, and so does the
    // line end of a line with one word.
    const size_t start = std::min(line.find_first_not_of(' '), line.size());
    const size_t end = std::min(line.find(' ', start), line.size());
    return line.substr(start, end - start);
}
