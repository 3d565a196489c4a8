// Which byte order a symbol file's fields are read in, on a host of either
// order.
#include <cstring>

#include "zdb_src/zdb.h"

uint16_t ec_check_endian() {
    const uint8_t bytes[4] = {1, 2, 3, 4};
    uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word == 0x01020304u ? 4321 : 1234;
}

byte_order ec_init(uint8_t ei_data) {
    const bool big_host = ec_check_endian() == 4321;
    const byte_order host = big_host ? byte_order::big : byte_order::little;
    const byte_order other = big_host ? byte_order::little : byte_order::big;
    bool same = (ei_data == 1 && !big_host) || (ei_data == 2 && big_host);
    return same ? host : other;
}
