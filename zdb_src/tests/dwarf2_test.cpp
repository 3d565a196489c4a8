// The DWARF 2 translator on hand-made units and line programs, and on the
// real executables where the compiler makes the case.
#include <gtest/gtest.h>

#include "zdb_src/dwarf2.h"
#include "zdb_src/tests/zdb_test_util.h"
#include "zdb_src/zdb_internal.h"

using namespace zdb_dwarf2;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace {

constexpr uint32_t STRING = 8, STRP = 14, ADDR = 1, DATA4 = 6, REF4 = 19;

void standard_abbreviations(dwarf2_writer& w) {
    w.abbreviation(1, DW_TAG_compile_unit, true,
                   {{DW_AT_name, STRING}, {DW_AT_comp_dir, STRING}, {DW_AT_low_pc, ADDR}, {DW_AT_high_pc, ADDR},
                    {DW_AT_stmt_list, DATA4}});
    w.abbreviation(2, DW_TAG_subprogram, false, {{DW_AT_name, STRING}, {DW_AT_low_pc, ADDR}, {DW_AT_high_pc, ADDR}});
    w.abbreviation(3, DW_TAG_compile_unit, true, {{DW_AT_name, STRING}, {DW_AT_comp_dir, STRING}, {DW_AT_stmt_list, DATA4}});
    w.abbreviation(4, DW_TAG_compile_unit, true, {{DW_AT_name, STRING}});
    w.abbreviation(5, DW_TAG_inlined_subroutine, false,
                   {{DW_AT_abstract_origin, REF4}, {DW_AT_low_pc, ADDR}, {DW_AT_high_pc, ADDR}});
    w.abbreviation(6, DW_TAG_subprogram, false, {{DW_AT_name, STRP}});
    w.abbreviation(7, DW_TAG_subprogram, false, {{DW_AT_abstract_origin, REF4}, {DW_AT_low_pc, ADDR}, {DW_AT_high_pc, ADDR}});
    w.abbreviation(8, DW_TAG_subprogram, false, {});
    w.abbreviation(10, DW_TAG_subprogram, true, {{DW_AT_specification, REF4}, {DW_AT_low_pc, ADDR}, {DW_AT_high_pc, ADDR}});
    w.abbreviation(11, DW_TAG_subprogram, false, {{DW_AT_name, STRING}, {DW_AT_MIPS_linkage_name, STRING}});
    w.abbreviation(12, DW_TAG_subprogram, false, {{DW_AT_name, STRING}, {DW_AT_linkage_name, STRING}});
    w.abbreviation(9, 0x34, false, {{DW_AT_name, STRING}});  // a variable, never used; the table's last
    w.end_abbreviations();
}

// A line program of one sequence: rows of (address, line), then the end.
size_t simple_program(dwarf2_writer& w, const std::string& file, uint32_t addr, int32_t line, uint32_t end) {
    size_t p = w.begin_line({file});
    w.set_address(addr);
    w.advance_line(line - 1);
    w.copy();
    w.advance_pc((end - addr) / 4);
    w.end_sequence();
    w.end_line(p);
    return p;
}

void unit_with_range(dwarf2_writer& w, const std::string& name, const std::string& dir, uint32_t low, uint32_t high,
                     size_t program) {
    w.info.uleb(1);
    w.info.str(name), w.info.str(dir), w.info.u32(low), w.info.u32(high), w.info.u32(uint32_t(program));
}

void unit_without_range(dwarf2_writer& w, const std::string& name, const std::string& dir, size_t program) {
    w.info.uleb(3);
    w.info.str(name), w.info.str(dir), w.info.u32(uint32_t(program));
}

void subprogram(dwarf2_writer& w, const std::string& name, uint32_t low, uint32_t high) {
    w.info.uleb(2);
    w.info.str(name), w.info.u32(low), w.info.u32(high);
}

void with_origin(dwarf2_writer& w, uint32_t code, size_t origin, uint32_t low, uint32_t high) {
    w.info.uleb(code);
    w.info.u32(uint32_t(origin)), w.info.u32(low), w.info.u32(high);
}

// Units in this order, all code between 0x1000 and 0x1800:
//   one    [0x1000, 0x1100)  a line program that fails at once
//   two    [0x1100, 0x1200)  rows, functions, inlined code
//   three  no range          program over [0x1300, 0x1340)
//   four   no range          program over [0x1400, 0x1440), absolute file
//   six    [0x1600, 0x1700)  program over [0x1680, 0x1700) only
//   seven  no range          program over [0x1600, 0x1700)
//   eight  [0x1700, 0x1780)  a method defined apart from its declaration,
//                            with a function inlined into it
//   five   no range, no line program: the search stops here
class Dwarf2Translation : public testing::Test {
  protected:
    void SetUp() override {
        dwarf2_writer w;
        standard_abbreviations(w);
        w.str.str("inl");

        size_t p1 = w.begin_line({"one.c"}, -5, 14, 13);
        w.line.u8(10);  // no standard opcode with a base of 13
        w.end_line(p1);

        size_t p2 = w.begin_line({"two.c"});
        w.set_address(0x1100);
        w.advance_line(9);
        w.copy();          // 0x1100 line 10
        w.special(73);     // 0x1110 line 12
        w.special(70);     // 0x1120 line 11: the signed line_base lowers the line
        w.advance_pc(8);
        w.advance_line(20);
        w.copy();          // 0x1140 line 31
        w.advance_pc(48);
        w.end_sequence();  // 0x1200
        w.end_line(p2);

        size_t p3 = simple_program(w, "three.c", 0x1300, 40, 0x1340);
        size_t p4 = simple_program(w, "/abs/four.c", 0x1400, 50, 0x1440);
        size_t p6 = simple_program(w, "six.c", 0x1680, 60, 0x1700);
        size_t p7 = simple_program(w, "seven.c", 0x1600, 70, 0x1700);
        size_t p8 = simple_program(w, "eight.c", 0x1700, 80, 0x1780);

        size_t u = w.begin_unit();
        unit_with_range(w, "one.c", "/build1", 0x1000, 0x1100, p1);
        subprogram(w, "one_fn", 0x1000, 0x1100);
        w.info.u8(0);
        w.end_unit(u);

        u = w.begin_unit();
        unit_with_range(w, "two.c", "/build2", 0x1100, 0x1200, p2);
        subprogram(w, "outer", 0x1100, 0x1140);
        size_t inl = w.info.tell() - u;
        w.info.uleb(6), w.info.u32(0);  // "inl", declared only
        with_origin(w, 5, inl, 0x1110, 0x1120);
        with_origin(w, 5, inl, 0x1140, 0x1150);
        with_origin(w, 7, inl, 0x1160, 0x1180);
        size_t nameless = w.info.tell() - u;
        w.info.uleb(8);
        with_origin(w, 7, nameless, 0x11A0, 0x11C0);
        w.info.u8(0);
        w.end_unit(u);

        u = w.begin_unit();
        unit_without_range(w, "three.c", "/src/three", p3);
        w.info.u8(0);
        w.end_unit(u);
        u = w.begin_unit();
        unit_without_range(w, "four.c", "/src/four", p4);
        w.info.u8(0);
        w.end_unit(u);
        u = w.begin_unit();
        unit_with_range(w, "six.c", "/src/six", 0x1600, 0x1700, p6);
        w.info.u8(0);
        w.end_unit(u);
        u = w.begin_unit();
        unit_without_range(w, "seven.c", "/src/seven", p7);
        w.info.u8(0);
        w.end_unit(u);
        u = w.begin_unit();
        unit_with_range(w, "eight.c", "/src/eight", 0x1700, 0x1780, p8);
        size_t declaration = w.info.tell() - u;
        w.info.uleb(11), w.info.str("method"), w.info.str("_ZN1C6methodEv");
        size_t helper = w.info.tell() - u;
        w.info.uleb(12), w.info.str("helper"), w.info.str("_Z6helperi");
        with_origin(w, 10, declaration, 0x1700, 0x1740);
        with_origin(w, 5, helper, 0x1710, 0x1720);
        w.info.u8(0);
        w.info.u8(0);
        w.end_unit(u);
        u = w.begin_unit();
        w.info.uleb(4), w.info.str("five.c");
        w.info.u8(0);
        w.end_unit(u);

        elf_image_desc image;
        image.sections = w.sections(0x1000, 0x800);
        image.symbols = {{"sym_one", 0x1000},   {"sym_outer", 0x1100}, {"sym_late", 0x1180}, {"sym_tail", 0x11C0},
                        {"sym_three", 0x1300}, {"sym_four", 0x1400},  {"sym_six", 0x1600}};
        open_image(&file, build_elf(image));
    }
    void TearDown() override { zdb_close_file(&file); }

    // "dir|file|line|function" of the DWARF reader alone, with its messages.
    std::string dwarf(uint32_t addr, std::string* messages = nullptr) {
        CaptureStderr();
        zdb_addr_result r = zdb_dwarf2_translate_addr(&file, addr);
        std::string err = GetCapturedStderr();
        if (messages) *messages = err;
        else EXPECT_EQ(err, "") << std::hex << addr;
        if (!r) return "(null)";
        EXPECT_EQ(r->path_a_offset, 1u);
        return std::string(r->path_a()) + "|" + r->path_b() + "|" + std::to_string(r->line) + "|" + r->function();
    }

    zdb_file file;
};

}  // namespace

