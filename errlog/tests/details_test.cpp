// The decoders of a record's data.
#include <gtest/gtest.h>

#include <string>

#include "errlog/error_details.h"
#include "errlog/error_record.h"
#include "errlog_test_util.h"

namespace {

lg_image_record with_data(uint32_t code, uint8_t reporter, std::vector<uint8_t> data) {
    lg_image_record r;
    r.code = code;
    r.reporter = reporter;
    r.data = std::move(data);
    return r;
}

// The printed lines behind the run mode line, where the data's printer starts.
std::string data_part(const std::string& printed) {
    const std::string mark = "OS Run Mode    :  BACKUP\n";
    size_t at = printed.find(mark);
    return at == std::string::npos ? printed : printed.substr(at + mark.size());
}

std::string print_data(uint32_t code, uint8_t reporter, const std::vector<uint8_t>& data) {
    return data_part(print_log(ring_of({with_data(code, reporter, data)}, 1024)));
}

bool ends_with(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

std::vector<uint8_t> words(std::initializer_list<uint32_t> ws) {
    std::vector<uint8_t> b;
    for (uint32_t w : ws) lg_put_u32(b, w);
    return b;
}

TEST(Details, HexDumpLines) {
    std::vector<uint8_t> image(64, 0);
    uint32_t count;
    lg_find_entries(image, 0, 64, &count, 0);
    const uint8_t bytes[] = {'A', 0x7F, 0x1F, 0x80, ' ', '~', 0xFF, '"', 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 'z', 0};
    std::copy(std::begin(bytes), std::end(bytes), image.begin() + 40);
    lg_image = image;
    // The offset steps by 8 whatever the width; the last line is padded.
    EXPECT_EQ(capture([](FILE* f) { lg_hexdump(f, 40, 20, 16); }),
              "       0x0000: 41 7F 1F 80 20 7E FF 22 01 02 03 04 05 06 07 08    \"A\x7F.. ~.\"........\"\n"
              "       0x0008: 09 0A 7A 00                                        \"..z.\"\n");
    EXPECT_EQ(capture([](FILE* f) { lg_hexdump(f, 40, 0, 8); }), "");
}

TEST(Details, TextOrHex) {
    EXPECT_EQ(print_data(0x12, 3, {'a', '\t', 'b', '\n', 'c', '\r', 0}),
              std::string("\n       Error Information:       \n       a\tb\n       c\r") + '\0' + "\n");
    EXPECT_EQ(print_data(0x12, 3, {'a', 0, 'b'}),
              "\n       Error Information:       \n"
              "       0x0000: 61 00 62                   \"a.b\"\n");
    EXPECT_EQ(print_data(0x12, 3, {}), "");
}

TEST(Details, FixedTextsFollowEitherForm) {
    std::string cold = print_data(4, 1, {0xFF});
    EXPECT_EQ(cold.substr(0, 108),
              "\n       Error Information:       \n"
              "       0x0000: FF                         \".\"\n"
              "\n\n       This error suggests");
    EXPECT_TRUE(ends_with(cold, "was damaged as a result of a serious bug somewhere.\n\n"));
    std::string overload = print_data(0xE9B8F0EF, 2, {'o', 'k'});
    EXPECT_EQ(overload.substr(0, 62),
              "\n       Error Information:       \n       ok\n\n       This error");
    EXPECT_TRUE(ends_with(overload, "              OSE priority 31  for more than  30 min.\n\n"));
}

TEST(Details, HeapShortForms) {
    // Four bytes: no information, whatever they hold.
    EXPECT_TRUE(ends_with(print_data(0x00820101, 1, {1, 2, 3, 4}),
                          "resized.\n\n       No heap buffer information exists.\n"));
    std::vector<uint8_t> dead = words({0xDEADEAD});
    dead.resize(60);
    EXPECT_NE(print_data(0x00820101, 1, dead).find("No heap buffer information exists."), std::string::npos);
    std::string corrupt = print_data(0x00820101, 1, words({1, 2, 3, 4, 5}));
    EXPECT_NE(corrupt.find("\n       Corrupt data. Dumping rest of heap information:\n"
                           "       0x0000: 00 00 00 01 00 00 00 02    \"........\"\n"),
              std::string::npos);
    EXPECT_NE(corrupt.find("       0x0010: 00 00 00 05"), std::string::npos);
}

// No file name: neither its line nor the source line is shown.
TEST(Details, HeapWithNothingBehindItsFixedPart) {
    std::vector<uint8_t> d = words({1, 0, 0x100, 0, 0, 0x2000, 0, 0xFFFFFFFF, 12, 16, 20, 0, 0});
    d.push_back(1);
    ASSERT_EQ(d.size(), 53u);
    std::string out = print_data(0x00820104, 1, d);
    EXPECT_EQ(out.substr(out.find("\n       HEAP Buffer")),
              "\n       HEAP Buffer information:\n\n"
              "       (NOTE!) The data below is information about the \n"
              "       owner of the heap buffer. It does not necessarily\n"
              "       mean that this is the one who caused the error.\n\n"
              "       Address of heap fragment  : 0x00000100\n"
              "       Address of buffer         : 0x00002000\n"
              "       Requested size of buffer  : 0x00000010\n"
              "       Actual size of buffer     : 0x00000014\n"
              "\n       Buffer endmark is not overwritten.\n");
}

TEST(Details, HeapFileOffsetBeyondTheData) {
    // Offset 0 with nothing behind the fixed part: the name would begin
    // where the data ends.
    std::vector<uint8_t> d = words({1, 0, 0, 0, 0, 0, 0x42, 0, 12, 16, 20, 0, 0});
    d.push_back(0);
    EXPECT_TRUE(ends_with(print_data(0x00820104, 1, d),
                          "the error.\n\n       Owner process identity    : 0x00000042\n"));
    d = words({1, 0, 0, 0, 0, 0, 0x42, 8, 12, 16, 20, 0, 0});
    d.push_back(0);
    d.insert(d.end(), {'a', 'b', 'c', 0});
    std::string out = print_data(0x00820104, 1, d);
    EXPECT_TRUE(ends_with(out, "the error.\n\n       Owner process identity    : 0x00000042\n"));
    // Within the data: the name, then what is left as user samples.
    d[31] = 1;
    d.insert(d.end(), {0xAA, 0xBB});
    out = print_data(0x00820104, 1, d);
    EXPECT_NE(out.find("       Owner file name           : bc\n       Source code line          : 12\n"),
              std::string::npos);
    EXPECT_NE(out.find("\n       Buffer endmark is overwritten.\n"
                       "\n       User samples from the buffer:\n"
                       "       0x0000: AA BB                      \"..\"\n"),
              std::string::npos);
}

TEST(Details, LoadReportForms) {
    // No columns: the interval and 34 labels alone.
    std::string out = print_data(0x0001004D, 2, {0, 0, 0, 0x03, 0xE8});
    EXPECT_NE(out.find("\n       Integration interval: 1000 usec\n\n       Int:  \n       P00:  \n"),
              std::string::npos);
    EXPECT_TRUE(ends_with(out, "       P31:  \n       Bg :  \n"));
    // A length that fits neither form: the data through the general printer.
    out = print_data(0x8001004D, 2, {1, 0, 0, 0, 1, 7});
    EXPECT_NE(out.find("background processes.\n\n       Load report data corrupt\n"
                       "\n       Error Information:       \n"
                       "       0x0000: 01 00 00 00 01 07"),
              std::string::npos);
}

TEST(Details, RegisterDumpWithoutMarker) {
    std::vector<uint8_t> d(200, 0);
    EXPECT_EQ(print_data(0x04000113, 0, d),
              "\n       Error Description  :       [OSE_EUNEXPECTED_EXCEPTION_REGDUMP]\n"
              "       An unexpected exception occured.\n"
              "       The exception offset is supplied in the subcode field.\n"
              "\n       [0x0400]: Instruction Storage Expection\n"
              "\n       CPU Register Dump:\n"
              "Dump corrupt.\n");
    // A vector outside the table prints no line of its own.
    EXPECT_TRUE(ends_with(print_data(0x04500113, 0, d),
                          "subcode field.\n\n       CPU Register Dump:\nDump corrupt.\n"));
}

TEST(Details, RegisterFrame) {
    // The frame's words count up from 0: old SP, old LR, r0..r31, ctr, xer, cr, lr, srr0, srr1, dar, vec.
    std::vector<uint8_t> image(8);
    for (uint32_t i = 0; i < 42; i++) lg_put_u32(image, i);
    uint32_t count;
    lg_find_entries(image, 0, uint32_t(image.size()), &count, 0);
    lg_record = lg_record_fields{};
    lg_record.error_code = 0x00000300;
    std::string out = capture([](FILE* f) { lg_print_exception(f, 8); });
    EXPECT_EQ(out,
              "\n       [0x03] : Data access exception\n"
              "\n       CPU Register Dump:\n"
              "       oldSP: 00000000   oldLR: 00000001\n\n"
              "       r0  :  00000002   r8  :  0000000A   r16 :  00000012   r24 :  0000001A\n"
              "       r1  :  00000003   r9  :  0000000B   r17 :  00000013   r25 :  0000001B\n"
              "       r2  :  00000004   r10 :  0000000C   r18 :  00000014   r26 :  0000001C\n"
              "       r3  :  00000005   r11 :  0000000D   r19 :  00000015   r27 :  0000001D\n"
              "       r4  :  00000006   r12 :  0000000E   r20 :  00000016   r28 :  0000001E\n"
              "       r5  :  00000007   r13 :  0000000F   r21 :  00000017   r29 :  0000001F\n"
              "       r6  :  00000008   r14 :  00000010   r22 :  00000018   r30 :  00000020\n"
              "       r7  :  00000009   r15 :  00000011   r23 :  00000019   r31 :  00000021\n"
              "\n       ctr :  00000022   xer :  00000023   cr  :  00000024   lr  :  00000025\n"
              "       srr0:  00000026   srr1:  00000027   dar :  00000028   vec :  00000029\n");
    lg_record.error_code = 0x0000AB00;
    EXPECT_EQ(capture([](FILE* f) { lg_print_exception(f, 8); }).substr(0, 47),
              "\n       [0xab] : Unknown type of exception\n\n   ");
}

}  // namespace
