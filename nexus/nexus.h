// The Nexus (NPC) trace buffer report.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "cli/krd_options.h"
#include "pmd/krd_file.h"

int handle_nexus_log(FILE* stream, krd_file* f, krd_options* options, std::span<const uint8_t> payload);
