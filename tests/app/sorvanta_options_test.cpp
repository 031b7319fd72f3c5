#include "app/file_mover.h"
#include "quilt/clock.h"
#include "quilt/offscreen/offscreen_browse_dialog_imp.h"
#include "sorvanta_window_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <sys/stat.h>

namespace {

using Texts = std::vector<std::string>;

constexpr char movedFile[] = "new/sorvanta.idx";

// Every read of the driver's clock takes a millisecond, so that time passes while a copy serves
// messages between its blocks.
struct SlowClock : quilt::Clock {
    explicit SlowClock(quilt::Clock& driverClock) : clock(driverClock) {}
    uint32_t GetTickCount() override {
        clock.Sleep(1);
        return clock.GetTickCount();
    }
    void Sleep(uint32_t milliseconds) override { clock.Sleep(milliseconds); }
    quilt::Clock& clock;
};

class SorvantaOptionsTest : public SorvantaWindowTest {
protected:
    void SetUp() override {
        SorvantaWindowTest::SetUp();
        MakeFiles("old", 0);
        MakeFiles("new", 0);
        StoreIndexFolder("old");
    }

    // Opens the options, lets `act` work in them, and runs until every dialog has ended.
    void InOptions(const std::function<void(quilt::Dialog&)>& act) {
        driver.OnNextModal([this, act](quilt::Dialog& options) {
            EXPECT_EQ(driver.GetText(options), "Sorvanta Options");
            act(options);
        });
        driver.Click(*Main(), MainOptionsButton);
        driver.RunUntilIdle();
        EXPECT_EQ(driver.GetWaitingModalActions(), 0u);
    }
    // Puts a folder in the box as a user does, ticks automatic wildcards and presses OK. The
    // box's tick is stored only if OK closes the dialog.
    void ChooseFolder(quilt::Dialog& options, const std::string& folder) {
        driver.Click(options, OptionsIndexFolder);
        for (size_t i = driver.GetControlText(options, OptionsIndexFolder).GetLength(); i > 0; --i)
            driver.PressKey(options, quilt::KeyBackspace);
        driver.TypeText(options, OptionsIndexFolder, folder.c_str());
        driver.Click(options, OptionsAutoWildcards);
        driver.Click(options, quilt::IdOK);
    }
    std::string IndexFolder() const { return SorvantaApp::GetIndexFolder().GetPath().GetCString(); }
    bool WildcardsStored() const {
        bool stored = false;
        loam::GetPreferences().GetBool(KeyAutoWildcards, stored);
        return stored;
    }
};

TEST_F(SorvantaOptionsTest, TheSliderShowsAndKeepsTheLimitEvenOnCancel) {
    StartWindow();
    SorvantaOptions::SetMaxResults(2000);
    InOptions([this](quilt::Dialog& options) {
        EXPECT_EQ(driver.GetSliderPosition(options, OptionsLimitSlider), 2);
        EXPECT_EQ(driver.GetControlText(options, OptionsLimitLabel), "2,000");
        driver.MoveSlider(options, OptionsLimitSlider, 50);
        driver.PumpMessages();
        EXPECT_EQ(driver.GetControlText(options, OptionsLimitLabel), "50,000");
        driver.Click(options, OptionsAutoWildcards);
        driver.PressEscape(options);
    });
    EXPECT_EQ(SorvantaOptions::GetMaxResults(), 50000);
    EXPECT_FALSE(WildcardsStored());
}

TEST_F(SorvantaOptionsTest, TheBrowseButtonPutsTheChosenFolderInTheBox) {
    StartWindow();
    std::string caption;
    driver.OnNextFolderChoice([&](quilt::Offscreen_BrowseDialogImp& chooser) {
        caption = chooser.GetCaption().GetCString();
        return loam::String(Path("new").c_str());
    });
    InOptions([this](quilt::Dialog& options) {
        driver.Click(options, OptionsBrowseButton);
        driver.PumpMessages();
        EXPECT_EQ(driver.GetControlText(options, OptionsIndexFolder).GetCString(), Path("new"));
        driver.PressEscape(options);
    });
    EXPECT_EQ(caption, "Select index location...");
    EXPECT_EQ(IndexFolder(), Path("old"));
}

// Each way a move can end, with what the user is told and answers.
TEST_F(SorvantaOptionsTest, EveryOutcomeOfAMoveIsTalkedThrough) {
    constexpr char moveFailed[] = "Unable to move index file...: ";
    constexpr char question[] =
        "Index Location...: There was a problem moving the existing index file.  Do you want to "
        "use the new location to store new indexes in anyway?";
    const std::string targetExists = std::string(moveFailed) +
                                     "The index file could not be moved to the new location, "
                                     "because a file of that name already exists.";
    const struct {
        const char* name;
        bool oldIndex;
        bool targetThere;
        const char* typed;
        int32_t answer; // of the question, 0 when none is asked
        Texts said;
        const char* folderAfter;
        bool closedWithOk;
        bool oldFileAfter;
        bool newFileAfter;
        bool volumeFull = false; // the target's volume has 4 bytes free
    } cases[] = {
        {"an unchanged folder", true, false, "old", 0, {}, "old", true, true, false},
        {"a move", true, false, "new", 0, {}, "new", true, false, true},
        {"no index to move", false, false, "new", 0, {}, "new", true, false, false},
        {"a target that exists, and No",
         true,
         true,
         "new",
         QuestionSecondButtonId,
         {targetExists, question},
         "old",
         false,
         true,
         true},
        {"a target that exists, and Yes",
         true,
         true,
         "new",
         QuestionFirstButtonId,
         {targetExists, question},
         "new",
         true,
         true,
         true},
        {"a folder that is missing",
         true,
         false,
         "missing",
         QuestionFirstButtonId,
         {std::string(moveFailed) + "The index could not be copied to the new location.\n\n" +
              "(Reason: The file '" + Path("missing/sorvanta.idx") +
              "' could not be opened (reason: No such file or directory).)",
          question},
         "missing",
         true,
         true,
         false},
        {"a full volume, and Yes",
         true,
         false,
         "new",
         QuestionFirstButtonId,
         {std::string(moveFailed) + "There is not enough space to store the index in the new "
                                    "location - choose a different location instead.",
          question},
         "new",
         true,
         true,
         false,
         true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove_all(Path("config"));
        std::filesystem::remove(Path("old/sorvanta.idx"));
        std::filesystem::remove(Path(movedFile));
        StoreIndexFolder("old");
        if (c.oldIndex)
            MakeFile("old/sorvanta.idx", "the index");
        if (c.targetThere)
            MakeFile(movedFile, "in the way");
        FileMover::SetFreeSpaceQuery(nullptr);
        if (c.volumeFull) {
            FileMover::SetFreeSpaceQuery([](const loam::FileSpec&, uint32_t& bytes) {
                bytes = 4;
                return true;
            });
        }
        StartWindow();
        Said said;
        InOptions([&](quilt::Dialog& options) {
            ChooseFolder(options, Path(c.typed));
            if (c.answer != 0) {
                // The progress of the move, the failure, the question.
                driver.OnNextModal([](quilt::Dialog&) {});
                Answer(AlertOkId, said);
                Answer(c.answer, said);
            }
        });
        EXPECT_EQ(said.messages, c.said);
        EXPECT_EQ(IndexFolder(), Path(c.folderAfter));
        EXPECT_EQ(WildcardsStored(), c.closedWithOk);
        EXPECT_EQ(Exists("old/sorvanta.idx"), c.oldFileAfter);
        EXPECT_EQ(Exists(movedFile), c.newFileAfter);
        application.reset();
    }
    FileMover::SetFreeSpaceQuery(nullptr);
    struct stat status {};
    MakeFile("old/sorvanta.idx", "the index");
    StoreIndexFolder("old");
    StartWindow();
    InOptions([&](quilt::Dialog& options) { ChooseFolder(options, Path("new")); });
    ASSERT_EQ(::stat(Path(movedFile).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(ReadWhole(movedFile), "the index");
}

// A cancel leaves the dialog open and the index where it was, with no part of it at the target.
TEST_F(SorvantaOptionsTest, AMoveCancelledHalfWayLeavesTheIndexInPlace) {
    const struct {
        const char* name;
        uint32_t cancelAfter; // ms after the dialog comes up
    } cases[] = {
        {"before the work begins", 0},
        {"half way", 60},
    };
    MakeFile("old/sorvanta.idx", std::string(4 * 1024 * 1024, 'x'));
    StartWindow();
    quilt::Clock& driverClock = quilt::GetClock();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SlowClock clock(driverClock);
        InOptions([&](quilt::Dialog& options) {
            ChooseFolder(options, Path("new"));
            driver.OnNextModal([&](quilt::Dialog& progress) {
                EXPECT_EQ(driver.GetText(progress), "Moving existing index file...");
                quilt::SetClock(&clock);
                driver.Click(progress, quilt::IdCancel, driver.Now() + c.cancelAfter);
            });
        });
        quilt::SetClock(&driverClock);
        EXPECT_EQ(IndexFolder(), Path("old"));
        EXPECT_FALSE(WildcardsStored());
        EXPECT_TRUE(Exists("old/sorvanta.idx"));
        EXPECT_EQ(std::filesystem::directory_iterator(Path("new")),
                  std::filesystem::directory_iterator());
    }
}

// The index is always where the settings say. A folder that is not a full path is refused before
// anything moves; a new folder that the settings cannot store leaves the index, the settings and
// the folder in force as they were, with the user told why.
TEST_F(SorvantaOptionsTest, TheIndexStaysWhereTheSettingsSay) {
    constexpr char notFull[] = "Index Location...: The index location must be a full folder path, "
                               "beginning with '/': a relative folder would depend on where "
                               "Sorvanta was started.";
    constexpr char notStored[] = "The new index location could not be stored in the settings. "
                                 "The index stays where it was.\n\n(Reason: The settings file "
                                 "could not be written.)";
    const struct {
        const char* name;
        bool oldIndex;
        std::string typed;
        bool settingsAFolder;
        Texts said;
    } cases[] = {
        {"an empty folder", true, "", false, {notFull}},
        {"a relative folder", true, "new", false, {notFull}},
        {"a relative folder, no index", false, "./new", false, {notFull}},
        {"settings that cannot be written, with an index to move",
         true,
         Path("new"),
         true,
         {std::string("Unable to move index file...: ") + notStored}},
        {"settings that cannot be written, no index",
         false,
         Path("new"),
         true,
         {std::string("Index Location...: ") + notStored}},
    };
    const std::string settingsFile = "config/Wendlemark/Sorvanta.conf";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove_all(Path("config"));
        std::filesystem::remove(Path("old/sorvanta.idx"));
        StoreIndexFolder("old");
        if (c.oldIndex)
            MakeFile("old/sorvanta.idx", "the index");
        StartWindow();
        if (c.settingsAFolder) {
            std::filesystem::remove(Path(settingsFile));
            std::filesystem::create_directories(Path(settingsFile));
        }
        Said said;
        InOptions([&](quilt::Dialog& options) {
            ChooseFolder(options, c.typed);
            if (c.oldIndex && c.settingsAFolder)
                driver.OnNextModal([](quilt::Dialog&) {});
            Answer(AlertOkId, said);
        });
        EXPECT_EQ(said.messages, c.said);
        EXPECT_EQ(IndexFolder(), Path("old"));
        EXPECT_EQ(Exists("old/sorvanta.idx"), c.oldIndex);
        EXPECT_FALSE(Exists(movedFile));
        application.reset();
        std::filesystem::remove_all(Path("config"));
    }
}

// The new folder is stored while the index stands at both places, so a kill between two steps
// leaves the settings naming a folder that holds it; the original goes only after that.
TEST_F(SorvantaOptionsTest, TheNewFolderIsStoredBeforeTheOriginalGoes) {
    MakeFile("old/sorvanta.idx", "the index");
    StartWindow();
    const struct {
        const char* name;
        bool stored;
        int32_t status;
        bool oldAfter, newAfter;
    } cases[] = {
        {"stored", true, FileMover::StatusMoved, false, true},
        {"not stored", false, FileMover::StatusNotStored, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        if (!Exists("old/sorvanta.idx"))
            std::filesystem::rename(Path(movedFile), Path("old/sorvanta.idx"));
        FileMover mover(FileAt("old/sorvanta.idx"), FileAt(movedFile));
        std::vector<std::pair<bool, bool>> seen;
        mover.SetPlaceKeeper([&](bool isNew) {
            seen.emplace_back(Exists("old/sorvanta.idx"), Exists(movedFile));
            EXPECT_TRUE(isNew);
            return c.stored || loam::RaiseError(loam::ErrorWrite, "no room for settings");
        });
        ProgressDialog progress(&mover, loam::String("Moving"), nullptr);
        driver.OnNextModal([](quilt::Dialog&) {});
        progress.RunModal(true);
        EXPECT_EQ(mover.GetStatus(), c.status);
        EXPECT_EQ(seen, (std::vector<std::pair<bool, bool>>{{true, true}}));
        EXPECT_EQ(Exists("old/sorvanta.idx"), c.oldAfter);
        EXPECT_EQ(Exists(movedFile), c.newAfter);
        loam::String reason;
        EXPECT_EQ(mover.GetReason(reason), !c.stored);
        EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNone);
    }
}

} // namespace
