// The DWARF 1 translator on hand-made .debug and .line sections, in both
// byte orders: it reads them in the order the file declares.
#include <gtest/gtest.h>

#include "zdb_src/tests/zdb_test_util.h"
#include "zdb_src/zdb_dwarf/dwarf1.h"
#include "zdb_src/zdb_internal.h"

using namespace zdb_dwarf1;

namespace {

constexpr uint16_t TAG_global_variable = 0x08, TAG_lexical_block = 0x0b;

// Unit d1.c [0x2000, 0x2100): first, second, a variable, hidden behind it.
// Unit d2.c [0x2100, 0x2200): lexical_parent with a block holding nested,
// a declaration without addresses, after. Its line table starts at 0x2120.
dwarf1_writer two_units(bool big_endian) {
    dwarf1_writer w;
    w.debug.big_endian = w.line.big_endian = big_endian;
    uint32_t t0 = w.line_table(0x2000, {{10, 0x0}, {12, 0x10}, {15, 0x40}}, 0x100);
    uint32_t t1 = w.line_table(0x2120, {{30, 0x0}}, 0x80);

    auto function = [&](uint16_t tag, const std::string& name, uint32_t low, uint32_t high) {
        size_t e = w.begin(tag);
        w.string(AT_name, name);
        if (low != high) w.addr(AT_low_pc, low), w.addr(AT_high_pc, high);
        w.end(e);
        return e;
    };
    auto unit = [&](const std::string& name, const std::string& dir, uint32_t low, uint32_t high, uint32_t table) {
        size_t e = w.begin(TAG_compile_unit);
        w.string(AT_name, name);
        w.string(AT_comp_dir, dir);
        w.addr(AT_low_pc, low);
        w.addr(AT_high_pc, high);
        w.data4(AT_stmt_list, table);
        w.end(e);
        return e;
    };

    size_t cu1 = unit("d1.c", "/d1dir", 0x2000, 0x2100, t0);
    size_t first = function(TAG_global_subroutine, "first", 0x2000, 0x2040);
    size_t second = function(TAG_subroutine, "second", 0x2040, 0x2080);
    size_t var = function(TAG_global_variable, "var", 0, 0);
    size_t hidden = function(TAG_subroutine, "hidden", 0x2080, 0x20C0);
    w.debug.u32(4);  // a null entry ends the chain
    w.sibling(first, uint32_t(second));
    w.sibling(second, uint32_t(var));
    w.sibling(var, uint32_t(hidden));

    size_t cu2 = unit("d2.c", "/d2", 0x2100, 0x2200, t1);
    w.sibling(cu1, uint32_t(cu2));
    w.sibling(hidden, uint32_t(cu2));
    size_t parent = function(TAG_subroutine, "lexical_parent", 0x2100, 0x2140);
    size_t block = w.begin(TAG_lexical_block);
    w.addr(AT_low_pc, 0x2140), w.addr(AT_high_pc, 0x2160);
    w.end(block);
    size_t nested = function(TAG_subroutine, "nested", 0x2140, 0x2160);
    size_t declared = function(TAG_subroutine, "declared", 0, 0);
    size_t after = function(TAG_subroutine, "after", 0x2180, 0x21C0);
    for (size_t e : {parent, block, nested}) w.sibling(e, uint32_t(declared));
    w.sibling(declared, uint32_t(after));
    for (size_t e : {cu2, after}) w.sibling(e, uint32_t(w.debug.tell()));
    return w;
}

class Dwarf1Translation : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        dwarf1_writer w = two_units(GetParam());
        elf_image_desc image;
        image.big_endian = GetParam();
        image.sections = {text_section(0x2000, 0x400), {".debug", 1, 0, w.debug.out, 0}, {".line", 1, 0, w.line.out, 0}};
        image.symbols = {{"sym_d1", 0x2000}, {"sym_d2", 0x2100}, {"sym_beyond", 0x2200}};
        open_image(&file, build_elf(image));
    }
    void TearDown() override { zdb_close_file(&file); }

    // "file|directory|line|function" as the reader left them.
    std::string dwarf(uint32_t addr) {
        zdb_addr_result r = zdb_dwarf_translate_addr(&file, addr);
        if (!r) return "(null)";
        return std::string(r->path_a()) + "|" + r->path_b() + "|" + std::to_string(r->line) + "|" + r->function();
    }

    zdb_file file;
};

}  // namespace

