// Builds images of the target's error log area, for tests and example dumps:
// records laid into the ring from any offset, across its end if need be.
// Header only, so that the unit tests and mkerrlog share it without a library.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct lg_image_record {
    uint32_t code = 0;
    uint8_t flags = 0;  // decides which blocks follow the fixed head
    uint8_t reporter = 0;
    uint8_t date[3] = {24, 1, 1};
    uint8_t time[3] = {0, 0, 0};
    bool process_block = false;
    uint32_t queued = 0, owned = 0, line = 0;
    std::string file, process;  // written with their NUL
    uint8_t restart_type = 0;
    uint32_t pmd_identity = 0;
    uint8_t rank = 0;
    std::vector<uint8_t> data;
    // Overrides, to build records that lie about themselves.
    std::optional<uint32_t> length;   // default: the record's bytes
    std::optional<uint32_t> ext_len;  // default: the variable head's bytes
    uint32_t head_upper = 0;          // the head word's upper three bytes
};

inline void lg_put_u32(std::vector<uint8_t>& b, uint32_t v) {
    for (int s = 24; s >= 0; s -= 8) b.push_back(uint8_t(v >> s));
}

// The bytes of one record, not padded.
inline std::vector<uint8_t> lg_build_record(const lg_image_record& r) {
    std::vector<uint8_t> head;
    if (r.process_block) {
        lg_put_u32(head, r.queued);
        lg_put_u32(head, r.owned);
        lg_put_u32(head, r.line);
        head.insert(head.end(), r.file.begin(), r.file.end());
        head.push_back(0);
        head.insert(head.end(), r.process.begin(), r.process.end());
        head.push_back(0);
    }
    if (r.flags & 0x80) {
        head.push_back(r.restart_type);
        lg_put_u32(head, r.pmd_identity);
    }
    if (r.flags & 0x08) head.push_back(r.rank);

    uint32_t ext = r.ext_len.value_or(uint32_t(head.size()));
    std::vector<uint8_t> b;
    lg_put_u32(b, r.length.value_or(uint32_t(20 + head.size() + r.data.size())));
    lg_put_u32(b, r.code);
    lg_put_u32(b, r.head_upper << 8 | (ext & 0xFF));
    b.push_back(r.flags);
    b.push_back(r.reporter);
    b.insert(b.end(), r.date, r.date + 3);
    b.insert(b.end(), r.time, r.time + 3);
    b.insert(b.end(), head.begin(), head.end());
    b.insert(b.end(), r.data.begin(), r.data.end());
    return b;
}

struct lg_image_ring {
    uint32_t size = 256;   // the area, head included; a multiple of 4
    uint32_t start = 0;    // ring offset (counted from offset 8) of the first record
    std::optional<uint32_t> first;  // the head's first offset, default: start
    std::optional<uint32_t> last;   // the head's last offset, default: the last record's
    uint8_t fill = 0;
    bool framed = false;   // guard words before and behind the area
    std::vector<std::vector<uint8_t>> records;  // laid one behind the other, each padded to 4
};

// The ring offsets at which the records are laid.
inline std::vector<uint32_t> lg_record_offsets(const lg_image_ring& ring) {
    std::vector<uint32_t> at;
    uint32_t ring_len = ring.size > 8 ? ring.size - 8 : 1;
    uint64_t o = ring.start;
    for (const auto& rec : ring.records) {
        at.push_back(uint32_t(o % ring_len));
        o += (rec.size() + 3) & ~size_t(3);
    }
    return at;
}

inline std::vector<uint8_t> lg_build_ring(const lg_image_ring& ring) {
    std::vector<uint8_t> area(ring.size < 8 ? 8 : ring.size, ring.fill);
    uint32_t ring_len = ring.size > 8 ? ring.size - 8 : 0;
    std::vector<uint32_t> at = lg_record_offsets(ring);
    for (size_t k = 0; k < ring.records.size() && ring_len; k++)
        for (size_t i = 0; i < ring.records[k].size(); i++) area[8 + (at[k] + i) % ring_len] = ring.records[k][i];
    std::vector<uint8_t> head;
    lg_put_u32(head, ring.first.value_or(ring.start));
    lg_put_u32(head, ring.last.value_or(at.empty() ? 0 : at.back()));
    std::copy(head.begin(), head.end(), area.begin());
    area.resize(ring.size);
    if (!ring.framed) return area;
    std::vector<uint8_t> framed;
    lg_put_u32(framed, 0xABBAABBA);
    framed.insert(framed.end(), area.begin(), area.end());
    lg_put_u32(framed, 0xABBAABBA);
    return framed;
}
