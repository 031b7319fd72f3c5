#include "quilt/dialog.h"

#include "quilt/button.h"
#include "quilt/edit_box.h"
#include "quilt/keys.h"
#include "quilt/size_grip.h"
#include "quilt/timer.h"
#include "test_application.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace {

using quilt::AnchorMove;
using quilt::AnchorMoveHalf;
using quilt::AnchorNone;
using quilt::AnchorStretch;

// The offscreen dialog font makes a dialog unit 2 pixels wide and 2 pixels high.
constexpr uint16_t RebuildId = 600;
constexpr uint16_t LayoutId = 601;
constexpr uint16_t AskId = 602;
constexpr uint16_t CoveredGripId = 603;

constexpr int32_t AskText = 1040;
constexpr int32_t AskOption = 1041;
constexpr int32_t Corner = 1050;

constexpr DialogControlTemplate rebuildControls[] = {
    {quilt::IdCancel, ControlKind::PushButton, "&Quit", {104, 39, 50, 14}, 0},
};

constexpr DialogControlTemplate layoutControls[] = {
    {10, ControlKind::Edit, "", {5, 5, 40, 10}, 0},
    {11, ControlKind::PushButton, "Move", {50, 5, 20, 10}, 0},
    {12, ControlKind::PushButton, "Half", {5, 20, 20, 10}, 0},
    {13, ControlKind::ListView, "", {5, 32, 20, 10}, 0},
    {14, ControlKind::StaticLeft, "Stays", {30, 32, 10, 10}, 0},
};

constexpr DialogControlTemplate askControls[] = {
    {AskText, ControlKind::Edit, "", {10, 5, 80, 12}, quilt::StyleBorder},
    {AskOption, ControlKind::AutoCheckBox, "&Option", {10, 20, 60, 10}, 0},
    {quilt::IdOK, ControlKind::DefaultPushButton, "OK", {10, 34, 30, 14}, 0},
    {quilt::IdCancel, ControlKind::PushButton, "Cancel", {50, 34, 30, 14}, 0},
    {1042, ControlKind::PushButton, "Hidden", {60, 0, 10, 10}, quilt::StyleHidden},
    {1043, ControlKind::PushButton, "Disabled", {70, 0, 10, 10}, quilt::StyleDisabled},
};

constexpr DialogControlTemplate cornerControls[] = {
    {Corner, ControlKind::PushButton, "Corner", {80, 40, 20, 10}, 0},
};

constexpr uint32_t frame = quilt::DialogStyleCaption | quilt::DialogStyleSystemMenu;

constexpr DialogTemplate templates[] = {
    {RebuildId, "Sorvanta", 258, 60, "MS Sans Serif", 8, frame | quilt::DialogStyleMinimiseBox,
     rebuildControls},
    {LayoutId, "Layout", 100, 50, "MS Sans Serif", 8, frame | quilt::DialogStyleSizingFrame,
     layoutControls},
    {AskId, "Ask", 100, 50, "MS Sans Serif", 8, frame | quilt::DialogStyleModalFrame, askControls},
    {CoveredGripId, "Covered", 100, 50, "MS Sans Serif", 8, frame | quilt::DialogStyleSizingFrame,
     cornerControls},
};

// A dialog whose OnInitDialog is the test's, and which records how it ended.
class TestDialog : public Dialog {
public:
    explicit TestDialog(uint16_t id, Window* parent = nullptr)
        : Dialog(DialogResource(id), parent) {}
    ~TestDialog() override {
        if (destroyed != nullptr) {
            *destroyed = true;
        }
    }

    void OnInitDialog() override {
        Dialog::OnInitDialog();
        if (init) {
            init(*this);
        }
    }
    void OnOK() override {
        log.push_back("ok");
        Dialog::OnOK();
    }
    void OnCancel() override {
        log.push_back("cancel");
        Dialog::OnCancel();
    }
    bool OnTimer(uint32_t) override {
        ++ticks;
        if (tick) {
            tick(*this);
        }
        return true;
    }

    std::function<void(TestDialog&)> init;
    std::function<void(TestDialog&)> tick;
    std::vector<std::string> log;
    int ticks = 0;
    bool* destroyed = nullptr;
};

// A modeless dialog on the stack is never ended by the test: its destructor takes its window.
class DialogTest : public TemplateTest {
protected:
    DialogTest() : TemplateTest(templates) {}
};

