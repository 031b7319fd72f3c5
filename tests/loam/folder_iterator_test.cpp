#include "loam/folder_iterator.h"

#include "scratch_folder.h"

#include <fcntl.h>
#include <map>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using loam::FileSpec;
using loam::FolderEntryInfo;
using loam::FolderIterator;

class FolderIteratorTest : public ScratchFolderTest {
protected:
    void SetTime(const std::string& name, time_t seconds) const {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, Path(name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    }

    // The entries of a folder by name, each path checked to be the folder's with the name.
    std::map<std::string, FolderEntryInfo> List(const std::string& folder) const {
        const std::string prefix = folder.empty() ? root + "/" : Path(folder) + "/";
        FolderIterator iterator(FileSpec((prefix + "*.*").c_str()));
        std::map<std::string, FolderEntryInfo> entries;
        FileSpec path;
        FolderEntryInfo info;
        while (iterator.Next(&path, &info)) {
            const std::string text = path.GetPath().GetCString();
            EXPECT_EQ(text.substr(0, prefix.size()), prefix);
            entries[text.substr(prefix.size())] = info;
        }
        return entries;
    }
};

TEST_F(FolderIteratorTest, ListsEveryEntryWithItsKindSizeAndTime) {
    MakeFile("a.txt", "hello");
    MakeFile(".hidden", "");
    MakeFile("big", "");
    ASSERT_EQ(truncate(Path("big").c_str(), (int64_t{1} << 32) + 7), 0);
    std::filesystem::create_directory(Path("sub"));
    std::filesystem::create_directory(Path("..."));
    MakeFile("sub/inner", "x");
    std::filesystem::create_directory_symlink("sub", Path("link"));
    SetTime("a.txt", 1000000000);
    SetTime("big", -100);
    SetTime("sub", 1234567890);
    SetTime("link", 42);
    SetTime("...", 7);
    SetTime(".hidden", 0);

    struct Expected {
        const char* name;
        uint32_t size;
        bool isFolder;
        int32_t time;
    };
    const Expected table[] = {
        {"a.txt", 5, false, 1000000000}, {"big", 7, false, -100}, {"sub", 0, true, 1234567890},
        {"link", 3, false, 42},          {"...", 0, true, 7},     {".hidden", 0, false, 0},
    };
    const auto entries = List("");
    ASSERT_EQ(entries.size(), std::size(table));
    for (const Expected& expected : table) {
        SCOPED_TRACE(expected.name);
        ASSERT_EQ(entries.count(expected.name), 1u);
        const FolderEntryInfo& info = entries.at(expected.name);
        EXPECT_EQ(info.isFolder, expected.isFolder);
        EXPECT_EQ(info.modified.GetSeconds(), expected.time);
        if (!expected.isFolder) {
            EXPECT_EQ(info.size, expected.size);
        }
    }
    EXPECT_EQ(List("...").size(), 0u);
    EXPECT_EQ(List("sub").count("inner"), 1u);
}

TEST_F(FolderIteratorTest, FolderThatCannotBeOpenedListsEmptyWithoutError) {
    MakeFile("file", "x");
    std::filesystem::create_directory(Path("real"));
    MakeFile("real/inner", "x");
    std::filesystem::create_directory_symlink("real", Path("link"));
    std::filesystem::create_directory(Path("closed"));
    MakeFile("closed/inner", "x");
    const bool canLockOut = geteuid() != 0;
    if (canLockOut)
        chmod(Path("closed").c_str(), 0);

    for (const char* name : {"missing", "file", "link", "closed"}) {
        SCOPED_TRACE(name);
        if (std::string(name) == "closed" && !canLockOut)
            continue;
        EXPECT_TRUE(List(name).empty());
        EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
    }
    chmod(Path("closed").c_str(), 0700);
}

// Goes down a chain of nested folders keeping every level's iterator alive, as a walk does,
// under a limit of open files far below the depth.
[[noreturn]] void DescendWithFewDescriptors(const std::string& top, int depth) {
    const rlimit limit = {64, 64};
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
        std::_Exit(2);
    std::vector<std::unique_ptr<FolderIterator>> chain;
    FileSpec folder(top.c_str());
    for (int level = 0; level < depth; ++level) {
        FileSpec pattern(folder);
        pattern.Append("*.*");
        chain.push_back(std::make_unique<FolderIterator>(pattern));
        FolderEntryInfo info;
        if (!chain.back()->Next(&folder, &info) || !info.isFolder)
            std::_Exit(1);
    }
    std::_Exit(0);
}

TEST_F(FolderIteratorTest, DeepTreeHoldsNoDescriptorPerLevel) {
    constexpr int depth = 200;
    std::string deepest = root;
    for (int level = 0; level < depth; ++level)
        deepest += "/d";
    std::filesystem::create_directories(deepest);
    EXPECT_EXIT(DescendWithFewDescriptors(root, depth), ::testing::ExitedWithCode(0), "");
}

} // namespace
