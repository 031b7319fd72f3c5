#include "loam/file_mapping.h"

#include "loam/disk_file.h"
#include "loam/scratch_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

namespace {

const std::string content = "index bytes\nand more of them\n";
constexpr uint32_t maxSize = 1 << 20;
const char* const lost = "the view is lost";

using FileMappingTest = ScratchFolderTest;

std::string Viewed(const loam::FileMapping& mapping) {
    return std::string(mapping.GetData(), mapping.GetSize());
}

// Rewrites the file as a build does, emptying it first: the open waits for the lease.
void Rewrite(const std::string& path) {
    loam::DiskFile file;
    if (file.OpenFile(loam::FileSpec(path.c_str()), loam::FileModeWrite))
        file.Write("XY", 2, nullptr);
}

void RewriteInAnotherProcess(const std::string& path) {
    const pid_t child = ::fork();
    if (child == 0) {
        Rewrite(path);
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
}

TEST_F(FileMappingTest, ShowsTheWholeFile) {
    MakeFile("index", content);
    loam::FileMapping mapping;
    ASSERT_TRUE(mapping.Open(FileAt("index"), maxSize, lost));
    EXPECT_TRUE(mapping.IsOpen());
    EXPECT_EQ(Viewed(mapping), content);
    mapping.Close();
    EXPECT_FALSE(mapping.IsOpen());
    EXPECT_EQ(mapping.GetSize(), 0u);
}

TEST_F(FileMappingTest, RefusesWhatItCannotHold) {
    MakeFile("empty", "");
    MakeFile("large", std::string(100, 'x'));
    MakeFile("written", content);
    const int writer = ::open(Path("written").c_str(), O_WRONLY);
    ASSERT_GE(writer, 0);
    const std::pair<const char*, uint32_t> cases[] = {
        {"missing", maxSize}, {".", maxSize},       {"empty", maxSize},
        {"large", 99},        {"written", maxSize},
    };
    for (const auto& [name, limit] : cases) {
        SCOPED_TRACE(name);
        loam::FileMapping mapping;
        EXPECT_FALSE(mapping.Open(FileAt(name), limit, lost));
        EXPECT_FALSE(mapping.IsOpen());
    }
    ::close(writer);
    EXPECT_TRUE(loam::FileMapping().Open(FileAt("large"), 100, lost));
}

TEST_F(FileMappingTest, KeepsItsBytesWhenTheFileIsRewritten) {
    for (const auto rewrite : {RewriteInAnotherProcess, Rewrite}) {
        SCOPED_TRACE(rewrite == Rewrite ? "this process" : "another process");
        MakeFile("index", content);
        loam::FileMapping mapping;
        ASSERT_TRUE(mapping.Open(FileAt("index"), maxSize, lost));
        const char* data = mapping.GetData();
        rewrite(Path("index"));
        EXPECT_EQ(ReadWhole("index"), "XY");
        EXPECT_EQ(mapping.GetData(), data);
        EXPECT_EQ(Viewed(mapping), content);
    }
}

// A file changed under a lease it no longer holds cannot be copied any more. A change of mode
// stands in for the rewrite that follows a lease taken back, which the system does only after
// a time-out far longer than a test.
TEST_F(FileMappingTest, EndsTheProcessWhenTheViewIsLost) {
    MakeFile("index", content);
    EXPECT_EXIT(
        {
            loam::FileMapping mapping;
            if (mapping.Open(FileAt("index"), maxSize, lost)) {
                ::chmod(Path("index").c_str(), 0400);
                Rewrite(Path("index"));
            }
            ::_exit(0);
        },
        testing::ExitedWithCode(2), lost);
}

TEST_F(FileMappingTest, HoldsOneFileAtATime) {
    MakeFile("first", content);
    MakeFile("second", content);
    loam::FileMapping first, second;
    ASSERT_TRUE(first.Open(FileAt("first"), maxSize, lost));
    EXPECT_FALSE(second.Open(FileAt("second"), maxSize, lost));
    first.Close();
    EXPECT_TRUE(second.Open(FileAt("second"), maxSize, lost));
}

} // namespace