TEST_F(DialogTest, ATemplateBecomesADialogWithItsControlsInPixels) {
    TestDialog dialog(AskId);
    dialog.RunModeless(true);
    ASSERT_EQ(driver.FindDialog(AskId), &dialog);
    EXPECT_TRUE(driver.GetText(dialog) == "Ask");
    // 100 by 50 units, centred on the 1024 by 768 work area.
    EXPECT_TRUE(driver.GetScreenRect(dialog).Equals(Rect{412, 334, 612, 434}));

    const std::tuple<int32_t, Rect, const char*, bool, bool> cases[] = {
        {AskText, {20, 10, 180, 34}, "", true, true},
        {AskOption, {20, 40, 140, 60}, "&Option", true, true},
        {quilt::IdOK, {20, 68, 80, 96}, "OK", true, true},
        {quilt::IdCancel, {100, 68, 160, 96}, "Cancel", true, true},
        {1042, {120, 0, 140, 20}, "Hidden", false, true},
        {1043, {140, 0, 160, 20}, "Disabled", true, false},
    };
    for (const auto& [id, rect, text, visible, enabled] : cases) {
        EXPECT_TRUE(driver.GetControlRect(dialog, id).Equals(rect)) << id;
        EXPECT_TRUE(driver.GetControlText(dialog, id) == text) << id;
        EXPECT_EQ(driver.IsControlVisible(dialog, id), visible) << id;
        EXPECT_EQ(driver.IsControlEnabled(dialog, id), enabled) << id;
    }
    // The first tab stop has the focus; a fixed frame gets no size grip.
    EXPECT_EQ(driver.GetFocusId(dialog), AskText);
    EXPECT_EQ(driver.FindControl(dialog, quilt::SizeGrip::ControlId), nullptr);
}

TEST_F(DialogTest, AMissingTemplateFailsBothRuns) {
    TestDialog modal(999);
    EXPECT_EQ(modal.RunModal(true), -1);
    auto* modeless = new TestDialog(999);
    EXPECT_EQ(modeless->RunModeless(true), nullptr);
    EXPECT_FALSE(modeless->HasNativeWindow());
    delete modeless;
}

TEST_F(DialogTest, AModalRunEndsWithTheCodeOfWhatTheUserDid) {
    struct EndCase {
        const char* name;
        std::function<void(OffscreenDriver&, Dialog&)> act;
        int32_t result;
        const char* handler;
        bool disableOK = false;
    };
    const EndCase cases[] = {
        {"click OK", [](auto& d, auto& w) { d.Click(w, quilt::IdOK); }, 1, "ok"},
        {"click Cancel", [](auto& d, auto& w) { d.Click(w, quilt::IdCancel); }, 2, "cancel"},
        {"Return in the edit box presses the default button",
         [](auto& d, auto& w) {
             d.TypeText(w, AskText, "abc");
             d.PressReturn(w);
         },
         1, "ok"},
        {"Escape", [](auto& d, auto& w) { d.PressEscape(w); }, 2, "cancel"},
        {"close box", [](auto& d, auto& w) { d.PostClose(w); }, 2, "cancel"},
        {"Return on a focused button presses that one",
         [](auto& d, auto& w) {
             d.PressTab(w, true);
             d.PressReturn(w);
         },
         2, "cancel"},
        {"Space on the focused default button",
         [](auto& d, auto& w) {
             d.PressTab(w);
             d.PressTab(w);
             d.PressKey(w, quilt::KeySpace);
         },
         1, "ok"},
        {"a disabled default button ignores Return and clicks",
         [](auto& d, auto& w) {
             d.PressReturn(w);
             d.Click(w, quilt::IdOK);
             d.PressEscape(w);
         },
         2, "cancel", true},
    };
    for (const EndCase& test : cases) {
        TestDialog dialog(AskId);
        if (test.disableOK)
            dialog.init = [](TestDialog& self) { self.DisableControlById(quilt::IdOK); };
        driver.OnNextModal([&](Dialog& shown) {
            EXPECT_EQ(driver.GetModalDialog(), &shown) << test.name;
            test.act(driver, shown);
        });
        EXPECT_EQ(dialog.RunModal(true), test.result) << test.name;
        EXPECT_EQ(dialog.log, std::vector<std::string>{test.handler}) << test.name;
        EXPECT_FALSE(dialog.HasNativeWindow()) << test.name;
        EXPECT_EQ(driver.GetModalDialog(), nullptr) << test.name;
    }
}

