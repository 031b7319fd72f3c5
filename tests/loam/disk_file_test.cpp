#include "loam/disk_file.h"

#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace {

using loam::DiskFile;
using loam::FileModeRead;

const char* const endOfFile = "The application reached the end of the file while reading data.";

class DiskFileTest : public ScratchFolderTest {
protected:
    void OpenWith(const std::string& content) {
        MakeFile("data", content);
        ASSERT_TRUE(file.OpenFile(FileAt("data"), FileModeRead));
    }

    DiskFile file;
};

TEST_F(DiskFileTest, ReadCountsWhatArrivedAndOnlyReadingPastTheEndSetsTheFlag) {
    OpenWith("abcdef");
    char buffer[16] = {};
    uint32_t count = 99, size = 0;
    EXPECT_TRUE(file.Read(buffer, 0, &count));
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(file.Read(buffer, 1, &count));
    EXPECT_TRUE(file.SeekFromStart(2));
    EXPECT_TRUE(file.GetSize(&size));
    EXPECT_EQ(size, 6u);
    EXPECT_FALSE(file.IsAtEnd());
    EXPECT_FALSE(file.Read(buffer, sizeof buffer, &count));
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(std::string(buffer, 4), "cdef");
    EXPECT_TRUE(file.IsAtEnd());
    ExpectError(loam::ErrorEndOfFile, endOfFile);
}

TEST_F(DiskFileTest, CreatedFilesArePrivateAndWritingTruncates) {
    struct OpenUmask {
        mode_t saved = umask(0);
        ~OpenUmask() { umask(saved); }
    } openUmask;
    MakeFile("old", "old content");
    for (const char* name : {"old", "new"}) {
        ASSERT_TRUE(file.OpenFile(FileAt(name), loam::FileModeWrite));
        ASSERT_TRUE(file.WriteLine(""));
        ASSERT_TRUE(file.WriteByte('!'));
        ASSERT_TRUE(file.Flush());
        file.Close();
        EXPECT_EQ(ReadWhole(name), "\r\n!");
    }
    struct stat status {};
    ASSERT_EQ(stat(Path("new").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

// Whatever stands at the name, a new private file takes its place at PutInPlace and not before;
// a link is replaced, never followed, and a file closed before that leaves no trace.
TEST_F(DiskFileTest, ANewFileTakesTheNameOnlyWhenPutInPlace) {
    MakeFile("victim", "the user's own file");
    chmod(Path("victim").c_str(), 0644);
    MakeFile("wide", "an old index");
    chmod(Path("wide").c_str(), 0644);
    symlink(Path("victim").c_str(), Path("link").c_str());
    symlink(Path("missing").c_str(), Path("dangling").c_str());
    const char* const names[] = {"new", "wide", "link", "dangling"};
    const auto listing = [this] {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(root))
            names.insert(entry.path().filename().string());
        return names;
    };
    const std::set<std::string> before = listing();
    for (const char* name : names) {
        SCOPED_TRACE(name);
        const std::set<std::string> present = listing();
        ASSERT_TRUE(file.CreateBeside(FileAt(name)));
        ASSERT_TRUE(file.WriteLine("unfinished"));
        file.Close();
        EXPECT_EQ(listing(), present);
        ASSERT_TRUE(file.CreateBeside(FileAt(name)));
        ASSERT_TRUE(file.WriteLine("new"));
        EXPECT_EQ(Exists(name), std::string(name) != "new");
        ASSERT_TRUE(file.PutInPlace());
        ASSERT_TRUE(file.WriteLine("more"));
        file.Close();
        struct stat status {};
        ASSERT_EQ(lstat(Path(name).c_str(), &status), 0);
        EXPECT_TRUE(S_ISREG(status.st_mode));
        EXPECT_EQ(status.st_mode & 0777, 0600u);
        EXPECT_EQ(ReadWhole(name), "new\r\nmore\r\n");
    }
    EXPECT_EQ(ReadWhole("victim"), "the user's own file");
    EXPECT_FALSE(Exists("missing"));
    EXPECT_EQ(listing().size(), before.size() + 1);

    // A device is a stream: written into, and left where it is.
    ASSERT_TRUE(file.CreateBeside(loam::FileSpec("/dev/null")));
    ASSERT_TRUE(file.WriteLine("gone"));
    EXPECT_TRUE(file.PutInPlace());
    file.Close();
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_FALSE(file.CreateBeside(FileAt("no/such/folder")));
    ExpectError(loam::ErrorCannotOpen, "The file '" + Path("no/such/folder") +
                                           "' could not be opened (reason: No such file or "
                                           "directory).");
}

TEST_F(DiskFileTest, EveryFailureSaysWhy) {
    MakeFile("huge", "");
    ASSERT_EQ(truncate(Path("huge").c_str(), 0x80000000LL), 0);
    DiskFile huge, closed, full;
    ASSERT_TRUE(huge.OpenFile(FileAt("huge"), FileModeRead));
    OpenWith("abc");
    ASSERT_TRUE(full.OpenFile(loam::FileSpec("/dev/full"), loam::FileModeWrite));
    const std::string reason = "The application encountered an error accessing data in a file "
                               "(reason: ";
    char buffer[1];
    uint32_t size = 0;
    const std::tuple<std::function<bool()>, uint32_t, std::string> cases[] = {
        {[&] { return closed.OpenFile(loam::FileSpec(), FileModeRead); }, loam::ErrorCannotOpen,
         "The application tried to open a file using an empty filename."},
        {[&] { return closed.OpenFile(FileAt("missing"), FileModeRead); }, loam::ErrorCannotOpen,
         "The file '" + Path("missing") +
             "' could not be opened (reason: No such file or directory)."},
        {[&] { return huge.GetSize(&size); }, loam::ErrorPosition,
         reason + "Value too large for defined data type)."},
        {[&] { return huge.SeekFromStart(-1); }, loam::ErrorSeek, reason + "Invalid argument)."},
        {[&] { return file.Open(FileModeRead); }, loam::ErrorCannotOpen,
         "The application has tried to open a file that is already open."},
        {[&] { return file.Read(buffer, 1, nullptr); }, loam::ErrorNone, ""},
        {[&] { return full.WriteLine("kept until the flush") && full.Flush(); }, loam::ErrorNoSpace,
         "The application was unable to write to a file because there is insufficient space "
         "available."},
        {[&] { return closed.Read(buffer, 1, nullptr); }, loam::ErrorNotOpen,
         "The application has tried to read from a file that it has not opened."},
        {[&] { return loam::GetNullFile().Read(buffer, 1, nullptr); }, loam::ErrorNullFile,
         "NullFile object used!"},
    };
    for (const auto& [operation, code, message] : cases) {
        EXPECT_EQ(operation(), code == loam::ErrorNone) << message;
        ExpectError(code, message);
    }
}

} // namespace
