#include "loam/file_spec.h"

#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>
#include <utime.h>
#include <vector>

namespace {

using loam::FileKind;
using loam::FileSpec;

class FileSystemTest : public ScratchFolderTest {
protected:
    void MakeFolder(const std::string& name) {
        ASSERT_EQ(mkdir(Path(name).c_str(), 0700), 0) << name;
    }
};

// Records what a copy tells, and stops it at a given report when asked to.
class RecordingHandler : public loam::CopyFileHandler {
public:
    explicit RecordingHandler(size_t stopAt = SIZE_MAX) : stopAt(stopAt) {}

    void OnFolderCreated(const FileSpec& folder) override {
        folders.push_back(folder.GetPath().GetCString());
    }
    bool OnCopyProgress(uint32_t bytesCopied) override {
        progress.push_back(bytesCopied);
        if (progress.size() < stopAt)
            return true;
        return loam::RaiseError(loam::ErrorGeneral, "Cancelled by the user.");
    }

    size_t stopAt;
    std::vector<std::string> folders;
    std::vector<uint32_t> progress;
};

TEST_F(FileSystemTest, KindSizeAndTimeOfWhatAPathNames) {
    MakeFile("file", "12345");
    MakeFolder("folder");
    ASSERT_EQ(symlink(Path("folder").c_str(), Path("link").c_str()), 0);
    ASSERT_EQ(symlink(Path("gone").c_str(), Path("dangling").c_str()), 0);
    const std::tuple<const char*, FileKind, uint32_t> cases[] = {
        {"file", loam::FileKindFile, 5},      {"folder", loam::FileKindFolder, 0},
        {"folder/", loam::FileKindFolder, 0}, {"link", loam::FileKindFolder, 0},
        {"dangling", loam::FileKindNone, 0},  {"missing", loam::FileKindNone, 0},
        {"file/", loam::FileKindFile, 5},
    };
    for (const auto& [name, kind, size] : cases) {
        EXPECT_EQ(FileAt(name).GetKind(), kind) << name;
        EXPECT_EQ(FileAt(name).GetFileSize(), size) << name;
    }
    EXPECT_EQ(FileSpec().GetKind(), loam::FileKindNone);
    EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNone);

    const utimbuf times{1000000000, 1234567890};
    ASSERT_EQ(utime(Path("file").c_str(), &times), 0);
    loam::DateTime modified;
    EXPECT_TRUE(FileAt("file").GetModifiedTime(modified));
    EXPECT_EQ(modified.GetSeconds(), 1234567890);
    EXPECT_FALSE(FileAt("missing").GetModifiedTime(modified));
    ExpectError(loam::ErrorNotFound, "No such file or directory");
}

TEST_F(FileSystemTest, DeleteRemovesFilesFoldersAndLinksButNotWhatIsMissingOrFull) {
    MakeFile("file", "x");
    MakeFolder("empty");
    MakeFolder("full");
    MakeFile("full/inside", "x");
    ASSERT_EQ(symlink(Path("gone").c_str(), Path("dangling").c_str()), 0);
    for (const char* name : {"file", "empty", "dangling"}) {
        EXPECT_TRUE(FileAt(name).Delete()) << name;
        EXPECT_FALSE(Exists(name)) << name;
    }
    EXPECT_FALSE(FileAt("missing").Delete());
    ExpectError(loam::ErrorNotFound, "File not found.");
    EXPECT_FALSE(FileAt("full").Delete());
    ExpectError(loam::ErrorGeneral, "Directory not empty");
    EXPECT_TRUE(Exists("full/inside"));
}

TEST_F(FileSystemTest, FolderTreeIsMadeTopFirstAndNotThroughAFile) {
    RecordingHandler handler;
    EXPECT_TRUE(FileAt("a/b/c").CreateFolderTree(&handler));
    EXPECT_EQ(handler.folders, (std::vector<std::string>{Path("a/"), Path("a/b/"), Path("a/b/c")}));
    EXPECT_EQ(FileAt("a/b/c").GetKind(), loam::FileKindFolder);
    EXPECT_FALSE(FileAt("a/b/c").CreateFolderTree(nullptr));
    ExpectError(loam::ErrorAlreadyExists, "File exists");
    MakeFile("file", "x");
    EXPECT_FALSE(FileAt("file/sub/deeper").CreateFolderTree(nullptr));
    ExpectError(loam::ErrorAccessDenied, "Unable to create the folder \"" + Path("file/") +
                                             "\" because it already exists as a file.");
}

