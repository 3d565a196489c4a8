// Sections of a PMD file and chains of consecutive sections of one title.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "pmd/krd_file.h"

// Payload descriptor of a compressed payload.
struct krd_image_info {
    uint32_t address = 0;
    uint32_t size = 0;         // uncompressed
    uint32_t packed_size = 0;
    uint32_t data_offset = 0;  // file offset of the first compressed byte
};

// Section kinds: indices of their kind tags in hdr_table.
inline constexpr uint32_t KRD_KIND_ERROR = HDR_ERBL;
inline constexpr uint32_t KRD_KIND_MEMORY = HDR_MBL;
inline constexpr uint32_t KRD_KIND_PROGRAM = HDR_PRBL;
inline constexpr uint32_t KRD_KIND_REGISTER = HDR_RBL;
inline constexpr uint32_t KRD_KIND_TEXT = HDR_TXBL;
inline constexpr uint32_t KRD_KIND_SIGNAL = HDR_SGBL;

inline constexpr uint32_t KRD_KERNEL_TRACE_SIGNO = 39215;  // 0x992F

struct krd_section {
    uint32_t size = 0;  // bytes the section occupies: FORM length + 8
    uint32_t time_sec = 0;
    uint32_t time_usec = 0;
    uint32_t kind = 0;
    uint32_t offset = 0;  // file offset of the kind tag
    uint32_t is_text = 0;
    std::unique_ptr<krd_section> next;
    std::string title;  // never holds a zero byte
    std::optional<krd_image_info> image;

    krd_section() = default;
    krd_section(const krd_section&) = delete;
    krd_section& operator=(const krd_section&) = delete;
    // Long chains are released node by node, not by recursion.
    ~krd_section();
};

using krd_chain = std::unique_ptr<krd_section>;

krd_chain krd_read_section(krd_file* f, uint32_t* cursor);
void krd_merge_sections(krd_file* f, krd_section* first, uint32_t* cursor);
krd_chain krd_find_section(krd_file* f, uint32_t* cursor, const char* title);
krd_chain krd_get_section(krd_file* f, uint32_t* cursor);
void krd_free_chain(krd_chain& chain);
