#include "index/file_index_writer.h"
#include "index/index_data.h"
#include "index/index_status.h"
#include "index_image.h"
#include "loam/disk_file.h"

#include <memory>
#include <vector>

namespace {

struct Alert {
    std::string title;
    std::string text;
};

std::vector<Alert> alerts;

void RecordAlert(const char* title, const char* text) {
    alerts.push_back({title, text});
}

class BinaryWriterTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        alerts.clear();
        previousHandler = SetWriterAlertHandler(RecordAlert);
        ASSERT_TRUE(file.OpenFile(FileAt("sorvanta.idx"), loam::FileModeWrite));
        writer = std::make_unique<BinaryFileIndexWriter>(&file);
    }
    void TearDown() override {
        writer.reset();
        SetWriterAlertHandler(previousHandler);
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
    static std::vector<uint32_t> Parents(const IndexData& index) {
        std::vector<uint32_t> parents;
        for (int32_t i = 0; i < index.GetRecordCount(); ++i)
            parents.push_back(index.GetRecord(i)->GetParent());
        return parents;
    }

    loam::DiskFile file;
    std::unique_ptr<BinaryFileIndexWriter> writer;
    WriterAlertHandler previousHandler = nullptr;
};

TEST_F(BinaryWriterTest, WritesARootAndAFileByteForByte) {
    writer->AddRoot(loam::FileSpec("/"), 0x01020304);
    writer->AddFile(loam::FileSpec("/a.txt"), 300, -2);
    const std::string expected = IndexImage()
                                     .Header(1, 0, 2)
                                     .Raw(std::string("\x01\x04\xFF\xFF\xFF\xFF", 6))
                                     .Raw(std::string("\0\0\0\0\x04\x03\x02\x01/\0\0\0", 12))
                                     .Raw(std::string("\x00\x08\0\0\0\0\x2C\x01\0\0", 10))
                                     .Raw(std::string("\xFE\xFF\xFF\xFF"
                                                      "a.txt\0\0\0",
                                                      12))
                                     .GetBytes();
    EXPECT_EQ(Finished(), expected);
}

TEST_F(BinaryWriterTest, RoundsNameBlocksToFourAndSkipsNamesTooLong) {
    const struct {
        size_t length;
        size_t block; // 0: the entry is left out
    } cases[] = {{1, 4}, {3, 4}, {4, 8}, {251, 252}, {252, 0}, {255, 0}};
    for (const auto& row : cases) {
        const std::string name = "row" + std::to_string(row.length);
        loam::DiskFile rowFile;
        ASSERT_TRUE(rowFile.OpenFile(FileAt(name), loam::FileModeWrite));
        BinaryFileIndexWriter rowWriter(&rowFile);
        rowWriter.AddRoot(loam::FileSpec("/"), 0);
        rowWriter.AddFile(loam::FileSpec(("/" + std::string(row.length, 'n')).c_str()), 7, 0);
        EXPECT_EQ(rowWriter.GetRecordCount(), row.block ? 2 : 1) << row.length;
        rowWriter.Finish();
        const std::string bytes = ReadWhole(name);
        const size_t fileRecord = 12 + 18;
        ASSERT_EQ(bytes.size(), fileRecord + (row.block ? 14 + row.block : 0)) << row.length;
        if (row.block == 0)
            continue;
        EXPECT_EQ(static_cast<uint8_t>(bytes[fileRecord + 1]), row.block);
        EXPECT_EQ(bytes.substr(fileRecord + 14),
                  std::string(row.length, 'n') + std::string(row.block - row.length, '\0'));
    }
}

