#include "index/index_data.h"
#include "index/index_image.h"
#include "loam/format.h"
#include "loam/scratch_folder.h"
#include "quilt/offscreen/testing/offscreen_driver.h"
#include "search/search_outcome.h"
#include "search/search_results_list.h"
#include "tests/support/results_dialog.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

constexpr int32_t ResultsId = results_dialog::ListId;

constexpr uint32_t GiB = 1024u * 1024u * 1024u;

class SearchResultsListTest : public ::testing::Test {
protected:
    void SetUp() override {
        ResultsDialog::Register();
        tzset();
        ASSERT_NE(dialog.RunModeless(false), nullptr);
    }
    void TearDown() override { tzset(); }

    // A drive root, a folder under it and files in it; every record is a result.
    void Load() {
        IndexImage image;
        image.Header(1, 0, 6)
            .Record(1, 0xFFFFFFFF, "/", 0, 0)
            .Record(1, 0, "docs", 0, 86400)
            .Record(0, 1, "big.iso", 3 * GiB, 3600)
            .Record(0, 1, "Notes.txt", 2048, 7200)
            .Record(0, 1, "apple", 1, 60)
            .Record(0, 1, "Zebra", 500, 0);
        ASSERT_TRUE(image.LoadInto(index));
        for (int32_t i = 0; i < index.GetRecordCount(); ++i)
            index.AddResult(index.GetRecord(i));
    }
    Texts Column(int32_t column) {
        Texts texts;
        for (int32_t row = 0; row < driver.GetRowCount(dialog, ResultsId); ++row)
            texts.push_back(driver.GetCellText(dialog, ResultsId, row, column).GetCString());
        return texts;
    }
    void ClickHeader(int32_t column) {
        driver.ClickColumnHeader(dialog, ResultsId, column);
        driver.PumpMessages();
    }

    ScopedEnvironment zone{"TZ", "UTC"};
    quilt::OffscreenDriver driver;
    ResultsDialog dialog;
    IndexData index;
};

TEST_F(SearchResultsListTest, ARowShowsNameFolderSizeAndDateInNameOrder) {
    Load();
    dialog.list.Fill(index);
    EXPECT_EQ(driver.GetColumnName(dialog, ResultsId, 1), "Folder");
    EXPECT_EQ(driver.GetColumnWidth(dialog, ResultsId, 0), 100);
    EXPECT_EQ(Column(0), (Texts{"/", "apple", "big.iso", "docs", "Notes.txt", "Zebra"}));
    EXPECT_EQ(Column(1), (Texts{"", "/docs", "/docs", "/", "/docs", "/docs"}));
    EXPECT_EQ(Column(2), (Texts{"", "1 bytes", "3 GB", "", "2 KB", "500 bytes"}));
    EXPECT_EQ(Column(3), (Texts{"01/01/70 00:00", "01/01/70 00:01", "01/01/70 01:00",
                                "02/01/70 00:00", "01/01/70 02:00", "01/01/70 00:00"}));
    EXPECT_GT(driver.GetColumnWidth(dialog, ResultsId, 2), 60);
}

// Name compares bytes, so upper case comes first; sizes are unsigned with folders at 0.
TEST_F(SearchResultsListTest, HeaderClicksSortEachColumnBothWays) {
    Load();
    dialog.list.Fill(index);
    const struct {
        int32_t column;
        Texts names;
    } clicks[] = {
        {ResultColumnName, {"docs", "big.iso", "apple", "Zebra", "Notes.txt", "/"}},
        {ResultColumnName, {"/", "Notes.txt", "Zebra", "apple", "big.iso", "docs"}},
        {ResultColumnSize, {"/", "docs", "apple", "Zebra", "Notes.txt", "big.iso"}},
        {ResultColumnSize, {"big.iso", "Notes.txt", "Zebra", "apple", "/", "docs"}},
        // Equal rows keep the order of the sort before.
        {ResultColumnDate, {"Zebra", "/", "apple", "big.iso", "Notes.txt", "docs"}},
        {ResultColumnDate, {"docs", "Notes.txt", "big.iso", "apple", "Zebra", "/"}},
        {ResultColumnFolder, {"/", "docs", "Notes.txt", "big.iso", "apple", "Zebra"}},
    };
    for (const auto& click : clicks) {
        ClickHeader(click.column);
        EXPECT_EQ(Column(0), click.names) << "column " << click.column;
    }
    // A new fill comes up in name order, and the remembered column flips at once.
    dialog.list.Fill(index);
    EXPECT_EQ(Column(0)[0], "/");
    ClickHeader(ResultColumnFolder);
    EXPECT_EQ(Column(0), (Texts{"apple", "big.iso", "Notes.txt", "Zebra", "docs", "/"}));
}