TEST_F(DialogTest, AModalDialogThatNothingCanReachIsClosed) {
    TestDialog dialog(AskId);
    EXPECT_EQ(dialog.RunModal(true), quilt::IdCancel);
    EXPECT_EQ(dialog.log, std::vector<std::string>{"cancel"});

    // One that refuses to close is ended all the same.
    class Stubborn : public TestDialog {
    public:
        Stubborn() : TestDialog(AskId) {}
        void OnCancel() override { log.push_back("refused"); }
    };
    Stubborn stubborn;
    EXPECT_EQ(stubborn.RunModal(true), quilt::IdCancel);
    EXPECT_EQ(stubborn.log, std::vector<std::string>{"refused"});
}

TEST_F(DialogTest, EndDialogFromOnInitDialogEndsEitherRunAtOnce) {
    TestDialog dialog(AskId);
    dialog.init = [](TestDialog& self) { self.EndDialog(42); };
    EXPECT_EQ(dialog.RunModal(true), 42);
    EXPECT_EQ(driver.GetWaitingModalActions(), 0u);

    bool destroyed = false;
    auto* modeless = new TestDialog(AskId);
    modeless->destroyed = &destroyed;
    modeless->init = dialog.init;
    EXPECT_EQ(modeless->RunModeless(false), nullptr);
    EXPECT_TRUE(destroyed);
}

TEST_F(DialogTest, TimersRunInAModalDialogButIdleRoundsDoNot) {
    TestApplication application;
    RecordingIdleHandler idle;
    idle.EnableIdle();
    ASSERT_TRUE(driver.RunUntilIdle());
    ASSERT_EQ(idle.times.size(), 1u);

    TestDialog dialog(AskId);
    dialog.init = [](TestDialog& self) { quilt::Timer::StartWindowTimer(true, 100, self); };
    dialog.tick = [](TestDialog& self) {
        if (self.ticks == 50) {
            self.EndDialog(7);
        }
    };
    // Input just before makes an idle round due inside the modal run.
    uint32_t start = driver.Now();
    driver.PostKeyDown(application.GetWindow(), 'X', 0, start + 100);
    EXPECT_EQ(dialog.RunModal(true), 7);
    EXPECT_EQ(dialog.ticks, 50);
    EXPECT_GE(driver.Now() - start, 5000u);
    EXPECT_EQ(idle.times.size(), 1u);
}

TEST_F(DialogTest, AModelessDialogDeletesItselfWhenItsWindowGoes) {
    bool destroyed = false;
    auto* dialog = new TestDialog(AskId);
    dialog->destroyed = &destroyed;
    ASSERT_NE(dialog->RunModeless(false), nullptr);
    EXPECT_TRUE(driver.IsShowing(*dialog));
    driver.Click(*dialog, quilt::IdOK);
    driver.PumpMessages();
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(driver.FindDialog(AskId), nullptr);
}

class RecordingPref : public quilt::IAutoPref {
public:
    RecordingPref(std::vector<std::string>& sharedLog, const char* prefName)
        : log(sharedLog), name(prefName) {}
    void SavePreference() override { log.push_back(name); }

    std::vector<std::string>& log;
    const char* name;
};

TEST_F(DialogTest, OKSavesTheAutomaticPreferencesInOrderAndCancelDoesNot) {
    for (int32_t button : {quilt::IdOK, quilt::IdCancel}) {
        std::vector<std::string> saved;
        RecordingPref first(saved, "first");
        RecordingPref second(saved, "second");
        TestDialog dialog(AskId);
        dialog.AddAutoPref(&first);
        dialog.AddAutoPref(&second);
        driver.OnNextModal([&](Dialog& shown) { driver.Click(shown, button); });
        EXPECT_EQ(dialog.RunModal(true), button);
        std::vector<std::string> expected;
        if (button == quilt::IdOK) {
            expected = {"first", "second"};
        }
        EXPECT_EQ(saved, expected) << button;
    }
}

TEST_F(DialogTest, SetRectInOnInitDialogSuppressesCentring) {
    TestDialog dialog(AskId);
    dialog.init = [](TestDialog& self) { self.SetRect(Rect{10, 20, 210, 120}, true); };
    driver.OnNextModal([&](Dialog& shown) {
        EXPECT_TRUE(driver.GetScreenRect(shown).Equals(Rect{10, 20, 210, 120}));
        driver.PressEscape(shown);
    });
    dialog.RunModal(true);
}

