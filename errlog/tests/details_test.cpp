// The decoders of a record's data, on the forms the report cases leave out:
// short and corrupt heap information, file names at lying offsets, load
// reports of no columns or of the wrong length.
#include <gtest/gtest.h>

#include <string>

#include "errlog/error_details.h"
#include "errlog/error_record.h"
#include "errlog_test_util.h"

namespace {

// The printed lines behind the run mode line, where the data's printer starts.
std::string print_data(uint32_t code, uint8_t reporter, const std::vector<uint8_t>& data) {
    lg_image_record r;
    r.code = code;
    r.reporter = reporter;
    r.data = data;
    const std::string printed = print_log(ring_of({r}, 1024)), mark = "OS Run Mode    :  BACKUP\n";
    size_t at = printed.find(mark);
    return at == std::string::npos ? printed : printed.substr(at + mark.size());
}

bool ends_with(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

std::vector<uint8_t> words(std::initializer_list<uint32_t> ws) {
    std::vector<uint8_t> b;
    for (uint32_t w : ws) lg_put_u32(b, w);
    return b;
}

TEST(Details, HeapShortForms) {
    // Four bytes: no information, whatever they hold.
    EXPECT_TRUE(ends_with(print_data(0x00820101, 1, {1, 2, 3, 4}),
                          "resized.\n\n       No heap buffer information exists.\n"));
    std::string corrupt = print_data(0x00820101, 1, words({1, 2, 3, 4, 5}));
    EXPECT_NE(corrupt.find("\n       Corrupt data. Dumping rest of heap information:\n"
                           "       0x0000: 00 00 00 01 00 00 00 02    \"........\"\n"),
              std::string::npos);
    EXPECT_NE(corrupt.find("       0x0010: 00 00 00 05"), std::string::npos);
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

}  // namespace
