// Builds T&E ring images with the trace ring's own writer, as the target
// leaves them in the memory a "TRACE AND ERROR" section copies.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/pmd_writer.h"

// One T&E entry: a 24-byte head and its text area. Positions not given are
// laid out as message, file, suffix, binary data, one after another.
struct te_entry {
    uint32_t seconds = 0;
    uint32_t base_ticks = 0;
    uint16_t line = 0;
    uint32_t group = 0;
    std::string msg, file, suffix;
    bytes bin;
    std::optional<uint16_t> msg_pos, file_pos, suffix_pos, bin_pos, bin_len;
};

bytes te_entry_bytes(const te_entry& e);

// Runs a ring script (see mkte.cpp for its form) and gives the image.
bool te_build_script(const std::string& text, bytes* image, std::string* error);
