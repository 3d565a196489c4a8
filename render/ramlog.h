// The RAMLOG: a ring of text kept by the board.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

void print_ramlog(FILE* stream, std::span<const uint8_t> payload);
