// Names that never end or are longer than the scratch text: the record
// printer cuts them and stays inside the ring.
#include <gtest/gtest.h>

#include <string>

#include "errlog/error_record.h"
#include "errlog_test_util.h"

namespace {

TEST(RecordPrinter, NamesAreCutAndStayInsideTheRing) {
    lg_image_record r;
    r.code = 0x12;
    r.reporter = 3;
    r.process_block = true;
    r.file = std::string(300, 'f');
    r.process = std::string(255, 'p');
    r.line = 5;
    std::string out = print_log(ring_of({r}, 1024));
    EXPECT_NE(out.find("       File:line      :  " + std::string(255, 'f') + ":5\n"), std::string::npos);
    EXPECT_NE(out.find("       Process        :  " + std::string(255, 'p') + "\n"), std::string::npos);

    // One record filling the ring, named by both offsets; no NUL ends its names.
    std::vector<uint8_t> image(96, 'A');
    for (int i = 0; i < 8; i++) image[i] = 0;
    int result = -1;
    out = print_log(image, &result);
    EXPECT_EQ(result, 0);
    EXPECT_NE(out.find("       File:line      :  " + std::string(255, 'A') + ":1094795585\n"), std::string::npos);
}

}  // namespace
