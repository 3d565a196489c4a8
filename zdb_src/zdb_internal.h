// Inside the symbol file reader: ELF field access bounded by the file, the
// open step that reports instead of exiting, and the result builder.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "support/text.h"
#include "zdb_src/zdb.h"

// ELF32 layout: fixed entry sizes whatever the header claims.
constexpr uint32_t ZDB_EHDR_SIZE = 52;
constexpr uint32_t ZDB_SHDR_SIZE = 40;
constexpr uint32_t ZDB_SYM_SIZE = 16;
constexpr uint16_t ZDB_ET_EXEC = 2;
constexpr uint32_t ZDB_SHT_NOBITS = 8;

inline uint32_t zdb_e_type(const zdb_file* f) { return Z_EC16(f, f->ehdr + 16); }
inline uint32_t zdb_e_shoff(const zdb_file* f) { return Z_EC32(f, f->ehdr + 32); }
inline uint32_t zdb_e_shnum(const zdb_file* f) { return Z_EC16(f, f->ehdr + 48); }
inline uint32_t zdb_e_shstrndx(const zdb_file* f) { return Z_EC16(f, f->ehdr + 50); }

// Section header fields; `sh` points at a whole 40-byte entry in the mapping.
inline uint32_t zdb_sh_name(const zdb_file* f, const uint8_t* sh) { return Z_EC32(f, sh); }
inline uint32_t zdb_sh_type(const zdb_file* f, const uint8_t* sh) { return Z_EC32(f, sh + 4); }
inline uint32_t zdb_sh_addr(const zdb_file* f, const uint8_t* sh) { return Z_EC32(f, sh + 12); }
inline uint32_t zdb_sh_offset(const zdb_file* f, const uint8_t* sh) { return Z_EC32(f, sh + 16); }
inline uint32_t zdb_sh_size(const zdb_file* f, const uint8_t* sh) { return Z_EC32(f, sh + 20); }

// Symbol fields; `sym` points at a whole 16-byte entry.
inline uint32_t zdb_st_name(const zdb_file* f, const uint8_t* sym) { return Z_EC32(f, sym); }
inline uint32_t zdb_st_value(const zdb_file* f, const uint8_t* sym) { return Z_EC32(f, sym + 4); }
inline uint32_t zdb_st_type(const uint8_t* sym) { return sym[12] & 0xFu; }

// The file's bytes, and the bytes of one section. A missing or NOBITS
// section, or one whose header points outside the file, is empty.
std::span<const uint8_t> zdb_image(const zdb_file* f);
std::span<const uint8_t> zdb_section_bytes(const zdb_file* f, const uint8_t* sh);

// Examines the image at `base`, `size` of a zeroed record and finds its
// sections.
zdb_open_status open_elf_file(zdb_file* file);

// Appends a string with its NUL to a result's text and returns its offset.
uint32_t zdb_add_string(zdb_addr_info* info, std::string_view s);
