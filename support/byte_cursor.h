// A bounded reader over a byte span, in either byte order.
//
// Every read first checks that it fits; a read that does not fit marks the
// cursor failed and returns 0, and every later read returns 0 at once. A
// parser reads a run of fields straight through and asks ok() at the end.
// Target data is big-endian, so that is the order unless one is given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

enum class byte_order : uint8_t { big, little };

struct byte_cursor {
    std::span<const uint8_t> data;
    size_t pos = 0;
    bool failed = false;
    byte_order order = byte_order::big;

    byte_cursor() = default;
    explicit byte_cursor(std::span<const uint8_t> d, size_t at = 0, byte_order o = byte_order::big)
        : data(d), pos(at), order(o) {
        if (at > d.size()) failed = true;
    }

    bool ok() const { return !failed; }
    size_t size() const { return data.size(); }
    size_t tell() const { return pos; }
    size_t remaining() const { return failed || pos > data.size() ? 0 : data.size() - pos; }

    // The one bound check.
    bool fits(size_t n) {
        if (failed || n > data.size() || pos > data.size() - n) {
            failed = true;
            return false;
        }
        return true;
    }

    void seek(size_t at) {
        if (at > data.size()) failed = true;
        else pos = at;
    }
    void skip(size_t n) {
        if (fits(n)) pos += n;
    }

    uint8_t u8() {
        if (!fits(1)) return 0;
        return data[pos++];
    }
    uint16_t u16() {
        if (!fits(2)) return 0;
        const uint8_t* p = data.data() + pos;
        pos += 2;
        if (order == byte_order::little) return uint16_t(p[1] << 8 | p[0]);
        return uint16_t(p[0] << 8 | p[1]);
    }
    uint32_t u32() {
        if (!fits(4)) return 0;
        const uint8_t* p = data.data() + pos;
        pos += 4;
        if (order == byte_order::little)
            return uint32_t(p[3]) << 24 | uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | uint32_t(p[0]);
        return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | uint32_t(p[3]);
    }
    uint64_t u64() {
        if (!fits(8)) return 0;
        uint64_t first = u32();
        uint64_t second = u32();
        return order == byte_order::little ? second << 32 | first : first << 32 | second;
    }
    // A sub-span of n bytes, or an empty span (and a failed cursor) if they are not there.
    std::span<const uint8_t> bytes(size_t n) {
        if (!fits(n)) return {};
        auto s = data.subspan(pos, n);
        pos += n;
        return s;
    }
};

// A single big-endian word at an offset, 0 when it does not fit.
inline uint32_t be32_at(std::span<const uint8_t> d, size_t off) {
    byte_cursor c(d, off);
    return c.u32();
}

// LEB128 into 32 bits: bits beyond 32 are dropped, the signed form takes its
// sign from bit 6 of the last byte. A number whose end lies past the bound
// fails the cursor and reads as 0.
uint32_t read_uleb128(byte_cursor& c);
uint32_t read_sleb128(byte_cursor& c);
