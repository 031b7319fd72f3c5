#include "search/name_glob.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

// What is read is what is certain; the rest is left to the expression alone. Each row: the
// text, whether it is an expression, whether it is read, and whether the reading is exact.
TEST(NameGlob, ReadsOnlyWhatItIsSureOf) {
    const std::tuple<const char*, bool, bool, bool> table[] = {
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
    for (const auto& [text, isExpression, expectRead, exact] : table) {
        NameGlob glob;
        const bool read = isExpression ? glob.ReadExpression(text) : glob.ReadWildcards(text);
        EXPECT_EQ(read, expectRead) << text;
        EXPECT_EQ(read && glob.IsExact(), exact) << text;
    }
}

} // namespace
