#include "loam/preferences.h"
#include "loam/scratch_folder.h"
#include "quilt/auto_pref.h"
#include "quilt/browse_dialog.h"
#include "quilt/drop_down_list.h"
#include "quilt/list_box.h"
#include "quilt/offscreen/offscreen_browse_dialog_imp.h"
#include "test_application.h"

#include <map>
#include <string>
#include <vector>

namespace {

constexpr uint16_t ListsId = 620;

constexpr int32_t Rows = 1034;
constexpr int32_t Pattern = 1032;
constexpr int32_t Option = 1046;

constexpr DialogControlTemplate controls[] = {
    {Pattern, ControlKind::ComboBoxWithEdit, "", {41, 7, 68, 189}, 0},
    {Option, ControlKind::AutoCheckBox, "&Option", {114, 9, 76, 10}, 0},
    {quilt::IdOK, ControlKind::DefaultPushButton, "OK", {196, 7, 50, 14}, 0},
    {Rows,
     ControlKind::ListView,
     "",
     {7, 43, 292, 69},
     quilt::StyleReportView | quilt::StyleSingleSelection | quilt::StyleSortAscending},
};

constexpr DialogTemplate templates[] = {
    {ListsId, "Lists", 306, 140, "MS Sans Serif", 8, quilt::DialogStyleCaption, controls},
};

using Texts = std::vector<std::string>;

// The template's dialog; what reaches its map is logged as "kind id word".
class ListsDialog : public Dialog {
public:
    ListsDialog() : Dialog(DialogResource(ListsId), nullptr) {}

    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    void OnInitDialog() override {
        Dialog::OnInitDialog();
        rows.BindToControl(this, Rows);
        pattern.Bind(this, Pattern, "UI.SearchPattern", true, true);
        option.Bind(this, Option, "Options.Flag", true);
    }
    void OnOK() override { log.push_back("ok"); }
    bool Log(int32_t kind, int32_t, int32_t id) {
        log.push_back(std::to_string(kind) + " " + std::to_string(id));
        return true;
    }
    bool LogWord(int32_t word) {
        log.push_back("activate " + std::to_string(word));
        return true;
    }
    bool LogCheck(int32_t row) {
        log.push_back("check " + std::to_string(row));
        return true;
    }

    quilt::ListBox rows;
    quilt::AutoPrefDropDownList pattern;
    quilt::AutoPrefCheckBox option;
    std::vector<std::string> log;

    static const quilt::MessageMapEntry entries[];
    static const quilt::MessageMap messageMap;
};

const quilt::MessageMapEntry ListsDialog::entries[] = {
    quilt::Notification(quilt::MsgEnterKey, Pattern, &ListsDialog::Log),
    quilt::Notification(quilt::MsgItemActivate, Rows, &ListsDialog::LogWord),
    quilt::Notification(quilt::MsgItemCheckChange, Rows, &ListsDialog::LogCheck),
    quilt::EndOfMap,
};
const quilt::MessageMap ListsDialog::messageMap{&Dialog::messageMap, entries};

class ListControlsTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        quilt::RegisterDialogTemplates(templates);
        loam::SetPreferenceLocation("Wendlemark", "ListTest");
    }

    void Open() {
        dialog = std::make_unique<ListsDialog>();
        ASSERT_NE(dialog->RunModeless(false), nullptr);
    }
    void Fill(const Texts& names) {
        for (const std::string& name : names) {
            int32_t row = -1;
            ASSERT_TRUE(dialog->rows.AddItem(loam::String(name.c_str()), &row, 0));
            dialog->rows.SetItemText(row, loam::String((name + " size").c_str()), 1);
        }
    }
    Texts Column(int32_t column) const {
        Texts texts;
        for (int32_t row = 0; row < driver.GetRowCount(*dialog, Rows); ++row)
            texts.push_back(driver.GetCellText(*dialog, Rows, row, column).GetCString());
        return texts;
    }
    Texts History() const {
        Texts texts;
        for (int32_t row = 0; row < dialog->pattern.GetCount(); ++row) {
            loam::String text;
            dialog->pattern.GetItemText(row, text, 0);
            texts.push_back(text.GetCString());
        }
        return texts;
    }
    void Serve() { driver.PumpMessages(); }
    static void StoreHistory(const Texts& rows, int32_t count) {
        loam::Preferences* node = loam::GetPreferences().GetChild("UI.SearchPattern");
        for (size_t i = 0; i < rows.size(); ++i) {
            if (!rows[i].empty())
                node->SetString(("Item" + std::to_string(i)).c_str(), rows[i].c_str());
        }
        node->SetInt("ItemCount", static_cast<uint32_t>(count));
    }
    static std::string Stored(const char* name) {
        loam::String text;
        loam::GetPreferences().GetChild("UI.SearchPattern")->GetString(name, text);
        return text.GetCString();
    }
    static uint32_t StoredCount() {
        uint32_t count = 0;
        loam::GetPreferences().GetChild("UI.SearchPattern")->GetInt("ItemCount", count);
        return count;
    }

    OffscreenDriver driver;
    std::unique_ptr<ListsDialog> dialog;
};

