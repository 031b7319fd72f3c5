#include "loam/disk_file.h"

#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>
#include <vector>

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
        ASSERT_TRUE(reader.OpenFile(FileAt("lines"), FileModeRead));
        loam::String line;
        for (const std::string& expected : lines) {
            ASSERT_TRUE(reader.ReadLine(line)) << content.size();
            EXPECT_EQ(line.GetCString(), expected) << content.size();
        }
        EXPECT_FALSE(reader.ReadLine(line)) << content.size();
        ExpectError(loam::ErrorEndOfFile, endOfFile);
    }
}

TEST_F(DiskFileTest, GetSizeKeepsThePosition) {
    OpenWith("0123456789");
    ASSERT_TRUE(file.SeekFromStart(3));
    uint32_t size = 0, position = 0;
    EXPECT_TRUE(file.GetSize(&size));
    EXPECT_TRUE(file.GetPosition(&position));
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(position, 3u);
}

TEST_F(DiskFileTest, CreatedFilesArePrivateAndWriteTruncatesWhileAppendAppends) {
    struct OpenUmask {
        mode_t saved = umask(0);
        ~OpenUmask() { umask(saved); }
    } openUmask;
    MakeFile("old", "old content");
    for (const char* name : {"old", "new"}) {
        ASSERT_TRUE(file.OpenFile(FileAt(name), loam::FileModeWrite));
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
    loam::String line;
    const std::tuple<std::function<bool()>, uint32_t, std::string> cases[] = {
        {[&] { return closed.OpenFile(loam::FileSpec(), FileModeRead); }, loam::ErrorCannotOpen,
         "The application tried to open a file using an empty filename."},
        {[&] { return closed.OpenFile(FileAt("missing"), FileModeRead); }, loam::ErrorCannotOpen,
         "The file '" + Path("missing") +
             "' could not be opened (reason: No such file or directory)."},
        {[&] { return closed.OpenFile(FileAt(""), FileModeRead); }, loam::ErrorCannotOpen,
         "The file '" + Path("") + "' could not be opened (reason: Is a directory)."},
        {[&] {
             uint32_t size = 0;
             return huge.GetSize(&size);
         },
         loam::ErrorPosition, reason + "Value too large for defined data type)."},
        {[&] { return huge.SeekFromStart(-1); }, loam::ErrorSeek, reason + "Invalid argument)."},
        {[&] { return file.Open(FileModeRead); }, loam::ErrorCannotOpen,
         "The application has tried to open a file that is already open."},
        {[&] { return file.Read(buffer, 1, nullptr); }, loam::ErrorNone, ""},
        {[&] { return full.WriteLine("kept until the flush") && full.Flush(); }, loam::ErrorNoSpace,
         "The application was unable to write to a file because there is insufficient space "
         "available."},
        {[&] { return closed.Read(buffer, 1, nullptr); }, loam::ErrorNotOpen,
         "The application has tried to read from a file that it has not opened."},
        {[&] { return closed.Write(buffer, 1, nullptr); }, loam::ErrorNotOpen,
         "The application has tried to write to a file that it has not opened."},
        {[&] { return closed.ReadLine(line); }, loam::ErrorNotOpen,
         "The application tried to access data in a file that it had not opened."},
        {[&] { return closed.GetSize(nullptr); }, loam::ErrorNotOpen,
         "File::GetSize called for non-open file"},
        {[&] { return loam::GetNullFile().Read(buffer, 1, nullptr); }, loam::ErrorNullFile,
         "NullFile object used!"},
    };
    for (const auto& [operation, code, message] : cases) {
        EXPECT_EQ(operation(), code == loam::ErrorNone) << message;
        ExpectError(code, message);
    }
}

} // namespace
