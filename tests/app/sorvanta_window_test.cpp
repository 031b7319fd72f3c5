#include "app/resources/string_table.h"
#include "loam/resource.h"
#include "sorvanta_window_run.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

using Texts = std::vector<std::string>;

constexpr char noIndexAlert[] = "Index not available: There is currently no valid index "
                                "available.  Click the Build Index button to create an index.";

TEST_F(SorvantaWindowTest, AFirstStartHasNoIndexUntilABuildFinishes) {
    MakeFiles("tree/docs", 3);
    StartWindow();
    EXPECT_EQ(driver.GetText(*Main()), "Sorvanta - v1.14");
    EXPECT_EQ(Text(MainIndexStatus), "No index available.");
    EXPECT_EQ(Text(MainBuildButton), "&Build Index");
    EXPECT_EQ(Text(MainSearchStatus), "No results");
    Said said;
    Answer(AlertOkId, said);
    Find("f1");
    EXPECT_EQ(said.messages, Texts{noIndexAlert});

    BuildIndex();
    EXPECT_EQ(Text(MainBuildButton), "&Build Index");
    EXPECT_EQ(
        Text(MainIndexStatus).rfind("Index status good, updated just now, 3 files in 2 folders", 0),
        0u)
        << Text(MainIndexStatus);
    Find("f1");
    EXPECT_EQ(Column(0), Texts{"f1"});
    // After a finished build the button starts the next build at once.
    driver.Click(*Main(), MainBuildButton);
    Serve();
    EXPECT_EQ(Text(MainBuildButton), "&Cancel");
    EXPECT_EQ(Text(MainIndexStatus), "Building index...");
}

// A cancel leaves an index of no records: the old one's file was replaced when the build began.
TEST_F(SorvantaWindowTest, ACancelledBuildLeavesAnEmptyIndexAndSaysSo) {
    MakeFiles("tree/many", 1200);
    StartWindow();
    BuildIndex();
    Find("f1");
    ASSERT_EQ(Column(0), Texts{"f1"});

    driver.Click(*Main(), MainBuildButton);
    ASSERT_TRUE(driver.RunUntil([this] { return application->GetIdleCount() > 1; }));
    EXPECT_EQ(Text(MainIndexStatus), Path("tree/many"));
    // The rows of the old index are given up with it.
    driver.Click(*Main(), MainBuildButton);
    Serve();
    EXPECT_EQ(Text(MainBuildButton), "&Build Index");
    EXPECT_EQ(Text(MainIndexStatus), "Index unavailable - user interrupted index building.");
    EXPECT_EQ(driver.GetRowCount(*Main(), MainResultsList), 0);
    Find("f1");
    EXPECT_EQ(Text(MainSearchStatus), "No results found matching 'f1'.");
    EXPECT_EQ(Text(MainIndexStatus), "Index unavailable - user interrupted index building.");
}

TEST_F(SorvantaWindowTest, ASearchTellsItsOutcomeAndAsksAboutTheLimit) {
    MakeFiles("tree/many", 1200);
    MakeFile("tree/solo.txt", "12345");
    StartWindow();
    BuildIndex();
    const struct {
        const char* pattern;
        int answer; // the button of the limit question, 0 when none is asked
        const char* line;
        int32_t rows;
        int32_t limit;
    } cases[] = {
        {"nothing*", 0, "No results found matching 'nothing*'.", 0, 1000},
        {"solo.txt", 0, "1 result found matching 'solo.txt' in 0.0 seconds - see below...", 1,
         1000},
        {"f1?", 0,
         "10 results found matching 'f1?' in 0.0 seconds, totalling 10 bytes - see below...", 10,
         1000},
        {"f*", QuestionSecondButtonId,
         "There are more than 1000 results to display - try narrowing your search...", 0, 1000},
        {"f*", QuestionFirstButtonId,
         "1,200 results found matching 'f*' in 0.0 seconds, totalling 1 KB - see below...", 1200,
         2000},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pattern);
        Said said;
        if (c.answer != 0)
            Answer(c.answer, said);
        Find(c.pattern);
        EXPECT_EQ(Text(MainSearchStatus), c.line);
        EXPECT_EQ(driver.GetRowCount(*Main(), MainResultsList), c.rows);
        EXPECT_EQ(SorvantaOptions::GetMaxResults(), c.limit);
        EXPECT_EQ(said.messages.size(), c.answer != 0 ? 1u : 0u);
        EXPECT_EQ(driver.GetWaitingModalActions(), 0u);
    }
}

// The pattern enters the history also when the search then fails; list and line stay.
TEST_F(SorvantaWindowTest, ASyntaxErrorAlertsAndKeepsWhatWasShown) {
    MakeFiles("tree", 3);
    StartWindow();
    BuildIndex();
    Find("f1");
    ASSERT_EQ(Column(0), Texts{"f1"});
    driver.Click(*Main(), MainUseRegExp);
    Said said;
    Answer(AlertOkId, said);
    Find("foo(");
    EXPECT_EQ(said.messages, Texts{"Search failed: The search failed because the regular "
                                   "expression you have entered has a syntax error."});
    EXPECT_EQ(Column(0), Texts{"f1"});
    EXPECT_EQ(Text(MainSearchStatus).rfind("1 result found matching 'f1'", 0), 0u);
    driver.ToggleDropDown(*Main(), MainSearchPattern);
    Serve();
    EXPECT_EQ(driver.GetDropDownRows(*Main(), MainSearchPattern).at(0), "foo(");
}

