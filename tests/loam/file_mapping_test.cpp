#include "loam/file_mapping.h"
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

class FileMappingTest : public ScratchFolderTest {
protected:
    std::string Viewed(const loam::FileMapping& mapping) const {
        return std::string(mapping.GetData(), mapping.GetSize());
    }
};

// Opens the file to write, emptying it, and writes a little: the open waits for the lease.
void Rewrite(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_TRUNC);
    if (descriptor >= 0) {
        (void)!::write(descriptor, "XY", 2);
        ::close(descriptor);
    }
}

void RewriteInAnotherProcess(const std::string& path) {
    const pid_t child = ::fork();
    if (child == 0) {
        Rewrite(path);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
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
    const struct {
        const char* name;
        uint32_t limit;
    } cases[] = {{"missing", maxSize},
                 {".", maxSize},
                 {"empty", maxSize},
                 {"large", 99},
                 {"written", maxSize}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        loam::FileMapping mapping;
        EXPECT_FALSE(mapping.Open(FileAt(row.name), row.limit, lost));
        EXPECT_FALSE(mapping.IsOpen());
    }
    ::close(writer);
    EXPECT_TRUE(loam::FileMapping().Open(FileAt("large"), 100, lost));
}

TEST_F(FileMappingTest, KeepsItsBytesWhenTheFileIsRewritten) {
    const struct {
        const char* what;
        void (*rewrite)(const std::string&);
    } writers[] = {{"another process", RewriteInAnotherProcess}, {"this process", Rewrite}};
    for (const auto& row : writers) {
        SCOPED_TRACE(row.what);
        MakeFile("index", content);
        loam::FileMapping mapping;
        ASSERT_TRUE(mapping.Open(FileAt("index"), maxSize, lost));
        const char* data = mapping.GetData();
        row.rewrite(Path("index"));
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
