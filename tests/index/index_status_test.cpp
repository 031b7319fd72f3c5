#include "index/index_status.h"
#include "index_image.h"

namespace {

using IndexStatusTest = ScratchFolderTest;

TEST(IndexAgeTest, TellsTheAgeInWordsAtEveryThreshold) {
    constexpr int32_t minute = 60, hour = 3600, day = 86400;
    const std::pair<int32_t, const char*> cases[] = {
        {-1, "in the future"},
        {6 * minute - 1, "just now"},
        {6 * minute, "about 5 minutes ago"},
        {7 * minute + 59, "about 5 minutes ago"},
        {8 * minute, "about 10 minutes ago"},
        {hour - 1, "about 60 minutes ago"},
        {hour, "about an hour ago"},
        {2 * hour, "2 hours ago"},
        {day - 1, "23 hours ago"},
        {day, "yesterday"},
        {7 * day - 1, "6 days ago"},
        {7 * day, "last week"},
        {14 * day, "2 weeks ago"},
        {365 * day - 1, "52 weeks ago"},
        {365 * day, "over a year ago"},
        {INT32_MAX, "over a year ago"},
    };
    for (const auto& [span, expected] : cases) {
        loam::String words;
        FormatIndexAge(words, loam::DateTimeSpan(span));
        EXPECT_EQ(words, expected) << span;
    }
}

TEST_F(IndexStatusTest, ReadsTheStateFreshFromTheFile) {
    const struct {
        const char* what;
        std::string bytes;
        IndexFileState state;
    } cases[] = {
        {"finished", IndexImage().Header(1, 0, 0).GetBytes(), IndexFileState::Good},
        {"any flag", IndexImage().Header(1, 0x100, 5).GetBytes(), IndexFileState::Incomplete},
        {"short header", "\1\0\0\0\0", IndexFileState::Unknown},
    };
    for (const auto& row : cases) {
        MakeFile("sorvanta.idx", row.bytes);
        EXPECT_EQ(ReadIndexFileState(FileAt("sorvanta.idx")), row.state) << row.what;
        EXPECT_FALSE(loam::GetErrorState().GetCurrentError().GetCode()) << row.what;
    }
    EXPECT_EQ(ReadIndexFileState(FileAt("missing.idx")), IndexFileState::Unknown);
}

TEST_F(IndexStatusTest, WithoutAnIndexFileTheStatusLineSaysSo) {
    IndexData index;
    loam::String line;
    FormatIndexStatus(line, index, FileAt("missing.idx"), loam::DateTime(0));
    EXPECT_EQ(line, "Index not found.");
}

} // namespace
