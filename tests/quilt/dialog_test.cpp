#include "quilt/dialog.h"

#include "quilt/size_grip.h"
#include "quilt/timer.h"
#include "test_application.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>

namespace {

using quilt::AnchorMove;
using quilt::AnchorMoveHalf;
using quilt::AnchorNone;
using quilt::AnchorStretch;

// The offscreen dialog font makes a dialog unit 2 pixels wide and 2 pixels high.
constexpr uint16_t RebuildId = 600;
constexpr uint16_t LayoutId = 601;
constexpr uint16_t AskId = 602;

constexpr int32_t AskText = 1040;
constexpr int32_t AskOption = 1041;

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

constexpr uint32_t frame = quilt::DialogStyleCaption | quilt::DialogStyleSystemMenu;

constexpr DialogTemplate templates[] = {
    {RebuildId, "Sorvanta", 258, 60, "MS Sans Serif", 8, frame | quilt::DialogStyleMinimiseBox,
     rebuildControls},
    {LayoutId, "Layout", 100, 50, "MS Sans Serif", 8, frame | quilt::DialogStyleSizingFrame,
     layoutControls},
    {AskId, "Ask", 100, 50, "MS Sans Serif", 8, frame | quilt::DialogStyleModalFrame, askControls},
};

// A dialog whose OnInitDialog is the test's, and which records how it ended. Its 50th timer
// tick ends it.
class TestDialog : public Dialog {
public:
    explicit TestDialog(uint16_t id, Window* parent = nullptr)
        : Dialog(DialogResource(id), parent) {}

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
        if (++ticks == 50) {
            EndDialog(ticks);
        }
        return true;
    }

    std::function<void(TestDialog&)> init;
    std::vector<std::string> log;
    int ticks = 0;
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

// A modeless dialog ended in OnInitDialog deletes itself: a leak would fail the sanitised run.
// One whose template is missing never had a window, and stays its owner's.
TEST_F(DialogTest, AMissingTemplateOrAnEndInOnInitDialogEndsEitherRunAtOnce) {
    TestDialog missing(999);
    EXPECT_EQ(missing.RunModal(true), -1);
    EXPECT_EQ(missing.RunModeless(true), nullptr);
    EXPECT_FALSE(missing.HasNativeWindow());

    TestDialog dialog(AskId);
    dialog.init = [](TestDialog& self) { self.EndDialog(42); };
    EXPECT_EQ(dialog.RunModal(true), 42);
    EXPECT_EQ(driver.GetWaitingModalActions(), 0u);
    auto* modeless = new TestDialog(AskId);
    modeless->init = dialog.init;
    EXPECT_EQ(modeless->RunModeless(false), nullptr);
    EXPECT_EQ(driver.FindDialog(AskId), nullptr);
}

TEST_F(DialogTest, AModalRunEndsWithTheCodeOfWhatTheUserDid) {
    using Act = void (*)(OffscreenDriver&, Dialog&);
    const std::tuple<const char*, Act, int32_t, bool> cases[] = {
        {"click OK", [](auto& d, auto& w) { d.Click(w, quilt::IdOK); }, quilt::IdOK, false},
        {"Escape", [](auto& d, auto& w) { d.PressEscape(w); }, quilt::IdCancel, false},
        {"close box", [](auto& d, auto& w) { d.PostClose(w); }, quilt::IdCancel, false},
        {"Return in the edit box", [](auto& d, auto& w) { d.PressReturn(w); }, quilt::IdOK, false},
        {"Return on a focused button presses that one",
         [](auto& d, auto& w) {
             d.PressTab(w, true);
             d.PressReturn(w);
         },
         quilt::IdCancel, false},
        {"a disabled default button ignores Return and clicks",
         [](auto& d, auto& w) {
             d.PressReturn(w);
             d.Click(w, quilt::IdOK);
             d.PressEscape(w);
         },
         quilt::IdCancel, true},
    };
    for (const auto& [name, act, result, disableOK] : cases) {
        SCOPED_TRACE(name);
        TestDialog dialog(AskId);
        if (disableOK)
            dialog.init = [](TestDialog& self) { self.DisableControlById(quilt::IdOK); };
        driver.OnNextModal([&](Dialog& shown) {
            EXPECT_EQ(driver.GetModalDialog(), &shown);
            act(driver, shown);
        });
        EXPECT_EQ(dialog.RunModal(true), result);
        EXPECT_EQ(dialog.log, std::vector<std::string>{result == quilt::IdOK ? "ok" : "cancel"});
        EXPECT_FALSE(dialog.HasNativeWindow());
        EXPECT_EQ(driver.GetModalDialog(), nullptr);
    }
}

TEST_F(DialogTest, TimersRunInAModalDialogButIdleRoundsDoNot) {
    TestApplication application;
    RecordingIdleHandler idle;
    idle.EnableIdle();
    ASSERT_TRUE(driver.RunUntilIdle());
    ASSERT_EQ(idle.times.size(), 1u);

    TestDialog dialog(AskId);
    dialog.init = [](TestDialog& self) { quilt::Timer::StartWindowTimer(true, 100, self); };
    // Input just before makes an idle round due inside the modal run.
    uint32_t start = driver.Now();
    driver.PostKeyDown(application.GetWindow(), 'X', 0, start + 100);
    EXPECT_EQ(dialog.RunModal(true), 50);
    EXPECT_GE(driver.Now() - start, 5000u);
    EXPECT_EQ(idle.times.size(), 1u);
}

using Log = std::vector<std::string>;

class RecordingPref : public quilt::IAutoPref {
public:
    RecordingPref(Log& sharedLog, const char* prefName) : log(sharedLog), name(prefName) {}
    void SavePreference() override { log.push_back(name); }

