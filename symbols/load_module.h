// The load modules the board ran, from the dump's load module text, completed
// from the built-in table of fixed-address modules, with -m symbol files attached.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "pmd/krd_file.h"
#include "run/krd_options.h"
#include "zdb_src/zdb.h"

// Field limits of a record, in characters.
inline constexpr size_t LM_NAME_MAX = 63;
inline constexpr size_t LM_PATH_MAX = 255;
inline constexpr size_t LM_FILE_NAME_MAX = 63;
inline constexpr size_t LM_TARGET_MAX = 15;
inline constexpr size_t LM_PRODUCT_MAX = 31;
inline constexpr size_t LM_REVISION_MAX = 31;

// Closes the mapping before the record goes.
struct zdb_file_closer {
    void operator()(zdb_file* file) const;
};
using zdb_file_ptr = std::unique_ptr<zdb_file, zdb_file_closer>;

struct load_module {
    std::string name;  // product number, "_", revision
    std::string path;
    std::string file_name;
    std::string target;
    std::string product;
    std::string revision;
    uint8_t absolute = 0;  // runs where it was linked: no rebasing
    std::string elf_path;  // the attached symbol file, empty if none
    uint32_t code_start = 0;
    uint32_t code_size = 0;
    uint32_t data_start = 0;
    uint32_t data_size = 0;
    zdb_file_ptr symbols;
};

// The list in the order of the text.
using lm_list = std::vector<load_module>;
using lm_table = std::unique_ptr<lm_list>;

// Null when the dump has no load module text, it cannot be fetched, or it
// names no module.
lm_table parse_lm_table(krd_file* f);
// The parse of a fetched text; text_form is 1 for a "LOAD MODULE INFORMATION" text.
lm_table lm_parse_text(std::span<const uint8_t> text, int text_form);
// The -m files that name a module of the list, opened for it. Stops at a
// file that cannot be read as a symbol file, and returns why.
zdb_open_result attach_symbols_lm_table(lm_list* list, const krd_options* options);
const load_module* find_load_module(const lm_list* list, uint32_t addr);
load_module* lm_find_by_name(lm_list* list, const char* name);
void lm_apply_builtin(lm_list* list);

// One row of the built-in table of fixed-address load modules.
struct lm_builtin_row {
    const char* id;  // first 10 characters of the load module id
    const char* path;
    const char* file_name;
    const char* target;
    bool has_ranges;
    uint32_t code_start, code_size, data_start, data_size;
};
std::span<const lm_builtin_row> lm_builtin_table();

// The product id of a symbol file: its "@(#)LQZ" product string cut to two
// words joined by "_", or else its base name up to the first ".".
std::string lm_product_id(const char* file_name);
// The product string part alone, from a file's bytes (at most 29 characters).
std::string lm_product_string(std::span<const uint8_t> bytes);
