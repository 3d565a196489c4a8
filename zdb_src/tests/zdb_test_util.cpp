#include "zdb_src/tests/zdb_test_util.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>

void byte_writer::u16(uint32_t v) {
    if (big_endian) {
        u8(uint8_t(v >> 8)), u8(uint8_t(v));
    } else {
        u8(uint8_t(v)), u8(uint8_t(v >> 8));
    }
}

void byte_writer::u32(uint32_t v) {
    size_t at = out.size();
    out.resize(at + 4);
    put32(at, v);
}

void byte_writer::put32(size_t at, uint32_t v) {
    for (int i = 0; i < 4; i++) {
        int shift = big_endian ? 24 - 8 * i : 8 * i;
        out[at + i] = uint8_t(v >> shift);
    }
}

void byte_writer::uleb(uint32_t v) {
    do {
        uint8_t b = v & 0x7f;
        v >>= 7;
        u8(v ? b | 0x80 : b);
    } while (v);
}

void byte_writer::sleb(int32_t v) {
    for (;;) {
        uint8_t b = v & 0x7f;
        v >>= 7;
        bool done = (v == 0 && !(b & 0x40)) || (v == -1 && (b & 0x40));
        u8(done ? b : b | 0x80);
        if (done) return;
    }
}

void byte_writer::str(const std::string& s) {
    out.insert(out.end(), s.begin(), s.end());
    out.push_back(0);
}

std::vector<uint8_t> build_elf(const elf_image_desc& image) {
    std::vector<elf_section_desc> all = image.sections;
    if (!image.symbols.empty()) {
        byte_writer symtab{image.big_endian, std::vector<uint8_t>(16, 0)};
        byte_writer strtab{image.big_endian, {0}};
        for (const auto& s : image.symbols) {
            symtab.u32(uint32_t(strtab.tell()));
            strtab.str(s.name);
            symtab.u32(s.value);
            symtab.u32(0);
            symtab.u8(uint8_t(1 << 4 | s.type));
            symtab.u8(0);
            symtab.u16(1);
        }
        all.push_back({".symtab", 2, 0, symtab.out, 0});
        all.push_back({".strtab", 3, 0, strtab.out, 0});
    }
    byte_writer names{image.big_endian, {0}};
    std::vector<uint32_t> name_offsets;
    for (const auto& s : all) {
        name_offsets.push_back(uint32_t(names.tell()));
        names.str(s.name);
    }
    name_offsets.push_back(uint32_t(names.tell()));
    names.str(".shstrtab");
    all.push_back({".shstrtab", 3, 0, names.out, 0});

    byte_writer w{image.big_endian, {}};
    const uint8_t ident[16] = {0x7f, 'E', 'L', 'F', 1, uint8_t(image.big_endian ? 2 : 1), 1};
    w.out.assign(ident, ident + 16);
    w.u16(image.e_type);
    w.u16(image.big_endian ? 20 : 3);
    w.u32(1);
    w.u32(0);  // entry
    w.u32(0);  // phoff
    w.u32(0);  // shoff, set below
    w.u32(0);
    w.u16(52);
    w.u16(0);
    w.u16(0);
    w.u16(40);
    w.u16(uint16_t(all.size() + 1));
    w.u16(uint16_t(all.size()));

    std::vector<uint32_t> offsets;
    for (const auto& s : all) {
        while (w.tell() % 4) w.u8(0);
        offsets.push_back(uint32_t(w.tell()));
        w.bytes(s.bytes);
    }
    while (w.tell() % 4) w.u8(0);
    w.put32(32, uint32_t(w.tell()));
    w.out.resize(w.tell() + 40, 0);  // the null section
    for (size_t i = 0; i < all.size(); i++) {
        const auto& s = all[i];
        w.u32(name_offsets[i]);
        w.u32(s.type);
        w.u32(0);
        w.u32(s.addr);
        w.u32(offsets[i]);
        w.u32(s.type == 8 ? s.nobits_size : uint32_t(s.bytes.size()));
        w.u32(s.type == 2 ? uint32_t(i + 2) : 0);  // .symtab links to .strtab
        w.u32(0);
        w.u32(1);
        w.u32(s.type == 2 ? 16 : 0);
    }
    return w.out;
}

elf_section_desc text_section(uint32_t addr, uint32_t size) { return {".text", 8, addr, {}, size}; }

std::string write_temp_file(const std::string& name, const std::vector<uint8_t>& bytes) {
    std::string path = "/tmp/zdb_test_" + std::to_string(getpid()) + "_" + name;
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return path;
}

std::vector<uint8_t> read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void open_image(zdb_file* file, const std::vector<uint8_t>& bytes, const std::string& name) {
    std::string path = write_temp_file(name, bytes);
    zdb_open_file(file, path.c_str());
    unlink(path.c_str());
}

