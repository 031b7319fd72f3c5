#include "quilt/application.h"

#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_application_imp.h"
#include "test_application.h"

#include <memory>
#include <string>

namespace {

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

// Records the commands its tray clicks give and its hot keys.
class TrayApplication : public quilt::Application {
public:
    explicit TrayApplication(bool tray = false) {
        useTray = tray;
        smallIconResource.id = TrayIcon;
        trayTipResource.id = TrayTip;
        trayMenuResource.id = TrayMenu;
        firstTrayCommand = Open;
        secondTrayCommand = Find;
        auto platform = std::make_unique<ShellImp>();
        shell = platform.get();
        SetImp(std::move(platform));
    }
    bool OnCommand(int32_t id) override {
        commands.push_back(static_cast<uint32_t>(id));
        return true;
    }
    void OnHotKey(uint32_t id) override { hotKeys.push_back(id); }
    void SetShowAtStart(bool show) { showAtStart = show; }

    ShellImp* shell = nullptr;
    std::vector<uint32_t> commands;
    std::vector<uint32_t> hotKeys;
};

using Calls = std::vector<std::string>;

TEST(TrayTest, StartAddsTheIconOnlyWhenAskedAndShowsTheWindowByTheRule) {
    struct Case {
        bool useTray, showAtStart, accepts, started, showing;
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
    OffscreenDriver driver;
    TrayApplication application(true);
    ASSERT_TRUE(application.Start());
    // A press or a double click gives the first command, or with Shift the second; a release
    // gives nothing but on the right button, where the menu's choice is the command.
    application.OnTrayEvent(left | TrayEventControl);
    application.OnTrayEvent(left | TrayEventShift);
    application.OnTrayEvent(TrayEventLeftButton | TrayEventDoubleClick);
    application.OnTrayEvent(TrayEventLeftButton | TrayEventRelease);
    application.OnTrayEvent(TrayEventRightButton | TrayEventPress);
    application.OnTrayEvent(TrayEventRightButton | TrayEventRelease);
    EXPECT_EQ(application.commands, (std::vector<uint32_t>{Open, Find, Open, Flash}));

    application.commands.clear();
    ASSERT_TRUE(application.OverrideTrayIcon({loam::ResourceKindIcon, 9}, {}, Flash));
    application.OnTrayEvent(left);
    ASSERT_TRUE(application.OverrideTrayIcon({loam::ResourceKindIcon, 9}, {}, 0));
    application.OnTrayEvent(left);
    application.RestoreTrayIcon();
    application.OnTrayEvent(left);
    EXPECT_EQ(application.commands, (std::vector<uint32_t>{Flash, Open, Open}));

    application.Quit();
    EXPECT_EQ(application.shell->calls,
              (Calls{"add 7 8", "menu 5 300", "modify 9 0", "modify 9 0", "modify 7 8", "remove"}));
}

TEST(TrayTest, AHotKeyReachesTheApplicationAsUserInput) {
    OffscreenDriver driver;
    const uint32_t start = driver.Now();
    TrayApplication application;
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

    application.UnregisterHotKey(id);
    EXPECT_EQ(id, 0u);
    EXPECT_TRUE(application.RegisterHotKey('F', quilt::ModifierControl, id));
}

} // namespace