TEST_F(ListControlsTest, AReportListStartsWithItsPlaceholderColumnAndPlacesRowsByName) {
    Open();
    EXPECT_EQ(dialog->rows.GetNumberOfColumns(), 1);
    dialog->rows.SetNumberOfColumns(4);
    EXPECT_EQ(dialog->rows.GetNumberOfColumns(), 4);
    EXPECT_EQ(driver.GetColumnName(*dialog, Rows, 0),
              "Call SetNumberOfColumns() and SetColumnName()! :-)");
    EXPECT_EQ(dialog->rows.GetColumnWidth(0), 10000);
    EXPECT_EQ(dialog->rows.GetColumnWidth(3), 75);

    Fill({"beta", "Alpha", "gamma", "alpha", "Beta"});
    EXPECT_EQ(Column(0), (Texts{"Alpha", "alpha", "beta", "Beta", "gamma"}));
    EXPECT_EQ(Column(1)[0], "Alpha size");
    // A cell longer than any fixed buffer comes back whole.
    const std::string longText(300, 'x');
    ASSERT_TRUE(dialog->rows.SetItemText(0, loam::String(longText.c_str()), 2));
    loam::String read;
    ASSERT_TRUE(dialog->rows.GetItemText(0, read, 2));
    EXPECT_EQ(read.GetCString(), longText);
}

// The state starts as column 0 ascending, so the first click on it sorts descending; it
// survives new rows, which are placed by name and not by the remembered sort.
TEST_F(ListControlsTest, HeaderClicksSortByteWiseAndRememberTheirState) {
    Open();
    dialog->rows.SetNumberOfColumns(2);
    Fill({"b", "A", "a", "B"});
    quilt::SortDirection arrow = quilt::SortAscending;
    EXPECT_EQ(driver.GetSortColumn(*dialog, Rows, arrow), -1);
    const struct {
        int32_t column;
        Texts names;
        quilt::SortDirection arrow;
    } clicks[] = {
        {0, {"b", "a", "B", "A"}, quilt::SortDescending},
        {0, {"A", "B", "a", "b"}, quilt::SortAscending},
        {1, {"A", "B", "a", "b"}, quilt::SortAscending},
        {1, {"b", "a", "B", "A"}, quilt::SortDescending},
    };
    for (const auto& click : clicks) {
        driver.ClickColumnHeader(*dialog, Rows, click.column);
        Serve();
        EXPECT_EQ(Column(0), click.names) << click.column;
        EXPECT_EQ(driver.GetSortColumn(*dialog, Rows, arrow), click.column);
        EXPECT_EQ(arrow, click.arrow) << click.column;
    }
    // New rows stand in name order, which no heading's arrow may claim.
    dialog->rows.Clear();
    EXPECT_EQ(driver.GetSortColumn(*dialog, Rows, arrow), -1);
    Fill({"b", "A"});
    EXPECT_EQ(Column(0), (Texts{"A", "b"}));
    driver.ClickColumnHeader(*dialog, Rows, 1);
    Serve();
    EXPECT_EQ(Column(0), (Texts{"A", "b"}));
    EXPECT_EQ(driver.GetSortColumn(*dialog, Rows, arrow), 1);
    EXPECT_EQ(arrow, quilt::SortAscending);
}

int32_t ByWord(quilt::ListControl* list, uintptr_t, int32_t a, int32_t b, int32_t) {
    uint32_t left = 0;
    uint32_t right = 0;
    list->GetItemData(a, left);
    list->GetItemData(b, right);
    return static_cast<int32_t>(left) - static_cast<int32_t>(right);
}

