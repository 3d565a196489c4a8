// Builds PMD dump files section by section, for tests, examples and benchmarks.
// It can also build them wrong on purpose: wrong tags, short streams, bad lengths.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

using bytes = std::vector<uint8_t>;

void put_u32(bytes& b, uint32_t v);
void put_tag(bytes& b, const char* tag);  // 4 or 8 characters, no length word
void put_bytes(bytes& b, const bytes& more);
void put_text(bytes& b, const std::string& s);  // without terminating zero

// A zlib stream of the data at a compression level (0 stores it).
bytes zlib_compress(const bytes& data, int level = 6);

enum class pmd_kind { memory, error, program, reg, text, signal, raw };

struct pmd_program {
    uint32_t pid = 0;
    uint32_t word = 0;
    uint32_t resident = 0;
    uint32_t status = 0;
    std::vector<uint32_t> regions;
    std::string lmid;  // stored with a terminating zero
};

struct pmd_register {
    std::string name;  // stored with a terminating zero
    uint32_t value = 0;
};

struct pmd_patch {
    uint32_t offset;  // from the section's first byte
    bytes data;
};

struct pmd_section {
    pmd_kind kind = pmd_kind::memory;
    std::string title;  // the title chunk's text; a zero byte is added behind it
    uint32_t time_sec = 0;
    uint32_t time_usec = 0;

    // Memory and signal blocks: the payload and how it is stored.
    bytes payload;
    uint32_t address = 0;
    int level = 6;
    std::optional<uint32_t> size_word;    // uncompressed size, default: payload size
    std::optional<uint32_t> packed_word;  // compressed size, default: stream size
    std::optional<uint32_t> cut;          // keep only this many stream bytes
    std::optional<uint32_t> flip;         // invert the stream byte at this offset

    // Error block.
    uint32_t user_called = 0, error_code = 0, extra = 0, curr_proc = 0;

    // Program and register blocks.
    std::vector<pmd_program> programs;
    bytes arch;
    std::vector<pmd_register> registers;

    // Signal block: the signal number, the further word, and the form of the
    // data: "zlib", "raw" or "none".
    uint32_t signo = 0;
    uint32_t sig_word = 0;
    std::string sig_data = "raw";

    // Corruptions of the frame.
    std::optional<std::string> kind_tag;  // 8 characters in place of the kind tag
    std::optional<uint32_t> form_length;  // the section's FORM length word
    std::vector<pmd_patch> patches;       // bytes written over the built section
};

struct pmd_dump {
    uint32_t dump_id = 0;
    uint32_t version = 1;
    std::vector<pmd_section> sections;
    std::optional<uint32_t> length_word;  // the outermost FORM length, default: true length - 8
    std::optional<uint32_t> truncate;     // cut the file to this many bytes
    uint32_t default_time = 0;            // manifest: time of sections that set none
};

bytes pmd_build_section(const pmd_section& s);
bytes pmd_build_dump(const pmd_dump& d);
bool pmd_write_file(const std::string& path, const bytes& data);

// Reads a manifest (see mkpmd.cpp for its form). Payload files are taken
// relative to base_dir. On failure returns false with a message in error.
bool pmd_parse_manifest(const std::string& text, const std::string& base_dir, pmd_dump* out, std::string* error);