    Log& log;
    const char* name;
};

TEST_F(DialogTest, OKSavesTheAutomaticPreferencesInOrderAndCancelDoesNot) {
    for (int32_t button : {quilt::IdOK, quilt::IdCancel}) {
        Log saved;
        RecordingPref first(saved, "first");
        RecordingPref second(saved, "second");
        TestDialog dialog(AskId);
        dialog.AddAutoPref(&first);
        dialog.AddAutoPref(&second);
        driver.OnNextModal([&](Dialog& shown) { driver.Click(shown, button); });
        dialog.RunModal(true);
        EXPECT_EQ(saved, (button == quilt::IdOK ? Log{"first", "second"} : Log{})) << button;
    }
}

class LayoutTest : public DialogTest {
protected:
    void Open(std::function<void(TestDialog&)> init) {
        dialog.init = std::move(init);
        dialog.RunModeless(true);
    }
    void ExpectRects(const std::vector<std::pair<int32_t, Rect>>& expected, const char* step) {
        for (const auto& [id, rect] : expected) {
            EXPECT_TRUE(driver.GetControlRect(dialog, id).Equals(rect)) << step << " " << id;
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
                 {14, {60, 64, 80, 84}},
                 {quilt::SizeGrip::ControlId, {215, 105, 231, 121}}},
                "grown");
    driver.ResizeDialog(dialog, 200, 100);
    ExpectRects(initial, "back");

