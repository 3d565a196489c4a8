// Opening symbol files: the sections found, and what makes a file no
// symbol file.
#include <gtest/gtest.h>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

#include "zdb_src/tests/zdb_test_util.h"
#include "zdb_src/zdb_internal.h"

namespace {

elf_image_desc small_exec() {
    elf_image_desc image;
    image.sections = {text_section(0x1000, 0x100)};
    image.symbols = {{"main", 0x1000, 2}};
    return image;  // sections: 1 .text, 2 .symtab, 3 .strtab, 4 .shstrtab
}

void put32_be(std::vector<uint8_t>& b, size_t at, uint32_t v) {
    for (int i = 0; i < 4; i++) b[at + i] = uint8_t(v >> (24 - 8 * i));
}

uint32_t get32_be(const std::vector<uint8_t>& b, size_t at) {
    return uint32_t(b[at]) << 24 | uint32_t(b[at + 1]) << 16 | uint32_t(b[at + 2]) << 8 | b[at + 3];
}

}  // namespace

TEST(ElfOpen, EveryFailureHasItsStatus) {
    zdb_open_result missing = open_status("/nonexistent/zdb/load_module.elf");
    EXPECT_EQ(missing.status, ZDB_OPEN_CANNOT_OPEN);
    EXPECT_EQ(missing.error, ENOENT);

    std::string text = write_temp_file("text.elf", {'h', 'e', 'l', 'l', 'o', '\n'});
    EXPECT_EQ(open_status(text).status, ZDB_OPEN_NOT_ELF);
    std::string empty = write_temp_file("empty.elf", {});
    EXPECT_EQ(open_status(empty).status, ZDB_OPEN_NOT_ELF);

    // Relocatable and shared files.
    EXPECT_EQ(open_status(fixture("ppc_app_util.o")).status, ZDB_OPEN_NOT_EXEC);
    elf_image_desc shared = small_exec();
    shared.e_type = 3;
    std::string dyn = write_temp_file("shared.elf", build_elf(shared));
    EXPECT_EQ(open_status(dyn).status, ZDB_OPEN_NOT_EXEC);

    // A folder opens but can't be mapped.
    zdb_open_result folder = open_status("/tmp");
    EXPECT_EQ(folder.status, ZDB_OPEN_CANNOT_READ);
    EXPECT_NE(folder.error, 0);

    // A FIFO has no size and no writer: no wait, no ELF file.
    std::string fifo = write_temp_file("fifo.elf", {});
    unlink(fifo.c_str());
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(open_status(fifo).status, ZDB_OPEN_NOT_ELF);

    // A failed open leaves the record empty, as a null path does.
    zdb_file f;
    zdb_open_file(&f, text.c_str());
    EXPECT_EQ(f.base, nullptr);
    EXPECT_EQ(f.fd, 0);
    EXPECT_EQ(zdb_translate_addr(&f, 0), nullptr);

    EXPECT_TRUE(open_status(fixture("ppc_app.elf")).ok());
    for (const auto& p : {text, empty, dyn, fifo}) unlink(p.c_str());
}

