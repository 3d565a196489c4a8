#include "pmd/section_chain.h"

#include <cstdio>
#include <cstring>

krd_section::~krd_section() {
    while (next) next = std::move(next->next);
}

// Reads up to n chunk bytes as a title. The chunk's length bounds the text;
// a zero byte ends it. Bytes past the end of the file read as zero, so
// nothing beyond the file needs to be asked for.
static std::string read_title_bytes(krd_file* f, uint32_t n) {
    uint64_t avail = krd_bytes_after(f, f->pos);
    uint32_t take = n < avail ? n : uint32_t(avail);
    std::string s(take, '\0');
    krd_read_bytes(f, reinterpret_cast<uint8_t*>(s.data()), take);
    krd_seek(f, n - take, 1);
    s.resize(std::strlen(s.c_str()));
    return s;
}

static bool read_title(krd_file* f, krd_section* node, uint32_t n) {
    uint32_t len = 0;
    switch (node->kind) {
    case KRD_KIND_ERROR:
        krd_seek(f, n, 1);
        if (krd_read_tag(f, &len) != HDR_DESC) return false;
        node->title = read_title_bytes(f, len);
        return true;
    case KRD_KIND_MEMORY: {
        if (n == 0) return true;
        uint8_t first = krd_read_byte(f);
        std::string rest = read_title_bytes(f, n - 1);
        if (first == ' ') {
            node->is_text = 1;
            node->title = rest;
        } else if (first != 0) {
            node->title = char(first) + rest;
        }
        if (node->title == "Trace log from kernel:" || node->title == "CPU load:" ||
            node->title.compare(0, 23, "CPU registers for pid =") == 0)
            node->is_text = 1;
        return true;
    }
    case KRD_KIND_PROGRAM:
        node->title = "PRH Program list";
        return true;
    case KRD_KIND_REGISTER:
        node->title = read_title_bytes(f, n);
        return true;
    case KRD_KIND_TEXT: {
        // The first line, cut at 48 characters.
        char t[49] = {};
        uint32_t stored = 0, read = 0;
        while (stored < 48 && read < n) {
            uint8_t b = krd_read_byte(f);
            read++;
            if (b == '\n') break;
            t[stored++] = char(b);
        }
        node->title = t;
        return true;
    }
    case KRD_KIND_SIGNAL: {
        uint32_t signo = krd_read_word(f);
        if (signo == KRD_KERNEL_TRACE_SIGNO) {
            node->title = "OSE KERNEL TRACE";
        } else {
            char t[32];
            std::snprintf(t, sizeof t, "Signal 0x%08x", signo);
            node->title = t;
        }
        return true;
    }
    default:
        return false;
    }
}

krd_chain krd_read_section(krd_file* f, uint32_t* cursor) {
    if (*cursor >= f->size) return nullptr;
    krd_seek(f, *cursor, 0);
    const uint32_t start = *cursor;
    auto node = std::make_unique<krd_section>();
    uint32_t len = 0;

    if (krd_read_tag(f, &len) != HDR_FORM) return nullptr;
    // A length that would wrap the cursor can never be walked past.
    uint64_t next = uint64_t(start) + len + 8;
    if (next > 0xFFFFFFFFu) return nullptr;
    node->size = len + 8;
    if (krd_read_tag(f, &len) != HDR_BLOC) return nullptr;
    if (krd_read_tag(f, &len) != HDR_BLHD) return nullptr;
    krd_seek(f, 8, 1);
    node->time_sec = krd_read_word(f);
    node->time_usec = krd_read_word(f);
    if (krd_read_tag(f, &len) != HDR_FORM) return nullptr;
    uint32_t n = 0;
    node->kind = krd_read_tag(f, &n);
    node->offset = f->pos - 12;
    if (!read_title(f, node.get(), n)) return nullptr;
    *cursor = uint32_t(next);
    return node;
}

void krd_merge_sections(krd_file* f, krd_section* first, uint32_t* cursor) {
    if (first->kind == KRD_KIND_SIGNAL) return;
    krd_section* tail = first;
    uint32_t peek = *cursor;
    for (;;) {
        krd_chain node = krd_read_section(f, &peek);
        if (!node) return;
        if (node->title != first->title) return;
        if (first->title == "TRACE AND ERROR") return;
        tail->next = std::move(node);
        tail = tail->next.get();
        *cursor = peek;
    }
}

static constexpr uint32_t not_found = 0xFFFFFFFF;

krd_chain krd_find_section(krd_file* f, uint32_t* cursor, const char* title) {
    uint32_t at = (cursor == nullptr || *cursor == 0) ? PMD_SECTION_START : *cursor;
    krd_chain chain;
    if (title && *title) {
        const bool from_start = at == PMD_SECTION_START;
        if (from_start) {
            auto hit = f->find_memo.find(title);
            if (hit != f->find_memo.end()) {
                if (hit->second == not_found) return nullptr;
                at = hit->second;
            }
        }
        for (;;) {
            uint32_t start = at;
            chain = krd_read_section(f, &at);
            if (!chain) {
                if (from_start) f->find_memo[title] = not_found;
                return nullptr;
            }
            if (chain->title.find(title) != std::string::npos) {
                if (from_start) f->find_memo[title] = start;
                break;
            }
        }
    } else {
        chain = krd_read_section(f, &at);
    }
    if (chain) krd_merge_sections(f, chain.get(), &at);
    if (cursor) *cursor = at;
    return chain;
}

krd_chain krd_get_section(krd_file* f, uint32_t* cursor) {
    krd_chain chain = krd_read_section(f, cursor);
    if (chain) krd_merge_sections(f, chain.get(), cursor);
    return chain;
}

void krd_free_chain(krd_chain& chain) { chain.reset(); }