class LayoutTest : public DialogTest {
protected:
    void Open(std::function<void(TestDialog&)> init) {
        dialog.init = std::move(init);
        dialog.RunModeless(false);
    }
    Rect ControlRect(int32_t id) { return driver.GetControlRect(dialog, id); }
    void ExpectRects(const std::vector<std::pair<int32_t, Rect>>& expected, const char* step) {
        for (const auto& [id, rect] : expected) {
            Rect actual = ControlRect(id);
            EXPECT_TRUE(actual.Equals(rect))
                << step << ": control " << id << " at " << actual.left << "," << actual.top << ","
                << actual.right << "," << actual.bottom;
        }
    }
    Rect ClientRect() {
        Rect client;
        dialog.GetClientRect(client);
        return client;
    }

    TestDialog dialog{LayoutId};
};

TEST_F(LayoutTest, EachAnchorFollowsTheSizeFromTheRectanglesAtRegistration) {
    static const quilt::LayoutControl table[] = {
        {10, AnchorStretch, AnchorNone},      {11, AnchorMove, AnchorMove},
        {12, AnchorMoveHalf, AnchorMoveHalf}, {13, AnchorNone, AnchorStretch},
        {14, AnchorNone, AnchorNone},         {-1, AnchorNone, AnchorNone},
    };
    Open([](TestDialog& self) { self.AddLayoutControls(table); });
    ASSERT_TRUE(dialog.HasLayout());
    const std::vector<std::pair<int32_t, Rect>> initial = {
        {10, {10, 10, 90, 30}}, {11, {100, 10, 140, 30}}, {12, {10, 40, 50, 60}},
        {13, {10, 64, 50, 84}}, {14, {60, 64, 80, 84}},
    };
    ExpectRects(initial, "initial");

    // Odd changes: half of 31 is 15 and half of 21 is 10, rounded toward zero.
    driver.ResizeDialog(dialog, 231, 121);
    ExpectRects({{10, {10, 10, 121, 30}},
                 {11, {131, 31, 171, 51}},
                 {12, {25, 50, 65, 70}},
                 {13, {10, 64, 50, 105}},
                 {14, {60, 64, 80, 84}}},
                "grown");
    EXPECT_TRUE(
        driver.GetControlRect(dialog, quilt::SizeGrip::ControlId).Equals(Rect{215, 105, 231, 121}));

    driver.ResizeDialog(dialog, 200, 100);
    ExpectRects(initial, "back");

    // The initial size is the minimum.
    driver.ResizeDialog(dialog, 150, 120);
    EXPECT_TRUE(ClientRect().Equals(Rect{0, 0, 200, 120}));
}

TEST_F(LayoutTest, WithoutLayoutNothingMovesAndNoMinimumHolds) {
    Open({});
    EXPECT_FALSE(dialog.HasLayout());
    driver.ResizeDialog(dialog, 120, 60);
    EXPECT_TRUE(ClientRect().Equals(Rect{0, 0, 120, 60}));
    ExpectRects({{10, {10, 10, 90, 30}}, {11, {100, 10, 140, 30}}}, "shrunk");
}

TEST_F(LayoutTest, SetControlSizeOutlivesTheNextPassAndSetControlRectDoesNot) {
    Open([](TestDialog& self) {
        self.AddLayoutControl(10, AnchorStretch, AnchorNone);
        self.AddLayoutControl(11, AnchorMove, AnchorNone);
        self.AddLayoutControl(4242, AnchorMove, AnchorMove);
    });
    dialog.SetControlSize(10, 60, 30);
    dialog.SetControlRect(11, Rect{0, 0, 5, 5});
    driver.ResizeDialog(dialog, 210, 100);
    ExpectRects({{10, {10, 10, 80, 40}}, {11, {110, 10, 150, 30}}}, "after pass");
}

// A restored size larger than the template's, applied in OnInitDialog, is laid out like any.
TEST_F(LayoutTest, ASizeRestoredInOnInitDialogGetsAFullPass) {
    Open([](TestDialog& self) {
        self.AddLayoutControl(11, AnchorMove, AnchorMove);
        self.SetClientRect(Rect{0, 0, 260, 140});
    });
    EXPECT_TRUE(ClientRect().Equals(Rect{0, 0, 260, 140}));
    ExpectRects({{11, {160, 50, 200, 70}}}, "restored");
}

