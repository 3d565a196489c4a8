// The Nexus messages of the e500mc trace port that krd understands: their
// fields, the widths of those fields, and the decoder of one message's words.
#pragma once

#include <array>
#include <cstdint>
#include <span>

// A trace word: MSEO in bits 0-1, 30 payload bits above it.
inline uint32_t nexus_mseo(uint32_t word) { return word & 3; }
inline uint32_t nexus_payload(uint32_t word) { return word >> 2; }
inline uint8_t nexus_tcode(uint32_t word) { return uint8_t((word & 0xFC) >> 2); }
inline uint8_t nexus_src(uint32_t word) { return uint8_t((word & 0x3F00) >> 8); }

// One message type: TCODE and field count as decimal text, field names in order.
struct nexus_message_row {
    const char* tcode;
    const char* name;
    const char* field_count;
    const char* fields[7];
};
inline constexpr int NEXUS_MESSAGE_ROWS = 11;
extern const nexus_message_row nexus_messages[NEXUS_MESSAGE_ROWS];

// A field's width in bits as text; "VAR" for a variable-length field.
struct nexus_width_row {
    const char* name;
    const char* width;
};
inline constexpr int NEXUS_WIDTH_ROWS = 33;
extern const nexus_width_row nexus_field_length[NEXUS_WIDTH_ROWS];

inline constexpr int NEXUS_MAX_FIELDS = 12;
// A variable field takes up to 8 value words. The decoder's word index is
// not reset between fields, so one spare entry keeps every write in bounds.
inline constexpr int NEXUS_VALUE_WORDS = 9;
// A message longer than this is dropped.
inline constexpr int NEXUS_MAX_WORDS = 8;

// The fields that the decoder or the report treat apart from the others.
enum class nexus_role : uint8_t { plain, tstamp, process_id, pid_indx, pc, u_addr, i_cnt, f_addr };
nexus_role nexus_role_of(const char* name);

struct nexus_field {
    const char* name = "";
    int32_t bits = 0;  // -1 variable, 0 a name without a width
    nexus_role role = nexus_role::plain;  // from the name
    std::array<uint32_t, NEXUS_VALUE_WORDS> value{};
};

struct nexus_msg {
    const char* name = "";
    uint8_t tcode = 0;
    uint8_t src = 0;
    uint8_t field_count = 0;
    uint8_t word_count = 0;
    std::array<nexus_field, NEXUS_MAX_FIELDS> fields{};
};

// 1 and the row's index in *row for a known TCODE, else 0.
int validate_tcode(uint32_t tcode, int* row);
const char* get_msg_type(uint32_t tcode);
// Width in bits, -1 for "VAR", 0 for a name not in the table.
int32_t get_field_length(const char* name);
// The row's field count, the number behind its text.
uint8_t get_msg_field_count(int row);
// Names, widths and roles of the row's fields into msg, the fields behind
// them cleared. Always 0.
int get_msg_field_details(nexus_msg* msg, uint32_t first_word, int row);
void tell_invalid_mask();
// Bits start to stop set. Inline: the decoder asks for several per word.
inline uint32_t get_field_mask(uint32_t start, uint32_t stop) {
    if (start > 31 || stop > 31) {
        tell_invalid_mask();
        return 0;
    }
    // stop one below start gives no bits; further below, the count wraps
    // round and every bit from start upward is set.
    const uint32_t n = stop - start + 1;
    if (n >= 32) return 0xFFFFFFFFu << start;
    return ((1u << n) - 1) << start;
}

// The values of the message's fields from its words; msg has word_count,
// tcode, src, field_count and the fields' names and widths. Always 0.
int get_msg_field_values(nexus_msg* msg, std::span<const uint32_t> words);
