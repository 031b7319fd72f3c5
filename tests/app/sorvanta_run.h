#pragma once

#include "app/resources/sorvanta_templates.h"
#include "app/sorvanta_app.h"
#include "loam/preferences.h"
#include "loam/scratch_folder.h"
#include "quilt/offscreen/testing/offscreen_driver.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

// A fresh folder per test holding the program's settings, its index and the one fixed volume
// that it walks, tree/.
class SorvantaFolderTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        // The base puts the variable back after the test.
        setenv("SORVANTA_ROOTS", Path("tree").c_str(), 1);
        MakeFiles("tree", 0);
    }

    static constexpr char indexName[] = "data/Wendlemark/Sorvanta/sorvanta.idx";
    // The index folder that the program will find in its settings.
    void StoreIndexFolder(const std::string& folder) const {
        loam::SetPreferenceLocation(PreferenceCompany, PreferenceProduct);
        loam::GetPreferences().SetFileSpec(KeyIndexLocation, FileAt(folder));
    }
    void MakeFiles(const std::string& folder, int count) const {
        std::filesystem::create_directories(Path(folder));
        for (int i = 0; i < count; ++i)
            MakeFile(folder + "/f" + std::to_string(i), "x");
    }
};

// The program started as the process starts it, up to its main loop, on the offscreen driver.
class SorvantaRunTest : public SorvantaFolderTest {
protected:
    void TearDown() override {
        application.reset();
        SorvantaFolderTest::TearDown();
    }

    bool Start(const char* commandLine) {
        application = std::make_unique<SorvantaApp>();
        application->CreateImp();
        application->GetImp()->SetCommandLine(loam::String(commandLine));
        return application->GetImp()->Initialise() && application->Start();
    }
    quilt::Dialog* RebuildWindow() const { return driver.FindDialog(DialogRebuildIndex); }

    quilt::OffscreenDriver driver;
    std::unique_ptr<SorvantaApp> application;
};