TEST_F(Dwarf2Translation, RowsOfTheLineProgram) {
    EXPECT_EQ(dwarf(0x1100), "/build2|two.c|10|outer");
    EXPECT_EQ(dwarf(0x110C), "/build2|two.c|10|outer");
    EXPECT_EQ(dwarf(0x1110), "/build2|two.c|12|outer");
    EXPECT_EQ(dwarf(0x1120), "/build2|two.c|11|outer");
    // The end of the sequence closes the last row's range.
    EXPECT_EQ(dwarf(0x11FC), "/build2|two.c|31|<nofunc>");
    EXPECT_EQ(dwarf(0x1300), "/src/three|three.c|40|<nofunc>");
    // An absolute file name leaves the directory empty.
    EXPECT_EQ(dwarf(0x1400), "|/abs/four.c|50|<nofunc>");
}

TEST_F(Dwarf2Translation, ChoiceOfTheUnit) {
    // Outside a unit's range its line program isn't touched; its high end is outside.
    EXPECT_EQ(dwarf(0x1100), "/build2|two.c|10|outer");
    // Inside the range, a line program that fails gives nothing, and no other unit is tried.
    std::string messages;
    EXPECT_EQ(dwarf(0x10FC, &messages), "(null)");
    EXPECT_EQ(messages, "Undefined opcode (0xa)\n");
    EXPECT_EQ(dwarf(0x1600), "(null)");
    EXPECT_EQ(dwarf(0x1680), "/src/six|six.c|60|<nofunc>");
    // Units without a range are tried in turn; the end-of-sequence address
    // is in none, and the unit without a line program stops the search.
    EXPECT_EQ(dwarf(0x1340), "<none>|<none>|0|<nofunc>");
    EXPECT_EQ(dwarf(0x1200), "<none>|<none>|0|<nofunc>");
}

