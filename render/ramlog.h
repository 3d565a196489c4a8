// The RAMLOG: a ring of text kept by the board.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

// Prints the ring in reading order. A size word of 0 is told on the
// standard output, whatever the stream.
void print_ramlog(FILE* stream, std::span<const uint8_t> payload);
// One stretch of the ring: the text loop without its leading blanks and
// final newline, so that stretches join seamlessly.
void print_ramlog_text_dump(FILE* stream, std::span<const uint8_t> text);
