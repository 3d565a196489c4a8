// Renderers of the small structured sections.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

#include "pmd/krd_file.h"
#include "pmd/section_chain.h"

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

// The line of a parameter in the SYSTEM PARAMETERS chain, key included and
// double quotes left out; empty if absent; none after a message in the report.
// The text stays valid until the next call.
const char* get_system_param(FILE* stream, krd_file* f, krd_section* chain, const char* key);
