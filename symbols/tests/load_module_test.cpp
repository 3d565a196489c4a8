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

const char* const two_modules =
    "Load module id: LQZ2223334_R1A\n"
    "  Load module path: @(#)/build/app/lm app.elf ppc750 extra words\n"
    "  Load module version: @(#)cr@@main/7 LQZ2223334 R1A 2023-04-05 app.elf ppc750\n"
    "  Start code: 0x00400000 Size: 0x1000\n"
    "  Start data: 00500000 size: 200\n"
    "Load module id: LQZ5556667%R2B\n"
    "  Start section 0: 0x600000 Size: 0x80\n"
    "  Start section 1: 0x700000 Size: 0x10\n"
    "  Start section 2: 0x800000 Size: 0x10\n";

TEST(LoadModuleText, LinesFillTheirRecord) {
    lm_table t = parse(two_modules);
    ASSERT_TRUE(t);
    ASSERT_EQ(t->size(), 2u);
    const load_module& a = (*t)[0];
    EXPECT_EQ(a.name, "LQZ2223334_R1A");
    EXPECT_EQ(a.path, "/build/app/lm");
    EXPECT_EQ(a.file_name, "app.elf");
    EXPECT_EQ(a.target, "ppc750");
    EXPECT_EQ(a.product, "LQZ2223334");
    EXPECT_EQ(a.revision, "R1A");
    EXPECT_EQ(a.code_start, 0x400000u);
    EXPECT_EQ(a.code_size, 0x1000u);
    EXPECT_EQ(a.data_start, 0x500000u);
    EXPECT_EQ(a.data_size, 0x200u);
    EXPECT_EQ(a.absolute, 0);
    const load_module& b = (*t)[1];
    EXPECT_EQ(b.name, "LQZ5556667%R2B");
    EXPECT_EQ(b.code_start, 0x600000u);
    EXPECT_EQ(b.code_size, 0x80u);
    EXPECT_EQ(b.data_start, 0x700000u);
    EXPECT_EQ(b.data_size, 0x10u);
}

TEST(LoadModuleText, VersionLineNamesTheFileOnlyInTheTextBlockForm) {
    const std::string text =
        "Load module id: LQZ2223334_R1A\n"
        "Load module version: @(#)LQZ2223334 R1A 2023-04-05 board.elf ppc405\n";
    lm_table memory_form = parse(text, 0);
    lm_table text_form = parse(text, 1);
    EXPECT_EQ((*memory_form)[0].file_name, "");
    EXPECT_EQ((*memory_form)[0].target, "");
    EXPECT_EQ((*text_form)[0].file_name, "board.elf");
    EXPECT_EQ((*text_form)[0].target, "ppc405");
    EXPECT_EQ((*text_form)[0].product, "LQZ2223334");
}

TEST(LoadModuleText, LaterRangeLineWinsAndSectionLinesFeedTheSameFields) {
    lm_table t = parse(
        "Load module id: A\n"
        "Start code: 100 SIZE: 5\n"  // capital "SIZE" is no size: not a range line
        "Start section 0: 200 Size: 6\n"
        "Start data: 300 Size: 7\n"
        "Start section 1x: 400 size: 8\n"
        "Load module id: B\n"
        "Start section 0: 0x10 Size: 0x20\n"
        "Start code: 0x30 size: 0x40\n");
    EXPECT_EQ((*t)[0].code_start, 0x200u);
    EXPECT_EQ((*t)[0].code_size, 6u);
    EXPECT_EQ((*t)[0].data_start, 0x400u);
    EXPECT_EQ((*t)[0].data_size, 8u);
    EXPECT_EQ((*t)[1].code_start, 0x30u);
    EXPECT_EQ((*t)[1].code_size, 0x40u);
}

TEST(LoadModuleText, WhatIsPassedOver) {
    // A range line before any id, a line the expression does not know, and a
    // last line without its end are all passed over.
    lm_table t = parse(
        "Start code: 0x100 Size: 0x10\n"
        "something else entirely\n"
        "Load module id: LQZ2223334_R1A\n"
        "Start code: 0x100 Size: 0x10\0"
        "Start code: 0x900 Size: 0x90"s);
    ASSERT_EQ(t->size(), 1u);
    EXPECT_EQ((*t)[0].code_start, 0x100u);
    EXPECT_EQ((*t)[0].code_size, 0x10u);
    // Empty text, or no id at all: a list, but an empty one.
    EXPECT_TRUE(parse("")->empty());
    EXPECT_TRUE(parse("Start code: 1 Size: 2\n")->empty());
}

