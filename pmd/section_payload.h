// What lies behind a section's kind tag: payload descriptors, inflation and
// the records of error, signal, register, program and text blocks.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "pmd/krd_file.h"
#include "pmd/section_chain.h"

struct krd_errinfo {
    uint32_t user_called = 0;
    uint32_t error_code = 0;
    uint32_t extra = 0;
    uint32_t curr_proc = 0;
};

struct krd_sigdef {
    uint32_t signo = 0;
    uint32_t word = 0;  // carried, not interpreted
    uint32_t size = 0;
    std::vector<uint8_t> data;
    bool has_data = false;
};

struct krd_reg_entry {
    uint32_t value = 0;
    std::string name;
};

struct krd_prog_info {
    uint32_t zzmain_pid = 0;
    uint32_t resident = 0;
    uint32_t status = 0;
    char lmid[64] = {};
    uint32_t region_count = 0;
    std::vector<uint32_t> regions;
};

std::optional<krd_image_info> krd_read_image_info(krd_file* f, const krd_section* node);
int krd_inflate_image(krd_file* f, const krd_section* node, uint8_t* dest);
std::unique_ptr<krd_errinfo> krd_read_errinfo(krd_file* f, krd_section* node);
std::unique_ptr<krd_sigdef> krd_read_sigdef_info(krd_file* f, krd_section* node);
uint32_t krd_init_reginfo(krd_file* f, const krd_section* node, uint32_t* position);
std::unique_ptr<krd_reg_entry> krd_get_reginfo(krd_file* f, uint32_t* position);
uint32_t krd_init_proginfo(krd_file* f, const krd_section* node, uint32_t* position);
std::unique_ptr<krd_prog_info> krd_get_proginfo(krd_file* f, uint32_t* position);
uint32_t krd_init_text(krd_file* f, const krd_section* node);

// Largest output a zlib stream of n bytes can produce (deflate tops out at
// 1032:1). A size word beyond it cannot be filled by the stream and is not
// allocated.
uint64_t krd_max_inflated(uint64_t packed);
// Whether the stream behind a payload descriptor, as far as the file holds
// it, can fill the descriptor's size at all.
bool krd_image_plausible(const krd_file* f, const krd_image_info& img);

// The whole payload of a chain of memory blocks, node after node.
enum krd_payload_status {
    KRD_PAYLOAD_OK = 0,
    KRD_PAYLOAD_CORRUPT = 1,   // a descriptor unreadable, or no memory
    KRD_PAYLOAD_EMPTY = 2,     // all sizes are 0
    KRD_PAYLOAD_INFLATE = 3,   // an inflation failed; the buffer is still filled as far as it went
};
struct krd_payload {
    z_buffer bytes;  // zero-filled before inflation
    uint32_t size = 0;
};
krd_payload_status krd_read_chain_payload(krd_file* f, krd_section* chain, krd_payload* out);
