// Helpers of the symbol file reader tests: a writer of small ELF images of
// either byte order, writers of DWARF 1 and DWARF 2 sections, the fixture
// executables.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/run_program.h"
#include "zdb_src/zdb.h"

// Bytes in a chosen order.
struct byte_writer {
    bool big_endian = true;
    std::vector<uint8_t> out;

    size_t tell() const { return out.size(); }
    void u8(uint8_t v) { out.push_back(v); }
    void u16(uint32_t v);
    void u32(uint32_t v);
    void put32(size_t at, uint32_t v);
    void uleb(uint32_t v);
    void sleb(int32_t v);
    void str(const std::string& s);
    void bytes(const std::vector<uint8_t>& b) { out.insert(out.end(), b.begin(), b.end()); }
};

struct elf_section_desc {
    std::string name;
    uint32_t type = 1;  // SHT_PROGBITS
    uint32_t addr = 0;
    std::vector<uint8_t> bytes;
    uint32_t nobits_size = 0;  // size of an SHT_NOBITS (8) section
};

struct elf_symbol_desc {
    std::string name;
    uint32_t value = 0;
    uint8_t type = 2;  // STT_FUNC
};

struct elf_image_desc {
    bool big_endian = true;
    uint16_t e_type = 2;
    std::vector<elf_section_desc> sections;
    std::vector<elf_symbol_desc> symbols;  // after the null symbol; none: no .symtab
};

// Layout: header, section contents in order, .symtab, .strtab, .shstrtab,
// then the section header table.
std::vector<uint8_t> build_elf(const elf_image_desc& image);

// A .text section of `size` bytes at `addr`, without contents.
elf_section_desc text_section(uint32_t addr, uint32_t size);

// A file in the test's temporary folder holding the bytes; returns its path.
std::string write_temp_file(const std::string& name, const std::vector<uint8_t>& bytes);
std::vector<uint8_t> read_file(const std::string& path);

// Opens the bytes as a symbol file (through a temporary file).
void open_image(zdb_file* file, const std::vector<uint8_t>& bytes, const std::string& name = "image.elf");

// The fixture executables built from tests/elf.
std::string fixture(const std::string& name);

// What zdb_open_file makes of the path.
zdb_open_result open_status(const std::string& path);

// DWARF 2 sections, most significant byte first.
struct dwarf2_writer {
    byte_writer info, abbrev, str, line;

    void abbreviation(uint32_t code, uint32_t tag, bool children, const std::vector<std::pair<uint32_t, uint32_t>>& attrs);
    void end_abbreviations() { abbrev.uleb(0); }
    // A unit header; returns its offset for end_unit.
    size_t begin_unit(uint32_t abbrev_offset = 0, uint16_t version = 2, uint8_t address_size = 4);
    void end_unit(size_t unit);
    // A line program header with these files; returns its offset for end_line.
    size_t begin_line(const std::vector<std::string>& files, int8_t line_base = -5, uint8_t line_range = 14,
                      uint8_t opcode_base = 10, uint8_t min_inst = 4);
    void end_line(size_t program);
    // Opcodes of the line program.
    void set_address(uint32_t a);
    void end_sequence();
    void special(uint8_t opcode) { line.u8(opcode); }
    void advance_line(int32_t n);
    void advance_pc(uint32_t n);
    void copy() { line.u8(1); }

    // The sections of an executable with this debug data and the .text range.
    std::vector<elf_section_desc> sections(uint32_t text_addr, uint32_t text_size) const;

  private:
    size_t header_length_at = 0;
};

// DWARF 1 entries in the file's order.
struct dwarf1_writer {
    byte_writer debug, line;

    // An entry with its sibling attribute; returns its offset.
    size_t begin(uint16_t tag);
    void end(size_t entry);  // sets the entry's length
    void sibling(size_t entry, uint32_t offset);
    void addr(uint16_t attribute, uint32_t v);
    void data4(uint16_t attribute, uint32_t v);
    void string(uint16_t attribute, const std::string& s);
    // A .line table of (line, address delta) rows with its closing row.
    uint32_t line_table(uint32_t base, const std::vector<std::pair<uint32_t, uint32_t>>& rows, uint32_t end_delta);
};
