#include "support/byte_cursor.h"

uint32_t read_uleb128(byte_cursor& c) {
    uint32_t result = 0;
    unsigned shift = 0;
    for (;;) {
        uint8_t byte = c.u8();
        if (!c.ok()) return 0;
        if (shift < 32) result |= uint32_t(byte & 0x7f) << shift;
        if (!(byte & 0x80)) return result;
        if (shift < 32) shift += 7;
    }
}

uint32_t read_sleb128(byte_cursor& c) {
    uint32_t result = 0;
    unsigned shift = 0;
    for (;;) {
        uint8_t byte = c.u8();
        if (!c.ok()) return 0;
        if (shift < 32) result |= uint32_t(byte & 0x7f) << shift;
        if (shift < 32) shift += 7;
        if (!(byte & 0x80)) {
            if (shift < 32 && (byte & 0x40)) result |= ~uint32_t(0) << shift;
            return result;
        }
    }
}
