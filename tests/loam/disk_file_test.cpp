#include "loam/disk_file.h"

#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using loam::DiskFile;
using loam::FileModeRead;

const char* const notOpen = "The application tried to access data in a file that it had not "
                            "opened.";
const char* const endOfFile = "The application reached the end of the file while reading data.";

class DiskFileTest : public ScratchFolderTest {
protected:
    void OpenWith(const std::string& content) {
        MakeFile("data", content);
        ASSERT_TRUE(file.OpenFile(Spec("data"), FileModeRead));
    }

    DiskFile file;
};

TEST_F(DiskFileTest, ReadCountsWhatArrivedAndOnlyReadingPastTheEndSetsTheFlag) {
    OpenWith("abcdef");
    char buffer[16] = {};
    uint32_t count = 99;
    EXPECT_TRUE(file.Read(buffer, 0, &count));
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(file.Read(buffer, 2, &count));
    EXPECT_FALSE(file.IsAtEnd());
    EXPECT_FALSE(file.Read(buffer, sizeof buffer, &count));
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(std::string(buffer, 4), "cdef");
    EXPECT_TRUE(file.IsAtEnd());
    ExpectError(loam::ErrorEndOfFile, endOfFile);
}

TEST_F(DiskFileTest, ReadLineGivesWholeLinesWithoutTheirEnds) {
    const std::string x254(254, 'x'), x255(255, 'x'), x600(600, 'x');
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"a\nb\n", {"a", "b", ""}},
        {"a\r\nb", {"a", "b"}},
        {"", {""}},
        {x255 + "\n", {x255, ""}},
        {x255, {x255}},
        {x255 + "\n" + x255, {x255, x255}},
        {x254 + "\r\ny", {x254, "y"}},
        {x600 + "\r\nz", {x600, "z"}},
    };
    for (const auto& [content, lines] : cases) {
        MakeFile("lines", content);
        DiskFile reader;
        ASSERT_TRUE(reader.OpenFile(Spec("lines"), FileModeRead));
        loam::String line;
        for (const std::string& expected : lines) {
            ASSERT_TRUE(reader.ReadLine(line)) << content.size();
            EXPECT_EQ(line.GetCString(), expected) << content.size();
        }
        EXPECT_FALSE(reader.ReadLine(line)) << content.size();
        ExpectError(loam::ErrorEndOfFile, endOfFile);
    }
}

TEST_F(DiskFileTest, GetSizeKeepsThePositionAndRefusesTwoGibibytes) {
    OpenWith("0123456789");
    ASSERT_TRUE(file.SeekFromStart(3));
    uint32_t size = 0, position = 0;
    EXPECT_TRUE(file.GetSize(&size));
    EXPECT_TRUE(file.GetPosition(&position));
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(position, 3u);
    EXPECT_TRUE(file.GetSize(nullptr));

    MakeFile("huge", "");
    ASSERT_EQ(truncate(Path("huge").c_str(), 0x80000000LL), 0);
    DiskFile huge;
    ASSERT_TRUE(huge.OpenFile(Spec("huge"), FileModeRead));
    EXPECT_FALSE(huge.GetSize(&size));
    ExpectError(loam::ErrorPosition, "The application encountered an error accessing data in a "
                                     "file (reason: Value too large for defined data type).");
}

TEST_F(DiskFileTest, OpenFailuresSayWhy) {
    EXPECT_FALSE(file.OpenFile(loam::FileSpec(), FileModeRead));
    ExpectError(loam::ErrorCannotOpen,
                "The application tried to open a file using an empty filename.");
    EXPECT_FALSE(file.OpenFile(Spec("missing"), FileModeRead));
    ExpectError(loam::ErrorCannotOpen, "The file '" + Path("missing") +
                                           "' could not be opened (reason: No such file or "
                                           "directory).");
    EXPECT_FALSE(file.OpenFile(Spec(""), FileModeRead));
    ExpectError(loam::ErrorCannotOpen,
                "The file '" + Path("") + "' could not be opened (reason: Is a directory).");

    OpenWith("abc");
    EXPECT_FALSE(file.Open(FileModeRead));
    ExpectError(loam::ErrorCannotOpen,
                "The application has tried to open a file that is already open.");
    char buffer[3];
    EXPECT_TRUE(file.Read(buffer, 3, nullptr));
}

