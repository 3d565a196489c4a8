#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "pmd/tests/dump_fixture.h"
#include "symbols/load_module.h"

namespace {

std::string product(const std::string& bytes) {
    return lm_product_string(std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
}

TEST(ProductString, TwoWordsOfAMarkedRun) {
    std::string elf = std::string("\x7f" "ELF\1\2\0\0", 8) + "@(#)LQZ1234567 R1A 2024-05-01 board" + '\0';
    EXPECT_EQ(product(elf), "LQZ1234567_R1A");
    // The run may end the file; the first four characters go whatever they are.
    EXPECT_EQ(product("xy@(#)LQZ1234567 R1A more"), "#)LQZ1234567_R1A");
    // One word only: the whole rest of the run.
    EXPECT_EQ(product("@(#)LQZ12345678901234"), "LQZ12345678901234");
}

TEST(ProductString, RunsShorterThanTwentyOrUnmarkedDoNotCount) {
    EXPECT_EQ(product(std::string("@(#)LQZ1 R1A 12345", 18) + '\n'), "");  // 18 characters
    EXPECT_EQ(product("@(#)LQZ1 R1A 1234567\x01"), "LQZ1_R1A");  // exactly 20
    EXPECT_EQ(product("@(#)lqz1234567 R1A 2024-05-01"), "");
    // A tab is printable to strings, a newline and bytes above 126 are not.
    EXPECT_EQ(product("\t@(#)LQZ12 R1\tA xxxxxxxxxxx"), ")LQZ12_R1\tA");
    EXPECT_EQ(product("@(#)LQZ1 R1\n xxxxxxxxxxxxxxxxxxxxxxx"), "");
    EXPECT_EQ(product("@(#)LQZ1 R1\xc8xxxxxxxxxxxxxxxxxxxxxxx"), "");
}

TEST(ProductString, SeveralRunsRunTogetherUpToTwentyNineCharacters) {
    std::string two = std::string("@(#)LQZ1111111 R1A first string") + '\0' + "@(#)LQZ2222222 R2B second string";
    EXPECT_EQ(product(two), "LQZ1111111_R1ALQZ2222222_R2B");
    std::string three = two + '\0' + "@(#)LQZ3333333 R3C third string";
    EXPECT_EQ(product(three), "LQZ1111111_R1ALQZ2222222_R2BL");
    // A single long first word is cut too.
    EXPECT_EQ(product("@(#)LQZ" + std::string(60, '9')), "LQZ" + std::string(26, '9'));
}

TEST(ProductString, MarkerFoundAcrossTheWholeRun) {
    std::string run = std::string(5000, 'a') + "@(#)LQZ";
    EXPECT_EQ(product(run), std::string(29, 'a'));
}

// The whole file is searched; a FIFO without a writer is read as empty, not
// waited on, and its name serves.
TEST(ProductId, WholeFileAndFifo) {
    std::string dir = temp_path("pid");
    mkdir(dir.c_str(), 0700);
    std::string marked = dir + "/other.elf";
    std::string text = std::string(70000, '\0') + "@(#)LQZ9 R9 ...................." + '\0';
    pmd_write_file(marked, bytes(text.begin(), text.end()));
    EXPECT_EQ(lm_product_id(marked.c_str()), "LQZ9_R9");
    unlink(marked.c_str());
    std::string fifo = dir + "/LQZ6_R1A.elf";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    alarm(20);
    EXPECT_EQ(lm_product_id(fifo.c_str()), "LQZ6_R1A");
    alarm(0);
    unlink(fifo.c_str());
    rmdir(dir.c_str());
}

}  // namespace
