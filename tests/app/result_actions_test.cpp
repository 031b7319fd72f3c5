#include "quilt/offscreen/offscreen_popup_menu_imp.h"
#include "search/search_results_list.h"
#include "sorvanta_window_run.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

constexpr char foreignName[] = "caf\xe9 menu.txt"; // Latin-1, not UTF-8

// The search window with a desktop whose default application, for folders and for text files
// alike, is a small program that writes down what it was given.
class ResultActionsTest : public SorvantaWindowTest {
protected:
    void SetUp() override {
        SorvantaWindowTest::SetUp();
        RecordLaunches({"inode/directory", "text/plain"});
    }

    // The lines that the recorder has written by the time it has written `count`.
    Texts Recorded(size_t count) {
        Texts lines;
        for (int wait = 0; wait < 200; ++wait) {
            lines.clear();
            std::string whole = ReadWhole("recorder.log");
            for (size_t start = 0, end; (end = whole.find('\n', start)) != std::string::npos;
                 start = end + 1)
                lines.push_back(whole.substr(start, end - start));
            if (lines.size() >= count)
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return lines;
    }

    // Picks the item of the row's context menu, asked for with the right button.
    void ChooseFromMenu(int32_t row, const char* item) {
        driver.OnNextMenu(quilt::OffscreenDriver::PickMenuItem(item));
        driver.RightClickRow(*Main(), MainResultsList, row);
        driver.RunUntilIdle();
    }

    // The items of the next menu, each with "(greyed)" when it can't be chosen; the menu is
    // dismissed.
    void ReadNextMenu(Texts& items) {
        driver.OnNextMenu([&items](const quilt::Offscreen_PopupMenuImp& menu) {
            for (const quilt::MenuItem& item : menu.GetItems())
                items.push_back(std::string(item.text.GetCString()) +
                                (item.enabled ? "" : " (greyed)"));
            return std::nullopt;
        });
    }

    std::string Clipboard() const { return driver.GetClipboardText().GetCString(); }
};

TEST_F(ResultActionsTest, TheRowMenuOffersFourCommandsAndGreysTheFolderOfARoot) {
    MakeFiles("tree/docs", 1);
    StartWindow();
    BuildIndex();
    const struct {
        const char* pattern;
        Texts items;
    } cases[] = {
        {"f0", {"&Open", "Open Containing &Folder", "Copy &Path", "Copy &Name"}},
        {"*tree*", {"&Open", "Open Containing &Folder (greyed)", "Copy &Path", "Copy &Name"}},
    };
    for (const auto& c : cases) {
        Find(c.pattern);
        ASSERT_EQ(driver.GetRowCount(*Main(), MainResultsList), 1) << c.pattern;
        Texts items;
        ReadNextMenu(items);
        driver.RightClickRow(*Main(), MainResultsList, 0);
        driver.RunUntilIdle();
        EXPECT_EQ(items, c.items) << c.pattern;
        EXPECT_EQ(driver.GetSelectedRow(*Main(), MainResultsList), 0) << "the right button selects";
    }
}

// The Menu key, and Shift+F10, ask for the menu of the selected row; without one, or with the
// right button below the rows, there is nothing to show.
TEST_F(ResultActionsTest, TheMenuKeyShowsTheMenuOfTheSelectedRowOnly) {
    MakeFiles("tree", 2);
    StartWindow();
    BuildIndex();
    Find("f*");
    driver.PressMenuKey(*Main(), MainResultsList);
    driver.RightClickRow(*Main(), MainResultsList, 2);
    driver.RunUntilIdle();
    EXPECT_EQ(driver.GetMenusShown(), 0);
    EXPECT_EQ(driver.GetSelectedRow(*Main(), MainResultsList), -1);
    driver.ClickRow(*Main(), MainResultsList, 1);
    for (bool shiftF10 : {false, true}) {
        driver.OnNextMenu(quilt::OffscreenDriver::PickMenuItem("Copy &Name"));
        driver.PressMenuKey(*Main(), MainResultsList, shiftF10);
        driver.RunUntilIdle();
        EXPECT_EQ(Clipboard(), "f1") << shiftF10;
    }
    EXPECT_EQ(driver.GetMenusShown(), 2);
}

TEST_F(ResultActionsTest, CopiesThePathOrTheNameAsTheirBytes) {
    MakeFiles("tree/docs", 1);
    MakeFile(std::string("tree/") + foreignName, "x");
    StartWindow();
    BuildIndex();
    const struct {
        const char* pattern;
        const char* item; // null: Ctrl+C on the row
        std::string copied;
    } cases[] = {
        {"f0", "Copy &Path", Path("tree/docs/f0")},
        {"f0", "Copy &Name", "f0"},
        {"f0", nullptr, Path("tree/docs/f0")},
        {"caf*", "Copy &Path", Path(std::string("tree/") + foreignName)},
        {"caf*", "Copy &Name", foreignName},
        {"caf*", nullptr, Path(std::string("tree/") + foreignName)},
        {"*tree*", nullptr, Path("tree")},
    };
    for (const auto& c : cases) {
        Find(c.pattern);
        if (c.item != nullptr) {
            ChooseFromMenu(0, c.item);
        } else {
            driver.ClickRow(*Main(), MainResultsList, 0);
            driver.PressKey(*Main(), 'C', quilt::ModifierControl);
            driver.RunUntilIdle();
        }
        EXPECT_EQ(Clipboard(), c.copied) << c.pattern << " " << (c.item ? c.item : "Ctrl+C");
    }
}

// Return on a selected row is a double click; without a selected row it is Find.
TEST_F(ResultActionsTest, ReturnOnASelectedRowOpensItsFolder) {
    MakeFiles("tree/docs", 2);
    StartWindow();
    BuildIndex();
    Find("f*");
    driver.ClickRow(*Main(), MainResultsList, 1);
    driver.PressReturn(*Main());
    driver.RunUntilIdle();
    EXPECT_EQ(Recorded(1), Texts{Path("tree/docs")});
    EXPECT_EQ(Text(MainSearchStatus).rfind("2 results found matching 'f*'", 0), 0u);
}

// With no file manager on the session bus the folder opens as a double click opens it.
TEST_F(ResultActionsTest, OpenReachesTheApplicationOfTheTypeAndTheFolderTheFolderHandler) {
    ScopedEnvironment noBus("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + Path("no-bus")).c_str());
    std::filesystem::create_directories(Path("tree/docs"));
    MakeFile("tree/docs/note.txt", "hello");
    MakeFile(std::string("tree/") + foreignName, "hello");
    StartWindow();
    BuildIndex();
    Find("note.txt");
    ChooseFromMenu(0, "&Open");
    EXPECT_EQ(Recorded(1), Texts{Path("tree/docs/note.txt")});
    ChooseFromMenu(0, "Open Containing &Folder");
    EXPECT_EQ(Recorded(2), (Texts{Path("tree/docs/note.txt"), Path("tree/docs")}));
    Find("caf*");
    ChooseFromMenu(0, "&Open");
    EXPECT_EQ(Recorded(3), (Texts{Path("tree/docs/note.txt"), Path("tree/docs"),
                                  Path(std::string("tree/") + foreignName)}));

    std::filesystem::remove(Path("tree/docs/note.txt"));
    Find("note.txt");
    Said said;
    Answer(1001, said);
    ChooseFromMenu(0, "&Open");
    EXPECT_EQ(said.messages,
              Texts{"Error: The application tried to open a file that did not exist."});
}

TEST_F(ResultActionsTest, ARowDragsOutAsItsPath) {
    MakeFiles("tree/docs", 1);
    MakeFile(std::string("tree/") + foreignName, "x");
    StartWindow();
    BuildIndex();
    Find("caf*");
    const std::optional<loam::String> path = driver.DragRowOut(*Main(), MainResultsList, 0);
    ASSERT_TRUE(path.has_value());
    EXPECT_EQ(std::string(path->GetCString()), Path(std::string("tree/") + foreignName));
    Find("nothing");
    EXPECT_FALSE(driver.DragRowOut(*Main(), MainResultsList, 0).has_value());
}

// Another process replaces the index file: the rows on the screen stay until the next Find,
// which loads the new index first. A file that does not load leaves the old index searched.
TEST_F(ResultActionsTest, ANewerIndexOnDiskIsTakenAtTheNextFind) {
    constexpr char indexFile[] = "data/Wendlemark/Sorvanta/sorvanta.idx";
    MakeFiles("tree", 1);
    StartWindow();
    BuildIndex();
    std::filesystem::copy_file(Path(indexFile), Path("one.idx"));
    MakeFiles("tree/more", 2);
    BuildIndex();
    Find("f*");
    ASSERT_EQ(Column(0), (Texts{"f0", "f0", "f1"}));

    std::filesystem::rename(Path("one.idx"), Path(indexFile));
    EXPECT_EQ(Column(0), (Texts{"f0", "f0", "f1"})) << "nothing changes before a Find";
    Find("f*");
    EXPECT_EQ(Column(0), Texts{"f0"});
    EXPECT_EQ(Text(MainIndexStatus)
                  .rfind("Index status good, updated just now, 1 files in 1 "
                         "folders",
                         0),
              0u)
        << Text(MainIndexStatus);

    MakeFile("damaged.idx", "not an index");
    std::filesystem::rename(Path("damaged.idx"), Path(indexFile));
    Find("f*");
    EXPECT_EQ(Column(0), Texts{"f0"}) << "the old index is still searched";
    const std::string said = Text(MainIndexStatus);
    EXPECT_FALSE(said.empty());
    EXPECT_EQ(said.rfind("Index status", 0), std::string::npos) << said;
}

} // namespace
