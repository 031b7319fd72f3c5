#include "search/name_automaton.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

// The automaton reads what it is sure of and leaves the rest to the expression's library; the
// names that the library's matcher might give up on are left to it too, and for the expressions
// a user types these must be only the longest names.
TEST(NameAutomaton, ReadsOnlyWhatAnAutomatonDecides) {
    const std::tuple<const char*, bool, int32_t> table[] = {
        {".*\\.(jpg|png)", true, 200},
        {"[a-z]+[0-9]+", true, 200},
        {".*[0-9]{4}.*", true, 32},
        {"^(img_|dsc)[0-9]+\\.jpe?g$", true, 200},
        {"(a|b(c|d)*)?", true, 200},
        {"[[:alpha:]]\\s\\d\\w\\W\\S\\D[]\\-.]", true, 200},
        {"a{2,5}?b{3}c{1,}", true, 100},
        {"(a+)+b", true, 0},
        {"(a)\\1", false, -1},
        {"(?=a)a", false, -1},
        {"(?i)a", false, -1},
        {"a\\b", false, -1},
        {"\\Qa\\E", false, -1},
        {"\\x41", false, -1},
        {"a^b", false, -1},
        {"a$b", false, -1},
        {"(a$)", false, -1},
        {"\\<a\\>", false, -1},
        {"a\\'", false, -1},
        {"a++", false, -1},
        {"(a*)*", false, -1},
        {"[[.a.]]", false, -1},
        {"a{1001}", false, -1},
    };
    for (const auto& [expression, reads, trustedAtLeast] : table) {
        NameAutomaton automaton;
        EXPECT_EQ(automaton.Build(expression), reads) << expression;
        EXPECT_GE(automaton.GetTrustedLength(), trustedAtLeast) << expression;
        if (trustedAtLeast == 0) {
            EXPECT_LT(automaton.GetTrustedLength(), 40) << expression;
        }
    }
}

// The texts of which every match holds one, folded, for the scan that passes over the names
// holding none of them.
TEST(NameAutomaton, FindsThePiecesEveryMatchHolds) {
    using Pieces = std::vector<std::string>;
    const std::pair<const char*, Pieces> table[] = {
        {".*\\.(JPG|png)", {".jpg", ".png"}},
        {"(a|b)(c|d)x+", {"acx", "adx", "bcx", "bdx"}},
        {"x*(report|notes?).*", {"note", "notes", "report"}},
        {"[a-z]+[0-9]+", {}},
        {".*(a|b+)", {"a", "b"}},
        {".*(ab|)", {}},
        {"(img|dsc)[0-9]{4}", {"dsc", "img"}},
        {"caf\xC9{2}", {"caf\xC9\xC9"}},
    };
    for (const auto& [expression, pieces] : table) {
        NameAutomaton automaton;
        ASSERT_TRUE(automaton.Build(expression)) << expression;
        EXPECT_EQ(automaton.GetPieces(), pieces) << expression;
    }
}

// What the expression's library decides for "." and the escapes, learnt from it: names folded
// for ASCII letters alone, line ends and bytes above 127 as ordinary bytes.
TEST(NameAutomaton, MatchesWholeNamesAsTheLibraryDecides) {
    const std::tuple<const char*, const char*, bool> table[] = {
        {".*\\.(jpg|png)", "Holiday.JPG", true},
        {".*\\.(jpg|png)", "Holiday.JPG.txt", false},
        {"[a-z]+[0-9]+", "Report2024", true},
        {"[a-z]+[0-9]+", "Report_2024", false},
        {"a.c", "A\nC", true},
        {"a\\sc", "a\nc", true},
        {"\\w+", "caf\xC9", false},
        {"caf\xC9", "CAF\xC9", true},
        {"caf\xC9", "caf\xE9", false},
        {"^$", "", true},
        {"x{2}", "xxx", false},
    };
    for (const auto& [expression, name, matches] : table) {
        NameAutomaton automaton;
        ASSERT_TRUE(automaton.Build(expression)) << expression;
        EXPECT_EQ(automaton.Matches(name), matches) << expression << " " << name;
    }
}

} // namespace
