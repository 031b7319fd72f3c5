#include "loam/format.h"
#include "loam/resource.h"
#include "loam/string.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>

using loam::String;

TEST(String, EditsInPlaceWithinTheBuffer) {
    const std::string x5000(5000, 'x');
    const auto trim = [](String& s) { s.Trim(); };
    const std::tuple<const char*, std::function<void(String&)>, std::string> cases[] = {
        {"ab", [](String& s) { s.Append(s); }, "abab"},
        {"abab", [](String& s) { s.Append(s.GetCString() + 2); }, "ababab"},
        {"keep", [](String& s) { s.AssignRange(nullptr, 0, 2); }, "keep"},
        {"keep", [](String& s) { s.AssignRange("abcdef", 2, 3); }, "cde"},
        {"Hello", [](String& s) { s.Truncate(99), s.StripLastChar('o'), s.StripLastChar('o'); },
         "Hell"},
        {"abcdefghij", [](String& s) { s.SetAt(1, 0), s.SetAt(11, 'z'); }, "a"},
        {"\xC9T\xE9", [](String& s) { s.ToLower(); }, "\xC9t\xE9"},
        {"\t\r\n\v\fx\xA0", trim, "x"},
        {"\xA0 \t", trim, ""},
        {"", [&](String& s) { s.Format("<%s>", x5000.c_str()); }, "<" + x5000 + ">"},
    };
    for (const auto& [start, edit, expected] : cases) {
        String text(start);
        edit(text);
        EXPECT_EQ(text.GetCString(), expected) << start;
        EXPECT_EQ(text.GetLength(), static_cast<int32_t>(expected.size())) << start;
    }
}

TEST(String, PartsAreClampedToTheText) {
    const String text("abcdef");
    const std::pair<String, const char*> cases[] = {
        {text.Left(0), ""},      {text.Left(99), "abcdef"}, {text.Mid(2, 2), "cd"},
        {text.Mid(4, 99), "ef"}, {text.Mid(6, 1), ""},      {text.Mid(3), "def"},
    };
    for (const auto& [got, expected] : cases)
        EXPECT_STREQ(got.GetCString(), expected);
}

TEST(String, FindAndCompare) {
    const String text("abcABCabc");
    const std::tuple<const char*, int32_t, bool, bool, int32_t> cases[] = {
        {"ABC", 0, false, true, 3},  {"ABC", 4, true, true, 6},     {"", 2, false, true, 2},
        {"abc", 7, false, false, 7}, {"abc", 99, false, false, 99},
    };
    for (const auto& [needle, start, ignoreCase, found, at] : cases) {
        int32_t index = start;
        EXPECT_EQ(text.Find(needle, &index, ignoreCase), found) << needle << start;
        EXPECT_EQ(index, at) << needle << start;
    }
    EXPECT_FALSE(String().Find("", nullptr, false));
    int32_t at = -1;
    EXPECT_TRUE(text.FindLastChar('a', &at));
    EXPECT_EQ(at, 6);
    EXPECT_TRUE(String() == "" && String() == String("") && String().EqualsNoCase(String("")));
    EXPECT_TRUE(String("Name").EqualsNoCase(String("nAME")));
    EXPECT_FALSE(String("\xC9").EqualsNoCase(String("\xE9")));
}

// A name shows as its characters, except what would hide part of it or turn it around: bytes
// that are no UTF-8 and the direction controls read as escapes.
TEST(String, DisplayTextEscapesWhatDisguisesAName) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"plain.txt", "plain.txt"},
        {"caf\xC3\xA9 \xE6\x96\x87\xF0\x9F\x93\x84.txt",
         "caf\xC3\xA9 \xE6\x96\x87\xF0\x9F\x93\x84.txt"},
        {"caf\xE9.txt", "caf\\xE9.txt"},
        {"cut\xE6\x96", "cut\\xE6\\x96"},
        {"\xC0\xAF overlong", "\\xC0\\xAF overlong"},
        {"\xED\xA0\x80 surrogate", "\\xED\\xA0\\x80 surrogate"},
        {"rtl\xE2\x80\xAEtxt.exe", "rtl\\u202Etxt.exe"},
        {"\xE2\x80\xAA\xE2\x80\xAB\xE2\x80\xAC\xE2\x80\xAD", "\\u202A\\u202B\\u202C\\u202D"},
        {"\xE2\x81\xA6"
         "a\xE2\x81\xA7"
         "b\xE2\x81\xA8"
         "c\xE2\x81\xA9",
         "\\u2066a\\u2067b\\u2068c\\u2069"},
        // Neighbours of the controls are ordinary characters: a zero-width space, the ellipsis,
        // a narrow no-break space, the invisible times.
        {"\xE2\x80\x8B\xE2\x80\xA6\xE2\x80\xAF\xE2\x81\xA2",
         "\xE2\x80\x8B\xE2\x80\xA6\xE2\x80\xAF\xE2\x81\xA2"},
        {"back\\slash", "back\\slash"},
    };
    for (const auto& [bytes, shown] : cases)
        EXPECT_STREQ(loam::MakeDisplayText(bytes).GetCString(), shown) << bytes;
}

TEST(Format, ByteSizesAndThousands) {
    const std::pair<int64_t, const char*> sizes[] = {
        {0, "0 bytes"},         {1, "1 bytes"},
        {1024, "1024 bytes"},   {1025, "1 KB"},
        {1048576, "1024 KB"},   {1048577, "1 MB"},
        {1572864, "1.5 MB"},    {2147483648LL, "2 GB"},
        {5368709120LL, "5 GB"}, {1610612736LL, "1.50 GB"},
        {0xFFFFFFFFLL, "4 GB"}, {1099511627776LL * 2048, "2048 TB"},
    };
    for (const auto& [bytes, expected] : sizes) {
        String text;
        loam::FormatByteSize(text, bytes);
        EXPECT_STREQ(text.GetCString(), expected) << bytes;
    }
    const std::pair<int32_t, const char*> counts[] = {
        {999, "999"}, {1000, "1,000"}, {2147483647, "2,147,483,647"}, {-1234, "-1,234"}};
    for (const auto& [value, expected] : counts) {
        String text;
        loam::FormatThousands(text, value);
        EXPECT_STREQ(text.GetCString(), expected) << value;
    }
}

TEST(Resource, TextsComeFromTheRegisteredTableByKindAndId) {
    static const loam::StringTableEntry table[] = {{9001, "Found %d files"}, {9002, "Plain"}};
    loam::RegisterStringTable(table, 2);
    String out("untouched");
    EXPECT_FALSE(loam::LoadResourceString(loam::StringResource(9999), out));
    EXPECT_FALSE(loam::LoadResourceString({loam::ResourceKindDialog, 9002}, out));
    EXPECT_STREQ(out.GetCString(), "untouched");
    EXPECT_STREQ(loam::StringResource(9002).GetString().GetCString(), "Plain");
    ASSERT_TRUE(loam::FormatResource(loam::StringResource(9001), out, 3));
    EXPECT_STREQ(out.GetCString(), "Found 3 files");
}