    // The initial size is the minimum.
    driver.ResizeDialog(dialog, 150, 120);
    EXPECT_TRUE(ClientRect().Equals(Rect{0, 0, 200, 120}));
}

// A restored place, applied in OnInitDialog, is kept rather than centred and laid out like any.
TEST_F(LayoutTest, APlaceRestoredInOnInitDialogGetsAFullPass) {
    Open([](TestDialog& self) {
        self.AddLayoutControl(11, AnchorMove, AnchorMove);
        self.SetRect(Rect{10, 20, 270, 160}, true);
    });
    EXPECT_TRUE(driver.GetScreenRect(dialog).Equals(Rect{10, 20, 270, 160}));
    EXPECT_TRUE(ClientRect().Equals(Rect{0, 0, 260, 140}));
    ExpectRects({{11, {160, 50, 200, 70}}}, "restored");
}

// A dialog grows taller when a control covers the corner where its size grip goes.
TEST(SizeGripGrowthTest, GrowthKeepsTheGripFreeOfControls) {
    const Rect client{0, 0, 200, 100};
    const std::tuple<const char*, std::vector<Rect>, int32_t> cases[] = {
        {"touching the corner's edge", {{0, 0, 184, 84}}, 0},
        {"over the corner", {{150, 70, 190, 90}}, 7},
        {"over the corner, another lower", {{150, 70, 190, 90}, {0, 90, 20, 99}}, 16},
        {"already room below", {{190, 84, 200, 85}, {0, 10, 10, 20}}, 2},
    };
    for (const auto& [name, controls, growth] : cases) {
        EXPECT_EQ(quilt::GetSizeGripGrowth(client, controls), growth) << name;
    }
}

TEST_F(DialogTest, ByIdOperationsOnAMissingControlAreQuiet) {
    TestDialog dialog(AskId);
    dialog.RunModeless(false);
    const int32_t missing = 4242;
    Rect rect{1, 2, 3, 4};
    loam::String text("unchanged");
    EXPECT_FALSE(dialog.GetControlRect(missing, rect) || dialog.GetControlText(missing, text) ||
                 dialog.SetControlText(missing, text) || dialog.IsChecked(missing));
    EXPECT_TRUE(rect.Equals(Rect{1, 2, 3, 4}) && text == "unchanged");
    static const int32_t ids[] = {missing, -1};
    dialog.HideControls(ids);
    dialog.OffsetControl(missing, 5, 5);
    // A state out of range leaves the box unchecked.
    dialog.SetCheck(AskOption, 9);
    EXPECT_EQ(driver.GetCheckState(dialog, AskOption), quilt::CheckStateUnchecked);
}

TEST_F(DialogTest, TabMovesTheFocusOverEnabledTabStops) {
    TestDialog dialog(AskId);
    dialog.RunModeless(false);
    dialog.DisableControlById(quilt::IdOK);
    std::vector<int32_t> order;
    for (bool backwards : {false, false, false, false, true, true}) {
        driver.PressTab(dialog, backwards);
        driver.PumpMessages();
        order.push_back(driver.GetFocusId(dialog));
    }
    EXPECT_EQ(order, (std::vector<int32_t>{AskOption, quilt::IdCancel, AskText, AskOption, AskText,
                                           quilt::IdCancel}));
}

// The program's main window as a dialog, made by `make`.
class DialogApp : public quilt::ApplicationDialog {
public:
    explicit DialogApp(std::function<std::unique_ptr<Dialog>()> factory) : make(factory) {
        CreateImp();
    }
    std::unique_ptr<Dialog> CreateDialog() override { return make(); }

    std::function<std::unique_ptr<Dialog>()> make;
};

TEST_F(DialogTest, AMainDialogRunsModelessUntilItsOwnEndQuitsTheLoop) {
    DialogApp application([] {
        auto dialog = std::make_unique<TestDialog>(RebuildId);
        dialog->init = [](TestDialog& self) { self.SetShowState(quilt::ShowStateMinimised); };
        return dialog;
    });
    ASSERT_TRUE(application.Start());
    auto* window = static_cast<TestDialog*>(quilt::Application::GetMainWindow());
    ASSERT_EQ(driver.FindDialog(RebuildId), window);
    EXPECT_TRUE(driver.IsShowing(*window));
    EXPECT_EQ(window->GetShowState(), quilt::ShowStateMinimised);
    const uint32_t start = driver.Now();
    driver.Click(*window, quilt::IdCancel, start + 50);
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(driver.Now() - start, 50u);
    EXPECT_FALSE(window->HasNativeWindow());
}

TEST_F(DialogTest, AMainDialogThatCantBeMadeStopsTheStart) {
    using Make = std::unique_ptr<Dialog> (*)();
    for (Make make : {+[]() -> std::unique_ptr<Dialog> { return nullptr; },
                      +[]() -> std::unique_ptr<Dialog> { throw std::runtime_error("no window"); },
                      +[]() { return std::make_unique<Dialog>(DialogResource(999), nullptr); }}) {
        DialogApp application(make);
        EXPECT_FALSE(application.Start());
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
    DialogApp application([] { return std::make_unique<Opener>(); });
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

} // namespace
