#include "loam/format.h"
#include "loam/resource.h"
#include "loam/string.h"

#include <gtest/gtest.h>

#include <string>

using loam::String;
using loam::StringParser;

TEST(String, EmptyFormsAreAllEqualButOnlyTextAllocates) {
    String none;
    String fromEmptyText("");
    String copyOfEmpty(fromEmptyText);
    EXPECT_STREQ(none.GetCString(), "");
    EXPECT_EQ(none.GetCapacity(), 0);
    EXPECT_EQ(fromEmptyText.GetCapacity(), 1);
    EXPECT_EQ(copyOfEmpty.GetCapacity(), 0);
    EXPECT_TRUE(none == "");
    EXPECT_TRUE(none == fromEmptyText);
    EXPECT_TRUE(none.EqualsNoCase(fromEmptyText));
}

TEST(String, GrowthIsExactAndNeverShrinks) {
    String text("abc");
    EXPECT_EQ(text.GetCapacity(), 4);
    text.Append("de");
    EXPECT_EQ(text.GetCapacity(), 6);
    text.Assign("x");
    EXPECT_EQ(text.GetCapacity(), 6);
    text.Clear();
    EXPECT_EQ(text.GetCapacity(), 6);
    text.Reserve(10);
    EXPECT_EQ(text.GetCapacity(), 11);
    text.SetAt(0, 'q');
    text.SetAt(1, 0);
    EXPECT_EQ(text.GetLength(), 1);
    text.SetAt(11, 'z');
    EXPECT_STREQ(text.GetCString(), "q");
}

TEST(String, AppendsItsOwnTextSafely) {
    String text("ab");
    text.Append(text);
    EXPECT_STREQ(text.GetCString(), "abab");
    text.Append(text.GetCString() + 2);
    EXPECT_STREQ(text.GetCString(), "ababab");
    text.Append('!');
    EXPECT_STREQ(text.GetCString(), "ababab!");
}

TEST(String, AssignRangeIgnoresNothingToCopy) {
    String text("keep");
    text.AssignRange("abc", 0, 0);
    text.AssignRange(nullptr, 0, 2);
    EXPECT_STREQ(text.GetCString(), "keep");
    text.AssignRange("abcdef", 2, 3);
    EXPECT_STREQ(text.GetCString(), "cde");
}

