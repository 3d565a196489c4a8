// Hex, text and stack dumps of a buffer.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

void print_hex_dump(FILE* stream, std::span<const uint8_t> data, uint32_t base);
void print_hex_bytes(FILE* stream, std::span<const uint8_t> data);
void print_stack_dump(FILE* stream, std::span<const uint8_t> data, uint32_t base);
uint32_t find_empty_stack_run(std::span<const uint8_t> data);
void print_text_dump(FILE* stream, std::span<const uint8_t> text);

inline std::span<const uint8_t> as_bytes(const char* text, size_t n) {
    return {reinterpret_cast<const uint8_t*>(text), n};
}
