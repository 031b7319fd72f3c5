#include "app/build_index_window.h"
#include "index/index_data.h"
#include "index/index_status.h"
#include "loam/disk_file.h"
#include "loam/file_lock.h"
#include "quilt/error_dialog.h"
#include "sorvanta_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <list>
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
// program ends without an index, with the exit code of a failure.
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

    EXPECT_EQ(code, 1);
    const size_t first = said.find(message);
    ASSERT_NE(first, std::string::npos) << said;
    EXPECT_EQ(said.find(message, first + 1), std::string::npos) << said;
}

// A build whose index does not load at its end is a failure that the user sees in the error
// report, and a caller by the exit code.
TEST_F(BuildIndexWindowTest, AnIndexThatDoesNotLoadAfterTheBuildIsReported) {
    MakeFiles("tree/many", 1200);
    std::string said;
    driver.OnNextModal([&](quilt::Dialog& report) {
        said = static_cast<quilt::ErrorDialog&>(report).GetError()->GetMessage().GetCString();
        driver.Click(report, 1001);
    });
    ASSERT_TRUE(Start("/buildindex"));
    ASSERT_TRUE(RunFirstSlice());
    std::filesystem::remove_all(Path("data"));
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(said, "The index file was not found.");
    EXPECT_EQ(application->GetExitCode(), 1);

    // A build that loads ends well.
    application.reset();
    MakeFiles("data/Wendlemark/Sorvanta", 0);
    ASSERT_TRUE(Start("/buildindex"));
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(application->GetExitCode(), 0);
    EXPECT_EQ(State(), IndexFileState::Good);
}

// The headless run, from a timer or cron: each way a build can fail is told on standard error and
// ends the process with 1, and no index is written anywhere else.
TEST_F(SorvantaFolderTest, AHeadlessBuildThatFailsSaysWhyAndExitsWithOne) {
    const std::string indexFolder = "data/Wendlemark/Sorvanta";
    const struct {
        const char* name;
        std::function<void(std::list<ScopedEnvironment>&, loam::FileLock&)> arrange;
        const char* said;
    } cases[] = {
        {"a full disk",
         [&](auto&, auto&) {
             std::filesystem::create_directories(Path(indexFolder));
             std::filesystem::create_symlink("/dev/full", Path(indexName));
         },
         "The application was unable to write to a file because there is insufficient space "
         "available."},
        {"another build of the index",
         [&](auto&, loam::FileLock& lock) {
             std::filesystem::create_directories(Path(indexFolder));
             lock.Take(FileAt(std::string(indexName) + ".lock"));
         },
         "The volume indexing system was asked to start indexing when an indexing operation was "
         "already in progress."},
        {"no private data folder",
         [&](std::list<ScopedEnvironment>& variables, auto&) {
             MakeFile("not-a-folder", "");
             variables.emplace_back("XDG_DATA_HOME", Path("not-a-folder/data").c_str());
             variables.emplace_back("HOME", nullptr);
         },
         "Sorvanta has no private folder to keep its index in (Couldn't get application home "
         "folder). Set XDG_DATA_HOME or HOME to a folder of your own."},
    };
    const char* arguments[] = {"sorvanta", "/buildindex"};
    const std::filesystem::path started = std::filesystem::current_path();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove_all(Path("data"));
        std::filesystem::remove_all(Path("config"));
        std::filesystem::create_directories(Path("here"));
        std::filesystem::current_path(Path("here"));
        std::list<ScopedEnvironment> variables;
        loam::FileLock lock;
        c.arrange(variables, lock);
        testing::internal::CaptureStderr();
        const int code = quilt::RunProcess([]() -> quilt::Application* { return new SorvantaApp; },
                                           2, const_cast<char**>(arguments));
        const std::string said = testing::internal::GetCapturedStderr();
        std::filesystem::current_path(started);
        EXPECT_EQ(code, 1);
        EXPECT_NE(said.find(c.said), std::string::npos) << said;
        EXPECT_TRUE(std::filesystem::is_empty(Path("here")));
        loam::ClearErrors();
    }
}

} // namespace
