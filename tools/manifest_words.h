// The words of our manifest and script lines: numbers, quoted texts with C
// escapes, key=value pairs and hex bytes. Errors are thrown as
// std::runtime_error with a message for the user.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

using key_values = std::vector<std::pair<std::string, std::string>>;

uint32_t manifest_number(const std::string& s);
void manifest_skip_blanks(const std::string& line, size_t& i);
// A quoted text with C escapes, or a bare word up to the next blank.
std::string manifest_word(const std::string& line, size_t& i);
// key=value pairs from position i on; a value may be quoted.
key_values manifest_pairs(const std::string& line, size_t i);
// Hex digits, blanks and line ends ignored.
std::vector<uint8_t> manifest_hex(const std::string& text);
