#include "tools/pmd_writer.h"

#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>

void put_u32(bytes& b, uint32_t v) {
    b.push_back(uint8_t(v >> 24));
    b.push_back(uint8_t(v >> 16));
    b.push_back(uint8_t(v >> 8));
    b.push_back(uint8_t(v));
}

void put_tag(bytes& b, const char* tag) { b.insert(b.end(), tag, tag + std::strlen(tag)); }
void put_bytes(bytes& b, const bytes& more) { b.insert(b.end(), more.begin(), more.end()); }
void put_text(bytes& b, const std::string& s) { b.insert(b.end(), s.begin(), s.end()); }

bytes zlib_compress(const bytes& data, int level) {
    uLongf n = compressBound(uLong(data.size()));
    bytes out(n);
    if (compress2(out.data(), &n, data.data(), uLong(data.size()), level) != Z_OK)
        throw std::runtime_error("compress2 failed");
    out.resize(n);
    return out;
}

static void put_chunk(bytes& b, const char* tag, const bytes& body) {
    put_tag(b, tag);
    put_u32(b, uint32_t(body.size()));
    put_bytes(b, body);
}

static bytes title_chunk(const std::string& title) {
    bytes t(title.begin(), title.end());
    t.push_back(0);
    return t;
}

// The compressed-data group shared by memory and signal blocks.
static void put_zdat(bytes& b, const pmd_section& s, const bytes& stream_in) {
    bytes stream = stream_in;
    if (s.flip && *s.flip < stream.size()) stream[*s.flip] ^= 0xFF;
    uint32_t packed = s.packed_word ? *s.packed_word : uint32_t(stream.size());
    if (s.cut && *s.cut < stream.size()) stream.resize(*s.cut);
    bytes zdef(20, 0);
    put_u32(zdef, packed);
    put_u32(zdef, 0);
    bytes group;
    put_tag(group, "ZDATZDEF");
    put_u32(group, uint32_t(zdef.size()));
    put_bytes(group, zdef);
    put_chunk(group, "DATA", stream);
    put_tag(b, "FORM");
    put_u32(b, uint32_t(group.size()));
    put_bytes(b, group);
}

static bytes kind_body(const pmd_section& s, const char* tag) {
    bytes b;
    std::string t = s.kind_tag ? *s.kind_tag : tag;
    put_tag(b, t.c_str());
    switch (s.kind) {
    case pmd_kind::memory: {
        bytes title = title_chunk(s.title);
        put_u32(b, uint32_t(title.size()));
        put_bytes(b, title);
        put_tag(b, "MHD ");
        put_u32(b, 8);
        put_u32(b, s.address);
        put_u32(b, s.size_word ? *s.size_word : uint32_t(s.payload.size()));
        put_zdat(b, s, zlib_compress(s.payload, s.level));
        break;
    }
    case pmd_kind::error: {
        bytes erin;
        put_u32(erin, s.user_called);
        put_u32(erin, s.error_code);
        put_u32(erin, s.extra);
        put_u32(erin, s.curr_proc);
        put_u32(b, uint32_t(erin.size()));
        put_bytes(b, erin);
        put_chunk(b, "DESC", title_chunk(s.title));
        break;
    }
    case pmd_kind::program: {
        bytes list;
        put_u32(list, 0);
        for (const pmd_program& p : s.programs) {
            bytes rec;
            put_tag(rec, "PROGPRHD");
            put_u32(rec, 16);
            put_u32(rec, p.pid);
            put_u32(rec, p.word);
            put_u32(rec, p.resident);
            put_u32(rec, p.status);
            bytes regions;
            for (uint32_t r : p.regions) put_u32(regions, r);
            put_chunk(rec, "PREG", regions);
            bytes lmid(p.lmid.begin(), p.lmid.end());
            lmid.push_back(0);
            put_chunk(rec, "LMID", lmid);
            put_tag(list, "FORM");
            put_u32(list, uint32_t(rec.size()));
            put_bytes(list, rec);
        }
        put_u32(b, uint32_t(list.size()));
        put_bytes(b, list);
        break;
    }
    case pmd_kind::reg: {
        bytes title = title_chunk(s.title);
        put_u32(b, uint32_t(title.size()));
        put_bytes(b, title);
        put_chunk(b, "ARCH", s.arch);
        for (const pmd_register& r : s.registers) {
            bytes e;
            e.push_back(0);
            put_u32(e, r.value);
            put_text(e, r.name);
            e.push_back(0);
            put_chunk(b, "RENT", e);
        }
        break;
    }
    case pmd_kind::text: {
        put_u32(b, uint32_t(s.payload.size()));
        put_bytes(b, s.payload);
        break;
    }
    case pmd_kind::signal: {
        put_u32(b, 12);
        put_u32(b, s.signo);
        put_u32(b, s.sig_word);
        put_u32(b, s.size_word ? *s.size_word : uint32_t(s.payload.size()));
        if (s.sig_data == "raw") put_chunk(b, "DATA", s.payload);
        else if (s.sig_data == "zlib") put_zdat(b, s, zlib_compress(s.payload, s.level));
        else put_tag(b, "NONE");  // neither DATA nor FORM
        break;
    }
    case pmd_kind::raw: break;
    }
    return b;
}

bytes pmd_build_section(const pmd_section& s) {
    if (s.kind == pmd_kind::raw) return s.payload;
    static const char* tags[] = {"MBL DESC", "ERBLERIN", "PRBLLIST", "RBL DESC", "TXBLDESC", "SGBLSGHD"};
    bytes body = kind_body(s, tags[int(s.kind)]);
    bytes inner;
    put_tag(inner, "BLOC");
    put_tag(inner, "BLHD");
    put_u32(inner, 16);
    put_u32(inner, 0);
    put_u32(inner, 0);
    put_u32(inner, s.time_sec);
    put_u32(inner, s.time_usec);
    put_tag(inner, "FORM");
    put_u32(inner, uint32_t(body.size()));
    put_bytes(inner, body);
    bytes out;
    put_tag(out, "FORM");
    put_u32(out, s.form_length ? *s.form_length : uint32_t(inner.size()));
    put_bytes(out, inner);
    for (const pmd_patch& p : s.patches)
        for (size_t i = 0; i < p.data.size(); i++)
            if (p.offset + i < out.size()) out[p.offset + i] = p.data[i];
    return out;
}

bytes pmd_build_dump(const pmd_dump& d) {
    bytes f;
    put_tag(f, "FORM");
    put_u32(f, 0);  // set below
    put_tag(f, "PMD VERS");
    put_u32(f, 4);
    put_u32(f, d.version);
    put_tag(f, "DPID");
    put_u32(f, 16);
    put_u32(f, d.dump_id);
    f.resize(48, 0);
    for (const pmd_section& s : d.sections) put_bytes(f, pmd_build_section(s));
    uint32_t len = d.length_word ? *d.length_word : uint32_t(f.size() - 8);
    for (int i = 0; i < 4; i++) f[4 + i] = uint8_t(len >> (24 - 8 * i));
    if (d.truncate && *d.truncate < f.size()) f.resize(*d.truncate);
    return f;
}

bool pmd_write_file(const std::string& path, const bytes& data) {
    FILE* fp = std::fopen(path.c_str(), "wb");
    if (!fp) return false;
    bool ok = std::fwrite(data.data(), 1, data.size(), fp) == data.size();
    return std::fclose(fp) == 0 && ok;
}
