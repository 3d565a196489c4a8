// The ring scripts of mkte, run on the trace ring's own writer.
#include "tools/te_writer.h"

#include <cstdlib>
#include <span>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "errlog/trace_ring.h"
#include "tools/manifest_words.h"

namespace {


[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

void put_u16(bytes& b, uint16_t v) {
    b.push_back(uint8_t(v >> 8));
    b.push_back(uint8_t(v));
}

void put_be(std::span<uint8_t> img, uint64_t at, uint64_t v, int width) {
    if (at + width > img.size()) fail("position " + std::to_string(at) + " lies outside the image");
    for (int i = 0; i < width; i++) img[at + i] = uint8_t(v >> (8 * (width - 1 - i)));
}

uint32_t get_be32(std::span<const uint8_t> img, uint64_t at) {
    if (at + 4 > img.size()) fail("position " + std::to_string(at) + " lies outside the image");
    return uint32_t(img[at]) << 24 | uint32_t(img[at + 1]) << 16 | uint32_t(img[at + 2]) << 8 | img[at + 3];
}

// A value that may be given relative to the current one: +N or -N.
uint32_t adjusted(const std::string& s, uint32_t current) {
    if (!s.empty() && s[0] == '+') return current + manifest_number(s.substr(1));
    if (!s.empty() && s[0] == '-') return current - manifest_number(s.substr(1));
    return manifest_number(s);
}

// The clock the ring's writer reads through its time hook.
uint32_t clock_ticks = 0, clock_usec = 0, clock_step = 1;

uint32_t script_systime(uint32_t* microsecs) {
    *microsecs = clock_usec;
    uint32_t t = clock_ticks;
    clock_ticks += clock_step;
    return t;
}

struct script_state {
    bytes image;
    uint32_t address = 0;
    std::vector<uint32_t> rings;
    std::vector<uint32_t> blocks;  // data positions of the latest ring's allocations
};

uint32_t latest_ring(const script_state& s) {
    if (s.rings.empty()) fail("no ring yet");
    return s.rings.back();
}

std::string expand_count(const std::string& text, uint32_t n) {
    std::string out = text;
    for (size_t at = out.find("{n}"); at != std::string::npos; at = out.find("{n}", at))
        out.replace(at, 3, std::to_string(n));
    return out;
}

// Allocates a block, fills it and finishes it as asked. False if refused.
bool write_block(script_state& s, const bytes& data, uint32_t asked, const std::string& state) {
    std::span<uint8_t> img(s.image);
    uint32_t ring = latest_ring(s);
    if (asked > 0xFFFF) fail("a block holds at most 65535 bytes");
    const bool sub = state == "sub" || state == "subdone";
    if (!sub && state != "done" && state != "open") fail("unknown state '" + state + "'");
    uint32_t at = sub ? alloc_subtrace(img, ring, uint16_t(asked)) : alloc_trace(img, ring, uint16_t(asked));
    if (at == 0) return false;
    for (size_t i = 0; i < data.size() && at + i < img.size(); i++) img[at + i] = data[i];
    if (state == "done") free_trace(img, at);
    if (state == "subdone") free_subtrace(img, at);
    s.blocks.push_back(at);
    return true;
}

void do_entry(script_state& s, const key_values& kv) {
    te_entry e;
    std::optional<uint32_t> asked;
    std::string state = "done";
    uint32_t count = 1;
    bool refuse_ok = false;
    for (auto& [k, v] : kv) {
        if (k == "seconds") e.seconds = manifest_number(v);
        else if (k == "base") e.base_ticks = manifest_number(v);
        else if (k == "line") e.line = uint16_t(manifest_number(v));
        else if (k == "group") e.group = manifest_number(v);
        else if (k == "file") e.file = v;
        else if (k == "msg") e.msg = v;
        else if (k == "suffix") e.suffix = v;
        else if (k == "bin") e.bin = manifest_hex(v);
        else if (k == "msgpos") e.msg_pos = uint16_t(manifest_number(v));
        else if (k == "filepos") e.file_pos = uint16_t(manifest_number(v));
        else if (k == "suffixpos") e.suffix_pos = uint16_t(manifest_number(v));
        else if (k == "binpos") e.bin_pos = uint16_t(manifest_number(v));
        else if (k == "binlen") e.bin_len = uint16_t(manifest_number(v));
        else if (k == "size") asked = manifest_number(v);
        else if (k == "state") state = v;
        else if (k == "count") count = manifest_number(v);
        else if (k == "ticks") clock_ticks = manifest_number(v);
        else if (k == "usec") clock_usec = manifest_number(v);
        else if (k == "refuse") refuse_ok = v == "ok";
        else fail("unknown entry key '" + k + "'");
    }
    const std::string msg = e.msg;
    for (uint32_t n = 1; n <= count; n++) {
        e.msg = expand_count(msg, n);
        bytes data = te_entry_bytes(e);
        if (!write_block(s, data, asked ? *asked : uint32_t(data.size()), state) && !refuse_ok)
            fail("the ring refused entry " + std::to_string(n));
    }
}

void do_header(script_state& s, const key_values& kv) {
    std::span<uint8_t> img(s.image);
    const uint64_t ring = latest_ring(s);
    auto field32 = [&](uint32_t off, const std::string& v) { put_be(img, ring + off, adjusted(v, get_be32(img, ring + off)), 4); };
    for (auto& [k, v] : kv) {
        if (k == "head") field32(TRACE_HEAD, v);
        else if (k == "tail") field32(TRACE_TAIL, v);
        else if (k == "start") field32(TRACE_START, v);
        else if (k == "end") field32(TRACE_END, v);
        else if (k == "enabled") put_be(img, ring + TRACE_ENABLED, manifest_number(v), 1);
        else if (k == "generation") put_be(img, ring + TRACE_GENERATION, manifest_number(v), 1);
        else if (k == "version") put_be(img, ring + TRACE_VERSION, manifest_number(v), 1);
        else if (k == "name") {
            for (uint32_t i = 0; i < TRACE_NAME_SIZE; i++) put_be(img, ring + TRACE_NAME + i, i < v.size() ? uint8_t(v[i]) : 0, 1);
        } else fail("unknown header key '" + k + "'");
    }
}

void do_mark(script_state& s, const key_values& kv) {
    std::span<uint8_t> img(s.image);
    std::optional<uint32_t> n;
    for (auto& [k, v] : kv)
        if (k == "n") n = manifest_number(v);
    if (!n || *n >= s.blocks.size()) fail("mark needs n= of an allocated block");
    const uint64_t block = s.blocks[*n] - TRACE_UNIT;
    for (auto& [k, v] : kv) {
        auto field16 = [&](uint32_t off, const std::string& value) {
            uint32_t cur = get_be32(img, block + off) >> 16;
            put_be(img, block + off, adjusted(value, cur), 2);
        };
        if (k == "n") continue;
        else if (k == "units") field16(BLOCK_UNITS, v);
        else if (k == "size") field16(BLOCK_SIZE, v);
        else if (k == "skip") put_be(img, block + BLOCK_SKIP, manifest_number(v), 1);
        else if (k == "state") put_be(img, block + BLOCK_STATE, manifest_number(v), 1);
        else if (k == "generation") put_be(img, block + BLOCK_GENERATION, manifest_number(v), 1);
        else if (k == "ticks") put_be(img, block + BLOCK_TICKS, manifest_number(v), 4);
        else fail("unknown mark key '" + k + "'");
    }
}

void run_line(script_state& s, const std::string& cmd, const key_values& kv) {
    std::span<uint8_t> img(s.image);
    if (cmd == "image") {
        uint32_t size = 0, fill = 0;
        for (auto& [k, v] : kv) {
            if (k == "size") size = manifest_number(v);
            else if (k == "fill") fill = manifest_number(v);
            else if (k == "address") s.address = manifest_number(v);
            else fail("unknown image key '" + k + "'");
        }
        if (size > (64u << 20)) fail("image too large");
        s.image.assign(size, uint8_t(fill));
    } else if (cmd == "ring") {
        uint32_t at = 0, size = 0;
        std::string name = "Trace&ErrorLog";
        for (auto& [k, v] : kv) {
            if (k == "at") at = manifest_number(v);
            else if (k == "size") size = manifest_number(v);
            else if (k == "name") name = v;
            else fail("unknown ring key '" + k + "'");
        }
        if (uint64_t(at) + size > s.image.size() || size < 76) fail("the ring does not fit the image");
        create_trace(img, at, size, name.c_str());
        enable_trace(img, at);
        s.rings.push_back(at);
        s.blocks.clear();
    } else if (cmd == "enable") {
        enable_trace(img, latest_ring(s));
    } else if (cmd == "disable") {
        disable_trace(img, latest_ring(s));
    } else if (cmd == "clear") {
        clear_trace(img, latest_ring(s));
    } else if (cmd == "clock") {
        for (auto& [k, v] : kv) {
            if (k == "ticks") clock_ticks = manifest_number(v);
            else if (k == "usec") clock_usec = manifest_number(v);
            else if (k == "step") clock_step = manifest_number(v);
            else fail("unknown clock key '" + k + "'");
        }
    } else if (cmd == "entry") {
        do_entry(s, kv);
    } else if (cmd == "block") {
        bytes data;
        std::optional<uint32_t> asked;
        std::string state = "done";
        for (auto& [k, v] : kv) {
            if (k == "hex") data = manifest_hex(v);
            else if (k == "size") asked = manifest_number(v);
            else if (k == "state") state = v;
            else fail("unknown block key '" + k + "'");
        }
        if (!write_block(s, data, asked ? *asked : uint32_t(data.size()), state)) fail("the ring refused the block");
    } else if (cmd == "header") {
        do_header(s, kv);
    } else if (cmd == "mark") {
        do_mark(s, kv);
    } else if (cmd == "poke") {
        uint32_t at = 0;
        bytes data;
        for (auto& [k, v] : kv) {
            if (k == "at") at = manifest_number(v);
            else if (k == "hex") data = manifest_hex(v);
            else fail("unknown poke key '" + k + "'");
        }
        for (size_t i = 0; i < data.size(); i++) put_be(img, uint64_t(at) + i, data[i], 1);
    } else {
        fail("unknown directive '" + cmd + "'");
    }
}

}  // namespace

bytes te_entry_bytes(const te_entry& e) {
    bytes text;
    auto place = [&](const std::string& s) {
        uint16_t at = uint16_t(text.size());
        text.insert(text.end(), s.begin(), s.end());
        text.push_back(0);
        return at;
    };
    const uint16_t msg_at = place(e.msg);
    const uint16_t file_at = place(e.file);
    const uint16_t suffix_at = place(e.suffix);
    const uint16_t bin_at = e.bin.empty() ? 0 : uint16_t(text.size());
    text.insert(text.end(), e.bin.begin(), e.bin.end());

    bytes b;
    put_u32(b, e.seconds);
    put_u32(b, e.base_ticks);
    put_u16(b, e.line);
    put_u16(b, e.file_pos.value_or(file_at));
    put_u16(b, e.msg_pos.value_or(msg_at));
    put_u16(b, e.suffix_pos.value_or(suffix_at));
    put_u16(b, e.bin_pos.value_or(bin_at));
    put_u16(b, e.bin_len.value_or(uint16_t(e.bin.size())));
    put_u32(b, e.group);
    put_bytes(b, text);
    return b;
}

bool te_build_script(const std::string& text, bytes* image, std::string* error) {
    script_state s;
    clock_ticks = 0;
    clock_usec = 0;
    clock_step = 1;
    auto saved = trace_systime;
    trace_systime = script_systime;
    std::istringstream in(text);
    std::string line;
    int lineno = 0;
    try {
        while (std::getline(in, line)) {
            lineno++;
            size_t i = 0;
            while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) i++;
            if (i >= line.size() || line[i] == '#') continue;
            std::string cmd = manifest_word(line, i);
            run_line(s, cmd, manifest_pairs(line, i));
        }
        // The ring's addresses as the target stores them.
        std::span<uint8_t> img(s.image);
        for (uint32_t ring : s.rings)
            for (uint32_t field : {TRACE_HEAD, TRACE_TAIL, TRACE_START, TRACE_END})
                put_be(img, uint64_t(ring) + field, get_be32(img, uint64_t(ring) + field) + s.address, 4);
    } catch (const std::runtime_error& e) {
        trace_systime = saved;
        *error = "line " + std::to_string(lineno) + ": " + e.what();
        return false;
    }
    trace_systime = saved;
    *image = std::move(s.image);
    return true;
}
