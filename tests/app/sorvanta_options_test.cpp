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

} // namespace
