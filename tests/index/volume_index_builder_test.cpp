#include "index/volume_index_builder.h"

#include "walk_fixture.h"

#include <tuple>

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

} // namespace
