// The symbol file reader: ELF files of the board's software, read in place
// from a read-only mapping, in the byte order each file declares.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/byte_cursor.h"

// The host's byte order: 4321 big-endian, 1234 any other.
uint16_t ec_check_endian();
// The order in which the fields of a file with this e_ident[EI_DATA] are
// read: the host's own when the file declares it, else the other one, also
// for a file that declares neither.
byte_order ec_init(uint8_t ei_data);

// One open symbol file. Section header fields point at the 40-byte entry in
// the mapping, or are null when the file has no such section.
struct zdb_file {
    int is_dwarf2 = 0;
    int fd = 0;
    uint32_t size = 0;
    const uint8_t* base = nullptr;  // null: no file open in this record
    const uint8_t* ehdr = nullptr;
    const uint8_t* shdr = nullptr;
    const uint8_t* text = nullptr;
    const uint8_t* debug = nullptr;
    const uint8_t* line = nullptr;
    const uint8_t* debug_srcinfo = nullptr;
    const uint8_t* debug_sfnames = nullptr;
    const uint8_t* symtab = nullptr;
    const uint8_t* strtab = nullptr;
    const uint8_t* debug_line = nullptr;
    const uint8_t* debug_info = nullptr;
    const uint8_t* debug_abbrev = nullptr;
    const uint8_t* debug_str = nullptr;
    std::unique_ptr<std::vector<const uint8_t*>> symbols;  // sorted by st_value, built on first lookup
    byte_order order = byte_order::big;  // of the file's fields, set by ec_init
};

// Readers of a 32-bit and a 16-bit field of the file, in the byte order it
// declares, at any alignment. `p` points into the file's mapping at a field
// that the caller has found inside it.
inline uint32_t Z_EC32(const zdb_file* f, const uint8_t* p) { return byte_cursor({p, 4}, 0, f->order).u32(); }
inline uint32_t Z_EC16(const zdb_file* f, const uint8_t* p) { return byte_cursor({p, 2}, 0, f->order).u16(); }

// The result of a translation: three strings inside `text`, found by offset;
// offset 0 reads as the empty string.
struct zdb_addr_info {
    uint32_t path_a_offset = 0;
    uint32_t path_b_offset = 0;
    uint32_t function_offset = 0;
    int32_t line = 0;
    // For the stand-in of the cross tool, made by the DWARF 2 reader (0:
    // none): the function as the tool names it, before demangling, and the
    // source file with its directories joined as the tool joins them.
    uint32_t tool_function_offset = 0;
    uint32_t tool_path_offset = 0;
    std::string text = std::string(1, '\0');

    const char* path_a() const { return text.c_str() + path_a_offset; }
    const char* path_b() const { return text.c_str() + path_b_offset; }
    const char* function() const { return text.c_str() + function_offset; }
};
using zdb_addr_result = std::unique_ptr<zdb_addr_info>;

enum zdb_open_status {
    ZDB_OPEN_OK = 0,
    ZDB_OPEN_NOT_ELF,      // too short, no ELF magic, or a header or table outside the file
    ZDB_OPEN_NOT_EXEC,     // a relocatable or shared file
    ZDB_OPEN_CANNOT_OPEN,  // open failed
    ZDB_OPEN_CANNOT_READ,  // fstat or mmap failed
};

// The outcome of opening a named file; `error` is the errno of a failed
// system call.
struct zdb_open_result {
    zdb_open_status status = ZDB_OPEN_OK;
    int error = 0;
    bool ok() const { return status == ZDB_OPEN_OK; }
};

// With a null path the record is made empty. A file that cannot be read as
// a symbol file leaves the record empty too; the caller tells the failure
// and ends the run.
zdb_open_result zdb_open_file(zdb_file* file, const char* path);
void zdb_close_file(zdb_file* file);
const uint8_t* zdb_find_section(const zdb_file* file, const char* name);
zdb_addr_result zdb_elf_translate_addr(zdb_file* file, uint32_t addr);
zdb_addr_result zdb_translate_addr(zdb_file* file, uint32_t addr);
zdb_addr_result zdb_dwarf2_translate_addr(zdb_file* file, uint32_t addr);
zdb_addr_result zdb_dwarf_translate_addr(zdb_file* file, uint32_t addr);
