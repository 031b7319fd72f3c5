#include "quilt/offscreen/offscreen_popup_menu_imp.h"
#include "quilt/popup_menu.h"
#include "test_application.h"

#include <optional>
#include <string>
#include <vector>

namespace {

using quilt::MenuItemTemplate;
using quilt::MenuSide;
using quilt::Offscreen_PopupMenuImp;
using quilt::PopupMenu;

constexpr uint16_t FileMenuId = 410;
constexpr int32_t OpenCommand = 501;
constexpr int32_t RenameCommand = 502;
constexpr int32_t DeleteCommand = 503;

constexpr MenuItemTemplate fileItems[] = {
    {OpenCommand, "&Open", 0},
    {RenameCommand, "Re&name", quilt::MenuItemGreyed},
    {0, "", quilt::MenuItemSeparator},
    {DeleteCommand, "&Delete && forget", 0},
};

constexpr quilt::MenuTemplate menus[] = {{FileMenuId, fileItems}};

class PopupMenuTest : public testing::Test {
protected:
    PopupMenuTest() { quilt::RegisterMenuTemplates(menus); }

    OffscreenDriver driver;
    TestApplication application;
};

std::vector<std::string> Texts(const std::vector<quilt::MenuItem>& items) {
    std::vector<std::string> texts;
    for (const quilt::MenuItem& item : items) {
        texts.push_back(item.separator ? "-"
                                       : std::string(item.text.GetCString()) +
                                             (item.enabled ? "" : " (greyed)"));
    }
    return texts;
}

TEST_F(PopupMenuTest, LoadsTheTemplateInOrderWithGreyedItemsAndSeparators) {
    PopupMenu menu;
    ASSERT_TRUE(menu.Load(quilt::MenuResource(FileMenuId)));
    EXPECT_EQ(Texts(menu.GetItems()),
              (std::vector<std::string>{"&Open", "Re&name (greyed)", "-", "&Delete && forget"}));
    EXPECT_TRUE(menu.IsItemEnabled(OpenCommand));
    EXPECT_FALSE(menu.IsItemEnabled(RenameCommand));
}

TEST_F(PopupMenuTest, AMenuThatIsNotThereLeavesTheItemsAlone) {
    PopupMenu menu;
    menu.AddItem(OpenCommand, loam::String("&Open"));
    EXPECT_FALSE(menu.Load(quilt::MenuResource(FileMenuId + 1)));
    EXPECT_FALSE(menu.Load(loam::ResourceId{loam::ResourceKindDialog, FileMenuId}));
    EXPECT_EQ(Texts(menu.GetItems()), std::vector<std::string>{"&Open"});
}

TEST_F(PopupMenuTest, OnlyAnEnabledItemCanBeChosen) {
    struct Case {
        const char* what;
        std::optional<size_t> picked;
        int32_t command;
    };
    const Case cases[] = {
        {"the first item", 0, OpenCommand},
        {"the last item", 3, DeleteCommand},
        {"a greyed item", 1, 0},
        {"a separator", 2, 0},
        {"a place below the items", 4, 0},
        {"a dismissed menu", std::nullopt, 0},
    };
    for (const Case& c : cases) {
        PopupMenu menu;
        menu.Load(quilt::MenuResource(FileMenuId));
        driver.OnNextMenu([&c](const Offscreen_PopupMenuImp&) { return c.picked; });
        EXPECT_EQ(menu.TrackAt(application.GetWindow(), quilt::Point{5, 6}), c.command) << c.what;
    }
    EXPECT_EQ(driver.GetWaitingMenuAnswers(), 0u);
}

TEST_F(PopupMenuTest, GreyingAnItemByCommandDecidesWhetherItCanBeChosen) {
    PopupMenu menu;
    menu.Load(quilt::MenuResource(FileMenuId));
    EXPECT_TRUE(menu.EnableItem(RenameCommand, true));
    EXPECT_TRUE(menu.EnableItem(OpenCommand, false));
    EXPECT_FALSE(menu.EnableItem(0, true)) << "a separator is no command";
    EXPECT_FALSE(menu.EnableItem(999, true));
    driver.OnNextMenu(OffscreenDriver::PickMenuItem("Re&name"));
    EXPECT_EQ(menu.TrackAt(application.GetWindow(), quilt::Point{}), RenameCommand);
    driver.OnNextMenu(OffscreenDriver::PickMenuItem("&Open"));
    EXPECT_EQ(menu.TrackAt(application.GetWindow(), quilt::Point{}), 0);
}

TEST_F(PopupMenuTest, TheMenuComesUpWhereItWasAskedFor) {
    PopupMenu menu;
    menu.Load(quilt::MenuResource(FileMenuId));
    quilt::Rect client;
    application.GetWindow().GetClientRect(client);
    struct Seen {
        quilt::Window* window = nullptr;
        Rect area;
        MenuSide side = MenuSide::Below;
    } seen;
    auto look = [&seen](const Offscreen_PopupMenuImp& shown) -> std::optional<size_t> {
        seen = Seen{&shown.GetWindow(), shown.GetArea(), shown.GetSide()};
        return std::nullopt;
    };
    driver.OnNextMenu(look);
    menu.TrackAt(application.GetWindow(), quilt::Point{30, 40});
    EXPECT_EQ(seen.window, &application.GetWindow());
    EXPECT_TRUE(seen.area.Equals(Rect{30, 40, 30, 40}));
    EXPECT_EQ(seen.side, MenuSide::Below);
    driver.OnNextMenu(look);
    menu.TrackBeside(application.GetWindow(), MenuSide::Right);
    EXPECT_TRUE(seen.area.Equals(client));
    EXPECT_EQ(seen.side, MenuSide::Right);
}

TEST_F(PopupMenuTest, AnEmptyMenuOrOneWithoutAWindowIsNotShown) {
    PopupMenu empty;
    EXPECT_EQ(empty.TrackAt(application.GetWindow(), quilt::Point{}), 0);
    PopupMenu menu;
    menu.Load(quilt::MenuResource(FileMenuId));
    quilt::Window unmade;
    EXPECT_EQ(menu.TrackAt(unmade, quilt::Point{}), 0);
    EXPECT_EQ(driver.GetMenusShown(), 0);
}

} // namespace