// A sort reads each row's word and text from one copy taken before it; after it, every row's
// word and texts are read where the row now stands, not from that copy.
TEST_F(ListControlsTest, ASortByWordsMovesEachRowWithItsWordAndTexts) {
    Open();
    dialog->rows.SetNumberOfColumns(3);
    dialog->rows.SetColumnSorter(ByWord, 0, 2);
    const struct {
        const char* name;
        uint32_t word;
    } rows[] = {{"d", 2}, {"a", 4}, {"c", 1}, {"b", 3}, {"e", 2}};
    std::map<std::string, uint32_t> words;
    for (const auto& row : rows) {
        words[row.name] = row.word;
        int32_t place = -1;
        ASSERT_TRUE(dialog->rows.AddItem(loam::String(row.name), &place, row.word));
        dialog->rows.SetItemText(place, loam::String((std::string(row.name) + "!").c_str()), 1);
    }
    const struct {
        int32_t column;
        Texts names;
    } clicks[] = {
        {2, {"c", "d", "e", "b", "a"}},
        {2, {"a", "b", "d", "e", "c"}},
        {1, {"a", "b", "c", "d", "e"}},
    };
    for (const auto& click : clicks) {
        driver.ClickColumnHeader(*dialog, Rows, click.column);
        Serve();
        EXPECT_EQ(Column(0), click.names) << click.column;
        for (int32_t place = 0; place < dialog->rows.GetCount(); ++place) {
            loam::String name;
            loam::String mark;
            uint32_t word = 0;
            ASSERT_TRUE(dialog->rows.GetItemText(place, name, 0));
            ASSERT_TRUE(dialog->rows.GetItemText(place, mark, 1));
            ASSERT_TRUE(dialog->rows.GetItemData(place, word));
            EXPECT_EQ(std::string(mark.GetCString()), std::string(name.GetCString()) + "!");
            EXPECT_EQ(word, words.at(name.GetCString())) << name.GetCString();
        }
    }
}

// A click on a row's check box turns its mark and tells the dialog which row; the program's own
// change tells it too, but only when the mark really changes; a click on the text selects.
TEST_F(ListControlsTest, CheckMarksReportTheRowWhoseMarkChanged) {
    Open();
    Fill({"a", "b", "c"});
    dialog->rows.EnableCheckBoxes(true);
    const struct {
        const char* action;
        int32_t row;
        bool checked;
        Texts log;
    } steps[] = {
        {"click", 1, true, {"check 1"}}, {"click", 1, false, {"check 1"}},
        {"set", 2, true, {"check 2"}},   {"set", 2, true, {}},
        {"unset", 0, false, {}},         {"text", 0, false, {}},
    };
    for (const auto& step : steps) {
        dialog->log.clear();
        std::string action = step.action;
        if (action == "click") {
            driver.ClickCheckBox(*dialog, Rows, step.row);
        } else if (action == "text") {
            driver.ClickRow(*dialog, Rows, step.row);
        } else {
            dialog->rows.SetItemChecked(step.row, action == "set");
        }
        Serve();
        EXPECT_EQ(dialog->rows.IsItemChecked(step.row), step.checked) << action << step.row;
        EXPECT_EQ(dialog->log, step.log) << action << step.row;
    }
    EXPECT_TRUE(dialog->rows.IsItemSelected(0));
    dialog->rows.UncheckAll();
    EXPECT_FALSE(dialog->rows.IsItemChecked(2));
}

int32_t ByLength(quilt::ListControl* list, uintptr_t, int32_t a, int32_t b, int32_t column) {
    loam::String left;
    loam::String right;
    list->GetItemText(a, left, column);
    list->GetItemText(b, right, column);
    return left.GetLength() - right.GetLength();
}