// The control's bottom is at 100: with the grip the client reaches 100 + 16 + 1.
TEST_F(DialogTest, ASizeGripUnderAControlMakesTheDialogTaller) {
    for (bool disableGrip : {false, true}) {
        TestDialog dialog(CoveredGripId);
        dialog.init = [disableGrip](TestDialog& self) {
            if (disableGrip)
                self.DisableSizeGrip();
        };
        dialog.RunModeless(false);
        const int32_t height = disableGrip ? 100 : 117;
        Rect client;
        dialog.GetClientRect(client);
        EXPECT_TRUE(client.Equals(Rect{0, 0, 200, height})) << disableGrip;
        EXPECT_EQ(dialog.GetInitialSize().height, height) << disableGrip;
        EXPECT_TRUE(driver.GetControlRect(dialog, Corner).Equals(Rect{160, 80, 200, 100}));
        quilt::OffscreenWindow* grip = driver.FindControl(dialog, quilt::SizeGrip::ControlId);
        ASSERT_EQ(grip == nullptr, disableGrip);
        if (grip != nullptr) {
            EXPECT_TRUE(grip->rect.Equals(Rect{184, 101, 200, 117}) && !grip->enabled);
        }
    }
}

TEST(SizeGripGrowthTest, GrowthKeepsTheGripFreeOfControls) {
    const Rect client{0, 0, 200, 100};
    const std::tuple<const char*, std::vector<Rect>, int32_t> cases[] = {
        {"no controls", {}, 0},
        {"clear of the corner", {{0, 0, 180, 80}}, 0},
        {"touching the corner's edge", {{0, 0, 184, 84}}, 0},
        {"over the corner", {{150, 70, 190, 90}}, 7},
        {"over the corner, another lower", {{150, 70, 190, 90}, {0, 90, 20, 99}}, 16},
        {"already room below", {{190, 84, 200, 85}, {0, 10, 10, 20}}, 2},
    };
    for (const auto& [name, controls, growth] : cases) {
        EXPECT_EQ(quilt::GetSizeGripGrowth(client, controls), growth) << name;
    }
}

TEST_F(DialogTest, ByIdOperationsOnAMissingControlAreQuietAndCheckStatesAreThree) {
    TestDialog dialog(AskId);
    dialog.RunModeless(false);
    const int32_t missing = 4242;
    Rect rect{1, 2, 3, 4};
    loam::String text("unchanged");
    quilt::Window* window = nullptr;
    EXPECT_FALSE(dialog.GetControlRect(missing, rect) || dialog.GetControlText(missing, text) ||
                 dialog.SetControlText(missing, text) || dialog.SetControlId(missing, 7) ||
                 dialog.GetControlWindow(missing, &window) || dialog.IsChecked(missing));
    EXPECT_TRUE(rect.Equals(Rect{1, 2, 3, 4}) && text == "unchanged" && window == nullptr);
    EXPECT_EQ(dialog.GetCheck(missing), quilt::CheckStateUnchecked);
    static const int32_t ids[] = {missing, -1};
    dialog.HideControls(ids);
    dialog.Check(missing);
    dialog.OffsetControl(missing, 5, 5);
    dialog.SetControlRect(missing, rect);

    dialog.SetCheck(AskOption, quilt::CheckStateIndeterminate);
    EXPECT_EQ(dialog.GetCheck(AskOption), quilt::CheckStateIndeterminate);
    EXPECT_TRUE(dialog.IsNotChecked(AskOption));
    dialog.SetCheck(AskOption, 9);
    EXPECT_EQ(driver.GetCheckState(dialog, AskOption), quilt::CheckStateUnchecked);

    // Without a native window the check state reads as indeterminate.
    TestDialog unopened(AskId);
    EXPECT_EQ(unopened.GetCheck(AskOption), quilt::CheckStateIndeterminate);
    EXPECT_FALSE(unopened.GetControlRect(AskOption, rect));
}

TEST_F(DialogTest, TabMovesTheFocusOverEnabledTabStops) {
    TestDialog dialog(AskId);
    dialog.init = [](TestDialog& self) { self.SetControlText(AskText, loam::String("words")); };
    dialog.RunModeless(false);
    quilt::EditBox box;
    box.BindToControl(&dialog, AskText);
    int32_t start = -1;
    int32_t end = -1;
    // Focused as the first tab stop, the box has its whole text selected.
    ASSERT_EQ(driver.GetFocusId(dialog), AskText);
    EXPECT_TRUE(box.GetSelection(&start, &end));
    EXPECT_EQ(end - start, 5);

    dialog.DisableControlById(quilt::IdOK);
    std::vector<int32_t> order;
    for (int i = 0; i < 4; ++i) {
        driver.PressTab(dialog);
        driver.PumpMessages();
        order.push_back(driver.GetFocusId(dialog));
    }
    EXPECT_EQ(order, (std::vector<int32_t>{AskOption, quilt::IdCancel, AskText, AskOption}));
    driver.PressTab(dialog, true);
    driver.PressTab(dialog, true);
    driver.PumpMessages();
    EXPECT_EQ(driver.GetFocusId(dialog), quilt::IdCancel);
}

