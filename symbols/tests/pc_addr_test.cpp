#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "pmd/tests/dump_fixture.h"
#include "symbols/calltrace.h"

namespace {

std::string pc_addr(krd_file* f, uint32_t addr) {
    char* buf = nullptr;
    size_t len = 0;
    FILE* out = open_memstream(&buf, &len);
    krd_options options;
    print_pc_addr(out, f, &options, addr);
    std::fclose(out);
    std::string s(buf, len);
    free(buf);
    return s;
}

TEST(PrintPcAddr, EachDumpItsOwnModules) {
    pmd_dump a;
    a.dump_id = 1;
    a.sections.push_back(memory_section("LOADED PROGRAMS", "Load module id: LQZ1_R1A\nStart code: 0x400000 Size: 0x100\n"));
    pmd_dump b;
    b.dump_id = 2;
    b.sections.push_back(memory_section("LOADED PROGRAMS", "Load module id: LQZ2_R1A\nStart code: 0x400080 Size: 0x100\n"));
    {
        dump_fixture fx(a, "pc_a");
        EXPECT_EQ(pc_addr(fx.f(), 0x400010), "[10000010],LQZ1_R1A               \n");
        EXPECT_EQ(pc_addr(fx.f(), 0xC00), std::string(34, ' ') + "System call  \n");
        EXPECT_EQ(pc_addr(fx.f(), 0x400101), "\n");
    }
    dump_fixture fx(b, "pc_b");
    EXPECT_EQ(pc_addr(fx.f(), 0x400090), "[10000010],LQZ2_R1A               \n");
    EXPECT_EQ(pc_addr(fx.f(), 0x400010), "\n");
}

}  // namespace
