#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "signals/text_scan.h"

namespace {

// Texts made of the pieces the parsers meet, so that formats match often
// and fail in every place.
std::string random_text(std::mt19937& rng) {
    static const char* pieces[] = {"signo", " = ", "=", " ", "\n", "\t", "FROM", "pid", "(", ")", "0x", "0X",
                                   "1a", "ff", "-", "+", "7", "42", "g", "name", "BLOCK", "\r\n", "0", "x"};
    std::string s;
    int n = int(rng() % 12);
    for (int i = 0; i < n; i++) s += pieces[rng() % (sizeof pieces / sizeof *pieces)];
    return s;
}

// Numbers of more than 32 bits saturate in ours (the target's unsigned long)
// and not in a 64-bit C library: such texts are not compared.
bool fits_32_bits(const std::string& s) {
    int run = 0;
    for (char c : s) {
        run = is_xdigit(c) ? run + 1 : 0;
        if (run > 8) return false;
    }
    return true;
}

// Our scanner against the C library's on the same zero-terminated text, for
// the formats the parsers use.
TEST(TextScan, ScanfAgreesWithTheCLibrary) {
    // The formats of the parsers, by the values they assign: (u, s, x),
    // (u, x), (s) or (x).
    struct case_format {
        const char* format;
        int shape;
    };
    static const case_format formats[] = {
        {"signo = %u FROM %255s (%x)", 0},
        {"signo = %u FROM pid = %x", 1},
        {"%255s", 2},
        {"%*s%*s%x", 3},
        {"%*s%*s%*s%*s%*x%*x%*s%*s%*s%*s%*d%*d%x", 3},
        {"%x", 3},
    };
    std::mt19937 rng(7);
    for (int i = 0; i < 20000; i++) {
        std::string text = random_text(rng);
        if (!fits_32_bits(text)) continue;
        const char* end = text.data() + text.size();
        for (const case_format& f : formats) {
            unsigned a1 = 11, b1 = 12, a2 = 11, b2 = 12;
            char w1[256] = "w", w2[256] = "w";
            int n1 = 0, n2 = 0;
            switch (f.shape) {
            case 0:
                n1 = std::sscanf(text.c_str(), f.format, &a1, w1, &b1);
                n2 = text_scanf(text.data(), end, f.format, &a2, w2, &b2);
                break;
            case 1:
                n1 = std::sscanf(text.c_str(), f.format, &a1, &b1);
                n2 = text_scanf(text.data(), end, f.format, &a2, &b2);
                break;
            case 2:
                n1 = std::sscanf(text.c_str(), f.format, w1);
                n2 = text_scanf(text.data(), end, f.format, w2);
                break;
            default:
                n1 = std::sscanf(text.c_str(), f.format, &a1);
                n2 = text_scanf(text.data(), end, f.format, &a2);
            }
            ASSERT_EQ(n1, n2) << f.format << " on [" << text << "]";
            ASSERT_EQ(a1, a2) << f.format << " on [" << text << "]";
            ASSERT_EQ(b1, b2) << f.format << " on [" << text << "]";
            ASSERT_STREQ(w1, w2) << f.format << " on [" << text << "]";
        }
    }
}

TEST(TextScan, ScanStopsAtTheEndAndAtAZeroByte) {
    const char text[] = "signo = 12 FROM abc (1f)";
    unsigned signo = 0, pid = 0;
    char name[256];
    // Cut inside the name: the name ends there, the pid is not reached.
    EXPECT_EQ(text_scanf(text, text + 18, "signo = %u FROM %255s (%x)", &signo, name, &pid), 2);
    EXPECT_STREQ(name, "ab");
    const char with_zero[] = "signo = 12 FROM a\0b (1f)";
    EXPECT_EQ(text_scanf(with_zero, with_zero + 24, "signo = %u FROM %255s (%x)", &signo, name, &pid), 2);
    EXPECT_STREQ(name, "a");
    EXPECT_EQ(text_scanf(text, text, "%x", &pid), -1);
}

TEST(TextScan, StrtoulAgreesWithTheCLibrary) {
    std::mt19937 rng(11);
    for (int i = 0; i < 20000; i++) {
        std::string text = random_text(rng);
        if (!fits_32_bits(text)) continue;
        char* stop1;
        const char* stop2;
        unsigned long v1 = std::strtoul(text.c_str(), &stop1, 16);
        uint32_t v2 = text_strtoul_hex(text.data(), text.data() + text.size(), &stop2);
        ASSERT_EQ(uint32_t(v1), v2) << text;
        ASSERT_EQ(stop1 - text.c_str(), stop2 - text.data()) << text;
    }
    // Beyond 32 bits the target's unsigned long saturates.
    const char big[] = "123456789";
    const char* stop;
    EXPECT_EQ(text_strtoul_hex(big, big + 9, &stop), 0xFFFFFFFFu);
}

// A finder asked from positions that go back and forth answers as a fresh
// search would.
TEST(TextScan, FinderAnswersAsAFreshSearch) {
    std::string text("a:b::c:::d\n\ne:f\0g:h", 19);
    const char* end = text.data() + text.size();
    text_finder colon{":"};
    std::mt19937 rng(3);
    size_t at = 0;
    for (int i = 0; i < 200; i++) {
        at = rng() % 4 == 0 ? rng() % text.size() : std::min(text.size(), at + rng() % 3);
        const char* p = text.data() + at;
        ASSERT_EQ(text_find_next(colon, p, end), text_find(p, end, ":")) << at;
    }
    EXPECT_EQ(text_find(text.data() + 14, end, ":"), nullptr);  // a zero byte ends the text
}

}  // namespace