TEST_F(BinaryWriterTest, KeepsTheLowBitsOfSizesAndAddsThemUpUnsigned) {
    writer->AddRoot(loam::FileSpec("/"), 0);
    writer->AddFile(loam::FileSpec("/five"), static_cast<uint32_t>(5ULL << 30), 0);
    writer->AddFile(loam::FileSpec("/largest"), 0xFFFFFFFF, 0);
    IndexData index;
    Load(index);
    EXPECT_EQ(index.GetRecord(1)->GetSize(), 1u << 30);
    EXPECT_EQ(index.GetRecord(2)->GetSize(), 0xFFFFFFFFu);
    EXPECT_EQ(index.GetTotalSize(), (1ULL << 30) + 0xFFFFFFFFULL);
    EXPECT_EQ(index.GetFileCount(), 2u);
    EXPECT_EQ(index.GetFolderCount(), 1u);
}

TEST_F(BinaryWriterTest, ParentsAreOrdinals) {
    writer->AddRoot(loam::FileSpec("/"), 0);
    writer->AddFolder(loam::FileSpec("/a"), 0);
    writer->AddFile(loam::FileSpec("/a/x.txt"), 1, 0);
    writer->AddFile(loam::FileSpec("/a/y.txt"), 1, 0);
    writer->AddFolder(loam::FileSpec("/a/b"), 0);
    writer->AddFile(loam::FileSpec("/a/b/z.cpp"), 1, 0);
    // Back in a folder left before, whatever the writer remembers of the last one.
    writer->AddFile(loam::FileSpec("/a/w.jpg"), 1, 0);
    writer->AddFolder(loam::FileSpec("/a/trailing/"), 0);
    writer->AddFile(loam::FileSpec("/a/trailing/t"), 1, 0);
    IndexData index;
    Load(index);
    EXPECT_EQ(Parents(index), (std::vector<uint32_t>{0xFFFFFFFF, 0, 1, 1, 1, 4, 1, 1, 7}));
    EXPECT_STREQ(index.GetRecord(7)->GetName(), "trailing");
    EXPECT_EQ(index.GetPathOf(index.GetRecord(5)), "/a/b/z.cpp");
    EXPECT_EQ(index.GetPathOf(index.GetRecord(8)), "/a/trailing/t");
    EXPECT_TRUE(alerts.empty());
}

TEST_F(BinaryWriterTest, StoresEntriesOfUnknownFoldersAsRoots) {
    writer->AddRoot(loam::FileSpec("/home/user"), 0);
    writer->AddFile(loam::FileSpec("/home/user/notes.txt"), 5, 0);
    writer->AddRoot(loam::FileSpec("/home/user/mnt"), 0);
    writer->AddFile(loam::FileSpec("/srv/stray.dll"), 9, 0);
    writer->AddFile(loam::FileSpec("/home/user/mnt/inner.txt"), 5, 0);
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].title, "Prefix not found for...");
    EXPECT_EQ(alerts[0].text, "/srv/stray.dll");
    IndexData index;
    Load(index);
    EXPECT_EQ(Parents(index), (std::vector<uint32_t>{0xFFFFFFFF, 0, 0, 0xFFFFFFFF, 2}));
    EXPECT_STREQ(index.GetRecord(0)->GetName(), "/home/user");
    EXPECT_STREQ(index.GetRecord(3)->GetName(), "/srv/stray.dll");
    EXPECT_EQ(index.GetPathOf(index.GetRecord(4)), "/home/user/mnt/inner.txt");
}

TEST_F(BinaryWriterTest, AnAbandonedBuildLoadsEmptyAndIncomplete) {
    writer->AddRoot(loam::FileSpec("/"), 0);
    writer->AddFolder(loam::FileSpec("/a"), 0);
    writer->AddFile(loam::FileSpec("/a/b"), 1, 0);
    writer.reset();
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(ReadWhole("sorvanta.idx").substr(0, 12), std::string("\1\0\0\0\1\0\0\0\0\0\0\0", 12));
    IndexData index;
    ASSERT_TRUE(index.Load(FileAt("sorvanta.idx")));
    EXPECT_EQ(index.GetRecordCount(), 0);
    EXPECT_EQ(index.GetFileCount() + index.GetFolderCount(), 0u);
    EXPECT_EQ(ReadIndexFileState(FileAt("sorvanta.idx")), IndexFileState::Incomplete);
}

} // namespace
