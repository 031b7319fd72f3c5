#include "app/sorvanta_app.h"
#include "app/sorvanta_options.h"

#include "loam/preferences.h"
#include "loam/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

class SettingsTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        loam::SetPreferenceLocation(PreferenceCompany, PreferenceProduct);
    }

    static uint32_t StoredMaxResults() {
        uint32_t value = 0;
        EXPECT_TRUE(loam::GetPreferences().GetInt("MaxResults", value));
        return value;
    }
    static std::string StoredIndexLocation() {
        loam::FileSpec folder;
        loam::GetPreferences().GetFileSpec("IndexLocation", folder);
        return folder.GetPath().GetCString();
    }
};

TEST_F(SettingsTest, FirstRunStoresTheApplicationFolder) {
    SorvantaOptions::LoadSettings();
    const std::string home = Path("data/Wendlemark/Sorvanta");
    EXPECT_EQ(SorvantaApp::GetIndexFolder().GetPath().GetCString(), home);
    EXPECT_EQ(SorvantaApp::GetIndexFile().GetPath().GetCString(), home + "/sorvanta.idx");
    EXPECT_TRUE(Exists("data/Wendlemark/Sorvanta"));
    EXPECT_TRUE(Exists("config/Wendlemark/Sorvanta.conf"));
    EXPECT_EQ(StoredIndexLocation(), home);
    EXPECT_EQ(SorvantaOptions::GetMaxResults(), 1000);
}

TEST_F(SettingsTest, WithoutAnApplicationFolderTheIndexIsLookedForHere) {
    MakeFile("not-a-folder", "");
    ScopedEnvironment dataHome("XDG_DATA_HOME", Path("not-a-folder").c_str());
    SorvantaOptions::LoadSettings();
    EXPECT_TRUE(SorvantaApp::GetIndexFolder().IsEmpty());
    EXPECT_STREQ(SorvantaApp::GetIndexFile().GetPath().GetCString(), "sorvanta.idx");
    EXPECT_EQ(StoredIndexLocation(), "");
    EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNone);
}

TEST_F(SettingsTest, IndexFolderSurvivesARestart) {
    const loam::FileSpec moved(Path("elsewhere").c_str());
    SorvantaOptions::LoadSettings();
    SorvantaOptions::SetIndexFolder(moved);
    EXPECT_EQ(StoredIndexLocation(), Path("elsewhere"));
    SorvantaOptions::SetIndexFolder(loam::FileSpec("/"));
    EXPECT_STREQ(SorvantaApp::GetIndexFile().GetPath().GetCString(), "/sorvanta.idx");
    SorvantaOptions::SetIndexFolder(moved);
    SorvantaOptions::LoadSettings();
    EXPECT_EQ(SorvantaApp::GetIndexFolder().GetPath().GetCString(), Path("elsewhere"));
    EXPECT_EQ(SorvantaApp::GetIndexFile().GetPath().GetCString(), Path("elsewhere/sorvanta.idx"));
}

struct Snap {
    int64_t given;
    int32_t kept;
};

// Set or read back, a count is snapped up to whole thousands within 1000 to 50000.
TEST_F(SettingsTest, MaxResultsIsSnappedWhenSetAndWhenRead) {
    const Snap snaps[] = {
        {1000, 1000}, {50000, 50000}, {50001, 50000}, {999, 1000},         {1001, 2000},
        {0, 1000},    {-1, 1000},     {12345, 13000}, {2147483647, 50000},
    };
    for (const Snap& row : snaps) {
        SorvantaOptions::SetMaxResults(static_cast<int32_t>(row.given));
        EXPECT_EQ(SorvantaOptions::GetMaxResults(), row.kept) << row.given;
        EXPECT_EQ(StoredMaxResults(), static_cast<uint32_t>(row.kept)) << row.given;
        loam::GetPreferences().SetInt("MaxResults", static_cast<uint32_t>(row.given));
        SorvantaOptions::LoadSettings();
        EXPECT_EQ(SorvantaOptions::GetMaxResults(), row.kept) << row.given;
    }
}

} // namespace
