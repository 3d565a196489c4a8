#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "pmd/tests/dump_fixture.h"
#include "symbols/cross_tool.h"

namespace {

TEST(CrossToolAnswer, LinesAreCutAsALineReaderOf1022Characters) {
    cross_tool_answer a = cross_tool_cut_answer("main", "/src/app.c:30", 2);
    EXPECT_EQ(a.function, "main");
    EXPECT_EQ(a.position, "/src/app.c:30");
    // A longer function line spills into the second line read.
    std::string name(1500, 'f');
    a = cross_tool_cut_answer(name, "/src/app.c:30", 2);
    EXPECT_EQ(a.function, name.substr(0, 1022));
    EXPECT_EQ(a.position, name.substr(1022));
    a = cross_tool_cut_answer(std::string(1022, 'g'), "pos", 2);
    EXPECT_EQ(a.function, std::string(1022, 'g'));
    EXPECT_EQ(a.position, "");  // the newline behind exactly 1022 characters
    // Lines the tool never printed.
    a = cross_tool_cut_answer("main", "", 1);
    EXPECT_EQ(a.function, "main");
    EXPECT_EQ(a.position, "??");
    a = cross_tool_cut_answer("", "", 0);
    EXPECT_EQ(a.function, "??");
    EXPECT_EQ(a.position, "??");
}

// A folder of its own, removed with what it holds.
struct temp_dir {
    std::string path = temp_path("tool");
    temp_dir() { mkdir(path.c_str(), 0700); }
    ~temp_dir() { std::filesystem::remove_all(path); }
    std::string make(const std::string& name, const std::string& text, mode_t mode) const {
        std::string p = path + "/" + name;
        std::ofstream(p) << text;
        chmod(p.c_str(), mode);
        return p;
    }
};

TEST(CrossToolSearch, ExecutableRegularFilesOnly) {
    temp_dir d;
    mkdir((d.path + "/a").c_str(), 0700);
    mkdir((d.path + "/a/tool").c_str(), 0700);  // a folder of that name
    mkdir((d.path + "/b").c_str(), 0700);
    d.make("b/tool", "", 0600);  // not executable
    mkdir((d.path + "/c").c_str(), 0700);
    std::string found = d.make("c/tool", "", 0700);
    std::string list = d.path + "/a:" + d.path + "/b:" + d.path + "/c";
    EXPECT_EQ(cross_tool_search_path("tool", list.c_str()), found);
    EXPECT_EQ(cross_tool_search_path("other", list.c_str()), "");
    // An empty element is the current folder.
    char here[4096];
    ASSERT_TRUE(getcwd(here, sizeof here));
    ASSERT_EQ(chdir((d.path + "/c").c_str()), 0);
    EXPECT_EQ(cross_tool_search_path("tool", "/nonexistent::"), "./tool");
    ASSERT_EQ(chdir(here), 0);
}

// The tool is looked for on a PATH of the test's choosing.
struct path_override {
    std::string saved = std::getenv("PATH") ? std::getenv("PATH") : "";
    explicit path_override(const std::string& path) {
        cross_tool_close_all();
        setenv("PATH", path.c_str(), 1);
    }
    ~path_override() {
        cross_tool_close_all();
        setenv("PATH", saved.c_str(), 1);
    }
};

// Answers like addr2line -e FILE -f -C, with the file's name in its answer,
// and goes away at the address 0x00000bad. For gone.elf it notes its start
// and goes at once.
const char* const fake_tool =
    "#!/bin/sh\n"
    "[ \"$1\" = -e ] && [ \"$3\" = -f ] && [ \"$4\" = -C ] && [ $# = 4 ] || exit 3\n"
    "[ \"$2\" = gone.elf ] && echo started >> \"$0.starts\" && exit 0\n"
    "while read a; do\n"
    "  [ \"$a\" = 0x00000bad ] && exit 0\n"
    "  echo \"fn_$a\"; echo \"$2:$a\"\n"
    "done\n";

TEST(CrossTool, OneProcessPerFileAnswersEveryAddress) {
    temp_dir d;
    std::string tool = d.make(CROSS_TOOL_NAME, fake_tool, 0700);
    d.make(CROSS_TOOL_FALLBACK, fake_tool, 0700);
    path_override p(d.path);
    EXPECT_EQ(cross_tool_path(), tool);
    const std::string odd = "a b; rm -rf 'x' \"$HOME\" `id`.elf";
    cross_tool_answer a = cross_tool_translate(odd, 0x10000100);
    EXPECT_EQ(a.function, "fn_0x10000100");
    EXPECT_EQ(a.position, odd + ":0x10000100");
    a = cross_tool_translate("other.elf", 0x20);
    EXPECT_EQ(a.position, "other.elf:0x00000020");
    a = cross_tool_translate(odd, 0xFFFFFFFF);
    EXPECT_EQ(a.position, odd + ":0xffffffff");
    // The address the tool goes away on gets nothing; a new process answers
    // the next ones, and writing to the old one does no harm.
    a = cross_tool_translate(odd, 0xbad);
    EXPECT_EQ(a.function, "??");
    EXPECT_EQ(a.position, "??");
    a = cross_tool_translate(odd, 0x10000104);
    EXPECT_EQ(a.function, "fn_0x10000104");
    a = cross_tool_translate("other.elf", 0x24);
    EXPECT_EQ(a.function, "fn_0x00000024");
}

TEST(CrossTool, BatchesAnswerLikeSingleRuns) {
    temp_dir d;
    std::string tool = d.make(CROSS_TOOL_NAME, fake_tool, 0700);
    path_override p(d.path);
    std::vector<cross_tool_request> requests;
    for (uint32_t a = 0; a < 20000; a++) requests.push_back({"big.elf", a});  // more than a pipe holds
    requests.push_back({"big.elf", 7});
    requests.push_back({"small.elf", 0xbad});
    requests.push_back({"gone.elf", 0xbad});
    requests.push_back({"gone.elf", 0xbae});
    cross_tool_prefetch(requests);
    EXPECT_EQ(cross_tool_translate("big.elf", 0).position, "big.elf:0x00000000");
    EXPECT_EQ(cross_tool_translate("big.elf", 0xbad).function, "??");
    EXPECT_EQ(cross_tool_translate("big.elf", 0xbae).function, "fn_0x00000bae");  // after the tool went
    EXPECT_EQ(cross_tool_translate("big.elf", 19999).position, "big.elf:0x00004e1f");
    // One address that ends the tool costs that address only; a tool that
    // answers nothing twice in a row is not started again for every address.
    EXPECT_EQ(cross_tool_translate("small.elf", 1).function, "fn_0x00000001");
    EXPECT_EQ(cross_tool_translate("gone.elf", 0xbae).function, "??");
    EXPECT_EQ(cross_tool_translate("gone.elf", 0xbaf).function, "??");
    std::ifstream starts(tool + ".starts");
    std::string all((std::istreambuf_iterator<char>(starts)), std::istreambuf_iterator<char>());
    EXPECT_EQ(all, "started\nstarted\n");
}

TEST(CrossTool, PlainAddr2lineWhenTheCrossToolIsMissing) {
    temp_dir d;
    std::string tool = d.make(CROSS_TOOL_FALLBACK, fake_tool, 0700);
    path_override p("/nonexistent:" + d.path);
    EXPECT_EQ(cross_tool_path(), tool);
}

}  // namespace
