#include "index/index_data.h"
#include "index/index_image.h"
#include "loam/error.h"
#include "loam/resource.h"
#include "quilt/clock.h"
#include "quilt/dialog.h"
#include "quilt/dialog_imp.h"
#include "quilt/offscreen/offscreen_driver.h"
#include "search/index_searcher.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

constexpr loam::StringTableEntry strings[] = {{135, "Searching..."}};

// Every read of the clock takes this long, so that a search runs out of its grace after a few
// slices and goes on under its dialog.
class SlowClock : public quilt::Clock {
public:
    uint32_t GetTickCount() override { return now += 100; }
    void Sleep(uint32_t milliseconds) override { now += milliseconds; }

private:
    uint32_t now = 1000000;
};

Names GetResultNames(const IndexData& index) {
    Names names;
    for (int32_t i = 0; i < index.GetResultCount(); ++i) {
        names.push_back(index.GetResultName(i).GetCString());
    }
    return names;
}

class IndexDataSearchTest : public ::testing::Test {
protected:
    // A root folder and `count` files below it, every seventh a ".log".
    void SetUp() override {
        loam::ClearErrors();
        loam::RegisterStringTable(strings, 1);
        IndexImage image;
        image.Header(1, 0, Count + 1).Record(1, 0xFFFFFFFF, "/data");
        for (int32_t i = 0; i < Count; ++i) {
            char name[32];
            std::snprintf(name, sizeof name, "file%05d.%s", i, i % 7 == 0 ? "log" : "txt");
            image.Record(0, 0, name, 10);
        }
        ASSERT_TRUE(image.LoadInto(index));
    }
    void TearDown() override { loam::ClearErrors(); }

    Names SearchAll(const char* pattern) {
        IndexSearcher searcher;
        EXPECT_TRUE(searcher.Start(&index, pattern, false, true));
        searcher.RunToEnd(nullptr);
        return GetResultNames(index);
    }

    // Four slices of the search pass.
    static constexpr int32_t Count = 3 * IndexSearcher::SliceRecords + 5000;

    quilt::OffscreenDriver driver;
    IndexData index;
};

// Only a search that runs out of its grace shows its dialog: a bar and no button.
TEST_F(IndexDataSearchTest, EverySearchFindsEveryMatchAndOnlyALongOneShowsADialog) {
    const Names expected = SearchAll("*.log");
    ASSERT_EQ(expected.size(), size_t{(Count + 6) / 7});
    SlowClock clock;
    loam::String title;
    bool hasCancel = false;
    driver.OnNextModal([&](quilt::Dialog& dialog) {
        title = driver.GetText(dialog);
        hasCancel = driver.FindControl(dialog, quilt::IdCancel) != nullptr;
    });
    for (const bool slow : {false, true}) {
        if (slow)
            quilt::SetClock(&clock);
        index.ClearResults();
        ASSERT_TRUE(index.Search("*.log", false, true, nullptr));
        EXPECT_EQ(title, slow ? "Searching..." : "") << slow;
        EXPECT_FALSE(hasCancel);
        EXPECT_EQ(GetResultNames(index), expected) << slow;
    }
}

TEST_F(IndexDataSearchTest, ASearchEndedEarlyKeepsWhatItFound) {
    Names expected = SearchAll("*.log");
    SlowClock clock;
    quilt::SetClock(&clock);
    driver.OnNextModal([&](quilt::Dialog& dialog) { driver.PressReturn(dialog); });

    ASSERT_TRUE(index.Search("*.log", false, true, nullptr));

    Names found = GetResultNames(index);
    ASSERT_FALSE(found.empty());
    ASSERT_LT(found.size(), expected.size());
    EXPECT_TRUE(std::equal(found.begin(), found.end(), expected.begin()));
}

} // namespace
