#include "search/index_searcher.h"

#include "index/index_image.h"
#include "loam/error.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

// An index of one root folder and the given entries below it, in that order.
void LoadIndex(IndexData& index, const Names& names, const std::string& root = "/data") {
    IndexImage image;
    image.Header(1, 0, static_cast<int32_t>(names.size() + 1)).Record(1, 0xFFFFFFFF, root);
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
    void SetUp() override { loam::ClearErrors(); }
    void TearDown() override { loam::ClearErrors(); }
    IndexData index;
};

struct Translation {
    const char* pattern;
    bool isRegExp;
    bool autoWildcards;
    const char* expression;
};

TEST(IndexSearcherExpression, TranslatesWhatTheUserTyped) {
    const Translation table[] = {
        {"readme", false, true, ".*readme.*"},
        {"readme", false, false, "readme"},
        {"*.txt", false, true, ".*\\.txt"},
        {"*.txt", false, false, ".*\\.txt"},
        {"a?c", false, true, "a.c"},
        {"a.b", false, true, ".*a\\.b.*"},
        {"", false, true, ".*.*"},
        {"", false, false, ""},
        {"(a|b)[0-9]+^$\\d{2}", false, false, "(a|b)[0-9]+^$\\d{2}"},
        {" x ", false, true, ".* x .*"},
        {".txt", true, true, ".txt"},
        {"*?.", true, false, "*?."},
        {"", true, true, ""},
    };
    for (const Translation& row : table) {
        EXPECT_STREQ(IndexSearcher::MakeExpression(row.pattern, row.isRegExp, row.autoWildcards)
                         .GetCString(),
                     row.expression)
            << row.pattern << " regexp " << row.isRegExp << " auto " << row.autoWildcards;
    }
}

struct Case {
    const char* pattern;
    bool isRegExp;
    bool autoWildcards;
    Names found;
};

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
    };
    for (const Case& row : table) {
        EXPECT_EQ(Search(index, row.pattern, row.isRegExp, row.autoWildcards), row.found)
            << row.pattern << " regexp " << row.isRegExp << " auto " << row.autoWildcards;
    }
}

TEST_F(IndexSearcherTest, FindsARootByItsOwnNameOnly) {
    LoadIndex(index, {"notes.txt"}, "/srv/data");
    EXPECT_EQ(Search(index, "/srv.*", true, false), Names{"/srv/data"});
    EXPECT_EQ(Search(index, "srv", false, true), Names{"/srv/data"});
    EXPECT_EQ(Search(index, "*srv*notes*", false, false), Names{});
    EXPECT_EQ(Search(index, "", false, true), (Names{"/srv/data", "notes.txt"}));
}

struct Refusal {
    const char* pattern;
    bool isRegExp;
    bool autoWildcards;
};

TEST_F(IndexSearcherTest, RefusesABadExpressionAndKeepsTheResults) {
    LoadIndex(index, {"foo", "foo(bar"});
    const Names before = Search(index, "foo", false, false);
    const Refusal table[] = {
        {"", false, false},    {"", true, false},   {"", true, true},        {"foo(", false, false},
        {"foo(", false, true}, {"[a", true, false}, {"a{2,1}", true, false}, {"*", true, false},
    };
    for (const Refusal& row : table) {
        IndexSearcher searcher;
        EXPECT_FALSE(searcher.Start(&index, row.pattern, row.isRegExp, row.autoWildcards))
            << row.pattern;
        EXPECT_STREQ(loam::GetCurrentErrorInfo().GetMessage().GetCString(), SearchSyntaxErrorText);
        loam::ClearErrors();
        EXPECT_EQ(ResultNames(index), before) << row.pattern;
    }
}

TEST_F(IndexSearcherTest, AnEmptyIndexEndsAtOnce) {
    IndexImage image;
    image.Header(1, 1, 0);
    auto buffer = std::make_unique<char[]>(12);
    std::memcpy(buffer.get(), image.GetBytes().data(), 12);
    ASSERT_TRUE(index.LoadImage(std::move(buffer), 12));
    IndexSearcher searcher;
    ASSERT_TRUE(searcher.Start(&index, "", false, true));
    int32_t percent = -7;
    EXPECT_EQ(searcher.RunSlice(nullptr, &percent), 0);
    EXPECT_EQ(percent, -7);
    EXPECT_EQ(index.GetResultCount(), 0);
}

struct Slicing {
    int32_t records;
    std::vector<int32_t> answers;
    std::vector<int32_t> percents;
};

TEST_F(IndexSearcherTest, WorksInSlicesOfTenThousandRecords) {
    const Slicing table[] = {
        {9999, {0}, {100}},
        {10000, {0}, {100}},
        {10001, {1, 0}, {99, 100}},
        {25000, {1, 1, 0}, {40, 80, 100}},
    };
    for (const Slicing& row : table) {
        // The root is one of the records.
        LoadIndex(index, Names(row.records - 1, "x"));
        IndexSearcher searcher;
        ASSERT_TRUE(searcher.Start(&index, "x", false, false));
        std::vector<int32_t> answers, percents;
        int32_t percent = 0;
        do {
            answers.push_back(searcher.RunSlice(nullptr, &percent));
            percents.push_back(percent);
        } while (answers.back() == 1 && answers.size() < 10);
        EXPECT_EQ(answers, row.answers) << row.records;
        EXPECT_EQ(percents, row.percents) << row.records;
        EXPECT_EQ(index.GetResultCount(), row.records - 1);
    }
}

} // namespace
