#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "nexus/process_names.h"

namespace {

proc_list_file read_list(const std::string& text) {
    const std::string path = "/tmp/krd_proc_list_" + std::to_string(getpid());
    FILE* f = std::fopen(path.c_str(), "w");
    std::fwrite(text.data(), 1, text.size(), f);
    std::fclose(f);
    proc_list_file file;
    EXPECT_TRUE(proc_list_read(path.c_str(), &file));
    unlink(path.c_str());
    return file;
}

std::vector<std::string> names_of(const proc_list_file& file, const char* text) {
    std::vector<uint32_t> lines;
    proc_list_find(file, text, &lines);
    std::vector<std::string> names;
    for (uint32_t line : lines) names.push_back(proc_list_first_word(file.lines[line]));
    return names;
}

using names = std::vector<std::string>;

TEST(ProcessNames, LinesAsTheReaderCutsThem) {
    std::string text =
        "  \"ose_main\"\tprioritized 0x00010001 0x00010001 basic\n"
        "  \"ctrl_main\"   prioritized 0x00010020 0x00010023 ctrl\n"
        "  \"link\" \\\n"
        "                prioritized 0x00010020 0x00010024 ctrl\n"
        "  \"upper\"       prioritized 0x00010020 0x0001ABCD ctrl\n"
        "  0x00010066\n";
    // A line of 600 characters: the reader takes 511, and the rest is a line
    // of its own whose first word is where it was cut.
    text += "  \"long\" " + std::string(502, 'x') + "tail 0x00010099 " + std::string(70, ' ') + "\n";
    // Behind a zero byte nothing is seen.
    text += std::string("  \"zero\" ") + '\0' + " 0x00010077\n";
    text += "  \"last\" 0x00010055";
    proc_list_file file = read_list(text);
    ASSERT_EQ(file.lines.size(), 10u);
    EXPECT_EQ(file.lines[6].size(), 511u);

    proc_list_build_index(&file);
    EXPECT_FALSE(file.index.empty());
    EXPECT_EQ(names_of(file, "10023"), names{"\"ctrl_main\""});
    EXPECT_EQ(names_of(file, "10024"), names{"prioritized"});
    EXPECT_EQ(names_of(file, "1002"), (names{"\"ctrl_main\"", "prioritized", "\"upper\""}));
    EXPECT_EQ(names_of(file, "10099"), names{"tail"});
    EXPECT_EQ(names_of(file, "10077"), names{});
    EXPECT_EQ(names_of(file, "1abcd"), names{});
    EXPECT_EQ(names_of(file, "10055"), names{"\"last\""});
    // Words end at blanks only: a tab and a line end are part of them.
    EXPECT_EQ(names_of(file, "00010001"), names{"\"ose_main\"\tprioritized"});  // a leading zero: searched line by line
    EXPECT_EQ(names_of(file, "10066"), names{"0x00010066\n"});
}

// The index answers what a search of every line answers, for every identity
// a trace can ask about in a list like a board's.
TEST(ProcessNames, IndexAgreesWithLineSearch) {
    std::string text = "  Name   Type   Prio  Block      Pid\n";
    char line[160];
    for (int i = 0; i < 300; i++) {
        std::snprintf(line, sizeof line, "  \"proc_%03d\"  prioritized  %d  0x%08x 0x%08x %d\n", i, i % 32,
                      0x10000 + (i % 7) * 0x20, 0x10000 + i * 0x13, i * 7919);
        text += line;
    }
    proc_list_file scanned = read_list(text);
    proc_list_file indexed = scanned;
    proc_list_build_index(&indexed);
    ASSERT_FALSE(indexed.index.empty());
    ASSERT_TRUE(scanned.index.empty());
    std::vector<uint32_t> a, b;
    for (uint32_t id = 0; id < 0x12000; id = id < 0x1000 ? id + 1 : id + 7) {
        char key[16];
        std::snprintf(key, sizeof key, "%lx", (unsigned long)id);
        proc_list_find(indexed, key, &a);
        proc_list_find(scanned, key, &b);
        ASSERT_EQ(a, b) << key;
    }
}

}  // namespace