TEST_F(SearchResultsListTest, TheSelectedRowGivesItsFolder) {
    Load();
    dialog.list.Fill(index);
    loam::FileSpec folder;
    EXPECT_FALSE(dialog.list.GetSelectedFolder(folder));
    driver.ClickRow(dialog, ResultsId, 2);
    driver.PumpMessages();
    ASSERT_TRUE(dialog.list.GetSelectedFolder(folder));
    EXPECT_EQ(folder.GetPath(), "/docs");
    driver.ClickRow(dialog, ResultsId, 0);
    driver.PumpMessages();
    ASSERT_TRUE(dialog.list.GetSelectedFolder(folder));
    EXPECT_EQ(folder.GetPath(), "");
}

TEST_F(SearchResultsListTest, TheComparisonsWithoutAnIndexOrRowCompareEqual) {
    Load();
    dialog.list.Fill(index);
    EXPECT_EQ(CompareResultSizes(&dialog.list, 0, 1, 2, 2), 0);
    EXPECT_EQ(CompareResultDates(&dialog.list, reinterpret_cast<uintptr_t>(&index), 1, 99, 3), 0);
}

TEST_F(SearchResultsListTest, FiftyThousandRowsKeepTheirFormatsAndSort) {
    constexpr int32_t count = 50000;
    IndexImage image;
    image.Header(1, 0, count + 1).Record(1, 0xFFFFFFFF, "/data");
    for (int32_t i = 0; i < count; ++i)
        image.Record(0, 0, "f" + std::to_string((i * 7919) % count), 2048u * (i % 100), i);
    ASSERT_TRUE(image.LoadInto(index));
    for (int32_t i = 1; i <= count; ++i)
        index.AddResult(index.GetRecord(i));
    dialog.list.Fill(index);
    ASSERT_EQ(driver.GetRowCount(dialog, ResultsId), count);
    EXPECT_EQ(driver.GetCellText(dialog, ResultsId, 0, 0), "f0");
    EXPECT_EQ(driver.GetCellText(dialog, ResultsId, 1, 0), "f1");
    EXPECT_EQ(driver.GetCellText(dialog, ResultsId, count - 1, 0), "f9999");
    ClickHeader(ResultColumnSize);
    EXPECT_EQ(driver.GetCellText(dialog, ResultsId, 0, 2), "0 bytes");
    EXPECT_EQ(driver.GetCellText(dialog, ResultsId, count - 1, 2), "198 KB");
    EXPECT_EQ(driver.GetCellText(dialog, ResultsId, count - 1, 1), "/data");
}

TEST(SearchOutcomeTest, TheLineTellsTheOutcome) {
    constexpr loam::StringTableEntry strings[] = {
        {110, "There are more than %d results to display - try narrowing your search..."},
        {111, "%s results found matching '%s' in %.1f seconds, totalling %s - see below..."},
        {126, "No results found matching '%s'."},
        {127, "1 result found matching '%s' in %.1f seconds - see below..."},
    };
    loam::RegisterStringTable(strings, 4);
    const struct {
        int32_t count;
        int32_t limit;
        uint64_t total;
        OutcomeRows rows;
        const char* line;
    } cases[] = {
        {0, 1000, 0, OutcomeRows::Clear, "No results found matching '*.t?t'."},
        {1, 1000, 5, OutcomeRows::Fill,
         "1 result found matching '*.t?t' in 1.5 seconds - see below..."},
        {1000, 1000, 3ull * GiB + 2ull * GiB, OutcomeRows::Fill,
         "1,000 results found matching '*.t?t' in 1.5 seconds, totalling 5 GB - see below..."},
        {1001, 1000, 0, OutcomeRows::Clear,
         "There are more than 1000 results to display - try narrowing your search..."},
    };
    for (const auto& c : cases) {
        SearchFacts facts{"*.t?t", c.count, c.limit, GetElapsedSeconds(0xFFFFFF00u, 1194), c.total};
        loam::String line;
        FormatSearchOutcome(facts, line);
        EXPECT_EQ(GetOutcomeRows(c.count, c.limit), c.rows);
        EXPECT_EQ(line, c.line);
    }
}

} // namespace
