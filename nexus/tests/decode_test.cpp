#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "nexus/nexus_messages.h"

namespace {

// A word from its payload bits and MSEO.
uint32_t word(uint32_t payload, uint32_t mseo) { return (payload & 0x3FFFFFFF) << 2 | mseo; }
// The first word: TCODE and SRC in front of the payload bits from 12 on.
uint32_t head(uint32_t tcode, uint32_t src, uint32_t payload, uint32_t mseo) {
    return word(payload | src << 6 | tcode, mseo);
}
uint32_t at(uint32_t value, int bit) { return value << bit; }

nexus_msg decode(const std::vector<uint32_t>& words) {
    nexus_msg msg;
    int row = -1;
    const uint8_t tcode = nexus_tcode(words[0]);
    EXPECT_EQ(validate_tcode(tcode, &row), 1);
    msg.tcode = tcode;
    msg.src = nexus_src(words[0]);
    msg.name = nexus_messages[row].name;
    msg.field_count = uint8_t(std::atoi(nexus_messages[row].field_count));
    msg.word_count = uint8_t(words.size());
    get_msg_field_details(&msg, words[0], row);
    get_msg_field_values(&msg, words);
    return msg;
}

const nexus_field& field(const nexus_msg& msg, const char* name) {
    for (int i = 0; i < msg.field_count; i++)
        if (std::strcmp(msg.fields[size_t(i)].name, name) == 0) return msg.fields[size_t(i)];
    ADD_FAILURE() << "no field " << name;
    return msg.fields[0];
}
uint32_t value(const nexus_msg& msg, const char* name, int index = 0) { return field(msg, name).value[size_t(index)]; }

// The values of fields, each {name, value word, value}.
void expect(const nexus_msg& msg, std::initializer_list<std::tuple<const char*, int, uint32_t>> want) {
    for (auto [name, index, v] : want) EXPECT_EQ(value(msg, name, index), v) << name << "[" << index << "]";
}

TEST(NexusCatalogue, LookupsAndMasks) {
    int row = -1;
    EXPECT_EQ(validate_tcode(1, &row), 0);
    EXPECT_EQ(validate_tcode(35, &row), 1);
    EXPECT_STREQ(nexus_messages[row].name, "DPFM");
    EXPECT_STREQ(get_msg_type(2), "OTM");
    EXPECT_STREQ(get_msg_type(1), "Unsupported Message Type");
    EXPECT_EQ(get_field_length("FADDR"), -1);
    EXPECT_EQ(get_field_length("F-ADDR"), 13);
    EXPECT_EQ(get_field_length("BFN_HC"), 18);
    EXPECT_EQ(get_field_length("F-ADD"), 0);

    EXPECT_EQ(get_field_mask(0, 31), 0xFFFFFFFFu);
    EXPECT_EQ(get_field_mask(12, 15), 0xF000u);
    EXPECT_EQ(get_field_mask(30, 29), 0u);
    EXPECT_EQ(get_field_mask(31, 29), 0x80000000u);
    EXPECT_EQ(get_field_mask(5, 0), 0xFFFFFFE0u);
    testing::internal::CaptureStderr();
    EXPECT_EQ(get_field_mask(32, 29), 0u);
    EXPECT_EQ(get_field_mask(0, uint32_t(-12)), 0u);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Invalid start or stop index found !!!Invalid start or stop index found !!!");
}

TEST(NexusDecode, ProcessIdentity) {
    nexus_msg m;
    // 0, 3: the identity's second part takes bits 0-18, one more after a PID_INDX of 2.
    expect(decode({head(2, 7, at(5, 12) | at(0x2A5B, 16), 0), word(0x3FF80000 | 0x5A5A5, 3)}),
           {{"TCODE", 0, 2}, {"SRC", 0, 7}, {"PID_INDX", 0, 5}, {"PROCESS_ID", 0, 0x2A5B}, {"PROCESS_ID", 1, 0x5A5A5},
            {"TSTAMP", 0, 0}});

    expect(decode({head(2, 0, at(2, 12) | at(1, 16) | at(0x1234, 17), 0), word(0x3FF00000 | 0xABCDE, 3)}),
           {{"PID_INDX", 0, 2}, {"PROCESS_ID", 0, 0x1234}, {"PROCESS_ID", 1, 0xABCDE}});

    // 1, 3: the identity ends in the first word; the second is the stamp.
    expect(decode({head(2, 0, at(5, 12) | at(0x3FFF, 16), 1), word(0x2BCDEF01, 3)}),
           {{"PROCESS_ID", 0, 0x3FFF}, {"PROCESS_ID", 1, 0}, {"TSTAMP", 0, 0x2BCDEF01}});

    // 0, 1, 3: the third word's bits go to the stamp's later value words only.
    const uint32_t d2 = 0x3FFFFFFF;
    m = decode({head(2, 0, at(5, 12) | at(0x11, 16), 0), word(0x7FFFF, 1), word(d2, 3)});
    // TSTAMP[1] is bits 14-17, TSTAMP[2] bits 18-29, shifted out but two.
    expect(m,
           {{"PROCESS_ID", 1, 0x7FFFF}, {"TSTAMP", 0, 0}, {"TSTAMP", 1, 0xF}, {"TSTAMP", 2, (d2 & 0x3FFC0000) << 18}});

    // 0, 0, 1, 1, 3: the identity has taken 44 bits when the tails come, and
    // each tail asks for a mask up to bit 32 - 44: a complaint and no bits,
    // also from the word behind the last field.
    testing::internal::CaptureStderr();
    m = decode({head(2, 0, at(5, 12) | at(0x11, 16), 0), word(0x3FFFFFFF, 0), word(0x7FFFF, 1), word(0x7FFFF, 1),
                word(0x7FFFF, 3)});
    const std::string complaint = "Invalid start or stop index found !!!";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), complaint + complaint + complaint);
    // Bits 14-17 of the second word replace the first word's.
    expect(m, {{"PROCESS_ID", 0, 0xF}, {"PROCESS_ID", 1, 0}, {"PROCESS_ID", 2, 0}});
}

