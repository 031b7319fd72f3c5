#include "search/name_glob.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

struct Reading {
    const char* text;
    bool isExpression;
    bool read;
    bool exact;
};

// What is read is what is certain; the rest is left to the expression alone.
TEST(NameGlob, ReadsOnlyWhatItIsSureOf) {
    const Reading table[] = {
        {"*report*", false, true, true},      {"*.txt", false, true, true},
        {"a?c", false, true, true},           {"", false, true, true},
        {"a|b", false, false, false},         {"(x)*", false, false, false},
        {"a\\.b", false, false, false},       {"x+", false, false, false},
        {".*report.*", true, true, true},     {"^img_.*\\.jpg$", true, true, true},
        {"a.+b\\$", true, true, true},        {"img_[0-9]+\\.jpg", true, true, false},
        {"colou?r", true, true, false},       {"[]x]y", true, true, false},
        {"(img|dsc).*", true, false, false},  {"a|b", true, false, false},
        {"a{2}", true, false, false},         {"\\d+x", true, false, false},
        {"[[:alpha:]]x", true, false, false}, {"[\\Q]x", true, false, false},
        {"a*?b", true, false, false},         {"a++b", true, false, false},
        {"a^b", true, false, false},          {"a$b", true, false, false},
    };
    for (const Reading& row : table) {
        NameGlob glob;
        const bool read =
            row.isExpression ? glob.ReadExpression(row.text) : glob.ReadWildcards(row.text);
        EXPECT_EQ(read, row.read) << row.text;
        EXPECT_EQ(read && glob.IsExact(), row.exact) << row.text;
    }
}

struct Match {
    const char* pattern;
    const char* name;
    bool matches;
};

TEST(NameGlob, MatchesWholeNamesWithAsciiFolding) {
    const Match table[] = {
        {"*report*", "Old REPORT.txt", true},
        {"*report*", "repor", false},
        {"*.txt", "a.TXT", true},
        {"*.txt", ".txt", true},
        {"*.txt", "a.txt.gz", false},
        {"a?c", "aXc", true},
        {"a?c", "ac", false},
        {"*a*a*", "aa", true},
        {"*a*a*", "a", false},
        {"ab*ba", "aba", false},
        {"caf\xC9*", "CAF\xC9", true},
        {"caf\xC9*", "caf\xE9", false},
        {"", "", true},
        {"", "x", false},
    };
    for (const Match& row : table) {
        NameGlob glob;
        ASSERT_TRUE(glob.ReadWildcards(row.pattern)) << row.pattern;
        EXPECT_EQ(glob.Matches(row.name, std::strlen(row.name)), row.matches)
            << row.pattern << " / " << row.name;
    }
}

} // namespace
