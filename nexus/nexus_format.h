// printf into the block buffer for the few conversions the Nexus report uses
// (%s, %d, %u, %x, with a 0 flag, a width and an l), without the cost of
// the C library's formatter: a trace prints millions of fields.
#pragma once

#include "render/out_buffer.h"

void nexus_printf(out_buffer& out, const char* format, ...) __attribute__((format(printf, 2, 3)));