// A main dialog with a 100 ms timer, minimised, which ends the program by its own OnCancel.
class RebuildWindow : public Dialog {
public:
    RebuildWindow() : Dialog(DialogResource(RebuildId), nullptr) {}

    void OnInitDialog() override {
        Dialog::OnInitDialog();
        timer = quilt::Timer::StartWindowTimer(true, 100, *this);
        SetShowState(quilt::ShowStateMinimised);
    }
    bool OnTimer(uint32_t) override {
        if (++ticks == 5) {
            quilt::Timer::Stop(timer);
            OnCancel();
        }
        return true;
    }

    uint32_t timer = 0;
    int ticks = 0;
};

class RebuildApp : public quilt::ApplicationDialog {
public:
    enum class Make { Window, Nothing, Throw, NoTemplate };

    explicit RebuildApp(Make what = Make::Window) : make(what) { CreateImp(); }
    std::unique_ptr<Dialog> CreateDialog() override {
        if (make == Make::Throw)
            throw std::runtime_error("no window");
        if (make == Make::NoTemplate)
            return std::make_unique<Dialog>(DialogResource(999), nullptr);
        return make == Make::Window ? std::make_unique<RebuildWindow>() : nullptr;
    }

    Make make;
};

TEST_F(DialogTest, AMainDialogRunsModelessUntilItsOwnEndQuitsTheLoop) {
    for (bool quitAtOnce : {false, true}) {
        RebuildApp application;
        ASSERT_TRUE(application.Start());
        auto* window = static_cast<RebuildWindow*>(quilt::Application::GetMainWindow());
        ASSERT_EQ(driver.FindDialog(RebuildId), window);
        EXPECT_TRUE(driver.IsShowing(*window));
        EXPECT_EQ(window->GetShowState(), quilt::ShowStateMinimised);
        const uint32_t start = driver.Now();
        if (quitAtOnce)
            driver.Click(*window, quilt::IdCancel, start + 50);
        EXPECT_TRUE(driver.RunUntilIdle());
        EXPECT_TRUE(driver.HasQuit());
        EXPECT_EQ(window->ticks, quitAtOnce ? 0 : 5);
        EXPECT_EQ(driver.Now() - start, quitAtOnce ? 50u : 500u);
        EXPECT_FALSE(window->HasNativeWindow());
    }
}

// A button of the main dialog opens a modal dialog from its handler, as an Options button does.
TEST_F(DialogTest, AModalDialogRunsFromAHandlerOfTheMainLoop) {
    class Opener : public TestDialog {
    public:
        Opener() : TestDialog(AskId) {}
        void OnOK() override {
            TestDialog options(LayoutId, this);
            results.push_back(options.RunModal(true));
        }
        std::vector<int32_t> results;
    };
    class OpenerApp : public quilt::ApplicationDialog {
    public:
        OpenerApp() { CreateImp(); }
        std::unique_ptr<Dialog> CreateDialog() override { return std::make_unique<Opener>(); }
    };
    OpenerApp application;
    ASSERT_TRUE(application.Start());
    auto* opener = static_cast<Opener*>(quilt::Application::GetMainWindow());
    driver.OnNextModal([&](Dialog& options) {
        EXPECT_EQ(driver.FindDialog(LayoutId), &options);
        EXPECT_FALSE(driver.IsEnabled(*opener));
        // Input to the owner is lost while the modal dialog runs: no second dialog opens.
        driver.Click(*opener, quilt::IdOK);
        driver.PressEscape(options);
    });
    driver.Click(*opener, quilt::IdOK);
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(opener->results, std::vector<int32_t>{quilt::IdCancel});
    EXPECT_TRUE(driver.IsEnabled(*opener));
    EXPECT_FALSE(driver.HasQuit());
}

TEST_F(DialogTest, AMainDialogThatCantBeMadeStopsTheStart) {
    for (RebuildApp::Make make :
         {RebuildApp::Make::Nothing, RebuildApp::Make::Throw, RebuildApp::Make::NoTemplate}) {
        RebuildApp application(make);
        EXPECT_FALSE(application.Start()) << static_cast<int>(make);
    }
}

} // namespace