TEST(NexusDecode, ErrorMessage) {
    expect(decode({head(8, 2, at(0x9, 12) | at(0xA7, 16) | at(0x2D, 24), 3)}),
           {{"ETYPE", 0, 0x9}, {"ECODE", 0, 0xA7}, {"TSTAMP", 0, 0x2D}});

    // 1, 3: the stamp waits for the next word; bits 24-29 of the first are ignored.
    expect(decode({head(8, 2, at(0x9, 12) | at(0xA7, 16) | at(0x3F, 24), 1), word(0x12345678, 3)}),
           {{"ECODE", 0, 0xA7}, {"TSTAMP", 0, 0x12345678}});

    // 0, 3: the stamp is bits 6-25 of the second word; those of the first are lost.
    expect(decode({head(8, 2, at(0x9, 12) | at(0xA7, 16) | at(0x3F, 24), 0), word(0x3C0ABCFF, 3)}),
           {{"TSTAMP", 0, (0x3C0ABCFFu >> 6) & 0xFFFFF}});
}

TEST(NexusDecode, ProgramTraceSync) {
    // I-CNT ends the first word: bits 21-29 are not looked at.
    const uint32_t w0 = head(9, 0, at(1, 12) | at(0xC5, 13) | at(0x1FF, 21), 1);
    expect(decode({w0, word(0x01000414, 1), word(777, 3)}),
           {{"DCONT", 0, 1}, {"I-CNT", 0, 0xC5}, {"PC", 0, 0x01000414}, {"PC", 1, 0}, {"TSTAMP", 0, 777}});

    // 1, 0, 1, 3: the address takes two whole words.
    expect(decode({w0, word(0x3FFFFFFC, 0), word(0x2, 1), word(778, 3)}),
           {{"PC", 0, 0x3FFFFFFC}, {"PC", 1, 2}, {"TSTAMP", 0, 778}});
}

TEST(NexusDecode, DataAndWatchpointMessages) {
    // F-ADDR ends the first word: bit 29 is not looked at.
    expect(decode({head(13, 4, at(0x5, 12) | at(0x1ABC, 16) | at(1, 29), 1), word(0xCAFE, 1), word(5, 3)}),
           {{"DSZ", 0, 0x5}, {"F-ADDR", 0, 0x1ABC}, {"DATA", 0, 0xCAFE}, {"TSTAMP", 0, 5}});

    expect(decode({head(15, 0, at(0xBEEF, 12) | at(3, 28), 1), word(9, 3)}), {{"WPHIT", 0, 0xBEEF}, {"TSTAMP", 0, 9}});

    for (uint32_t tcode : {34u, 35u}) {
        expect(decode({head(tcode, 0, at(0x2AAAA, 12), 1), word(11, 3)}), {{"DATA", 0, 0x2AAAA}, {"TSTAMP", 0, 11}});
        // Without the early end the data's first value word is replaced by nothing.
        expect(decode({head(tcode, 0, at(0x2AAAA, 12), 0), word(0x3FFFFFFF, 3)}), {{"DATA", 0, 0}});
    }
}

