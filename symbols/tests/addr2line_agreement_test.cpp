// The in-process translation agrees with the cross tool on function and
// line for every instruction of the fixture executables; where no tool can
// be found, its stand-in answers as the tool does, word for word.
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

#include "symbols/address_print.h"
#include "zdb_src/tests/zdb_test_util.h"
#include "zdb_src/zdb_internal.h"

namespace {

struct tool_answer {
    std::string innermost_position;  // line of the address itself
    std::string outermost_function;  // the function the code lies in, inlining aside
};

// The tool's output lines for the addresses, run with these options.
std::vector<std::string> addr2line_lines(std::vector<std::string> argv, const std::vector<uint32_t>& addrs) {
    argv.insert(argv.begin(), "powerpc-linux-gnu-addr2line");
    for (uint32_t a : addrs) {
        char hex[16];
        std::snprintf(hex, sizeof hex, "0x%08x", a);
        argv.push_back(hex);
    }
    child_result r = run_program(argv);
    EXPECT_EQ(r.status, 0);
    std::istringstream in(r.out);
    std::vector<std::string> lines;
    for (std::string l; std::getline(in, l);) lines.push_back(l);
    return lines;
}

// With -a and -i the tool prints per address its own line, then pairs of
// function and position from the innermost inlined frame outwards.
std::vector<tool_answer> ask_addr2line(const std::string& file, const std::vector<uint32_t>& addrs) {
    std::vector<std::string> lines = addr2line_lines({"-a", "-f", "-i", "-e", file}, addrs);
    std::vector<tool_answer> answers;
    for (size_t i = 0; i < lines.size();) {
        ++i;  // the address
        tool_answer a;
        for (bool first = true; i + 1 < lines.size() && lines[i].rfind("0x", 0) != 0; i += 2, first = false) {
            if (first) a.innermost_position = lines[i + 1];
            a.outermost_function = lines[i];
        }
        answers.push_back(a);
    }
    return answers;
}

// The tool as krd runs it (-f -C): function and position per address.
std::vector<cross_tool_answer> ask_cross_tool(const std::string& file, const std::vector<uint32_t>& addrs) {
    std::vector<std::string> lines = addr2line_lines({"-f", "-C", "-e", file}, addrs);
    std::vector<cross_tool_answer> answers;
    for (size_t i = 0; i + 1 < lines.size(); i += 2) answers.push_back({lines[i], lines[i + 1]});
    return answers;
}

// "file:line" or "file:line (discriminator n)"; 0 when the tool knows none.
int32_t line_of(const std::string& position) {
    size_t colon = position.rfind(':', position.find(" ("));
    if (colon == std::string::npos || position.compare(0, 2, "??") == 0) return 0;
    return int32_t(std::strtol(position.c_str() + colon + 1, nullptr, 10));
}

void expect_agreement(const std::string& name) {
    zdb_file f;
    zdb_open_file(&f, fixture(name).c_str());
    ASSERT_TRUE(f.text);
    ASSERT_TRUE(f.is_dwarf2);
    uint32_t start = zdb_sh_addr(&f, f.text), size = zdb_sh_size(&f, f.text);
    std::vector<uint32_t> addrs;
    for (uint32_t a = start; a < start + size; a += 4) addrs.push_back(a);
    auto answers = ask_addr2line(fixture(name), addrs);
    ASSERT_EQ(answers.size(), addrs.size());

    int compared = 0;
    for (size_t i = 0; i < addrs.size(); i++) {
        const tool_answer& want = answers[i];
        int32_t want_line = line_of(want.innermost_position);
        if (want_line == 0) continue;
        zdb_addr_result got = zdb_translate_addr(&f, addrs[i]);
        ASSERT_TRUE(got) << std::hex << addrs[i];
        EXPECT_EQ(got->line, want_line) << name << " at " << std::hex << addrs[i];
        // The tool prefers a linkage name where the unit gives one; the
        // translator names a function by DW_AT_name alone.
        if (want.outermost_function.rfind("_Z", 0) != 0) {
            EXPECT_STREQ(got->function(), want.outermost_function.c_str()) << name << " at " << std::hex << addrs[i];
        }
        compared++;
    }
    EXPECT_GT(compared, int(addrs.size() / 2)) << "the tool knew too few of the addresses";

    // The stand-in, also a word before the code. (The address just behind
    // the code still counts as the code's, where the tool names the data
    // that follows.)
    addrs.insert(addrs.begin(), start - 4);
    std::vector<cross_tool_answer> tool = ask_cross_tool(fixture(name), addrs);
    ASSERT_EQ(tool.size(), addrs.size());
    for (size_t i = 0; i < addrs.size(); i++) {
        cross_tool_answer got = in_process_answer(&f, addrs[i]);
        EXPECT_EQ(got.function, tool[i].function) << name << " at " << std::hex << addrs[i];
        EXPECT_EQ(got.position, tool[i].position) << name << " at " << std::hex << addrs[i];
    }
    zdb_close_file(&f);
}

}  // namespace

TEST(Addr2lineAgreement, UnoptimisedWithProductString) { expect_agreement("ppc_app.elf"); }

TEST(Addr2lineAgreement, UnoptimisedWithoutProductString) { expect_agreement("LQZ9990002_R1A.elf"); }

TEST(Addr2lineAgreement, OptimisedWithInlinedCode) { expect_agreement("ppc_app_O2.elf"); }
