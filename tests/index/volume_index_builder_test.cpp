#include "index/volume_index_builder.h"

#include <tuple>

#include "quilt/offscreen/offscreen_driver.h"
#include "walk_fixture.h"

namespace {

using walk_test::Entry;
using walk_test::RecordingWriter;
using walk_test::WalkTest;

class RecordingMonitor : public IndexBuilderMonitor {
public:
    void OnIndexProgress(const loam::FileSpec& folder) override {
        progress.push_back(folder.GetPath().GetCString());
    }
    void OnIndexFinished() override { ++finishes; }

    std::vector<std::string> progress;
    int finishes = 0;
};

// An application without windows, enough for the main loop and its idle rounds.
class IdleApplication : public quilt::Application {
public:
    IdleApplication() { CreateImp(); }
};

class VolumeIndexBuilderTest : public WalkTest {
protected:
    struct Files {
        std::string folder;
        int count;
    };

    void MakeFiles(const std::vector<Files>& files) const {
        for (const Files& batch : files) {
            for (int i = 0; i < batch.count; ++i)
                MakeFile(batch.folder + "/f" + std::to_string(i));
        }
    }
};

TEST_F(VolumeIndexBuilderTest, EachCallWalksUpToItsBudgetOnEveryVolumeAndResumesExactly) {
    const std::tuple<const char*, std::vector<Files>, std::vector<std::string>, int32_t,
                     std::vector<size_t>, const char*>
        cases[] = {
            {"exactly one slice", {{"one", 500}}, {"one"}, 500, {500, 0}, "one/"},
            {"one file more than a slice", {{"more", 501}}, {"more"}, 500, {500, 1}, "more/"},
            {"a stop deep in a tree", {{"deep/a/b/c", 5}}, {"deep"}, 3, {3, 2}, "deep/a/b/c"},
            {"a second volume starts in the same call",
             {{"A", 3}, {"B", 4}},
             {"A", "B"},
             5,
             {7},
             nullptr},
            {"every volume gets the whole budget",
             {{"C", 7}, {"D", 4}},
             {"C", "D"},
             5,
             {5, 6},
             "C/"},
            {"no fixed volume", {}, {}, 5, {0}, nullptr},
        };
    for (const auto& [name, files, volumes, budget, expectedPerCall, firstStop] : cases) {
        SCOPED_TRACE(name);
        MakeFiles(files);
        SetRoots(volumes);
        RecordingWriter whole;
        ASSERT_TRUE(VolumeIndexBuilder(nullptr).RunToCompletion(&whole));

        RecordingWriter sliced;
        VolumeIndexBuilder builder(nullptr);
        ASSERT_TRUE(builder.Start(&sliced));
        std::vector<size_t> filesPerCall;
        bool done = false;
        while (!done && filesPerCall.size() < 10) {
            const size_t before = sliced.CountFiles();
            ASSERT_TRUE(builder.RunSteps(&sliced, budget, &done));
            filesPerCall.push_back(sliced.CountFiles() - before);
            loam::FileSpec folder;
            if (filesPerCall.size() == 1 && firstStop) {
                ASSERT_TRUE(builder.IsRunning(&folder));
                EXPECT_EQ(folder.GetPath().GetCString(), Path(firstStop));
            }
        }
        EXPECT_EQ(filesPerCall, expectedPerCall);
        EXPECT_EQ(sliced.entries, whole.entries);
        EXPECT_TRUE(sliced.orphans.empty());
        EXPECT_EQ(sliced.finishes, 0);
    }
}

TEST_F(VolumeIndexBuilderTest, ASecondStartIsRefusedAndAStopLeavesTheWriterUnfinished) {
    MakeFiles({{"sub", 600}});
    RecordingWriter writer;
    RecordingWriter other;
    VolumeIndexBuilder builder(nullptr);
    EXPECT_FALSE(builder.IsRunning(nullptr));
    ASSERT_TRUE(builder.Start(&writer));

    EXPECT_FALSE(builder.Start(&other));
    ExpectError(6, "The volume indexing system was asked to start indexing when an indexing "
                   "operation was already in progress.");

    EXPECT_TRUE(builder.OnIdle(0));
    loam::FileSpec folder;
    ASSERT_TRUE(builder.IsRunning(&folder));
    EXPECT_EQ(folder.GetPath().GetCString(), Path("sub"));
    builder.Stop();
    EXPECT_FALSE(builder.IsRunning(&folder));
    EXPECT_FALSE(builder.OnIdle(0));
    EXPECT_FALSE(builder.IsIdleEnabled());
    EXPECT_EQ(writer.CountFiles(), 500u);
    EXPECT_EQ(writer.finishes, 0);
    EXPECT_TRUE(other.entries.empty());
}

TEST_F(VolumeIndexBuilderTest, IdleRoundsOfTheMainLoopBuildAndSealTheIndex) {
    const std::tuple<const char*, std::vector<Files>, std::vector<std::string>,
                     std::vector<std::string>, int32_t>
        cases[] = {
            {"three slices", {{"many", 1100}}, {""}, {"many", "many"}, 1102},
            {"no fixed volume", {}, {}, {}, 0},
        };
    for (const auto& [name, files, volumes, progress, records] : cases) {
        SCOPED_TRACE(name);
        MakeFiles(files);
        SetRoots(volumes);
        quilt::OffscreenDriver driver;
        IdleApplication application;
        RecordingMonitor monitor;
        const std::string file = root + "/sorvanta.idx";
        loam::DiskFile disk;
        ASSERT_TRUE(disk.OpenFile(loam::FileSpec(file.c_str()), loam::FileModeWrite));
        {
            BinaryFileIndexWriter writer(&disk);
            VolumeIndexBuilder builder(&monitor);
            ASSERT_TRUE(builder.Start(&writer));
            EXPECT_TRUE(driver.RunUntilIdle());
            EXPECT_FALSE(builder.IsRunning(nullptr));
            EXPECT_FALSE(builder.IsIdleEnabled());
        }
        std::vector<std::string> expectedProgress;
        for (const std::string& folder : progress)
            expectedProgress.push_back(Path(folder));
        EXPECT_EQ(monitor.progress, expectedProgress);
        EXPECT_EQ(monitor.finishes, 1);

        IndexData index;
        ASSERT_TRUE(index.Load(loam::FileSpec(file.c_str())));
        EXPECT_EQ(index.GetHeader()->unfinished, 0u);
        EXPECT_EQ(index.GetRecordCount(), records);
        EXPECT_EQ(std::filesystem::file_size(file) == 12, records == 0);
    }
}

} // namespace
