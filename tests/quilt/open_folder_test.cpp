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

} // namespace
