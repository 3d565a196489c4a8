#include <gtest/gtest.h>

#include <cerrno>
#include <utility>

#include "cli/report.h"
#include "pmd/tests/dump_fixture.h"
#include "render/dump_printers.h"
#include "render/process_list.h"
#include "render/ramlog.h"
#include "render/section_blocks.h"
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

// Built by append: g++ -O3 warns falsely of an overlap on "\n" + text.
std::string newline_then(const std::string& text) {
    std::string s(1, '\n');
    s.append(text);
    return s;
}

std::span<const uint8_t> as_span(const std::string& s) { return {reinterpret_cast<const uint8_t*>(s.data()), s.size()}; }

// Titles that fit several rules of the memory block dispatch: the first
// rule in order takes the block, and a block not marked as text (no blank in
// front of its title) never reaches the rules for text-marked ones.
TEST(MemoryBlockRules, FirstFittingRuleTakesTheBlock) {
    const std::string regs = "R1=0005FF30 PC=01000414 ";
    const std::string blank_regs = "  R1=0005FF30 PC=01000414 ";
    const std::string queue = "0x00010024 sent 0x105 = 00 00 01 05\n";
    const std::string ramlog = "boot\nrunning\n";
    struct block {
        const char* title;
        const std::string& text;
        std::string body;  // what the renderer that must take it prints
    };
    auto printed = [](auto print) { return capture(print); };
    const block blocks[] = {
        // The register rule before the stack rule and the text mark.
        {"REGISTERS STACK FOR pid 1", regs, newline_then(printed([&](FILE* o) { print_reg_text(o, as_span(regs)); }))},
        // A blank in the first two bytes is no register text; marked as
        // text, it falls through to the last rule.
        {" CPU registers for pid = 7", blank_regs, printed([&](FILE* o) { print_text_dump(o, as_span(blank_regs)); })},
        {"RAMLOG STACK FOR core 0", ramlog, printed([&](FILE* o) { print_ramlog(o, as_span(ramlog)); })},
        {" Stack for pid 0x10023", ramlog, newline_then(printed([&](FILE* o) { print_stack_dump(o, as_span(ramlog), 0); }))},
        // Unmarked: shown as text, not parsed as a signal queue.
        {"SIGNAL QUEUE FOR PROCESS 0x00010023", queue,
         newline_then(printed([&](FILE* o) { print_text_dump(o, as_span(queue)); }))},
        // Marked, but without -n the process list is plain text.
        {" PROCESS LIST", ramlog, printed([&](FILE* o) { print_text_dump(o, as_span(ramlog)); })},
    };
    pmd_dump d;
    for (const block& b : blocks) d.sections.push_back(memory_section(b.title, b.text));
    dump_fixture fx(d);
    krd_options options{};
    uint32_t cursor = 0;
    krd_chain chain = krd_find_section(fx.f(), &cursor, "");
    for (const block& b : blocks) {
        ASSERT_TRUE(chain) << b.title;
        std::string out = capture([&](FILE* o) { print_memory_block(o, fx.f(), chain.get(), &options, 0); });
        EXPECT_EQ(out, b.body) << b.title;
        krd_free_chain(chain);
        chain = krd_get_section(fx.f(), &cursor);
    }
}

}  // namespace
