// Renderers of the small structured sections.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>

#include "pmd/krd_file.h"
#include "pmd/section_chain.h"
#include "pmd/section_payload.h"

inline constexpr int REG_SLOTS = 40;
inline constexpr int REG_RA = 32, REG_PC = 33, REG_MSR = 34, REG_LR = 35, REG_CR = 36, REG_XER = 37,
                     REG_CTR = 38, REG_DAR = 39;

// References into a register text: each slot points behind its "=", or is
// none. The payload stays the owner; `end` bounds every value.
struct reg_text_table {
    const char* slot[REG_SLOTS] = {};
    const char* end = nullptr;
};

std::unique_ptr<reg_text_table> parse_reg_text(std::span<const uint8_t> payload);
void print_reg_text(FILE* stream, std::span<const uint8_t> payload);
void print_error_info(FILE* stream, krd_file* f, krd_section* node);
void print_program_list(FILE* stream, krd_file* f, krd_section* node);
void print_register_block(FILE* stream, krd_file* f, krd_section* node);
void print_text_block(FILE* stream, krd_file* f, krd_section* node);

// One read of a SYSTEM PARAMETERS chain, kept for the run: how the payload
// came out, and the lines of the two keys the report uses.
struct system_params {
    bool found = false;  // the dump has the section
    krd_payload_status status = KRD_PAYLOAD_OK;
    std::string title;
    std::string timer_line;  // "krn/system_timer"
    std::string board_line;  // "target_board"
};
// The line of a parameter, key included and double quotes left out; empty
// if absent; none after a message in the report on a failed read.
const char* get_system_param(FILE* stream, const system_params& params, const char* key);
// The value of a parameter of the dump's SYSTEM PARAMETERS section: its
// line behind the key and one separator; empty if absent or unreadable.
std::string system_param_value(FILE* stream, krd_file* f, const char* key);