TEST_P(Dwarf1Translation, UnitsLinesAndFunctions) {
    EXPECT_EQ(file.is_dwarf2, 0);
    EXPECT_EQ(dwarf(0x2000), "d1.c|/d1dir|10|first");
    EXPECT_EQ(dwarf(0x2010), "d1.c|/d1dir|12|first");
    EXPECT_EQ(dwarf(0x2040), "d1.c|/d1dir|15|second");
    // The row before the ending row is matched against the ending delta.
    EXPECT_EQ(dwarf(0x20FC), "d1.c|/d1dir|15|");
    // High ends are outside: the next unit holds 0x2100, none holds 0x2200.
    EXPECT_EQ(dwarf(0x2190), "d2.c|/d2|30|after");
    EXPECT_EQ(dwarf(0x2200), "(null)");
    EXPECT_EQ(dwarf(0x1FFC), "(null)");
}

TEST_P(Dwarf1Translation, WhatTheSiblingWalkDoesNotFind) {
    // Behind a sibling of another tag.
    EXPECT_EQ(dwarf(0x2080), "d1.c|/d1dir|15|");
    // Nested in a lexical block.
    EXPECT_EQ(dwarf(0x2150), "d2.c|/d2|30|");
    // Below the line table's base the delta wraps: no row.
    EXPECT_EQ(dwarf(0x2100), "d2.c|/d2|-1|lexical_parent");
    // An empty function name is no "<...>": the ELF symbol does not stand in.
    zdb_addr_result r = zdb_translate_addr(&file, 0x2084);
    ASSERT_TRUE(r);
    EXPECT_STREQ(r->function(), "");
}

INSTANTIATE_TEST_SUITE_P(BothByteOrders, Dwarf1Translation, testing::Bool(),
                         [](const auto& info) { return info.param ? "BigEndian" : "LittleEndian"; });

TEST(Dwarf1Damaged, WalksEndOnBadLengthsFormsAndSiblings) {
    const byte_order big = byte_order::big;
    dwarf1_writer w = two_units(true);
    std::span<const uint8_t> debug = w.debug.out, line = w.line.out;
    uint64_t limit = debug.size();

    // An attribute form without a size ends the attribute walk.
    std::vector<uint8_t> odd_form = w.debug.out;
    odd_form[6] = 0x00, odd_form[7] = 0x19;  // the sibling attribute, now form 9
    uint32_t size, value;
    EXPECT_EQ(find_attr(big, odd_form, 0, AT_name, &size, &value), 0);

    // A length of 0 ends the walk over entries.
    std::vector<uint8_t> zero = w.debug.out;
    zero[0] = zero[1] = zero[2] = zero[3] = 0;
    EXPECT_FALSE(dwarf1_find_entry_of_tag(big, zero, 0, limit, {TAG_subroutine}));

    // A sibling that leads back doesn't go round for ever.
    std::vector<uint8_t> loop = w.debug.out;
    loop[8] = loop[9] = loop[10] = loop[11] = 0;
    uint64_t l = limit;
    EXPECT_FALSE(dwarf1_find_entry_for_addr(big, loop, 0, &l, 0x2150, {TAG_compile_unit}));

    // A unit's line table without a .line section, or cut short.
    EXPECT_EQ(dwarf1_find_line(big, debug, {}, 0, 0x2010), -1);
    EXPECT_EQ(dwarf1_find_line(big, debug, line.first(20), 0, 0x2010), -1);
    EXPECT_EQ(dwarf1_find_line(big, debug, line, 0, 0x2010), 12);

    // Entries cut by the section's end.
    for (size_t cut = 0; cut < debug.size(); cut++) {
        uint64_t cut_limit = debug.size();
        auto part = debug.first(cut);
        auto unit = dwarf1_find_entry_for_addr(big, part, 0, &cut_limit, 0x2010, {TAG_compile_unit});
        if (unit) dwarf1_find_line(big, part, line, *unit, 0x2010);
    }
}
