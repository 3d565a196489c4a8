// The target's error log: the ring of records and its printer.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

// Prints every record of an error log image. Returns 0 when printed (or when
// there was nothing to print), 1 for a corrupt area, 2 for an empty one; on 1
// and 2 nothing is printed and the words are the caller's. With check_magic
// the image is framed: a guard word, the area, a guard word.
int lg_print_dump(FILE* stream, std::span<const uint8_t> image, int check_magic);
