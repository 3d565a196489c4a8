// A bounded big-endian reader over a byte span.
//
// Every read first checks that it fits; a read that does not fit marks the
// cursor failed and returns 0, and every later read returns 0 at once. A
// parser reads a run of fields straight through and asks ok() at the end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

struct be_cursor {
    std::span<const uint8_t> data;
    size_t pos = 0;
    bool failed = false;

    be_cursor() = default;
    explicit be_cursor(std::span<const uint8_t> d, size_t at = 0) : data(d), pos(at) {
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
        uint16_t v = uint16_t(data[pos] << 8 | data[pos + 1]);
        pos += 2;
        return v;
    }
    uint32_t u32() {
        if (!fits(4)) return 0;
        uint32_t v = uint32_t(data[pos]) << 24 | uint32_t(data[pos + 1]) << 16 |
                     uint32_t(data[pos + 2]) << 8 | uint32_t(data[pos + 3]);
        pos += 4;
        return v;
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
    be_cursor c(d, off);
    return c.u32();
}
