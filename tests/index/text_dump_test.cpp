#include "index/text_file_index_writer.h"
#include "loam/disk_file.h"
#include "loam/scratch_folder.h"

namespace {

using TextDumpTest = ScratchFolderTest;

TEST_F(TextDumpTest, TextWriterMarksTheFileGoodOnlyWhenFinished) {
    const std::string lines = "/\r\n/docs/\r\n/docs/old/\r\n/docs/old/Report 2021.PDF\r\n";
    for (const bool finish : {true, false}) {
        loam::DiskFile file;
        ASSERT_TRUE(file.OpenFile(FileAt("dump.txt"), loam::FileModeWrite));
        {
            TextFileIndexWriter writer(&file);
            writer.AddRoot(loam::FileSpec("/"), 0);
            writer.AddFolder(loam::FileSpec("/docs"), 0);
            writer.AddFolder(loam::FileSpec("/docs/old/"), 0);
            writer.AddFile(loam::FileSpec("/docs/old/Report 2021.PDF"), 10, 0);
            if (finish)
                writer.Finish();
        }
        EXPECT_FALSE(file.IsOpen());
        EXPECT_EQ(ReadWhole("dump.txt"), (finish ? "GOOD\r\n" : "BAD!\r\n") + lines);
    }
}

} // namespace