TEST(String, PartsAreClampedToTheText) {
    const String text("abcdef");
    struct Case {
        String got;
        const char* expected;
    } cases[] = {
        {text.Left(0), ""},      {text.Left(2), "ab"},     {text.Left(99), "abcdef"},
        {text.Right(2), "ef"},   {text.Right(99), "abcdef"}, {text.Mid(2, 2), "cd"},
        {text.Mid(4, 99), "ef"}, {text.Mid(6, 1), ""},     {text.Mid(3), "def"},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(c.got.GetCString(), c.expected);
}

TEST(String, InPlaceChanges) {
    String text("Hello");
    text.Truncate(5);
    text.Truncate(99);
    EXPECT_STREQ(text.GetCString(), "Hello");
    text.StripLastChar('o');
    text.StripLastChar('o');
    EXPECT_STREQ(text.GetCString(), "Hell");
    text.Reverse();
    EXPECT_STREQ(text.GetCString(), "lleH");
    text.ReplaceChar('l', 'L');
    EXPECT_STREQ(text.GetCString(), "LLeH");
    String accented("\xC9T\xE9");
    accented.ToLower();
    EXPECT_STREQ(accented.GetCString(), "\xC9t\xE9");
}

TEST(String, TrimTakesWhiteSpaceAndNoBreakSpaceFromBothEnds) {
    struct Case {
        const char* text;
        const char* expected;
    } cases[] = {
        {"  a b  ", "a b"}, {"\t\r\n\v\fx\xA0", "x"}, {"\xA0 \t", ""}, {"a", "a"}, {"", ""},
    };
    for (const auto& c : cases) {
        String text(c.text);
        text.Trim();
        EXPECT_STREQ(text.GetCString(), c.expected) << c.text;
    }
}

TEST(String, FindFromAStartPosition) {
    const String text("abcABCabc");
    struct Case {
        const char* needle;
        int32_t start;
        bool ignoreCase;
        bool found;
        int32_t at;
    } cases[] = {
        {"ABC", 0, false, true, 3}, {"ABC", 4, true, true, 6}, {"abc", 1, false, true, 6},
        {"", 2, false, true, 2},    {"abc", 7, false, false, 7}, {"x", 0, true, false, 0},
        {"abc", 99, false, false, 99},
    };
    for (const auto& c : cases) {
        int32_t index = c.start;
        EXPECT_EQ(text.Find(c.needle, &index, c.ignoreCase), c.found) << c.needle << c.start;
        EXPECT_EQ(index, c.at) << c.needle << c.start;
    }
    EXPECT_FALSE(String().Find("", nullptr, false));
    int32_t at = -1;
    EXPECT_TRUE(text.FindLastChar('a', &at));
    EXPECT_EQ(at, 6);
}

TEST(String, ComparisonsOrderEmptyFirst) {
    EXPECT_EQ(String().Compare(String("")), 0);
    EXPECT_EQ(String().Compare(String("a")), -1);
    EXPECT_EQ(String("a").Compare(String()), 1);
    EXPECT_EQ(String("b").Compare(String("a")), 1);
    EXPECT_FALSE(String() < String(""));
    EXPECT_TRUE(String("Name").EqualsNoCase(String("nAME")));
    EXPECT_FALSE(String("\xC9").EqualsNoCase(String("\xE9")));
    EXPECT_TRUE(String("Options.X").StartsWithNoCase(String("options")));
    EXPECT_FALSE(String().StartsWithNoCase(String("")));
}

TEST(String, FormatOfAnyLengthArrivesWhole) {
    const std::string longText(5000, 'x');
    String text;
    text.Format("<%s>", longText.c_str());
    EXPECT_EQ(text.GetLength(), 5002);
    text.FromInt(-42);
    EXPECT_STREQ(text.GetCString(), "-42");
}

TEST(StringParser, ReadsTokensBetweenDelimiters) {
    StringParser parser(String("a\\b"));
    String token;
    ASSERT_TRUE(parser.ReadToken(token, "\\", false));
    EXPECT_STREQ(token.GetCString(), "a");
    EXPECT_FALSE(parser.ReadToken(token, "\\", false));
    EXPECT_TRUE(parser.SkipOneOf("\\"));
    ASSERT_TRUE(parser.ReadToken(token, "\\", false));
    EXPECT_STREQ(token.GetCString(), "b");
    EXPECT_FALSE(parser.SkipOneOf("\\"));
}

TEST(StringParser, QuotesCountOnlyAtTheStartOfAToken) {
    struct Case {
        const char* text;
        const char* expected;
    } cases[] = {
        {"\"a b\" c", "a b"}, {"x\"y z", "x\"y"}, {"\"open", "open"}, {"plain word", "plain"},
    };
    for (const auto& c : cases) {
        StringParser parser{String(c.text)};
        String token;
        ASSERT_TRUE(parser.ReadToken(token, " ", true)) << c.text;
        EXPECT_STREQ(token.GetCString(), c.expected) << c.text;
    }
}

TEST(Format, ByteSizes) {
    struct Case {
        int64_t bytes;
        const char* expected;
    } cases[] = {
        {0, "0 bytes"},
        {1, "1 bytes"},
        {1024, "1024 bytes"},
        {1025, "1 KB"},
        {1048576, "1024 KB"},
        {1048577, "1 MB"},
        {1572864, "1.5 MB"},
        {2147483648LL, "2 GB"},
        {5368709120LL, "5 GB"},
        {1610612736LL, "1.50 GB"},
        {0xFFFFFFFFLL, "4 GB"},
        {1099511627776LL * 2048, "2048 TB"},
    };
    for (const auto& c : cases) {
        String text;
        loam::FormatByteSize(text, c.bytes);
        EXPECT_STREQ(text.GetCString(), c.expected) << c.bytes;
    }
}

TEST(Format, Thousands) {
    struct Case {
        int32_t value;
        const char* expected;
    } cases[] = {
        {0, "0"}, {999, "999"}, {1000, "1,000"}, {1234567, "1,234,567"},
        {2147483647, "2,147,483,647"},
    };
    for (const auto& c : cases) {
        String text;
        loam::FormatThousands(text, c.value);
        EXPECT_STREQ(text.GetCString(), c.expected) << c.value;
    }
}

TEST(Resource, TextsComeFromTheRegisteredTableByKindAndId) {
    static const loam::StringTableEntry table[] = {{9001, "Found %d files"}, {9002, "Plain"}};
    loam::RegisterStringTable(table, 2);
    String out("untouched");
    EXPECT_FALSE(loam::LoadResourceString(loam::StringResource(0), out));
    EXPECT_FALSE(loam::LoadResourceString(loam::StringResource(9999), out));
    EXPECT_FALSE(loam::LoadResourceString({loam::ResourceKindDialog, 9002}, out));
    EXPECT_STREQ(out.GetCString(), "untouched");
    EXPECT_STREQ(loam::StringResource(9002).GetString().GetCString(), "Plain");
    ASSERT_TRUE(loam::FormatResource(loam::StringResource(9001), out, 3));
    EXPECT_STREQ(out.GetCString(), "Found 3 files");
}