// Cut anywhere, or with tables and sections outside the file: no ELF file.
TEST(ElfOpen, DamagedFilesAreNotElfFiles) {
    std::vector<uint8_t> whole = read_file(fixture("ppc_app.elf"));
    ASSERT_GT(whole.size(), 1000u);
    std::vector<std::vector<uint8_t>> bad;
    const uint32_t real_shoff = get32_be(whole, 32);
    std::vector<size_t> cuts = {1, 4, 5, 6, 51, 52, real_shoff, real_shoff + 39, real_shoff + 40, whole.size() - 1};
    for (size_t cut = 7; cut < whole.size(); cut += 257) cuts.push_back(cut);
    for (size_t cut : cuts) bad.push_back({whole.begin(), whole.begin() + long(cut)});

    std::vector<uint8_t> good = build_elf(small_exec());
    uint32_t shoff = get32_be(good, 32);
    auto patched = [&](size_t at, uint32_t v, bool half = false) {
        std::vector<uint8_t> b = good;
        if (half) b[at] = uint8_t(v >> 8), b[at + 1] = uint8_t(v);
        else put32_be(b, at, v);
        return b;
    };
    bad.push_back(patched(32, 0xFFFFFFF0u));                   // e_shoff
    bad.push_back(patched(48, 0xFFFF, true));                  // e_shnum
    bad.push_back(patched(50, 9, true));                       // e_shstrndx beyond e_shnum
    bad.push_back(patched(shoff + 2 * 40 + 16, 0xFFFFFF00u));  // .symtab's offset
    bad.push_back(patched(shoff + 3 * 40 + 20, 0x7FFFFFFFu));  // .strtab's size
    bad.push_back(patched(shoff + 4 * 40 + 16, 0xFFFFFFFCu));  // the name table's offset
    for (size_t i = 0; i < bad.size(); i++) {
        std::string path = write_temp_file("bad.elf", bad[i]);
        EXPECT_EQ(open_status(path).status, ZDB_OPEN_NOT_ELF) << "case " << i;
        unlink(path.c_str());
    }
    // .text is never read: its bytes may lie anywhere.
    std::string path = write_temp_file("text_outside.elf", patched(shoff + 40 + 16, 0xFFFFFF00u));
    EXPECT_TRUE(open_status(path).ok());
    unlink(path.c_str());
}

TEST(ElfOpen, FindsTheSectionsOfARealExecutable) {
    zdb_file f;
    zdb_open_file(&f, fixture("ppc_app.elf").c_str());
    EXPECT_EQ(f.is_dwarf2, 1);
    for (const uint8_t* sh : {f.text, f.symtab, f.strtab, f.debug_info, f.debug_abbrev, f.debug_line, f.debug_str})
        EXPECT_NE(sh, nullptr);
    EXPECT_EQ(f.debug, nullptr);
    EXPECT_EQ(f.line, nullptr);
    EXPECT_EQ(zdb_find_section(&f, ".text"), f.text);
    EXPECT_EQ(zdb_sh_addr(&f, f.text) & 0xF0000000u, 0x10000000u);
    EXPECT_EQ(zdb_find_section(&f, ".tex"), nullptr);
    EXPECT_EQ(zdb_find_section(&f, ".no_such_section"), nullptr);
    zdb_close_file(&f);
    EXPECT_EQ(f.base, nullptr);

    zdb_open_file(&f, fixture("ppc_app_nodebug.elf").c_str());
    EXPECT_EQ(f.is_dwarf2, 0);
    EXPECT_EQ(f.debug_info, nullptr);
    EXPECT_NE(f.symtab, nullptr);
    zdb_close_file(&f);
}

TEST(ElfOpen, EmptyRecordAndStrippedFileGiveNoSymbol) {
    zdb_file f;
    zdb_open_file(&f, nullptr);
    EXPECT_EQ(f.base, nullptr);
    EXPECT_EQ(zdb_translate_addr(&f, 0x10000100), nullptr);
    EXPECT_EQ(zdb_elf_translate_addr(&f, 0x10000100), nullptr);
    EXPECT_EQ(zdb_find_section(&f, ".text"), nullptr);
    zdb_close_file(&f);
    zdb_close_file(&f);

    zdb_open_file(&f, fixture("ppc_app_stripped.elf").c_str());
    ASSERT_NE(f.text, nullptr);
    EXPECT_EQ(f.symtab, nullptr);
    EXPECT_EQ(zdb_elf_translate_addr(&f, zdb_sh_addr(&f, f.text)), nullptr);
    EXPECT_EQ(zdb_translate_addr(&f, zdb_sh_addr(&f, f.text)), nullptr);
    zdb_close_file(&f);
}
