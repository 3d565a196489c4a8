// Fields of a symbol file in the byte order the file declares, on a host of
// either order. The readers assemble a field byte by byte, so it may stand
// at any address.
#include <cstring>

#include "zdb_src/zdb.h"

zdb_ec32_fn Z_EC32 = nullptr;
zdb_ec16_fn Z_EC16 = nullptr;

uint32_t __EC32(uint32_t v) { return v; }

uint32_t __EC32_CONV(uint32_t v) {
    return (v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24);
}

uint32_t __EC16(uint32_t v) { return v & 0xFFFFu; }

uint32_t __EC16_CONV(uint32_t v) { return ((v >> 8) & 0xFFu) | ((v << 8) & 0xFF00u); }

static bool host_is_big_endian() { return ec_check_endian() == 4321; }

static uint32_t read_msb32(const uint8_t* p) {
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | uint32_t(p[3]);
}
static uint32_t read_lsb32(const uint8_t* p) {
    return uint32_t(p[3]) << 24 | uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | uint32_t(p[0]);
}
static uint32_t read_msb16(const uint8_t* p) { return uint32_t(p[0]) << 8 | p[1]; }
static uint32_t read_lsb16(const uint8_t* p) { return uint32_t(p[1]) << 8 | p[0]; }

uint32_t __EC32_ALIGNED(const uint8_t* p) {
    return host_is_big_endian() ? read_msb32(p) : read_lsb32(p);
}

uint32_t __EC16_ALIGNED(const uint8_t* p) {
    return host_is_big_endian() ? read_msb16(p) : read_lsb16(p);
}

uint32_t __EC32_CONV_ALIGNED(const uint8_t* p) {
    return host_is_big_endian() ? read_lsb32(p) : read_msb32(p);
}

uint32_t __EC16_CONV_ALIGNED(const uint8_t* p) {
    return host_is_big_endian() ? read_lsb16(p) : read_msb16(p);
}

uint16_t ec_check_endian() {
    const uint8_t bytes[4] = {1, 2, 3, 4};
    uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word == 0x01020304u ? 4321 : 1234;
}

void ec_init(uint8_t ei_data) {
    uint16_t host = ec_check_endian();
    bool same = (ei_data == 1 && host == 1234) || (ei_data == 2 && host == 4321);
    // A file that declares neither order is read with conversion.
    Z_EC32 = same ? __EC32_ALIGNED : __EC32_CONV_ALIGNED;
    Z_EC16 = same ? __EC16_ALIGNED : __EC16_CONV_ALIGNED;
}
