#include "loam/file_mapping.h"

#include "loam/disk_file.h"
#include "loam/scratch_folder.h"

#include <sys/stat.h>

#include <string>

namespace {

const std::string content = "index bytes\nand more of them\n";
constexpr uint32_t maxSize = 1 << 20;

using FileMappingTest = ScratchFolderTest;

std::string Viewed(const loam::FileMapping& mapping) {
    return std::string(mapping.GetData(), mapping.GetSize());
}

TEST_F(FileMappingTest, ShowsTheWholeFile) {
    MakeFile("index", content);
    loam::FileMapping mapping;
    ASSERT_TRUE(mapping.Open(FileAt("index"), maxSize));
    EXPECT_TRUE(mapping.IsOpen());
    EXPECT_EQ(Viewed(mapping), content);
    mapping.Close();
    EXPECT_FALSE(mapping.IsOpen());
    EXPECT_EQ(mapping.GetSize(), 0u);
}

TEST_F(FileMappingTest, RefusesWhatItCannotHold) {
    MakeFile("empty", "");
    MakeFile("large", std::string(100, 'x'));
    ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
    const std::pair<const char*, uint32_t> cases[] = {
        {"missing", maxSize}, {".", maxSize}, {"empty", maxSize}, {"large", 99}, {"fifo", maxSize},
    };
    for (const auto& [name, limit] : cases) {
        SCOPED_TRACE(name);
        loam::FileMapping mapping;
        EXPECT_FALSE(mapping.Open(FileAt(name), limit));
        EXPECT_FALSE(mapping.IsOpen());
    }
    EXPECT_TRUE(loam::FileMapping().Open(FileAt("large"), 100));
}

// The program puts a new file in the old one's place; the view keeps the file it opened.
TEST_F(FileMappingTest, KeepsItsBytesWhenANewFileTakesTheName) {
    MakeFile("index", content);
    loam::FileMapping mapping, other;
    ASSERT_TRUE(mapping.Open(FileAt("index"), maxSize));
    ASSERT_TRUE(other.Open(FileAt("index"), maxSize));
    loam::DiskFile file;
    ASSERT_TRUE(file.CreateBeside(FileAt("index")));
    ASSERT_TRUE(file.Write("XY", 2, nullptr));
    ASSERT_TRUE(file.PutInPlace());
    file.Close();
    EXPECT_EQ(ReadWhole("index"), "XY");
    EXPECT_EQ(Viewed(mapping), content);
    EXPECT_EQ(Viewed(other), content);
}

} // namespace
