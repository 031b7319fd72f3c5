#include "search/index_searcher.h"

#include "index/index_image.h"
#include "loam/error.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

using Names = std::vector<std::string>;

// An index of one root folder and the given entries below it, in that order.
void LoadIndex(IndexData& index, const Names& names) {
    IndexImage image;
    image.Header(1, 0, static_cast<int32_t>(names.size() + 1)).Record(1, 0xFFFFFFFF, "/srv/data");
    for (const std::string& name : names)
        image.Record(0, 0, name, 10);
    ASSERT_TRUE(image.LoadInto(index));
}

Names ResultNames(const IndexData& index) {
    Names names;
    for (int32_t i = 0; i < index.GetResultCount(); ++i)
        names.push_back(index.GetResultName(i).GetCString());
    return names;
}

Names Search(IndexData& index, const char* pattern, bool isRegExp, bool autoWildcards) {
    IndexSearcher searcher;
    EXPECT_TRUE(searcher.Start(&index, pattern, isRegExp, autoWildcards)) << pattern;
    searcher.RunToEnd(nullptr);
    return ResultNames(index);
}

class IndexSearcherTest : public ::testing::Test {
protected:
    void TearDown() override { loam::ClearErrors(); }
    IndexData index;
};

// A pattern, whether it is a regular expression, whether wildcards go around it, and the names
// found.
using Case = std::tuple<const char*, bool, bool, Names>;

TEST_F(IndexSearcherTest, MatchesWholeNamesWithoutRegardToCase) {
    LoadIndex(index,
              {"readme", "Old README.txt", "readme.txt", "NOTES.TXT", "abc", "aXc", "ac", "a.b",
               "axb", "report", "Report", "my report", ".txt", "atxt", "Caf\xC9", "\xFF\xFE"});
    const Case table[] = {
        {"readme", false, true, {"readme", "Old README.txt", "readme.txt"}},
        {"readme", false, false, {"readme"}},
        {"README", false, false, {"readme"}},
        {"*.txt", false, true, {"Old README.txt", "readme.txt", "NOTES.TXT", ".txt"}},
        {"a?c", false, true, {"abc", "aXc"}},
        {"a.b", false, true, {"a.b"}},
        {".txt", true, false, {".txt", "atxt"}},
        {"report", true, true, {"report", "Report"}},
        {".*REPORT.*", true, false, {"report", "Report", "my report"}},
        {"[A-C]+", true, false, {"abc", "ac"}},
        {"(abc|ac)", false, false, {"abc", "ac"}},
        {"caf\xC9", false, false, {"Caf\xC9"}},
        {"\xFF*", false, false, {"\xFF\xFE"}},
        // A root is found by its own name, a whole path; no other record by its path.
        {"/srv.*", true, false, {"/srv/data"}},
        {"srv", false, true, {"/srv/data"}},
        {"*srv*readme*", false, false, {}},
    };
    for (const auto& [pattern, isRegExp, autoWildcards, found] : table) {
        EXPECT_EQ(Search(index, pattern, isRegExp, autoWildcards), found)
            << pattern << " regexp " << isRegExp << " auto " << autoWildcards;
    }
}

TEST_F(IndexSearcherTest, RefusesABadExpressionAndKeepsTheResults) {
    LoadIndex(index, {"foo", "foo(bar"});
    const Names before = Search(index, "foo", false, false);
    const std::tuple<const char*, bool, bool> table[] = {
        {"", false, false},  {"", true, true},        {"foo(", false, false}, {"foo(", false, true},
        {"[a", true, false}, {"a{2,1}", true, false}, {"*", true, false},
    };
    for (const auto& [pattern, isRegExp, autoWildcards] : table) {
        IndexSearcher searcher;
        EXPECT_FALSE(searcher.Start(&index, pattern, isRegExp, autoWildcards)) << pattern;
        EXPECT_STREQ(loam::GetCurrentErrorInfo().GetMessage().GetCString(), SearchSyntaxErrorText);
        loam::ClearErrors();
        EXPECT_EQ(ResultNames(index), before) << pattern;
    }
}

TEST_F(IndexSearcherTest, AnEmptyIndexEndsAtOnce) {
    ASSERT_TRUE(IndexImage().Header(1, 1, 0).LoadInto(index));
    IndexSearcher searcher;
    ASSERT_TRUE(searcher.Start(&index, "", false, true));
    int32_t percent = -7;
    EXPECT_EQ(searcher.RunSlice(nullptr, &percent), 0);
    EXPECT_EQ(percent, -7);
}

TEST_F(IndexSearcherTest, WorksInSlicesOfTenThousandRecords) {
    // Records, what each slice answers, and the percentage after it.
    const std::tuple<int32_t, std::vector<int32_t>, std::vector<int32_t>> table[] = {
        {9999, {0}, {100}},
        {10000, {0}, {100}},
        {10001, {1, 0}, {99, 100}},
        {25000, {1, 1, 0}, {40, 80, 100}},
    };
    for (const auto& [records, expectedAnswers, expectedPercents] : table) {
        // The root is one of the records.
        LoadIndex(index, Names(records - 1, "x"));
        IndexSearcher searcher;
        ASSERT_TRUE(searcher.Start(&index, "x", false, false));
        std::vector<int32_t> answers, percents;
        int32_t percent = 0;
        do {
            answers.push_back(searcher.RunSlice(nullptr, &percent));
            percents.push_back(percent);
        } while (answers.back() == 1 && answers.size() < 10);
        EXPECT_EQ(answers, expectedAnswers) << records;
        EXPECT_EQ(percents, expectedPercents) << records;
        EXPECT_EQ(index.GetResultCount(), records - 1);
    }
}

} // namespace