TEST_F(SorvantaWindowTest, EachColumnSortsBothWays) {
    MakeFile("tree/b.txt", "123");
    MakeFile("tree/A.txt", "1");
    std::filesystem::create_directories(Path("tree/c.dir"));
    MakeFile("tree/c.dir/d.txt", "12");
    std::filesystem::last_write_time(
        Path("tree/b.txt"), std::filesystem::file_time_type::clock::now() - std::chrono::hours(48));
    StartWindow();
    BuildIndex();
    Find("?.*");
    ASSERT_EQ(Column(0), (Texts{"A.txt", "b.txt", "c.dir", "d.txt"}));
    const struct {
        int32_t column;
        Texts first;
    } clicks[] = {
        {0, {"d.txt", "c.dir", "b.txt", "A.txt"}}, {0, {"A.txt", "b.txt", "c.dir", "d.txt"}},
        {1, {"A.txt", "b.txt", "c.dir", "d.txt"}}, {1, {"d.txt", "A.txt", "b.txt", "c.dir"}},
        {2, {"c.dir", "A.txt", "d.txt", "b.txt"}}, {2, {"b.txt", "d.txt", "A.txt", "c.dir"}},
        {3, {"b.txt", "d.txt", "A.txt", "c.dir"}}, {3, {"d.txt", "A.txt", "c.dir", "b.txt"}},
    };
    for (const auto& click : clicks) {
        driver.ClickColumnHeader(*Main(), MainResultsList, click.column);
        Serve();
        EXPECT_EQ(Column(0), click.first) << "column " << click.column;
    }
}

class OpenFolderTest : public SorvantaWindowTest {
protected:
    // The desktop's handler for folders is a small program that writes down what it was given.
    void SetUp() override {
        SorvantaWindowTest::SetUp();
        RecordLaunches({"inode/directory"});
    }

    // Double-clicks the first row and gives the line that the handler then wrote down.
    std::string OpenFirstRow() {
        const size_t before = ReadWhole("recorder.log").size();
        driver.DoubleClickRow(*Main(), MainResultsList, 0);
        driver.RunUntilIdle();
        std::string log = ReadWhole("recorder.log");
        for (int wait = 0; wait < 200 && (log.size() <= before || log.back() != '\n'); ++wait) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            log = ReadWhole("recorder.log");
        }
        return log.substr(std::min(before, log.size()));
    }
};

// The index holds shortened stand-ins of names longer than a record holds; the folder opened is
// the real one, whichever folders on its path have such names. (The desktop's handler is looked
// up once per process, so one test does all the opening.)
TEST_F(OpenFolderTest, ADoubleClickOpensTheRealFolderOfTheRow) {
    std::string cjk84;
    for (int i = 0; i < 84; ++i)
        cjk84 += "\xE6\x96\x87";
    const std::string outer = "tree/" + cjk84, inner = outer + "/" + std::string(255, 'y');
    MakeFiles("tree/docs", 1);
    MakeFiles(inner, 0);
    MakeFile(inner + "/g0", "x");
    MakeFile(inner + "/" + std::string(252, 'x'), "x");
    StartWindow();
    BuildIndex();
    const struct {
        const char* pattern;
        std::string folder;
    } cases[] = {
        {"f0", "tree/docs"},       {"g0", inner}, {"xxx*", inner}, {"yyy*", outer},
        {"*\xE6\x96\x87", "tree"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pattern);
        Find(c.pattern);
        ASSERT_EQ(driver.GetRowCount(*Main(), MainResultsList), 1);
        EXPECT_EQ(OpenFirstRow(), Path(c.folder) + "\n");
    }

    // The walk's root has no folder of its own.
    Find("*tree*");
    ASSERT_EQ(driver.GetRowCount(*Main(), MainResultsList), 1);
    Said said;
    Answer(1001, said);
    driver.DoubleClickRow(*Main(), MainResultsList, 0);
    driver.RunUntilIdle();
    EXPECT_EQ(said.messages,
              Texts{"Error: The application tried to open a folder that did not exist."});
}

// Each addition trims the history to 19 entries, and the close adds the text in the field.
TEST_F(SorvantaWindowTest, TheHistoryAndTheSizeSurviveARestart) {
    MakeFiles("tree", 1);
    StartWindow();
    BuildIndex();
    for (int i = 0; i < 25; ++i)
        Find(("p" + std::to_string(i)).c_str());
    Type("typed");
    driver.ResizeDialog(*Main(), 800, 500);
    Restart();

    uint32_t count = 0;
    loam::GetPreferences().GetChild(KeySearchPattern)->GetInt("ItemCount", count);
    EXPECT_EQ(count, 19u);
    EXPECT_EQ(Text(MainSearchPattern), "typed");
    driver.ToggleDropDown(*Main(), MainSearchPattern);
    Serve();
    const std::vector<loam::String> rows = driver.GetDropDownRows(*Main(), MainSearchPattern);
    ASSERT_EQ(rows.size(), 19u);
    EXPECT_EQ(rows[0], "typed");
    EXPECT_EQ(rows[1], "p24");
    quilt::Rect client;
    Main()->GetClientRect(client);
    EXPECT_EQ(client.GetWidth(), 800);
    EXPECT_EQ(client.GetHeight(), 500);

    // A stored size below the template's leaves the template's.
    driver.ResizeDialog(*Main(), 100, 100);
    Restart();
    Main()->GetClientRect(client);
    EXPECT_GT(client.GetWidth(), 100);
    EXPECT_GT(client.GetHeight(), 100);
}

} // namespace
