#include "loam/folder_iterator.h"

#include "scratch_folder.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

// Listing, sizes, times, links and deep trees are checked through the folder walker's tests,
// which compare a whole walk with what `find` lists.
class FolderIteratorTest : public ScratchFolderTest {};

TEST_F(FolderIteratorTest, FolderThatCannotBeListedListsEmptyWithoutError) {
    MakeFile("file", "x");
    std::filesystem::create_directory(Path("real"));
    MakeFile("real/inner", "x");
    std::filesystem::create_directory_symlink("real", Path("link"));

    for (const char* name : {"real", "missing", "file", "link"}) {
        SCOPED_TRACE(name);
        loam::FolderIterator iterator(FileAt(std::string(name) + "/*.*"));
        loam::FileSpec path;
        loam::FolderEntryInfo info;
        EXPECT_EQ(iterator.Next(&path, &info), name == std::string("real"));
        EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
    }
}

TEST_F(FolderIteratorTest, FolderWithoutReadPermissionListsEmptyWithoutError) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root reads a folder whatever its mode, so it cannot be locked out";
    std::filesystem::create_directory(Path("closed"));
    MakeFile("closed/inner", "x");
    chmod(Path("closed").c_str(), 0);
    loam::FolderIterator iterator(FileAt("closed/*.*"));
    loam::FileSpec path;
    loam::FolderEntryInfo info;
    EXPECT_FALSE(iterator.Next(&path, &info));
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
    chmod(Path("closed").c_str(), 0700);
}

} // namespace
