// Formatted output into the report's block buffer.
#pragma once

#include "render/out_buffer.h"

void out_printf(out_buffer& out, const char* format, ...) __attribute__((format(printf, 2, 3)));
