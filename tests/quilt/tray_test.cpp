#include "quilt/application.h"

#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_application_imp.h"
#include "quilt/offscreen/offscreen_driver.h"
#include "test_application.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using quilt::OffscreenDriver;

constexpr uint32_t Open = 300;
constexpr uint32_t Find = 301;
constexpr uint32_t Flash = 302;
constexpr uint16_t TrayIcon = 7;
constexpr uint16_t TrayTip = 8;
constexpr uint16_t TrayMenu = 5;

// A desktop with a notification area: records what the application asks of it.
class ShellImp : public quilt::Offscreen_ApplicationImp {
public:
    bool AddTrayIcon(const loam::ResourceId& icon, const loam::ResourceId& tip) override {
        calls.push_back("add " + std::to_string(icon.id) + " " + std::to_string(tip.id));
        return accepts;
    }
    bool ModifyTrayIcon(const loam::ResourceId& icon, const loam::ResourceId& tip) override {
        calls.push_back("modify " + std::to_string(icon.id) + " " + std::to_string(tip.id));
        return true;
    }
    void RemoveTrayIcon() override { calls.push_back("remove"); }
    uint32_t ShowTrayMenu(const loam::ResourceId& menu, uint32_t defaultCommand) override {
        calls.push_back("menu " + std::to_string(menu.id) + " " + std::to_string(defaultCommand));
        return Flash;
    }

    bool accepts = true;
    std::vector<std::string> calls;
};

// Records the commands its tray clicks give, the menus it prepares and its hot keys.
class TrayApplication : public quilt::Application {
public:
    explicit TrayApplication(bool tray = false, bool withShell = true) {
        useTray = tray;
        smallIconResource.id = TrayIcon;
        trayTipResource.id = TrayTip;
        trayMenuResource.id = TrayMenu;
        firstTrayCommand = Open;
        secondTrayCommand = Find;
        if (!withShell) {
            CreateImp();
            return;
        }
        auto platform = std::make_unique<ShellImp>();
        shell = platform.get();
        SetImp(std::move(platform));
    }
    bool OnCommand(int32_t id) override {
        commands.push_back(static_cast<uint32_t>(id));
        return true;
    }
    loam::ResourceId PrepareTrayMenu(const loam::ResourceId& menu, uint32_t event) override {
        preparedEvents.push_back(event);
        return menu;
    }
    void OnHotKey(uint32_t id) override { hotKeys.push_back(id); }
    void SetShowAtStart(bool show) { showAtStart = show; }
    void ClearTrayCommands() { firstTrayCommand = secondTrayCommand = 0; }

    ShellImp* shell = nullptr;
    std::vector<uint32_t> commands;
    std::vector<uint32_t> preparedEvents;
    std::vector<uint32_t> hotKeys;
};

using Calls = std::vector<std::string>;

TEST(TrayTest, ClassifyTrayEventReadsButtonClickAndShift) {
    using namespace quilt;
    const std::pair<uint32_t, TrayAction> cases[] = {
        {TrayEventRightButton | TrayEventRelease, TrayActionMenu},
        {TrayEventRightButton | TrayEventRelease | TrayEventShift, TrayActionMenu},
        {TrayEventRightButton | TrayEventPress, TrayActionNone},
        {TrayEventLeftButton | TrayEventPress, TrayActionFirstCommand},
        {TrayEventLeftButton | TrayEventDoubleClick | TrayEventControl, TrayActionFirstCommand},
        {TrayEventLeftButton | TrayEventPress | TrayEventAlt, TrayActionFirstCommand},
        {TrayEventLeftButton | TrayEventPress | TrayEventShift, TrayActionSecondCommand},
        {TrayEventLeftButton | TrayEventRelease, TrayActionNone},
        {TrayEventLeftButton | TrayEventRelease | TrayEventShift, TrayActionNone},
    };
    OffscreenDriver driver;
    TrayApplication application;
    for (const auto& [event, action] : cases) {
        EXPECT_EQ(application.ClassifyTrayEvent(event), action) << std::hex << event;
    }
}

