// Address to symbol name from the ELF symbol table, in both byte orders.
#include <gtest/gtest.h>

#include "zdb_src/tests/zdb_test_util.h"
#include "zdb_src/zdb_internal.h"

namespace {

constexpr uint8_t NOTYPE = 0, OBJECT = 1, FUNC = 2, SECTION = 3, FILE_SYM = 4;

class ElfSymbols : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        elf_image_desc image;
        image.big_endian = GetParam();
        image.sections = {text_section(0x0800, 0xD00)};
        image.symbols = {
            {"gamma", 0x1400, FUNC},         {"alpha", 0x1000, FUNC},        {"beta", 0x1100, FUNC},
            {"beta_table", 0x1180, OBJECT},  {"beta_label", 0x1140, NOTYPE}, {".text", 0x1200, SECTION},
            {"unit.c", 0x1300, FILE_SYM},    {"gamma_alias", 0x1400, FUNC},
        };
        open_image(&file, build_elf(image));
    }
    void TearDown() override { zdb_close_file(&file); }

    std::string name_at(uint32_t addr) {
        zdb_addr_result r = zdb_elf_translate_addr(&file, addr);
        if (!r) return "(null)";
        EXPECT_EQ(r->function_offset, 1u);
        EXPECT_EQ(r->line, 0);
        EXPECT_STREQ(r->path_a(), "");
        return r->function();
    }

    zdb_file file;
};

}  // namespace

TEST_P(ElfSymbols, TextBoundsIncludeTheByteBehindTheEnd) {
    EXPECT_EQ(name_at(0x07FF), "(null)");
    EXPECT_EQ(name_at(0x1500), "gamma_alias");
    EXPECT_EQ(name_at(0x1501), "(null)");
}

TEST_P(ElfSymbols, NearestSymbolBelowWhateverItsSizeOrType) {
    EXPECT_EQ(name_at(0x1000), "alpha");
    EXPECT_EQ(name_at(0x10FF), "alpha");
    EXPECT_EQ(name_at(0x1100), "beta");
    // A label or a data object inside a function wins when it is closer.
    EXPECT_EQ(name_at(0x1150), "beta_label");
    EXPECT_EQ(name_at(0x1190), "beta_table");
    // Section and file symbols are no answer.
    EXPECT_EQ(name_at(0x1250), "beta_table");
    EXPECT_EQ(name_at(0x1350), "beta_table");
    // Of two symbols at one value, the later in the table.
    EXPECT_EQ(name_at(0x1480), "gamma_alias");
    // Below every symbol of .text: the null symbol, an empty name.
    EXPECT_EQ(name_at(0x0900), "");
}

TEST_P(ElfSymbols, WithoutDebugDataTheSymbolStandsAlone) {
    EXPECT_EQ(file.is_dwarf2, 0);
    zdb_addr_result r = zdb_translate_addr(&file, 0x1104);
    ASSERT_TRUE(r);
    EXPECT_STREQ(r->function(), "beta");
    EXPECT_EQ(r->line, 0);
}

INSTANTIATE_TEST_SUITE_P(BothByteOrders, ElfSymbols, testing::Bool(),
                         [](const auto& info) { return info.param ? "BigEndian" : "LittleEndian"; });

TEST(ElfSymbolsLittleEndian, RealFileReadsItsStructuresAndNoDwarf2) {
    if (access(fixture("le_app.elf").c_str(), R_OK) != 0) GTEST_SKIP() << "no 32-bit host compiler";
    child_result nm = run_program({"nm", fixture("le_app.elf")});
    size_t at = nm.out.find(" T app_dispatch\n");
    ASSERT_NE(at, std::string::npos) << nm.out;
    uint32_t addr = uint32_t(std::stoul(nm.out.substr(at - 8, 8), nullptr, 16));

    zdb_file f;
    zdb_open_file(&f, fixture("le_app.elf").c_str());
    EXPECT_EQ(f.is_dwarf2, 1);
    zdb_addr_result elf = zdb_elf_translate_addr(&f, addr + 4);
    ASSERT_TRUE(elf);
    EXPECT_STREQ(elf->function(), "app_dispatch");
    // DWARF data is read most significant byte first: version 2 reads as 512.
    EXPECT_EQ(zdb_dwarf2_translate_addr(&f, addr + 4), nullptr);
    zdb_addr_result r = zdb_translate_addr(&f, addr + 4);
    ASSERT_TRUE(r);
    EXPECT_STREQ(r->function(), "app_dispatch");
    EXPECT_EQ(r->line, 0);
    zdb_close_file(&f);
}