TEST(NexusDecode, FixedFieldsAcrossWords) {
    // RDATA: bits 0-13 from the first word's 16-29, bits 14-29 from the second's 0-15.
    expect(decode({head(27, 0, at(0x3, 12) | at(0x2ABC, 16), 0), word(0x3FFF0000 | 0x9876, 1), word(3, 3)}),
           {{"RCODE", 0, 0x3}, {"RDATA", 0, 0x9876u << 14 | 0x2ABC}, {"TSTAMP", 0, 3}});

    // RDATA ending in the last word: that word's whole payload replaces it.
    expect(decode({head(27, 0, at(0x3, 12) | at(0x2ABC, 16), 0), word(0x3FFF9876, 3)}), {{"RDATA", 0, 0x3FFF9876}});

    // A 30-bit field alone in a word with MSEO 0 leaves the stamp its top two bits.
    const uint32_t w0 = head(33, 0, at(0x7, 12) | at(0x42, 16) | at(0x3F, 24), 1);
    expect(decode({w0, word(0x3ABCDEF0, 0)}),
           {{"EVCODE", 0, 0x7}, {"I-CNT", 0, 0x42}, {"CDATA", 0, 0x3ABCDEF0}, {"TSTAMP", 0, 0x3}});
    // ... which the end word then replaces by its bits 2-29.
    expect(decode({w0, word(0x3ABCDEF0, 0), word(0x3FFFFFFF, 3)}), {{"TSTAMP", 0, 0x3FFFFFFFu >> 2}, {"TSTAMP", 1, 0}});

    expect(decode({w0, word(0x3ABCDEF0, 1), word(0x2345, 3)}), {{"CDATA", 0, 0x3ABCDEF0}, {"TSTAMP", 0, 0x2345}});
}

TEST(NexusDecode, BranchMessages) {
    nexus_msg m;
    // I-CNT ends the first word: bits 22-29 are not looked at.
    const uint32_t w0 = head(28, 2, at(0x2, 12) | at(0x99, 14) | at(0xFF, 22), 1);
    expect(decode({w0, word(0x00000A0C, 1), word(0x2AAAAAAA, 1), word(12, 3)}),
           {{"BTYPE", 0, 0x2}, {"I-CNT", 0, 0x99}, {"U-ADDR", 0, 0xA0C}, {"U-ADDR", 1, 0}, {"HIST", 0, 0x2AAAAAAA},
            {"TSTAMP", 0, 12}});

    expect(decode({w0, word(0x3000000F, 0), word(0x1, 1), word(0x15555555, 1), word(13, 3)}),
           {{"U-ADDR", 0, 0x3000000F}, {"U-ADDR", 1, 1}, {"HIST", 0, 0x15555555}, {"TSTAMP", 0, 13}});

    // PTBS: F-ADDR ends the second word: bits 13-29 are not looked at.
    m = decode(
        {head(29, 2, at(0x1, 12) | at(0x10, 14), 1), word(0x3FFFE000 | 0x1234, 1), word(0x2AAAAAAA, 1), word(14, 3)});
    expect(m,
           {{"BTYPE", 0, 0x1}, {"I-CNT", 0, 0x10}, {"F-ADDR", 0, 0x1234}, {"HIST", 0, 0x2AAAAAAA}, {"TSTAMP", 0, 14}});
}

TEST(NexusDecode, ShortAndOverlongMessages) {
    nexus_msg m;
    // One word: only the placing loop runs; later fields stay 0.
    expect(decode({head(28, 2, at(0x3, 12) | at(0x7F, 14) | at(0xFF, 22), 3)}),
           {{"BTYPE", 0, 0x3}, {"I-CNT", 0, 0x7F}, {"U-ADDR", 0, 0}, {"HIST", 0, 0}, {"TSTAMP", 0, 0}});

    // Words behind the last field change nothing.
    expect(decode({head(15, 0, at(0xBEEF, 12), 1), word(9, 1), word(0x3FFFFFFF, 1), word(0x3FFFFFFF, 3)}),
           {{"WPHIT", 0, 0xBEEF}, {"TSTAMP", 0, 9}});

    // Eight words of one variable field, in every message kind: the value
    // words written stay inside the field, whatever the counters come to.
    testing::internal::CaptureStderr();
    for (int r = 0; r < NEXUS_MESSAGE_ROWS; r++) {
        const uint32_t tcode = uint32_t(std::atoi(nexus_messages[r].tcode));
        for (uint32_t mseo : {0u, 1u}) {
            std::vector<uint32_t> words{head(tcode, 0, 0x3FFFF000, mseo)};
            for (int i = 0; i < 6; i++) words.push_back(word(0x3FFFFFFF, mseo));
            words.push_back(word(0x3FFFFFFF, 3));
            m = decode(words);
            for (int i = m.field_count; i < NEXUS_MAX_FIELDS; i++)
                for (uint32_t v : m.fields[size_t(i)].value) EXPECT_EQ(v, 0u);
        }
    }
    testing::internal::GetCapturedStderr();
}

}  // namespace
