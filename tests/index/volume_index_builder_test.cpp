#include "index/volume_index_builder.h"

#include "walk_fixture.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <tuple>
#include <unistd.h>

namespace {

using walk_test::RecordingWriter;
using walk_test::WalkTest;

class VolumeIndexBuilderTest : public WalkTest {
protected:
    // Each folder with its count of files.
    using Files = std::vector<std::pair<std::string, int>>;
    void MakeFiles(const Files& files) const {
        for (const auto& [folder, count] : files) {
            for (int i = 0; i < count; ++i)
                MakeFile(folder + "/f" + std::to_string(i));
        }
    }
};

TEST_F(VolumeIndexBuilderTest, EachCallWalksUpToItsBudgetOnEveryVolumeAndResumesExactly) {
    const std::tuple<const char*, Files, std::vector<std::string>, int32_t, std::vector<size_t>,
                     const char*>
        cases[] = {
            {"exactly one slice", {{"one", 500}}, {"one"}, 500, {500, 0}, "one/"},
            {"one file more than a slice", {{"more", 501}}, {"more"}, 500, {500, 1}, "more/"},
            {"a stop deep in a tree", {{"deep/a/b/c", 5}}, {"deep"}, 3, {3, 2}, "deep/a/b/c"},
            {"second volume in the same call", {{"A", 3}, {"B", 4}}, {"A", "B"}, 5, {7}, nullptr},
            {"each volume gets the budget", {{"C", 7}, {"D", 4}}, {"C", "D"}, 5, {5, 6}, "C/"},
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
            const size_t before = sliced.files;
            ASSERT_TRUE(builder.RunSteps(&sliced, budget, &done));
            filesPerCall.push_back(sliced.files - before);
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

TEST_F(VolumeIndexBuilderTest, ASecondStartIsRefused) {
    RecordingWriter writer, other;
    VolumeIndexBuilder builder(nullptr);
    ASSERT_TRUE(builder.Start(&writer));
    EXPECT_FALSE(builder.Start(&other));
    ExpectError(6, "The volume indexing system was asked to start indexing when an indexing "
                   "operation was already in progress.");
    EXPECT_TRUE(other.entries.empty());
}

// One build at a time per index file, in this process or another: a second build is refused
// with the error of a second start, leaves the first build's file at the name, and can start as
// soon as the first is sealed, abandoned or killed.
TEST_F(VolumeIndexBuilderTest, OneBuildAtATimePerIndexFile) {
    const loam::FileSpec index((root + "/sorvanta.idx").c_str());
    constexpr int busy = 6;
    // Begins a second build in a child process; its exit code is the error it met, 0 for none.
    const auto beginElsewhere = [&index] {
        const pid_t child = fork();
        if (child == 0) {
            loam::DiskFile disk;
            const bool begun = BinaryFileIndexWriter::Begin(disk, index) != nullptr;
            _exit(begun ? 0 : static_cast<int>(loam::GetCurrentErrorCode()));
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    // A first build that holds the index until `end` ends it.
    const struct {
        const char* name;
        std::function<void(std::unique_ptr<BinaryFileIndexWriter>&)> end;
    } endings[] = {
        {"sealed", [](auto& writer) { writer->Finish(); }},
        {"abandoned", [](auto& writer) { writer.reset(); }},
    };
    for (const auto& ending : endings) {
        SCOPED_TRACE(ending.name);
        loam::DiskFile first;
        auto writer = BinaryFileIndexWriter::Begin(first, index);
        ASSERT_NE(writer, nullptr);
        writer->AddRoot(loam::FileSpec(root.c_str()), 0);
        loam::DiskFile second;
        EXPECT_EQ(BinaryFileIndexWriter::Begin(second, index), nullptr);
        ExpectError(busy, "The volume indexing system was asked to start indexing when an "
                          "indexing operation was already in progress.");
        EXPECT_EQ(beginElsewhere(), busy);
        // The refused builds left nothing beside the index, and the first goes on.
        // A new file is made as the index's name, a dot and six letters.
        const std::string newFile = "sorvanta.idx.XXXXXX";
        for (const auto& entry : std::filesystem::directory_iterator(root)) {
            const std::string name = entry.path().filename().string();
            EXPECT_FALSE(name.size() == newFile.size() && name.rfind("sorvanta.idx.", 0) == 0)
                << name;
        }
        ending.end(writer);
        EXPECT_EQ(beginElsewhere(), 0);
    }

    // A builder killed in the middle of its build holds nothing any more.
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t builder = fork();
    if (builder == 0) {
        loam::DiskFile disk;
        const auto writer = BinaryFileIndexWriter::Begin(disk, index);
        const char began = writer ? 'y' : 'n';
        if (write(ready[1], &began, 1) == 1)
            pause();
        _exit(1);
    }
    char began = 0;
    ASSERT_EQ(read(ready[0], &began, 1), 1);
    EXPECT_EQ(began, 'y');
    EXPECT_EQ(beginElsewhere(), busy);
    ::kill(builder, SIGKILL);
    waitpid(builder, nullptr, 0);
    close(ready[0]);
    close(ready[1]);
    EXPECT_EQ(beginElsewhere(), 0);
}

// A build killed at any moment leaves an index that loads: the earlier one until the new file
// takes the name, then the new one, unfinished or sealed, but never an empty or a torn file.
TEST_F(VolumeIndexBuilderTest, ABuildKilledAtAnyMomentLeavesALoadableIndex) {
    constexpr int files = 30000;
    std::filesystem::create_directories(Path("many"));
    for (int i = 0; i < files; ++i)
        close(open(Path("many/file" + std::to_string(i)).c_str(), O_WRONLY | O_CREAT, 0600));
    const loam::FileSpec index((root + "/sorvanta.idx").c_str());
    const auto startBuild = [&index] {
        const pid_t child = fork();
        if (child != 0)
            return child;
        loam::DiskFile disk;
        const auto writer = BinaryFileIndexWriter::Begin(disk, index);
        VolumeIndexBuilder builder(nullptr);
        for (bool done = false; writer && !done;)
            builder.RunSteps(writer.get(), VolumeIndexBuilder::SliceSteps, &done);
        if (writer)
            writer->Finish();
        _exit(writer ? 0 : 1);
    };
    const auto started = std::chrono::steady_clock::now();
    int status = 0;
    ASSERT_EQ(waitpid(startBuild(), &status, 0) > 0 && WIFEXITED(status), true);
    const auto whole = std::chrono::steady_clock::now() - started;
    IndexData built;
    ASSERT_TRUE(built.Load(index));
    EXPECT_EQ(built.GetRecordCount(), files + 2);

    std::mt19937 random(13);
    std::uniform_int_distribution<int64_t> moment(
        0, std::chrono::duration_cast<std::chrono::microseconds>(whole).count());
    for (int kill = 0; kill < 12; ++kill) {
        const std::chrono::microseconds delay(moment(random));
        SCOPED_TRACE(delay.count());
        const pid_t child = startBuild();
        std::this_thread::sleep_for(delay);
        ::kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        IndexData loaded;
        EXPECT_TRUE(loaded.Load(index)) << loam::GetCurrentErrorInfo().GetMessage().GetCString();
        loam::ClearErrors();
    }
}

} // namespace
