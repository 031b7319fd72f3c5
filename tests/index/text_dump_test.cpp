#include "index/file_index_writer.h"
#include "index/index_data.h"
#include "index/text_file_index_writer.h"
#include "index_image.h"
#include "loam/disk_file.h"

#include <memory>

namespace {

class TextDumpTest : public ScratchFolderTest {
protected:
    // Hands the same walk to any writer.
    static void Walk(FileIndexWriter& writer) {
        writer.AddRoot(loam::FileSpec("/"), 0);
        writer.AddFolder(loam::FileSpec("/docs"), 0);
        writer.AddFile(loam::FileSpec("/docs/Report 2021.PDF"), 10, 0);
        writer.AddFolder(loam::FileSpec("/docs/old/"), 0);
        writer.AddFile(loam::FileSpec("/docs/old/notes"), 10, 0);
        writer.AddFile(loam::FileSpec("/swapfile"), 10, 0);
    }
};

const char* const walkLines = "/\r\n/docs/\r\n/docs/Report 2021.PDF\r\n/docs/old/\r\n"
                              "/docs/old/notes\r\n/swapfile\r\n";

TEST_F(TextDumpTest, TextWriterMarksTheFileGoodOnlyWhenFinished) {
    loam::DiskFile file;
    ASSERT_TRUE(file.OpenFile(FileAt("finished.txt"), loam::FileModeWrite));
    {
        TextFileIndexWriter writer(&file);
        Walk(writer);
        writer.Finish();
    }
    EXPECT_EQ(ReadWhole("finished.txt"), std::string("GOOD\r\n") + walkLines);

    ASSERT_TRUE(file.OpenFile(FileAt("abandoned.txt"), loam::FileModeWrite));
    {
        TextFileIndexWriter writer(&file);
        Walk(writer);
    }
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(ReadWhole("abandoned.txt"), std::string("BAD!\r\n") + walkLines);

    ASSERT_TRUE(file.OpenFile(FileAt("nothing.txt"), loam::FileModeWrite));
    TextFileIndexWriter(&file).Finish();
    EXPECT_EQ(ReadWhole("nothing.txt"), "GOOD\r\n");
}

TEST_F(TextDumpTest, DumpOfALoadedIndexHasTheWritersLines) {
    loam::DiskFile file;
    ASSERT_TRUE(file.OpenFile(FileAt("sorvanta.idx"), loam::FileModeWrite));
    {
        BinaryFileIndexWriter writer(&file);
        Walk(writer);
        writer.Finish();
    }
    IndexData index;
    ASSERT_TRUE(index.Load(FileAt("sorvanta.idx")));
    index.DumpToText(FileAt("dump.txt"));
    EXPECT_EQ(ReadWhole("dump.txt"), walkLines);
}

TEST_F(TextDumpTest, DumpGivesEachRootItsWholePath) {
    MakeFile("sorvanta.idx", IndexImage()
                                 .Header(1, 0, 3)
                                 .Record(1, 0xFFFFFFFF, "/home/user")
                                 .Record(0, 0, "a.cpp")
                                 .Record(1, 0xFFFFFFFF, "/srv/")
                                 .GetBytes());
    IndexData index;
    ASSERT_TRUE(index.Load(FileAt("sorvanta.idx")));
    index.DumpToText(FileAt("dump.txt"));
    EXPECT_EQ(ReadWhole("dump.txt"), "/home/user/\r\n/home/user/a.cpp\r\n/srv/\r\n");

    index.DumpToText(FileAt("no-such-folder/dump.txt"));
    EXPECT_FALSE(loam::GetErrorState().GetCurrentError().GetCode());
}

} // namespace
