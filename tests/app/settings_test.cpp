#include "app/sorvanta_app.h"
#include "app/sorvanta_options.h"

#include "loam/preferences.h"
#include "loam/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace {

using SettingsTest = ScratchFolderTest;

// The index lives only in the user's private folders: without one, or with a relative folder in
// the settings, there is no index file at all, and a build is told why, never sent to the
// current folder.
TEST_F(SettingsTest, WithoutAPrivateFolderThereIsNoIndexFileAndABuildIsToldWhy) {
    loam::SetPreferenceLocation(PreferenceCompany, PreferenceProduct);
    MakeFile("not-a-folder", "");
    const char noFolder[] = "Sorvanta has no private folder to keep its index in (Couldn't get "
                            "application home folder). Set XDG_DATA_HOME or HOME to a folder of "
                            "your own.";
    const struct {
        const char* name;
        const char* stored; // the folder in the settings, null for none
        const char* dataHome;
        std::string indexFile; // empty for none
    } cases[] = {
        {"no data folder", nullptr, "not-a-folder/data", ""},
        {"a relative folder stored, no data folder", "relative", "not-a-folder/data", ""},
        {"a relative folder stored", "relative", "data",
         Path("data/Wendlemark/Sorvanta") + "/sorvanta.idx"},
        {"a full folder stored", "/some/folder", "not-a-folder/data", "/some/folder/sorvanta.idx"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove_all(Path("config"));
        ScopedEnvironment dataHome("XDG_DATA_HOME", Path(c.dataHome).c_str());
        if (c.stored)
            loam::GetPreferences().SetFileSpec("IndexLocation", loam::FileSpec(c.stored));
        SorvantaOptions::LoadSettings();
        EXPECT_EQ(SorvantaApp::GetIndexFile().GetPath().GetCString(), c.indexFile);
        EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNone);
        loam::FileSpec toWrite;
        EXPECT_EQ(SorvantaApp::GetIndexFileToWrite(toWrite), !c.indexFile.empty());
        if (c.indexFile.empty())
            ExpectError(loam::ErrorNoSpecialFolder, noFolder);
    }
}

// Set or read back from a file edited by hand, a count is snapped up to whole thousands within
// 1000 to 50000.
TEST_F(SettingsTest, MaxResultsIsSnappedWhenSetAndWhenRead) {
    loam::SetPreferenceLocation(PreferenceCompany, PreferenceProduct);
    const std::pair<int64_t, int32_t> snaps[] = {
        {1000, 1000}, {50000, 50000}, {50001, 50000}, {999, 1000},         {1001, 2000},
        {0, 1000},    {-1, 1000},     {12345, 13000}, {2147483647, 50000},
    };
    for (const auto& [given, kept] : snaps) {
        SorvantaOptions::SetMaxResults(static_cast<int32_t>(given));
        EXPECT_EQ(SorvantaOptions::GetMaxResults(), kept) << given;
        loam::GetPreferences().SetInt("MaxResults", static_cast<uint32_t>(given));
        SorvantaOptions::LoadSettings();
        EXPECT_EQ(SorvantaOptions::GetMaxResults(), kept) << given;
    }
}

} // namespace