TEST_F(Dwarf2Translation, FunctionsAndInlinedCode) {
    // A subprogram wins over inlined code that holds the address too.
    EXPECT_EQ(dwarf(0x1114), "/build2|two.c|12|outer");
    // Inlined code outside any subprogram, named by its origin.
    EXPECT_EQ(dwarf(0x1144), "/build2|two.c|31|inl");
    EXPECT_EQ(dwarf(0x1160), "/build2|two.c|31|inl");
    // An origin without a name leaves the function unknown.
    EXPECT_EQ(dwarf(0x11A0), "/build2|two.c|31|<nofunc>");
}

TEST_F(Dwarf2Translation, UnknownFunctionTakesTheElfSymbol) {
    zdb_addr_result r = zdb_translate_addr(&file, 0x11A4);
    ASSERT_TRUE(r);
    EXPECT_STREQ(r->path_a(), "/build2");
    EXPECT_STREQ(r->path_b(), "two.c");
    EXPECT_STREQ(r->function(), "sym_late");
    EXPECT_EQ(r->line, 31);

    r = zdb_translate_addr(&file, 0x1104);
    EXPECT_STREQ(r->function(), "outer");
    // No DWARF answer: the ELF symbol alone.
    CaptureStderr();
    r = zdb_translate_addr(&file, 0x1604);
    GetCapturedStderr();
    EXPECT_STREQ(r->function(), "sym_six");
    EXPECT_EQ(r->line, 0);
    EXPECT_STREQ(r->path_b(), "");
    // Outside .text the DWARF readers are never asked.
    EXPECT_EQ(zdb_translate_addr(&file, 0x0FFF), nullptr);
}

