#include <gtest/gtest.h>

#include <cerrno>
#include <utility>

#include "cli/report.h"
#include "pmd/tests/dump_fixture.h"
#include "tests/capture.h"

namespace {

TEST(NumericArgument, PrefixesAndDigits) {
    for (const char* ok : {"0x1F", "x1F", "123", "0", "", "0xdeadBEEF", "010", "x"}) EXPECT_EQ(is_numeric_arg(ok), 1) << ok;
    for (const char* bad : {"0X1F", "-1", "12a", "0x1G", "00x1", " 1"}) EXPECT_EQ(is_numeric_arg(bad), 0) << bad;
}

// What a failure printer writes to standard output and standard error.
template <class Print>
std::pair<std::string, std::string> standard_streams(Print&& print) {
    std::string err;
    FILE* saved_err = stderr;
    std::string out = capture([&](FILE* o) {
        FILE* saved_out = stdout;
        stdout = o;
        err = capture([&](FILE* e) {
            stderr = e;
            print();
        });
        stderr = saved_err;
        stdout = saved_out;
    });
    return {out, err};
}

TEST(RunFailure, SymbolFileFailuresInTheirWordsAndStreams) {
    using streams = std::pair<std::string, std::string>;
    auto told = [](zdb_open_status status, int error) {
        return standard_streams([&] { print_symbol_file_failure({status, error}); });
    };
    EXPECT_EQ(told(ZDB_OPEN_CANNOT_OPEN, ENOENT), streams("", "\033[0mzdb: [open_elf_file]: No such file or directory\n"));
    EXPECT_EQ(told(ZDB_OPEN_CANNOT_READ, ENODEV), streams("", "zdb: [open_elf_file] : No such device\n"));
    EXPECT_EQ(told(ZDB_OPEN_NOT_ELF, 0), streams("zdb: This is not an ELF file\n", ""));
    EXPECT_EQ(told(ZDB_OPEN_NOT_EXEC, 0), streams("", ""));
}

size_t count_of(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) n++;
    return n;
}

// The payloads allocated of one size: the parameter section's.
size_t param_reads = 0;
constexpr size_t param_size = 777;
void* counting_alloc(size_t size, uint32_t unused) {
    if (size == param_size) param_reads++;
    return default_z_alloc(size, unused);
}

// Read once for every section that asks; what each section is told of them
// is in the report cases (params_empty).
TEST(SystemParameters, ReadOnceForEverySectionThatAsks) {
    std::string params = "krn/system_timer 4\ntarget_board xyz\n";
    params.resize(param_size, ' ');
    pmd_dump d;
    for (int i = 0; i < 3; i++) {
        d.sections.push_back(memory_section("TRACE AND ERROR", "no ring"));
        d.sections.push_back(memory_section(" PROCESS SWAP IN LIST", "no list"));
    }
    d.sections.push_back(memory_section("SYSTEM PARAMETERS", params));
    dump_fixture fx(d);
    krd_options options{};
    z_alloc = counting_alloc;
    std::string out = capture([&](FILE* f) { print_dump_sections(f, fx.f(), &options); });
    z_alloc = default_z_alloc;
    EXPECT_EQ(param_reads, 2u);  // its own section, and the first lookup
    EXPECT_EQ(count_of(out, "  Cannot read T&E log [trace ecode=1]\n"), 3u);
}

}  // namespace
