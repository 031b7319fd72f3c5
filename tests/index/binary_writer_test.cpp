#include "index/file_index_writer.h"
#include "index/index_data.h"
#include "index_image.h"
#include "loam/disk_file.h"

#include <memory>
#include <vector>

namespace {

using Alert = std::pair<std::string, std::string>;
std::vector<Alert> alerts;

void RecordAlert(const char* title, const char* text) {
    alerts.emplace_back(title, text);
}

class BinaryWriterTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        alerts.clear();
        SetWriterAlertHandler(RecordAlert);
        ASSERT_TRUE(file.OpenFile(FileAt("sorvanta.idx"), loam::FileModeWrite));
        writer = std::make_unique<BinaryFileIndexWriter>(&file);
    }
    void TearDown() override {
        writer.reset();
        SetWriterAlertHandler(nullptr);
        ScratchFolderTest::TearDown();
    }

    std::string Finished() {
        writer->Finish();
        writer.reset();
        return ReadWhole("sorvanta.idx");
    }
    void Load(IndexData& index) {
        Finished();
        ASSERT_TRUE(index.Load(FileAt("sorvanta.idx"))) << CurrentMessage();
    }

    loam::DiskFile file;
    std::unique_ptr<BinaryFileIndexWriter> writer;
};

TEST_F(BinaryWriterTest, WritesARootAndAFileByteForByte) {
    writer->AddRoot(loam::FileSpec("/"), 0x01020304);
    writer->AddFile(loam::FileSpec("/a.txt"), 300, -2);
    // Kind, name block length, parent, size, time, then the name padded with NULs.
    const std::string rootRecord("\x01\x04\xFF\xFF\xFF\xFF\0\0\0\0\x04\x03\x02\x01/\0\0\0", 18);
    const std::string fileRecord("\x00\x08\0\0\0\0\x2C\x01\0\0\xFE\xFF\xFF\xFF"
                                 "a.txt\0\0\0",
                                 22);
    EXPECT_EQ(Finished(), IndexImage().Header(1, 0, 2).GetBytes() + rootRecord + fileRecord);
}

// An entry of a folder that the writer does not know is kept as a root of its own.
TEST_F(BinaryWriterTest, ParentsAreOrdinalsAndStraysAreRoots) {
    writer->AddRoot(loam::FileSpec("/home/user"), 0);
    writer->AddFolder(loam::FileSpec("/home/user/a"), 0);
    writer->AddFile(loam::FileSpec("/home/user/a/x.txt"), 1, 0);
    writer->AddFolder(loam::FileSpec("/home/user/a/b"), 0);
    writer->AddFile(loam::FileSpec("/home/user/a/b/z.cpp"), 1, 0);
    // Back in a folder left before, whatever the writer remembers of the last one.
    writer->AddFile(loam::FileSpec("/home/user/a/w.jpg"), 1, 0);
    writer->AddFolder(loam::FileSpec("/home/user/a/trailing/"), 0);
    writer->AddFile(loam::FileSpec("/home/user/a/trailing/t"), 1, 0);
    writer->AddRoot(loam::FileSpec("/home/user/mnt"), 0);
    writer->AddFile(loam::FileSpec("/srv/stray.dll"), 9, 0);
    writer->AddFile(loam::FileSpec("/home/user/mnt/inner.txt"), 5, 0);
    EXPECT_EQ(alerts, (std::vector<Alert>{{"Prefix not found for...", "/srv/stray.dll"}}));
    IndexData index;
    Load(index);
    std::vector<uint32_t> parents;
    for (int32_t i = 0; i < index.GetRecordCount(); ++i)
        parents.push_back(index.GetRecord(i)->GetParent());
    EXPECT_EQ(parents, (std::vector<uint32_t>{0xFFFFFFFF, 0, 1, 1, 3, 1, 1, 6, 0, 0xFFFFFFFF, 8}));
    EXPECT_STREQ(index.GetRecord(0)->GetName(), "/home/user");
    EXPECT_STREQ(index.GetRecord(6)->GetName(), "trailing");
    EXPECT_STREQ(index.GetRecord(9)->GetName(), "/srv/stray.dll");
    EXPECT_EQ(index.GetPathOf(index.GetRecord(4)), "/home/user/a/b/z.cpp");
    EXPECT_EQ(index.GetPathOf(index.GetRecord(7)), "/home/user/a/trailing/t");
    EXPECT_EQ(index.GetPathOf(index.GetRecord(10)), "/home/user/mnt/inner.txt");
}

} // namespace
