#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

#include "pmd/tests/dump_fixture.h"
#include "symbols/load_module.h"

namespace {

using namespace std::string_literals;

lm_table parse(const std::string& text, int text_form = 0) {
    return lm_parse_text(std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(text.data()), text.size()),
                         text_form);
}

// The modules of a text, one line each: name|path|file|target|product|
// revision, then code start and size and data start and size in hex.
std::string modules(const std::string& text, int text_form = 0) {
    lm_table t = parse(text, text_form);
    if (!t) return "(none)";
    std::string out;
    for (const load_module& m : *t) {
        char ranges[64];
        std::snprintf(ranges, sizeof ranges, "|%x+%x|%x+%x\n", m.code_start, m.code_size, m.data_start, m.data_size);
        out += m.name + "|" + m.path + "|" + m.file_name + "|" + m.target + "|" + m.product + "|" + m.revision + ranges;
    }
    return out;
}

TEST(LoadModuleText, LinesFillTheirRecord) {
    EXPECT_EQ(modules("Load module id: LQZ2223334_R1A\n"
                      "  Load module path: @(#)/build/app/lm app.elf ppc750 extra words\n"
                      "  Load module version: @(#)cr@@main/7 LQZ2223334 R1A 2023-04-05 app.elf ppc750\n"
                      "  Start code: 0x00400000 Size: 0x1000\n"
                      "  Start data: 00500000 size: 200\n"
                      "Load module id: LQZ5556667%R2B\n"
                      "  Start section 0: 0x600000 Size: 0x80\n"
                      "  Start section 1: 0x700000 Size: 0x10\n"
                      "  Start section 2: 0x800000 Size: 0x10\n"),
              "LQZ2223334_R1A|/build/app/lm|app.elf|ppc750|LQZ2223334|R1A|400000+1000|500000+200\n"
              "LQZ5556667%R2B||||||600000+80|700000+10\n");
    // The version line names the file only in the text block form.
    const std::string version = "Load module id: LQZ2223334_R1A\n"
                                "Load module version: @(#)LQZ2223334 R1A 2023-04-05 board.elf ppc405\n";
    EXPECT_EQ(modules(version, 0), "LQZ2223334_R1A||||LQZ2223334|R1A|0+0|0+0\n");
    EXPECT_EQ(modules(version, 1), "LQZ2223334_R1A||board.elf|ppc405|LQZ2223334|R1A|0+0|0+0\n");
    // A later range line wins; section lines feed the same fields; capital
    // "SIZE" is no size, so no range line.
    EXPECT_EQ(modules("Load module id: A\nStart code: 100 SIZE: 5\nStart section 0: 200 Size: 6\n"
                      "Start data: 300 Size: 7\nStart section 1x: 400 size: 8\n"
                      "Load module id: B\nStart section 0: 0x10 Size: 0x20\nStart code: 0x30 size: 0x40\n"),
              "A||||||200+6|400+8\nB||||||30+40|0+0\n");
    // A range line before any id, an unknown line and a last line without
    // its end are passed over; no id at all is an empty list.
    EXPECT_EQ(modules("Start code: 0x100 Size: 0x10\nsomething else entirely\nLoad module id: C\n"
                      "Start code: 0x100 Size: 0x10\0Start code: 0x900 Size: 0x90"s),
              "C||||||100+10|0+0\n");
    EXPECT_EQ(modules(""), "");
    EXPECT_EQ(modules("Start code: 1 Size: 2\n"), "");
    // Limits: names and paths are cut, a number too large for the target's
    // long saturates, a missing one is 0, and "0x" alone reads as 0 on which
    // the number goes on.
    EXPECT_EQ(modules("Load module id: " + std::string(100, 'Q') + "\nLoad module path: @(#)" +
                      std::string(300, 'p') + "\nStart code: 123456789 Size:\nStart data: Size: 0x\n"
                      "Load module id: B\nStart code: 0x10 Size: 0X20\n"),
              std::string(LM_NAME_MAX, 'Q') + "|" + std::string(LM_PATH_MAX, 'p') +
                  "|||||ffffffff+0|0+0\nB||||||10+20|0+0\n");
}