TEST_F(ListControlsTest, ColumnSortersFallBackToTheDefaultThenToText) {
    quilt::ListBox list;
    EXPECT_EQ(list.GetColumnSorter(7), &quilt::ListControl::CompareText);
    list.SetColumnSorter(ByLength, 5, -1);
    EXPECT_EQ(list.GetColumnSorter(7), ByLength);
    list.SetColumnSorter(ByLength, 9, 1);
    // The table grows in fours: the columns it now holds without a sorter compare text.
    EXPECT_EQ(list.GetColumnSorter(0), &quilt::ListControl::CompareText);
    EXPECT_EQ(list.GetColumnSorterData(1), 9u);
    EXPECT_EQ(list.GetColumnSorter(3), &quilt::ListControl::CompareText);
    EXPECT_EQ(list.GetColumnSorter(4), ByLength);
    EXPECT_EQ(list.GetColumnSorterData(4), 5u);
}

TEST_F(ListControlsTest, SelectionActivationAndFitting) {
    Open();
    dialog->rows.SetNumberOfColumns(2);
    dialog->rows.SetColumnName(1, "Size");
    Fill({"", "b", "a"});
    EXPECT_FALSE(dialog->rows.IsTextSelected(""));
    ASSERT_TRUE(dialog->rows.SelectItem(0));
    EXPECT_FALSE(dialog->rows.IsTextSelected(""));
    EXPECT_TRUE(dialog->rows.SelectItemByText("b"));
    EXPECT_TRUE(dialog->rows.IsTextSelected("b"));

    driver.DoubleClickRow(*dialog, Rows, 1);
    Serve();
    EXPECT_EQ(dialog->log, (Texts{"activate 1"}));
    EXPECT_TRUE(dialog->rows.IsItemSelected(1));

    // Column 0 is fitted to its heading too; the last column only to its contents.
    dialog->rows.SetColumnName(0, "A long heading");
    dialog->rows.FitColumn(0);
    dialog->rows.FitColumn(1);
    EXPECT_GT(dialog->rows.GetColumnWidth(0), dialog->rows.GetColumnWidth(1));
    EXPECT_EQ(dialog->rows.GetColumnWidth(1), driver.GetColumnWidth(*dialog, Rows, 1));
}

TEST_F(ListControlsTest, TheHistoryKeepsEachTextOnceNewestFirst) {
    quilt::DropDownHistory history;
    for (const char* text : {"a", "b", "A", "a"})
        history.Add(text);
    ASSERT_EQ(history.GetCount(), 3);
    EXPECT_EQ(history.Get(0).text, "a");
    EXPECT_EQ(history.Get(1).text, "A");
    EXPECT_EQ(history.Get(2).text, "b");
    for (int i = 0; i < 30; ++i)
        history.Add(loam::String(std::to_string(i).c_str()));
    EXPECT_EQ(history.GetCount(), 19);
    EXPECT_EQ(history.Get(0).text, "29");
    EXPECT_FALSE(history.Insert(20, "x", 0));
    EXPECT_TRUE(history.Append("x", 0));
    EXPECT_FALSE(history.Append("y", 0));
}

TEST_F(ListControlsTest, HistoryModeKeepsTheFirstTwentyNativeRows) {
    Open();
    quilt::AutoPrefDropDownList& list = dialog->pattern;
    list.SetHistoryMode(false);
    list.Clear();
    for (int i = 0; i < 30; ++i)
        list.AddItem(loam::String(std::to_string(i).c_str()));
    list.SetHistoryMode(true);
    EXPECT_EQ(list.GetCount(), 20);
    EXPECT_EQ(History().back(), "19");
}

// Opening the list rebuilds it from the history and puts the newest entry in the field.
TEST_F(ListControlsTest, OpeningTheListReplacesTheTypedTextByTheNewestEntry) {
    StoreHistory({"older", "newest"}, 2);
    Open();
    dialog->pattern.AddToHistory("newest");
    driver.TypeText(*dialog, Pattern, "typed");
    Serve();
    loam::String text;
    dialog->pattern.GetText(text);
    EXPECT_EQ(text, "typed");
    driver.ToggleDropDown(*dialog, Pattern);
    Serve();
    EXPECT_EQ(driver.GetDropDownRows(*dialog, Pattern).size(), 2u);
    EXPECT_EQ(driver.GetControlText(*dialog, Pattern), "newest");
    driver.ChooseDropDownRow(*dialog, Pattern, 1);
    Serve();
    dialog->pattern.GetText(text);
    EXPECT_EQ(text, "older");
    EXPECT_EQ(History(), (Texts{"older", "newest"}));
}

