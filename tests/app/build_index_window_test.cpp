#include "app/build_index_window.h"
#include "index/index_data.h"
#include "index/index_format.h"
#include "index/index_status.h"
#include "loam/disk_file.h"
#include "quilt/window_imp.h"
#include "sorvanta_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

const std::string oldIndex = "the index of an earlier build";
constexpr uint32_t Tick = BuildIndexWindow::TickInterval;

// The header of an index that holds no records.
std::string HeaderOnly(uint32_t unfinished) {
    const IndexFileHeader header{IndexFormatVersion, unfinished, 0};
    return std::string(reinterpret_cast<const char*>(&header), sizeof header);
}

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
    MakeFiles("tree/a/b", 2);
    PlaceIndex(oldIndex);
    ASSERT_TRUE(Start("/buildindex"));
    EXPECT_EQ(RebuildWindow()->GetShowState(), quilt::ShowStateMinimised);
    driver.RunFor(Tick - 10);
    EXPECT_EQ(ReadWhole(indexName), oldIndex);

    ASSERT_TRUE(RunFirstSlice());
    EXPECT_EQ(State(), IndexFileState::Incomplete);
    // Input holds the walk back, so the next ticks find it where the slice left it.
    driver.PostMouseWheel(*RebuildWindow(), -120);
    driver.RunFor(2 * Tick);
    EXPECT_EQ(driver.GetControlText(*RebuildWindow(), RebuildFolderLine).GetCString(),
              Path("tree/many"));

    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(RebuildWindow(), nullptr);
    EXPECT_EQ(State(), IndexFileState::Good);
    EXPECT_EQ(LoadedRecords(), 1206);
}

TEST_F(BuildIndexWindowTest, QuitBeforeTheFirstTickLeavesTheOldIndexUntouched) {
    PlaceIndex(oldIndex);
    ASSERT_TRUE(Start("/buildindex"));
    driver.Click(*RebuildWindow(), quilt::IdCancel);
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(ReadWhole(indexName), oldIndex);
}

TEST_F(BuildIndexWindowTest, QuitDuringABuildLeavesAnIndexThatLoadsEmptyAndIncomplete) {
    MakeFiles("tree/many", 1200);
    ASSERT_TRUE(Start("/buildindex"));
    ASSERT_TRUE(RunFirstSlice());
    driver.Click(*RebuildWindow(), quilt::IdCancel);
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(ReadWhole(indexName).substr(0, sizeof(IndexFileHeader)), HeaderOnly(1));
    EXPECT_EQ(LoadedRecords(), 0);
    EXPECT_EQ(State(), IndexFileState::Incomplete);
}

TEST_F(BuildIndexWindowTest, AMachineWithoutAFixedVolumeGetsAFinishedEmptyIndex) {
    setenv("SORVANTA_ROOTS", "", 1);
    PlaceIndex(oldIndex);
    ASSERT_TRUE(Start("/buildindex"));
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(ReadWhole(indexName), HeaderOnly(0));
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
    EXPECT_EQ(reports, 1);
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(LoadedRecords("blocked/index/sorvanta.idx"), 3);
}

// A headless run has nobody to dismiss a report: it is told once on standard error, and the
// program ends without an index.
TEST_F(SorvantaFolderTest, AHeadlessRunReportsAFailedOpenOnceAndEnds) {
    MakeFile("blocked", "");
    StoreIndexFolder("blocked/index");
    loam::DiskFile probe;
    ASSERT_FALSE(probe.OpenFile(FileAt("blocked/index/sorvanta.idx"), loam::FileModeWrite));
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