TEST(TrayTest, StartAddsTheIconOnlyWhenAskedAndShowsTheWindowByTheRule) {
    struct Case {
        bool useTray, showAtStart, accepts;
        bool started, showing;
        Calls calls;
    };
    const Case cases[] = {
        {false, true, true, true, true, {}},
        {false, false, true, true, true, {}},
        {true, true, true, true, true, {"add 7 8"}},
        {true, false, true, true, false, {"add 7 8"}},
        {true, true, false, false, false, {"add 7 8"}},
    };
    for (const Case& c : cases) {
        OffscreenDriver driver;
        TrayApplication application(c.useTray);
        application.SetShowAtStart(c.showAtStart);
        application.shell->accepts = c.accepts;
        EXPECT_EQ(application.Start(), c.started) << c.useTray << c.showAtStart << c.accepts;
        EXPECT_EQ(driver.IsShowing(*quilt::Application::GetMainWindow()), c.showing);
        EXPECT_EQ(application.shell->calls, c.calls);
    }
}

TEST(TrayTest, ClicksGiveTheTrayCommandsOrTheOverride) {
    using namespace quilt;
    const uint32_t left = TrayEventLeftButton | TrayEventPress;
    const uint32_t menu = TrayEventRightButton | TrayEventRelease;
    OffscreenDriver driver;
    TrayApplication application(true);
    ASSERT_TRUE(application.Start());
    application.OnTrayEvent(left);
    application.OnTrayEvent(left | TrayEventShift);
    application.OnTrayEvent(TrayEventLeftButton | TrayEventRelease);
    application.OnTrayEvent(menu);
    EXPECT_EQ(application.commands, (std::vector<uint32_t>{Open, Find, Flash}));
    EXPECT_EQ(application.preparedEvents, std::vector<uint32_t>{menu});

    application.commands.clear();
    ASSERT_TRUE(application.OverrideTrayIcon({loam::ResourceKindIcon, 9}, {}, Flash));
    application.OnTrayEvent(left);
    ASSERT_TRUE(application.OverrideTrayIcon({loam::ResourceKindIcon, 9}, {}, 0));
    application.OnTrayEvent(left);
    application.RestoreTrayIcon();
    application.OnTrayEvent(left);
    EXPECT_EQ(application.commands, (std::vector<uint32_t>{Flash, Open, Open}));

    application.ClearTrayCommands();
    application.commands.clear();
    application.OnTrayEvent(left);
    application.OnTrayEvent(left | TrayEventShift);
    EXPECT_TRUE(application.commands.empty());

    application.Quit();
    EXPECT_EQ(application.shell->calls,
              (Calls{"add 7 8", "menu 5 300", "modify 9 0", "modify 9 0", "modify 7 8", "remove"}));
}

TEST(TrayTest, AnOverrideWithoutTheTrayShowsItsIconOnlyForItsTime) {
    OffscreenDriver driver;
    TrayApplication application;
    ASSERT_TRUE(application.Start());
    application.Quit();
    EXPECT_TRUE(application.shell->calls.empty());

    ASSERT_TRUE(application.OverrideTrayIcon({loam::ResourceKindIcon, 9}, {}, Flash));
    application.RestoreTrayIcon();
    application.RestoreTrayIcon();
    EXPECT_EQ(application.shell->calls, (Calls{"add 9 0", "remove"}));
}

TEST(TrayTest, TheOffscreenDesktopHasNoTraySoATrayApplicationCannotStart) {
    OffscreenDriver driver;
    TrayApplication application(true, false);
    EXPECT_FALSE(application.Start());
    EXPECT_FALSE(application.IsTrayActive());
}

TEST(TrayTest, AHotKeyReachesTheApplicationAsUserInput) {
    OffscreenDriver driver;
    const uint32_t start = driver.Now();
    TrayApplication application(false, false);
    ASSERT_TRUE(application.Start());
    RecordingIdleHandler idle;
    idle.EnableIdle();
    ASSERT_TRUE(driver.RunUntilIdle());

    uint32_t id = 0;
    uint32_t taken = 0;
    ASSERT_TRUE(application.RegisterHotKey('F', quilt::ModifierControl, id));
    EXPECT_NE(id, 0u);
    EXPECT_FALSE(application.RegisterHotKey('F', quilt::ModifierControl, taken));
    EXPECT_EQ(taken, 0u);

    driver.PostHotKey(id, start + 500);
    ASSERT_TRUE(driver.RunUntil([&] { return idle.times.size() == 2; }));
    EXPECT_EQ(application.hotKeys, std::vector<uint32_t>{id});
    EXPECT_EQ(idle.times[1], start + 2550);

    const uint32_t registered = id;
    application.UnregisterHotKey(id);
    EXPECT_EQ(id, 0u);
    driver.PostHotKey(registered);
    ASSERT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(application.hotKeys.size(), 1u);
    EXPECT_TRUE(application.RegisterHotKey('F', quilt::ModifierControl, id));
}

} // namespace
