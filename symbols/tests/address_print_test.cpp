#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "symbols/address_print.h"

namespace {

lm_table modules() {
    const std::string text =
        "Load module id: LQZ2223334_R1A\nStart code: 0x00400000 Size: 0x1000\n"
        "Load module id: LQZ1000001_R1A\nStart code: 0x00600000 Size: 0x1000\n";
    return lm_parse_text(std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(text.data()), text.size()), 0);
}

std::string line(const lm_list* list, uint32_t addr) {
    char* buf = nullptr;
    size_t len = 0;
    FILE* f = open_memstream(&buf, &len);
    zdb_file empty;
    krd_options options;
    print_address(f, &empty, list, addr, &options, "");
    std::fclose(f);
    std::string s(buf, len);
    free(buf);
    return s;
}

TEST(PrintAddress, SystemCallRangeOutsideEveryModule) {
    const std::string syscall = std::string(34, ' ') + "System call  \n";
    EXPECT_EQ(line(nullptr, 0xC00), syscall);
    EXPECT_EQ(line(nullptr, 0xFFF), syscall);
    EXPECT_EQ(line(nullptr, 0xBFF), "\n");
    EXPECT_EQ(line(nullptr, 0x1000), "\n");
    lm_table t = modules();
    EXPECT_EQ(line(t.get(), 0xC00), syscall);
}

TEST(PrintAddress, ModuleWithoutSymbolsShowsItsColumnOnly) {
    lm_table t = modules();
    // Rebased to the link base, or as it stands for a fixed-address module.
    EXPECT_EQ(line(t.get(), 0x00400328), "[10000328],LQZ2223334_R1A         \n");
    EXPECT_EQ(line(t.get(), 0x00401000), "[10001000],LQZ2223334_R1A         \n");
    EXPECT_EQ(line(t.get(), 0x00600010), "[00600010],LQZ1000001_R1A         \n");
}

TEST(PrintInProcess, EmptyRecordEndsTheLine) {
    out_buffer* out = new out_buffer(stdout);
    zdb_file empty;
    print_in_process(*out, &empty, 0x10000000, 1);
    print_in_process(*out, nullptr, 0x10000000, 1);
    EXPECT_EQ(std::string(out->buf, out->used), "\n\n");
    out->used = 0;
    delete out;
}

}  // namespace
