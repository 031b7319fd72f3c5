#include "quilt/open_folder.h"

#include "loam/error.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

// A place that is not a folder is refused before the desktop is asked to open anything.
TEST(OpenFolderTest, RefusesWhatIsNotAFolder) {
    char folder[] = "/tmp/sorvanta-open-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string file = std::string(folder) + "/entry.txt";
    std::fclose(std::fopen(file.c_str(), "w"));
    const std::string places[] = {std::string(folder) + "/gone", file, ""};
    for (const std::string& place : places) {
        loam::ClearErrors();
        EXPECT_FALSE(quilt::OpenFolderInShell(loam::FileSpec(place.c_str()))) << place;
        const loam::ErrorInfo& error = loam::GetCurrentErrorInfo();
        EXPECT_EQ(error.GetCode(), loam::ErrorBadPath) << place;
        EXPECT_EQ(error.GetSeverity(), loam::SeverityError) << place;
        EXPECT_STREQ(error.GetMessage().GetCString(),
                     "The application tried to open a folder that did not exist.")
            << place;
    }
    loam::ClearErrors();
    std::remove(file.c_str());
    rmdir(folder);
}

// Nothing that is gone reaches the desktop: each refusal says what was missing.
TEST(OpenFolderTest, RefusesWhatIsGoneBeforeAskingTheDesktop) {
    char folder[] = "/tmp/sorvanta-open-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string gone = std::string(folder) + "/gone";
    const std::string inGone = gone + "/entry.txt";
    const struct {
        const char* what;
        bool (*open)(const std::string& entry, const std::string& folder);
        std::string entry;
        std::string folder;
        const char* message;
    } cases[] = {
        {"open a missing file",
         [](const std::string& entry, const std::string&) {
             return quilt::OpenWithDefaultApplication(loam::FileSpec(entry.c_str()));
         },
         gone, "", "The application tried to open a file that did not exist."},
        {"show a file whose folder is gone",
         [](const std::string& entry, const std::string& place) {
             return quilt::ShowInFolder(loam::FileSpec(entry.c_str()),
                                        loam::FileSpec(place.c_str()));
         },
         inGone, gone, "The application tried to open a folder that did not exist."},
        {"show a root, which has no folder",
         [](const std::string& entry, const std::string& place) {
             return quilt::ShowInFolder(loam::FileSpec(entry.c_str()),
                                        loam::FileSpec(place.c_str()));
         },
         folder, "", "The application tried to open a folder that did not exist."},
    };
    for (const auto& c : cases) {
        loam::ClearErrors();
        EXPECT_FALSE(c.open(c.entry, c.folder)) << c.what;
        EXPECT_STREQ(loam::GetCurrentErrorInfo().GetMessage().GetCString(), c.message) << c.what;
    }
    loam::ClearErrors();
    rmdir(folder);
}

} // namespace