TEST(LoadModuleText, NumbersAndLimits) {
    std::string long_id(100, 'Q');
    std::string long_path(300, 'p');
    lm_table t = parse("Load module id: " + long_id + "\nLoad module path: @(#)" + long_path +
                       "\nStart code: 123456789 Size:\nStart data: Size: 0x\n"
                       "Load module id: B\nStart code: 0x10 Size: 0X20\n");
    const load_module& m = (*t)[0];
    EXPECT_EQ(m.name, long_id.substr(0, LM_NAME_MAX));
    EXPECT_EQ(m.path, long_path.substr(0, LM_PATH_MAX));
    EXPECT_EQ(m.code_start, 0xFFFFFFFFu);  // too large for the target's long
    EXPECT_EQ(m.code_size, 0u);
    EXPECT_EQ(m.data_start, 0u);
    EXPECT_EQ(m.data_size, 0u);
    // The capture holds "0" alone; the number is read on from there.
    EXPECT_EQ((*t)[1].code_size, 0x20u);
}

TEST(LoadModuleTable, BuiltinRowsMakeModulesAbsolute) {
    lm_table t = parse(
        "Load module id: LQZ1000001_R9Z\n"
        "Start code: 0x100 Size: 0x10\n"
        "Load module id: LQZ1000002_R1A\n"
        "Start code: 0x100 Size: 0x10\n"
        "Load module id: LQZ100000\n"
        "Basic:\n"
        "Load module version: @(#)LQZ1000001 R1A 2020-01-01\n");
    ASSERT_EQ(t->size(), 4u);
    const load_module& os = (*t)[0];
    EXPECT_EQ(os.absolute, 1);  // whatever the revision
    EXPECT_EQ(os.path, "/load/basic_os_lm");
    EXPECT_EQ(os.file_name, "basic_os.ppc");
    EXPECT_EQ(os.target, "ppc");
    EXPECT_EQ(os.code_start, 0x100u);  // the row has no ranges
    const load_module& patch = (*t)[1];
    EXPECT_EQ(patch.absolute, 1);
    EXPECT_EQ(patch.code_start, 0xFA0000u);
    EXPECT_EQ(patch.code_size, 51840u);
    EXPECT_EQ(patch.data_start, 0xF90000u);
    EXPECT_EQ(patch.data_size, 0u);
    EXPECT_EQ((*t)[2].absolute, 0);  // nine characters match no row
    // "Basic:" is named from its version line and never goes to the table.
    EXPECT_EQ((*t)[3].name, "LQZ1000001_R1A");
    EXPECT_EQ((*t)[3].absolute, 0);
    EXPECT_EQ((*t)[3].path, "");
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

TEST(LoadModuleTable, ReadFromTheDump) {
    const std::string lm = "Load module id: LQZ7_R1A\nStart code: 0x40 Size: 0x4\n";
    const std::string other = "Load module id: OTHER\n";
    {
        // "LOADED PROGRAMS" is preferred; the other section is not read.
        pmd_dump d;
        d.sections.push_back(text_section("LOAD MODULE INFORMATION\n" + other));
        d.sections.push_back(memory_section("LOADED PROGRAMS", lm));
        dump_fixture fx(d);
        lm_table t = parse_lm_table(fx.f());
        ASSERT_TRUE(t);
        ASSERT_EQ(t->size(), 1u);
        EXPECT_EQ((*t)[0].name, "LQZ7_R1A");
        EXPECT_EQ((*t)[0].code_start, 0x40u);
    }
    {
        pmd_dump d;
        d.sections.push_back(text_section("LOAD MODULE INFORMATION\n" + lm +
                                          "Load module version: @(#)LQZ7 R1A 2000-01-01 seven.elf ppc\n"));
        dump_fixture fx(d);
        lm_table t = parse_lm_table(fx.f());
        ASSERT_TRUE(t);
        EXPECT_EQ((*t)[0].file_name, "seven.elf");
    }
    {
        // A "LOADED PROGRAMS" text block has no payload descriptor: no table,
        // and the other section does not stand in.
        pmd_dump d;
        d.sections.push_back(text_section("LOADED PROGRAMS\n" + lm));
        d.sections.push_back(text_section("LOAD MODULE INFORMATION\n" + lm));
        dump_fixture fx(d);
        EXPECT_FALSE(parse_lm_table(fx.f()));
    }
    {
        // A text without a single module is no list either.
        pmd_dump d;
        d.sections.push_back(memory_section("LOADED PROGRAMS", "Start code: 0x40 Size: 0x4\nno module here\n"));
        dump_fixture fx(d);
        EXPECT_FALSE(parse_lm_table(fx.f()));
    }
    {
        pmd_dump d;
        d.sections.push_back(memory_section("SOMETHING", lm));
        dump_fixture fx(d);
        EXPECT_FALSE(parse_lm_table(fx.f()));
    }
    {
        // A size word far beyond what the stream can give is not allocated.
        pmd_dump d;
        pmd_section s = memory_section("LOADED PROGRAMS", lm);
        s.size_word = 0xFFFFFFF0;
        d.sections.push_back(s);
        dump_fixture fx(d);
        EXPECT_FALSE(parse_lm_table(fx.f()));
    }
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
