#include "index/index_status.h"
#include "index_image.h"
#include "loam/resource.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace {

class IndexStatusTest : public ScratchFolderTest {
protected:
    void SetFileTime(const std::string& name, int32_t seconds) {
        const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, Path(name).c_str(), times, 0), 0);
    }
};

TEST(IndexAgeTest, TellsTheAgeInWordsAtEveryThreshold) {
    constexpr int32_t minute = 60, hour = 3600, day = 86400;
    const std::pair<int32_t, const char*> cases[] = {
        {-1, "in the future"},
        {0, "just now"},
        {6 * minute - 1, "just now"},
        {6 * minute, "about 5 minutes ago"},
        {7 * minute + 59, "about 5 minutes ago"},
        {8 * minute, "about 10 minutes ago"},
        {hour - 1, "about 60 minutes ago"},
        {hour, "about an hour ago"},
        {2 * hour - 1, "about an hour ago"},
        {2 * hour, "2 hours ago"},
        {day - 1, "23 hours ago"},
        {day, "yesterday"},
        {2 * day, "2 days ago"},
        {7 * day - 1, "6 days ago"},
        {7 * day, "last week"},
        {14 * day - 1, "last week"},
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
        {"unfinished", IndexImage().Header(1, 1, 0).GetBytes(), IndexFileState::Incomplete},
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

TEST_F(IndexStatusTest, BuildsTheStatusLine) {
    static const loam::StringTableEntry strings[] = {
        {106, "Index status %s, updated %s, %s files in %s folders, totalling %s"},
        {107, "good"},
        {108, "incomplete"},
        {109, "unknown"},
    };
    loam::RegisterStringTable(strings, 4);
    IndexImage image = IndexImage().Header(1, 0, 1001).Record(1, 0xFFFFFFFF, "/");
    for (int i = 0; i < 1000; ++i)
        image.Record(0, 0, "f" + std::to_string(i), 1536);
    MakeFile("sorvanta.idx", image.GetBytes());
    SetFileTime("sorvanta.idx", 1000000);
    IndexData index;
    ASSERT_TRUE(index.Load(FileAt("sorvanta.idx")));

    loam::String line;
    FormatIndexStatus(line, index, FileAt("sorvanta.idx"), loam::DateTime(1000000 + 3 * 86400));
    EXPECT_EQ(line, "Index status good, updated 3 days ago, 1,000 files in 1 folders, totalling "
                    "1.5 MB");

    FormatIndexStatus(line, index, FileAt("missing.idx"), loam::DateTime(0));
    EXPECT_EQ(line, "Index not found.");
}

} // namespace