TEST_F(DiskFileTest, CreatedFilesArePrivateAndWriteTruncatesWhileAppendAppends) {
    struct OpenUmask {
        mode_t saved = umask(0);
        ~OpenUmask() { umask(saved); }
    } openUmask;
    MakeFile("old", "old content");
    for (const char* name : {"old", "new"}) {
        ASSERT_TRUE(file.OpenFile(Spec(name), loam::FileModeWrite));
        ASSERT_TRUE(file.WriteLine(""));
        file.Close();
        ASSERT_TRUE(file.Open(loam::FileModeAppend));
        ASSERT_TRUE(file.WriteByte('!'));
        ASSERT_TRUE(file.Flush());
        file.Close();
        EXPECT_EQ(ReadWhole(name), "\r\n!");
    }
    struct stat status {};
    ASSERT_EQ(stat(Path("new").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(DiskFileTest, FailuresOfAnOpenStreamCarryTheSystemReason) {
    OpenWith("abc");
    EXPECT_FALSE(file.SeekFromStart(-1));
    ExpectError(loam::ErrorSeek, "The application encountered an error accessing data in a file "
                                 "(reason: Invalid argument).");
    if (access("/dev/full", W_OK) != 0)
        GTEST_SKIP() << "no /dev/full";
    DiskFile full;
    ASSERT_TRUE(full.OpenFile(loam::FileSpec("/dev/full"), loam::FileModeWrite));
    ASSERT_TRUE(full.WriteLine("kept in the buffer until the flush"));
    EXPECT_FALSE(full.Flush());
    ExpectError(loam::ErrorNoSpace, "The application was unable to write to a file because "
                                    "there is insufficient space available.");
}

TEST_F(DiskFileTest, ClosedAndNullFilesRefuseEveryAccess) {
    char buffer[1];
    loam::String line;
    loam::NullFile& null = loam::GetNullFile();
    const std::tuple<std::function<bool()>, uint32_t, const char*> cases[] = {
        {[&] { return file.Read(buffer, 1, nullptr); }, loam::ErrorNotOpen,
         "The application has tried to read from a file that it has not opened."},
        {[&] { return file.Write(buffer, 1, nullptr); }, loam::ErrorNotOpen,
         "The application has tried to write to a file that it has not opened."},
        {[&] { return file.SeekFromEnd(0); }, loam::ErrorNotOpen, notOpen},
        {[&] { return file.GetPosition(nullptr); }, loam::ErrorNotOpen, notOpen},
        {[&] { return file.ReadLine(line); }, loam::ErrorNotOpen, notOpen},
        {[&] { return file.GetSize(nullptr); }, loam::ErrorNotOpen,
         "File::GetSize called for non-open file"},
        {[&] { return null.Open(FileModeRead); }, loam::ErrorNullFile, "NullFile object used!"},
        {[&] { return null.Read(buffer, 1, nullptr); }, loam::ErrorNullFile,
         "NullFile object used!"},
        {[&] { return null.SeekFromCurrent(0); }, loam::ErrorNullFile, "NullFile object used!"},
        {[&] { return null.ReadLine(line); }, loam::ErrorNullFile, "NullFile object used!"},
        {[&] { return null.GetSize(nullptr); }, loam::ErrorNotOpen,
         "File::GetSize called for non-open file"},
    };
    for (const auto& [operation, code, message] : cases) {
        EXPECT_FALSE(operation()) << message;
        ExpectError(code, message);
    }
    EXPECT_FALSE(file.IsAtEnd());
    EXPECT_TRUE(null.IsAtEnd());
}

TEST(FileModeTest, ModeWordBecomesTheStreamMode) {
    const std::pair<uint32_t, const char*> cases[] = {{1, "rb"}, {2, "wb"},  {3, "rb"},
                                                      {5, "r"},  {8, "ab+"}, {12, "a+"}};
    for (const auto& [mode, text] : cases)
        EXPECT_STREQ(loam::GetModeString(mode).GetCString(), text) << mode;
}

} // namespace
