#include "loam/file_spec.h"

#include "scratch_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utime.h>
#include <vector>

namespace {

using loam::FileKind;
using loam::FileSpec;
using FileSystemTest = ScratchFolderTest;
namespace fs = std::filesystem;

// Records what a copy tells, and stops it at a given report when asked to.
class RecordingHandler : public loam::CopyFileHandler {
public:
    explicit RecordingHandler(size_t stopAt = SIZE_MAX) : stopAt(stopAt) {}

    void OnFolderCreated(const FileSpec& folder) override {
        folders.push_back(folder.GetPath().GetCString());
    }
    bool OnCopyProgress(uint32_t bytesCopied) override {
        progress.push_back(bytesCopied);
        return progress.size() < stopAt ||
               loam::RaiseError(loam::ErrorGeneral, "Cancelled by the user.");
    }

    size_t stopAt;
    std::vector<std::string> folders;
    std::vector<uint32_t> progress;
};

TEST_F(FileSystemTest, KindSizeAndTimeOfWhatAPathNames) {
    MakeFile("file", "12345");
    fs::create_directory(Path("folder"));
    fs::create_directory_symlink(Path("folder"), Path("link"));
    fs::create_symlink(Path("gone"), Path("dangling"));
    const std::tuple<const char*, FileKind, uint32_t> cases[] = {
        {"file", loam::FileKindFile, 5},      {"folder", loam::FileKindFolder, 0},
        {"folder/", loam::FileKindFolder, 0}, {"link", loam::FileKindFolder, 0},
        {"dangling", loam::FileKindNone, 0},  {"missing", loam::FileKindNone, 0},
        {"file/", loam::FileKindFile, 5}};
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
    fs::create_directories(Path("empty"));
    fs::create_directories(Path("full"));
    MakeFile("full/inside", "x");
    fs::create_symlink(Path("gone"), Path("dangling"));
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

// A cancelled copy leaves no destination and the handler's error on top.
TEST_F(FileSystemTest, CopyReplacesAndReportsEveryFullBufferButNotTheLastPass) {
    const std::tuple<size_t, size_t, std::vector<uint32_t>> cases[] = {
        {0, SIZE_MAX, {}},
        {65536, SIZE_MAX, {65536}},
        {3 * 65536 + 5, SIZE_MAX, {65536, 131072, 196608}},
        {3 * 65536 + 5, 2, {65536, 131072}}};
    for (const auto& [size, stopAt, progress] : cases) {
        SCOPED_TRACE(size);
        std::string content(size, '\0');
        for (size_t i = 0; i < size; ++i)
            content[i] = static_cast<char>(i % 251);
        MakeFile("source", content);
        MakeFile("copy", "old");
        RecordingHandler handler(stopAt);
        const bool copied = FileAt("source").Copy(FileAt("copy"), false, &handler);
        EXPECT_EQ(copied, stopAt == SIZE_MAX);
        EXPECT_EQ(handler.progress, progress);
        EXPECT_TRUE(copied ? ReadWhole("copy") == content : !Exists("copy"));
        ExpectError(copied ? loam::ErrorNone : loam::ErrorGeneral,
                    copied ? "" : "Cancelled by the user.");
    }
}

TEST_F(FileSystemTest, CopyMakesFoldersOnlyWhenAskedAndRefusesAFolder) {
    MakeFile("source", "new");
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

TEST_F(FileSystemTest, ApplicationHomeFolderIsMadePrivateUnderTheDataHome) {
    loam::FileSpec home;
    ASSERT_TRUE(loam::GetApplicationHomeFolder(home));
    EXPECT_EQ(home.GetPath().GetCString(), Path("data/Wendlemark/Sorvanta"));
    for (const char* name : {"data", "data/Wendlemark", "data/Wendlemark/Sorvanta"})
        EXPECT_EQ(fs::status(Path(name)).permissions(), fs::perms::owner_all) << name;
    const ScopedEnvironment relative("XDG_DATA_HOME", "relative/data");
    const ScopedEnvironment user("HOME", Path("user/").c_str());
    ASSERT_TRUE(loam::GetApplicationHomeFolder(home));
    EXPECT_EQ(home.GetPath().GetCString(), Path("user/.local/share/Wendlemark/Sorvanta"));
}

} // namespace