TEST(LoadModuleTable, FindByAddressIncludesTheEnd) {
    lm_table t = parse(
        "Load module id: A\nStart code: 0x1000 Size: 0x100\n"
        "Load module id: B\nStart code: 0x1100 Size: 0x100\n"
        "Load module id: C\nStart code: 0xFFFFFF00 Size: 0x200\n");
    EXPECT_EQ(find_load_module(t.get(), 0xFFF), nullptr);
    EXPECT_EQ(find_load_module(t.get(), 0x1000)->name, "A");
    EXPECT_EQ(find_load_module(t.get(), 0x1100)->name, "A");  // one past A's end; B starts there
    EXPECT_EQ(find_load_module(t.get(), 0x1101)->name, "B");
    EXPECT_EQ(find_load_module(t.get(), 0x1201), nullptr);
    EXPECT_EQ(find_load_module(t.get(), 0xFFFFFFFF)->name, "C");  // no wrap past the top
    EXPECT_EQ(find_load_module(nullptr, 0x1000), nullptr);
    lm_list empty;
    EXPECT_EQ(find_load_module(&empty, 0), nullptr);
}

TEST(LoadModuleTable, FindByNameWithPercent) {
    lm_table t = parse(
        "Load module id: LQZ1_R1A\n"
        "Load module id: LQZ2%R2B\n"
        "Load module id: %X\n");
    EXPECT_EQ(lm_find_by_name(t.get(), "LQZ1_R1A"), &(*t)[0]);
    EXPECT_EQ(lm_find_by_name(t.get(), "LQZ1%R1A"), &(*t)[0]);
    EXPECT_EQ(lm_find_by_name(t.get(), "LQZ1%R1A%rest"), &(*t)[0]);
    EXPECT_EQ(lm_find_by_name(t.get(), "LQZ2%R2B"), &(*t)[1]);
    EXPECT_EQ(lm_find_by_name(t.get(), "LQZ2_R2B"), nullptr);  // without % only the exact name
    EXPECT_EQ(lm_find_by_name(t.get(), "LQZ1"), nullptr);
    // No text before or behind the %: the name alone applies.
    EXPECT_EQ(lm_find_by_name(t.get(), "%X"), &(*t)[2]);
    EXPECT_EQ(lm_find_by_name(t.get(), "LQZ1%"), nullptr);
}

pmd_section text_section(const std::string& text) {
    pmd_section s;
    s.kind = pmd_kind::text;
    s.payload.assign(text.begin(), text.end());
    return s;
}

// Whether parse_lm_table finds a module list among the dump's sections.
bool has_table(const std::vector<pmd_section>& sections) {
    pmd_dump d;
    d.sections = sections;
    dump_fixture fx(d);
    return bool(parse_lm_table(fx.f()));
}

// Which section is preferred is in the report cases (lm_preferred).
TEST(LoadModuleTable, ReadFromTheDump) {
    const std::string lm = "Load module id: LQZ7_R1A\nStart code: 0x40 Size: 0x4\n";
    // A "LOADED PROGRAMS" text block has no payload descriptor: no table,
    // and the other section does not stand in.
    EXPECT_FALSE(has_table({text_section("LOADED PROGRAMS\n" + lm), text_section("LOAD MODULE INFORMATION\n" + lm)}));
    // A size word far beyond what the stream can give is not allocated.
    pmd_section huge = memory_section("LOADED PROGRAMS", lm);
    huge.size_word = 0xFFFFFFF0;
    EXPECT_FALSE(has_table({huge}));
}

TEST(LoadModuleTable, MatchedFileThatIsNoElfStopsTheAttachment) {
    std::string dir = temp_path("attach");
    mkdir(dir.c_str(), 0700);
    std::string path = dir + "/LQZ3_R1A.elf";
    pmd_write_file(path, bytes(64, 'x'));
    lm_table t = parse("Load module id: LQZ3_R1A\n");
    krd_options options;
    options.mapping_files[0] = path.c_str();
    options.mapping_count = 1;
    EXPECT_EQ(attach_symbols_lm_table(t.get(), &options).status, ZDB_OPEN_NOT_ELF);
    EXPECT_FALSE((*t)[0].symbols);
    unlink(path.c_str());
    rmdir(dir.c_str());
}

}  // namespace
