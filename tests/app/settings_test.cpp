#include "app/sorvanta_app.h"
#include "app/sorvanta_options.h"

#include "loam/preferences.h"
#include "loam/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using SettingsTest = ScratchFolderTest;

TEST_F(SettingsTest, WithoutAnApplicationFolderTheIndexIsLookedForHere) {
    loam::SetPreferenceLocation(PreferenceCompany, PreferenceProduct);
    MakeFile("not-a-folder", "");
    ScopedEnvironment dataHome("XDG_DATA_HOME", Path("not-a-folder").c_str());
    SorvantaOptions::LoadSettings();
    EXPECT_STREQ(SorvantaApp::GetIndexFile().GetPath().GetCString(), "sorvanta.idx");
    loam::FileSpec stored;
    loam::GetPreferences().GetFileSpec("IndexLocation", stored);
    EXPECT_TRUE(stored.IsEmpty());
    EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNone);
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
