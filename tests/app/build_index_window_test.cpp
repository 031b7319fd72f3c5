#include "app/build_index_window.h"
#include "index/index_data.h"
#include "index/index_status.h"
#include "loam/disk_file.h"
#include "sorvanta_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uint32_t Tick = BuildIndexWindow::TickInterval;

class BuildIndexWindowTest : public SorvantaRunTest {
protected:
    int32_t LoadedRecords(const char* name = indexName) const {
        IndexData index;
        EXPECT_TRUE(index.Load(FileAt(name)));
        return index.GetRecordCount();
    }
    IndexFileState State() const { return ReadIndexFileState(FileAt(indexName)); }
    // Runs until an idle slice has wanted more: the build is under way.
    bool RunFirstSlice() {
        return driver.RunUntil([this] { return application->GetIdleCount() > 0; });
    }
};

TEST_F(BuildIndexWindowTest, TheBuildRunsFromTheFirstTickInIdleSlicesAndEndsTheProgram) {
    MakeFiles("tree/many", 1200);
    MakeFiles("data/Wendlemark/Sorvanta", 0);
    MakeFile(indexName, "an earlier index");
    ASSERT_TRUE(Start("/buildindex"));
    EXPECT_EQ(RebuildWindow()->GetShowState(), quilt::ShowStateMinimised);
    driver.RunFor(Tick - 10);
    EXPECT_EQ(ReadWhole(indexName), "an earlier index");

    ASSERT_TRUE(RunFirstSlice());
    EXPECT_EQ(State(), IndexFileState::Incomplete);
    // Input holds the walk back, so the next ticks find it where the slice left it.
    driver.PostMouseWheel(*RebuildWindow(), -120);
    driver.RunFor(2 * Tick);
    EXPECT_EQ(driver.GetControlText(*RebuildWindow(), RebuildFolderLine).GetCString(),
              Path("tree/many"));

    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(State(), IndexFileState::Good);
    EXPECT_EQ(LoadedRecords(), 1202);
}

TEST_F(BuildIndexWindowTest, QuitDuringABuildLeavesAnUnfinishedIndex) {
    MakeFiles("tree/many", 1200);
    ASSERT_TRUE(Start("/buildindex"));
    ASSERT_TRUE(RunFirstSlice());
    driver.Click(*RebuildWindow(), quilt::IdCancel);
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    // The header as the build left it: unfinished, no records.
    EXPECT_EQ(ReadWhole(indexName).substr(0, 12), std::string("\1\0\0\0\1\0\0\0\0\0\0\0", 12));
}

// What stands at the index's name is replaced by a private file of the build's own: a link
// planted there is never followed, and a file open to all does not pass on its mode.
TEST_F(BuildIndexWindowTest, TheIndexIsANewPrivateFileWhateverStoodAtItsName) {
    MakeFiles("tree", 2);
    MakeFiles("data/Wendlemark/Sorvanta", 0);
    MakeFile("victim", "the user's own file");
    chmod(Path("victim").c_str(), 0644);
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"a link to a file of the user's",
         [this] { symlink(Path("victim").c_str(), Path(indexName).c_str()); }},
        {"an index open to all",
         [this] {
             MakeFile(indexName, "an earlier index");
             chmod(Path(indexName).c_str(), 0644);
         }},
    };
    for (const auto& [what, plant] : cases) {
        SCOPED_TRACE(what);
        std::filesystem::remove(Path(indexName));
        plant();
        ASSERT_TRUE(Start("/buildindex"));
        EXPECT_TRUE(driver.RunUntilIdle());
        application.reset();
        EXPECT_EQ(ReadWhole("victim"), "the user's own file");
        struct stat status {};
        ASSERT_EQ(lstat(Path(indexName).c_str(), &status), 0);
        EXPECT_TRUE(S_ISREG(status.st_mode));
        EXPECT_EQ(status.st_mode & 0777, 0600u);
        EXPECT_EQ(State(), IndexFileState::Good);
        EXPECT_EQ(LoadedRecords(), 3);
    }
}

// With someone at the screen the ticks go on under the report: none of them tries again until
// the report is dismissed, and a later attempt can still succeed.
TEST_F(BuildIndexWindowTest, AFailedOpenIsNotTriedAgainWhileItsReportIsUp) {
    MakeFiles("tree", 2);
    MakeFile("blocked", "");
    StoreIndexFolder("blocked/index");
    int reports = 0;
    driver.OnNextModal([&](quilt::Dialog& report) {
        ++reports;
        EXPECT_STREQ(driver.GetText(report).GetCString(), "Error");
        driver.Click(report, 1001, driver.Now() + 10 * Tick + 50);
    });
    ASSERT_TRUE(Start("/buildindex"));
    ASSERT_TRUE(driver.RunUntil([&] { return reports == 1; }));
    EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNone);

    std::filesystem::remove(Path("blocked"));
    std::filesystem::create_directories(Path("blocked/index"));
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(LoadedRecords("blocked/index/sorvanta.idx"), 3);
}

// A headless run has nobody to dismiss a report: it is told once on standard error, and the
// program ends without an index.
TEST_F(SorvantaFolderTest, AHeadlessRunReportsAFailedOpenOnceAndEnds) {
    MakeFile("blocked", "");
    StoreIndexFolder("blocked/index");
    loam::DiskFile probe;
    ASSERT_FALSE(probe.CreateBeside(FileAt("blocked/index/sorvanta.idx")));
    const std::string message = loam::GetCurrentErrorInfo().GetMessage().GetCString();
    loam::ClearErrors();

    const char* arguments[] = {"sorvanta", "/buildindex"};
    testing::internal::CaptureStderr();
    const int code = quilt::RunProcess([]() -> quilt::Application* { return new SorvantaApp; }, 2,
                                       const_cast<char**>(arguments));
    const std::string said = testing::internal::GetCapturedStderr();

    EXPECT_EQ(code, 0);
    const size_t first = said.find(message);
    ASSERT_NE(first, std::string::npos) << said;
    EXPECT_EQ(said.find(message, first + 1), std::string::npos) << said;
}

} // namespace
