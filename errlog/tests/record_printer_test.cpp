// Single records where the report cases do not reach: the head length that
// decides on the process block, codes without a row, and names that never end.
#include <gtest/gtest.h>

#include <string>

#include "errlog/error_record.h"
#include "errlog_test_util.h"

namespace {

lg_image_record rec(uint32_t code, uint8_t reporter, uint8_t flags = 0) {
    lg_image_record r;
    r.code = code;
    r.reporter = reporter;
    r.flags = flags;
    return r;
}

TEST(RecordPrinter, ProcessBlockByTheHeadLength) {
    lg_image_record r = rec(0x00880002, 1, 0xC8);
    r.process_block = true;
    r.queued = 0xFFFFFFFF;
    r.owned = 2;
    r.line = 77;
    r.file = "drv.c";
    r.process = "ose_bsp";
    r.restart_type = 9;
    r.pmd_identity = 0xBEEF;
    r.rank = 0;
    r.ext_len = 5;  // not 6: with flags 0x88 the block is there
    std::string out = body_of(print_log(ring_of({r})));
    EXPECT_EQ(out,
              "       Error code     :  0x00880002 (Reported via the OSE error API)\n"
              "       File:line      :  drv.c:77\n"
              "       Process        :  ose_bsp\n"
              "       Queued signals :  -1\n"
              "       Owned signals  :  2\n"
              "       Restart type   :         OS Run Mode    :  BACKUP\n"
              "       PMD identity   :  0x0000beef\n"
              "       Restart rank   :  \n"
              "       OSE Component  :  BSP\n"
              "\n       Error Description  :       [OSE_BSP_EDEVICE_INIT_FAILED]\n"
              "       The board support package could not initialize a device.\n");
    // Empty names print no line; the counts always do.
    r.file = "";
    r.process = "";
    out = body_of(print_log(ring_of({r})));
    EXPECT_EQ(out.find("File:line"), std::string::npos);
    EXPECT_EQ(out.find("Process "), std::string::npos);
    EXPECT_NE(out.find("Queued signals :  -1\n"), std::string::npos);
}

TEST(RecordPrinter, CodesWithoutDataPrinter) {
    // A component without the code's row: no description and no data.
    lg_image_record r = rec(0x00880010, 1);
    r.data = {1, 2, 3, 4};
    EXPECT_EQ(body_of(print_log(ring_of({r}))),
              "       Error code     :  0x00880010 (Reported via the OSE error API)\n"
              "       OS Run Mode    :  BACKUP\n"
              "       OSE Component  :  BSP\n");
    // The kernel's register dump error names no system call; too short for
    // a register dump, its data goes through the general printer.
    r = rec(0x00070113, 0);
    r.data = {'x'};
    std::string out = body_of(print_log(ring_of({r})));
    EXPECT_EQ(out.find("System call"), std::string::npos);
    EXPECT_NE(out.find("Error Information:       \n       x\n"), std::string::npos);
    r.code = 0x00070112;
    EXPECT_NE(print_log(ring_of({r})).find("System call    :  create_block\n"), std::string::npos);
}

TEST(RecordPrinter, NamesAreCutAndStayInsideTheRing) {
    lg_image_record r = rec(0x12, 3);
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