// What the tool's stand-in prints: the innermost function by its linkage
// name, found also through an origin or a declaration, and the file behind
// its unit's directory unless it is absolute.
TEST_F(Dwarf2Translation, NamesAndPathsForTheToolsStandIn) {
    auto tool = [this](uint32_t addr) {
        zdb_addr_result r = zdb_translate_addr(&file, addr);
        if (!r) return std::string("(null)");
        const std::string& t = r->text;
        return std::string(r->tool_function_offset ? t.c_str() + r->tool_function_offset : "(none)") + "|" +
               (r->tool_path_offset ? t.c_str() + r->tool_path_offset : "(none)");
    };
    EXPECT_EQ(tool(0x1704), "_ZN1C6methodEv|/src/eight/eight.c");
    EXPECT_EQ(tool(0x1714), "_Z6helperi|/src/eight/eight.c");
    // The innermost holder, by its origin's name.
    EXPECT_EQ(tool(0x1114), "inl|/build2/two.c");
    EXPECT_EQ(tool(0x1104), "outer|/build2/two.c");
    EXPECT_EQ(tool(0x11A4), "(none)|/build2/two.c");
    EXPECT_EQ(tool(0x1400), "(none)|/abs/four.c");
    EXPECT_EQ(tool(0x1340), "(none)|");
}

TEST(Dwarf2RealFiles, Dwarf4AndLittleEndianGiveTheElfSymbol) {
    zdb_file f;
    zdb_open_file(&f, fixture("ppc_app_dwarf4.elf").c_str());
    uint32_t addr = zdb_sh_addr(&f, f.text) + 8;
    EXPECT_EQ(zdb_dwarf2_translate_addr(&f, addr), nullptr);
    zdb_addr_result r = zdb_translate_addr(&f, addr);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->line, 0);
    EXPECT_STRNE(r->function(), "");
    zdb_close_file(&f);
}

namespace {

dwarf2_sections sections_of(const dwarf2_writer& w) { return {w.info.out, w.abbrev.out, w.str.out, w.line.out}; }

// The line program's answer for the address, as "file:line", with messages.
std::string fileline(const dwarf2_writer& w, uint32_t addr, std::string* messages) {
    std::string name;
    int32_t line = 0;
    CaptureStderr();
    int found = find_fileline(sections_of(w), 0, addr, &name, &line);
    *messages = GetCapturedStderr();
    return found ? name + ":" + std::to_string(line) : "(none)";
}

}  // namespace

TEST(Dwarf2LinePrograms, UnknownExtendedOpcodeFindsNothing) {
    dwarf2_writer w;
    size_t p = w.begin_line({"a.c"});
    w.set_address(0x100);
    w.copy();
    w.line.u8(0), w.line.uleb(2), w.line.u8(0x80), w.line.u8(0);
    w.end_line(p);
    std::string messages;
    EXPECT_EQ(fileline(w, 0x100, &messages), "(none)");
    EXPECT_EQ(messages, "Unknown extened dwarf2 opcode (128)\n");
}

TEST(Dwarf2Entries, UnknownAbbreviationAndUnsupportedForm) {
    dwarf2_writer w;
    w.abbreviation(1, DW_TAG_compile_unit, false, {{DW_AT_name, 2}, {DW_AT_stmt_list, DATA4}});
    w.abbreviation(2, 0x24, false, {});
    w.end_abbreviations();
    size_t u = w.begin_unit();
    w.info.uleb(42);
    w.info.uleb(1), w.info.u32(0), w.info.u32(0);
    w.end_unit(u);
    dwarf2_sections s = sections_of(w);

    dwarf2_cu cu;
    ASSERT_EQ(find_cu(s, &cu), 1);
    EXPECT_EQ(cu.version, 2);
    EXPECT_EQ(cu.entries_offset, 11u);
    dwarf2_die die;
    CaptureStderr();
    EXPECT_EQ(find_tag(s, cu, DW_TAG_compile_unit, &die), 0);
    EXPECT_EQ(GetCapturedStderr(), "Abbrev-table for abbrev code 42 not found\n");

    // An entry of the table's last abbreviation ends the walk.
    w.info.out[11] = 2;
    s = sections_of(w);
    EXPECT_EQ(find_tag(s, cu, DW_TAG_compile_unit, &die), 0);
    // A null entry in its place is passed over; the tag is found before any
    // value is read.
    die = {};
    w.info.out[11] = 0;
    s = sections_of(w);
    ASSERT_EQ(find_tag(s, cu, DW_TAG_compile_unit, &die), 1);
    dwarf2_value v;
    CaptureStderr();
    EXPECT_EQ(find_attribute(s, cu, die, DW_AT_stmt_list, &v), 0);
    EXPECT_EQ(GetCapturedStderr(), "Attribute type 2 unsupported.\n");
    // A reference that leads to the null entry finds no abbreviation.
    CaptureStderr();
    EXPECT_EQ(get_tag(s, cu, 11, &die), 0);
    EXPECT_EQ(GetCapturedStderr(), "Abbrev-table for abbrev code 0 not found\n");
    EXPECT_EQ(find_cu(s, &cu), 0);
}