std::string fixture(const std::string& name) { return std::string(KRD_BINARY_DIR) + "/tests/elf/" + name; }

zdb_open_result open_status(const std::string& path) {
    zdb_file f;
    zdb_open_result r = zdb_open_file(&f, path.c_str());
    zdb_close_file(&f);
    return r;
}

void dwarf2_writer::abbreviation(uint32_t code, uint32_t tag, bool children,
                                 const std::vector<std::pair<uint32_t, uint32_t>>& attrs) {
    abbrev.uleb(code);
    abbrev.uleb(tag);
    abbrev.u8(children ? 1 : 0);
    for (auto [a, f] : attrs) abbrev.uleb(a), abbrev.uleb(f);
    abbrev.uleb(0);
    abbrev.uleb(0);
}

size_t dwarf2_writer::begin_unit(uint32_t abbrev_offset, uint16_t version, uint8_t address_size) {
    size_t unit = info.tell();
    info.u32(0);
    info.u16(version);
    info.u32(abbrev_offset);
    info.u8(address_size);
    return unit;
}

void dwarf2_writer::end_unit(size_t unit) { info.put32(unit, uint32_t(info.tell() - unit - 4)); }

size_t dwarf2_writer::begin_line(const std::vector<std::string>& files, int8_t line_base, uint8_t line_range,
                                 uint8_t opcode_base, uint8_t min_inst) {
    size_t program = line.tell();
    line.u32(0);
    line.u16(2);
    header_length_at = line.tell();
    line.u32(0);
    line.u8(min_inst);
    line.u8(1);
    line.u8(uint8_t(line_base));
    line.u8(line_range);
    line.u8(opcode_base);
    const uint8_t lengths[] = {0, 1, 1, 1, 1, 0, 0, 0, 1};
    for (int i = 1; i < opcode_base; i++) line.u8(i <= 9 ? lengths[i - 1] : 0);
    line.u8(0);  // no include directories
    for (const auto& f : files) {
        line.str(f);
        line.uleb(0), line.uleb(0), line.uleb(0);
    }
    line.u8(0);
    line.put32(header_length_at, uint32_t(line.tell() - header_length_at - 4));
    return program;
}

void dwarf2_writer::end_line(size_t program) { line.put32(program, uint32_t(line.tell() - program - 4)); }

void dwarf2_writer::set_address(uint32_t a) {
    line.u8(0), line.uleb(5), line.u8(2), line.u32(a);
}

void dwarf2_writer::end_sequence() { line.u8(0), line.uleb(1), line.u8(1); }

void dwarf2_writer::advance_line(int32_t n) { line.u8(3), line.sleb(n); }

void dwarf2_writer::advance_pc(uint32_t n) { line.u8(2), line.uleb(n); }

std::vector<elf_section_desc> dwarf2_writer::sections(uint32_t text_addr, uint32_t text_size) const {
    std::vector<elf_section_desc> s = {text_section(text_addr, text_size),
                                       {".debug_info", 1, 0, info.out, 0},
                                       {".debug_abbrev", 1, 0, abbrev.out, 0},
                                       {".debug_line", 1, 0, line.out, 0}};
    if (!str.out.empty()) s.push_back({".debug_str", 1, 0, str.out, 0});
    return s;
}

size_t dwarf1_writer::begin(uint16_t tag) {
    size_t entry = debug.tell();
    debug.u32(0);
    debug.u16(tag);
    debug.u16(0x12);  // AT_sibling, a reference
    debug.u32(0);
    return entry;
}

void dwarf1_writer::end(size_t entry) { debug.put32(entry, uint32_t(debug.tell() - entry)); }

void dwarf1_writer::sibling(size_t entry, uint32_t offset) { debug.put32(entry + 8, offset); }

void dwarf1_writer::addr(uint16_t attribute, uint32_t v) { debug.u16(attribute), debug.u32(v); }

void dwarf1_writer::data4(uint16_t attribute, uint32_t v) { debug.u16(attribute), debug.u32(v); }

void dwarf1_writer::string(uint16_t attribute, const std::string& s) { debug.u16(attribute), debug.str(s); }

uint32_t dwarf1_writer::line_table(uint32_t base, const std::vector<std::pair<uint32_t, uint32_t>>& rows,
                                   uint32_t end_delta) {
    size_t table = line.tell();
    line.u32(0);
    line.u32(base);
    for (auto [number, delta] : rows) line.u32(number), line.u16(0), line.u32(delta);
    line.u32(0), line.u16(0), line.u32(end_delta);
    line.put32(table, uint32_t(line.tell() - table));
    return uint32_t(table);
}