TEST_F(ListControlsTest, ReturnInTheFieldRaisesEnterAndNotTheDefaultButton) {
    Open();
    driver.TypeText(*dialog, Pattern, "*.txt");
    driver.PressReturn(*dialog);
    Serve();
    EXPECT_EQ(dialog->log,
              (Texts{std::to_string(quilt::MsgEnterKey) + " " + std::to_string(Pattern)}));
}

TEST_F(ListControlsTest, AFirstRunLeavesTheDefaultsAndAnEmptyList) {
    Open();
    EXPECT_TRUE(dialog->option.IsChecked());
    EXPECT_EQ(dialog->pattern.GetCount(), 0);
    EXPECT_EQ(driver.GetControlText(*dialog, Pattern), "");
}

// What is stored at the close, from a history loaded from the store.
TEST_F(ListControlsTest, SavingTheListStoresTheHistoryWithTheCurrentText) {
    Texts twenty;
    for (int i = 0; i < 20; ++i)
        twenty.push_back("p" + std::to_string(i));
    const struct {
        const char* name;
        Texts stored;
        int32_t count;
        const char* typed;
        uint32_t savedCount;
        std::string first;
        std::string item19;
    } cases[] = {
        // The row behind the new count stays in the store, unread.
        {"a new pattern trims to 19", twenty, 20, "new", 19, "new", "p19"},
        {"the text of row 0 adds no double", {"a", "b"}, 2, "a", 2, "a", ""},
        {"an empty field adds nothing", {"a", "b"}, 2, "", 2, "a", ""},
        {"a gap in the numbers is passed over", {"a", "", "c"}, 3, "", 2, "a", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove_all(Path("config"));
        StoreHistory(c.stored, c.count);
        Open();
        dialog->pattern.SetText(c.typed);
        dialog->SaveAutoPrefs();
        EXPECT_EQ(StoredCount(), c.savedCount);
        EXPECT_EQ(Stored("Item0"), c.first);
        EXPECT_EQ(Stored("ItemText"), c.typed);
        EXPECT_EQ(Stored("Item19"), c.item19);
        dialog.reset();
    }
}

TEST_F(ListControlsTest, TheCheckBoxStoresItsState) {
    Open();
    driver.Click(*dialog, Option);
    Serve();
    dialog->SaveAutoPrefs();
    bool stored = true;
    ASSERT_TRUE(loam::GetPreferences().GetBool("Options.Flag", stored));
    EXPECT_FALSE(stored);
}

TEST_F(ListControlsTest, TheFolderChooserPreviewsAndKeepsTheLeaf) {
    const loam::FileSpec start("/home/user/sorvanta.idx");
    const struct {
        uint32_t flags;
        const char* selected;
        const char* status;
        const char* result;
    } cases[] = {
        {quilt::BrowsePreview, "/data", "Go: /data", "/data"},
        {quilt::BrowsePreview, "/usr/share", "Go: /home/user/sorvanta.idx", "/usr/share"},
        {quilt::BrowsePreview | quilt::BrowseKeepLeaf, "/data", "Go: /data/sorvanta.idx",
         "/data/sorvanta.idx"},
        {0, "/data", "Go: ", "/data"},
    };
    for (const auto& c : cases) {
        quilt::BrowseDialog chooser(c.flags, nullptr);
        std::string status;
        driver.OnNextFolderChoice([&](quilt::Offscreen_BrowseDialogImp& shown) {
            shown.Select(c.selected);
            status = shown.GetStatusText().GetCString();
            return loam::String(c.selected);
        });
        loam::FileSpec location = start;
        const loam::String prefix("Go: ");
        ASSERT_TRUE(chooser.Run(nullptr, &prefix, location));
        EXPECT_EQ(status, c.status);
        EXPECT_EQ(location.GetPath(), c.result);
    }
    // A cancel, and a run that nobody answers, keep the path.
    quilt::BrowseDialog chooser(quilt::BrowsePreview, nullptr);
    driver.OnNextFolderChoice([](quilt::Offscreen_BrowseDialogImp&) { return std::nullopt; });
    loam::FileSpec location = start;
    EXPECT_FALSE(chooser.Run(nullptr, nullptr, location));
    EXPECT_FALSE(chooser.Run(nullptr, nullptr, location));
    EXPECT_EQ(location.GetPath(), start.GetPath());
}

} // namespace
