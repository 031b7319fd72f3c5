#include "index/index_data.h"
#include "index/index_image.h"
#include "loam/error.h"
#include "loam/resource.h"
#include "quilt/clock.h"
#include "quilt/dialog.h"
#include "quilt/offscreen/testing/offscreen_driver.h"
#include "search/index_searcher.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

constexpr loam::StringTableEntry strings[] = {{135, "Searching..."}};

// Every read of the clock takes this long, so that a search runs out of its grace after a few
// slices and goes on under its dialog.
struct SlowClock : quilt::Clock {
    uint32_t GetTickCount() override { return now += 100; }
    void Sleep(uint32_t milliseconds) override { now += milliseconds; }
    uint32_t now = 1000000;
};

Names GetResultNames(const IndexData& index) {
    Names names;
    for (int32_t i = 0; i < index.GetResultCount(); ++i)
        names.push_back(index.GetResultName(i).GetCString());
    return names;
}

class IndexDataSearchTest : public ::testing::Test {
protected:
    // A root folder and `Count` files below it, every seventh a ".log".
    void SetUp() override {
        loam::ClearErrors();
        loam::RegisterStringTable(strings, 1);
        IndexImage image;
        image.Header(1, 0, Count + 1).Record(1, 0xFFFFFFFF, "/data");
        for (int32_t i = 0; i < Count; ++i) {
            image.Record(0, 0, "file" + std::to_string(i) + (i % 7 ? ".txt" : ".log"), 10);
            if (i % 7 == 0)
                logs.push_back("file" + std::to_string(i) + ".log");
        }
        ASSERT_TRUE(image.LoadInto(index));
        quilt::SetClock(&clock);
    }
    void TearDown() override { loam::ClearErrors(); }

    // Four slices of the search pass.
    static constexpr int32_t Count = 3 * IndexSearcher::SliceRecords + 5000;

    quilt::OffscreenDriver driver;
    SlowClock clock;
    IndexData index;
    Names logs;
};

// A search that runs out of its grace goes on under its dialog: a bar and no button.
TEST_F(IndexDataSearchTest, ALongSearchShowsItsDialogAndFindsEveryMatch) {
    loam::String title;
    bool hasCancel = true;
    driver.OnNextModal([&](quilt::Dialog& dialog) {
        title = driver.GetText(dialog);
        hasCancel = driver.FindControl(dialog, quilt::IdCancel) != nullptr;
    });
    ASSERT_TRUE(index.Search("*.log", false, true, nullptr));
    EXPECT_EQ(title, "Searching...");
    EXPECT_FALSE(hasCancel);
    EXPECT_EQ(GetResultNames(index), logs);
}

TEST_F(IndexDataSearchTest, ASearchEndedEarlyKeepsWhatItFound) {
    driver.OnNextModal([&](quilt::Dialog& dialog) { driver.PressReturn(dialog); });
    ASSERT_TRUE(index.Search("*.log", false, true, nullptr));
    const Names found = GetResultNames(index);
    ASSERT_FALSE(found.empty());
    ASSERT_LT(found.size(), logs.size());
    EXPECT_TRUE(std::equal(found.begin(), found.end(), logs.begin()));
}

} // namespace