TEST_F(FileSystemTest, CopyReportsEveryFullBufferButNotTheLastPass) {
    const std::tuple<size_t, std::vector<uint32_t>> cases[] = {
        {0, {}},
        {1, {}},
        {65536, {65536}},
        {65537, {65536}},
        {3 * 65536 + 5, {65536, 131072, 196608}},
    };
    for (const auto& [size, progress] : cases) {
        std::string content(size, '\0');
        for (size_t i = 0; i < size; ++i)
            content[i] = static_cast<char>(i % 251);
        MakeFile("source", content);
        RecordingHandler handler;
        ASSERT_TRUE(FileAt("source").Copy(FileAt("copy"), false, &handler)) << size;
        EXPECT_EQ(handler.progress, progress) << size;
        EXPECT_TRUE(ReadWhole("copy") == content) << size;
        ASSERT_TRUE(FileAt("copy").Delete());
    }
}

TEST_F(FileSystemTest, CopyReplacesAFileMakesFoldersWhenAskedAndRefusesAFolder) {
    MakeFile("source", "new");
    MakeFile("copy", "a much longer old content");
    ASSERT_TRUE(FileAt("source").Copy(FileAt("copy"), false, nullptr));
    EXPECT_EQ(ReadWhole("copy"), "new");

    EXPECT_FALSE(FileAt("source").Copy(FileAt("made/here/copy"), false, nullptr));
    EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorCannotOpen);
    loam::ClearErrors();
    RecordingHandler handler;
    ASSERT_TRUE(FileAt("source").Copy(FileAt("made/here/copy"), true, &handler));
    EXPECT_EQ(ReadWhole("made/here/copy"), "new");
    EXPECT_EQ(handler.folders, (std::vector<std::string>{Path("made/"), Path("made/here/")}));

    EXPECT_FALSE(FileAt("source").Copy(FileAt("made"), false, nullptr));
    ExpectError(loam::ErrorAccessDenied,
                "Unable to copy to \"" + Path("made") + "\" because it is a folder.");
}

TEST_F(FileSystemTest, CancelledCopyLeavesNoDestinationAndTheHandlersErrorOnTop) {
    MakeFile("source", std::string(200000, 'x'));
    MakeFile("copy", "old");
    RecordingHandler handler(2);
    EXPECT_FALSE(FileAt("source").Copy(FileAt("copy"), false, &handler));
    EXPECT_EQ(handler.progress, (std::vector<uint32_t>{65536, 131072}));
    EXPECT_FALSE(Exists("copy"));
    ExpectError(loam::ErrorGeneral, "Cancelled by the user.");
}

TEST_F(FileSystemTest, ApplicationHomeFolderIsMadePrivateUnderTheDataHomeOrFails) {
    loam::FileSpec home;
    ASSERT_TRUE(loam::GetApplicationHomeFolder(home));
    EXPECT_EQ(home.GetPath().GetCString(), Path("data/Wendlemark/Sorvanta"));
    for (const char* name : {"data", "data/Wendlemark", "data/Wendlemark/Sorvanta"}) {
        struct stat status {};
        ASSERT_EQ(stat(Path(name).c_str(), &status), 0) << name;
        EXPECT_EQ(status.st_mode & 0777, 0700u) << name;
    }
    ASSERT_TRUE(loam::GetApplicationHomeFolder(home));

    const ScopedEnvironment relative("XDG_DATA_HOME", "relative/data");
    const ScopedEnvironment user("HOME", Path("user/").c_str());
    ASSERT_TRUE(loam::GetApplicationHomeFolder(home));
    EXPECT_EQ(home.GetPath().GetCString(), Path("user/.local/share/Wendlemark/Sorvanta"));

    MakeFile("file", "x");
    const ScopedEnvironment blocked("XDG_DATA_HOME", Path("file").c_str());
    EXPECT_FALSE(loam::GetApplicationHomeFolder(home));
    EXPECT_EQ(home.GetPath().GetCString(), Path("user/.local/share/Wendlemark/Sorvanta"));
    ExpectError(loam::ErrorNoSpecialFolder, "Couldn't get application home folder");
}

} // namespace
