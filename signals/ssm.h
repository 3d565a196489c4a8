// The signal symbol manager: zip archives of signal symbol files, their
// members loaded on demand, and the printing of a signal by its table.
#pragma once

#include <cstdint>
#include <cstdio>

#include "cli/krd_options.h"
#include "signals/signals.h"

// Finds, across the -z archives, the member for record->lmid and loads it.
// 0 loaded, 1 nothing to do, otherwise a negative result code.
int load_sigsymb_file(FILE* stream, const krd_signal_record* record, krd_options* options);
