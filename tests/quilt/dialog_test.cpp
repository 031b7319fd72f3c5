#include "quilt/dialog.h"

#include "quilt/button.h"
#include "quilt/edit_box.h"
#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_driver.h"
#include "quilt/size_grip.h"
#include "quilt/timer.h"
#include "test_application.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using quilt::AnchorMove;
using quilt::AnchorMoveHalf;
using quilt::AnchorNone;
using quilt::AnchorStretch;
using quilt::ControlKind;
using quilt::Dialog;
using quilt::DialogControlTemplate;
using quilt::DialogTemplate;
using quilt::OffscreenDriver;
using quilt::Rect;

// The offscreen dialog font makes a dialog unit 2 pixels wide and 2 pixels high.
constexpr uint16_t RebuildId = 600;
constexpr uint16_t LayoutId = 601;
constexpr uint16_t AskId = 602;
constexpr uint16_t CoveredGripId = 603;
constexpr uint16_t CoveredFixedId = 604;

constexpr int32_t FolderLine = 1036;
constexpr int32_t AskText = 1040;
constexpr int32_t AskOption = 1041;
constexpr int32_t Corner = 1050;

constexpr DialogControlTemplate rebuildControls[] = {
    {quilt::IdCancel, ControlKind::PushButton, "&Quit", {104, 39, 50, 14}, 0},
    {quilt::NoControlId,
     ControlKind::StaticCentred,
     "Sorvanta is rebuilding its index...",
     {7, 7, 244, 8},
     0},
    {FolderLine,
     ControlKind::Edit,
     "",
     {7, 19, 244, 14},
     quilt::StyleReadOnly | quilt::StyleAutoHScroll | quilt::StyleBorder},
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
    {CoveredFixedId, "Fixed", 100, 50, "MS Sans Serif", 8, frame, cornerControls},
};

loam::ResourceId DialogResource(uint16_t id) {
    return loam::ResourceId{loam::ResourceKindDialog, id};
}

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
class DialogTest : public testing::Test {
protected:
    void SetUp() override { quilt::RegisterDialogTemplates(templates); }

    OffscreenDriver driver;
};

TEST_F(DialogTest, ATemplateBecomesADialogWithItsControlsInPixels) {
    TestDialog dialog(AskId);
    dialog.RunModeless(true);
    ASSERT_EQ(driver.FindDialog(AskId), &dialog);
    EXPECT_TRUE(driver.GetText(dialog) == "Ask");
    // 100 by 50 units, centred on the 1024 by 768 work area.
    EXPECT_TRUE(driver.GetScreenRect(dialog).Equals(Rect{412, 334, 612, 434}));

    struct ControlCase {
        int32_t id;
        Rect rect;
        const char* text;
        bool visible;
        bool enabled;
    };
    const ControlCase cases[] = {
        {AskText, {20, 10, 180, 34}, "", true, true},
        {AskOption, {20, 40, 140, 60}, "&Option", true, true},
        {quilt::IdOK, {20, 68, 80, 96}, "OK", true, true},
        {quilt::IdCancel, {100, 68, 160, 96}, "Cancel", true, true},
        {1042, {120, 0, 140, 20}, "Hidden", false, true},
        {1043, {140, 0, 160, 20}, "Disabled", true, false},
    };
    for (const ControlCase& test : cases) {
        EXPECT_TRUE(driver.GetControlRect(dialog, test.id).Equals(test.rect)) << test.id;
        EXPECT_TRUE(driver.GetControlText(dialog, test.id) == test.text) << test.id;
        EXPECT_EQ(driver.IsControlVisible(dialog, test.id), test.visible) << test.id;
        EXPECT_EQ(driver.IsControlEnabled(dialog, test.id), test.enabled) << test.id;
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

// The dynamic dialog comes up empty and centred, and makes its controls by code, as the
// progress dialogs do.
TEST_F(DialogTest, ADynamicDialogIsEmptyCentredAndMadeByCode) {
    Dialog dialog(quilt::DynamicDialogResource, nullptr);
    quilt::Button cancel;
    driver.OnNextModal([&](Dialog& shown) {
        EXPECT_EQ(&shown, &dialog);
        EXPECT_TRUE(driver.GetText(dialog) ==
                    "Quilt Dynamic Dialog - call SetText() to change this text!");
        EXPECT_TRUE(driver.GetScreenRect(dialog).Equals(Rect{412, 284, 612, 484}));
        Rect size{0, 0, 50, 14};
        dialog.MapDialogRect(size);
        EXPECT_TRUE(size.Equals(Rect{0, 0, 100, 28}));
        ASSERT_TRUE(cancel.Create(&dialog, Rect{50, 150, 150, 178}, quilt::IdCancel));
        cancel.SetText(loam::String("Cancel"));
        driver.Click(dialog, quilt::IdCancel);
    });
    EXPECT_EQ(dialog.RunModal(false), quilt::IdCancel);
    EXPECT_EQ(driver.GetWaitingModalActions(), 0u);
}

TEST_F(DialogTest, AModalRunEndsWithTheCodeOfWhatTheUserDid) {
    struct EndCase {
        const char* name;
        std::function<void(OffscreenDriver&, Dialog&)> act;
        int32_t result;
        const char* handler;
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
    };
    for (const EndCase& test : cases) {
        TestDialog dialog(AskId);
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

TEST_F(DialogTest, ADisabledDefaultButtonIgnoresReturn) {
    TestDialog dialog(AskId);
    dialog.init = [](TestDialog& self) { self.DisableControlById(quilt::IdOK); };
    driver.OnNextModal([&](Dialog& shown) {
        driver.PressReturn(shown);
        driver.Click(shown, quilt::IdOK);
        driver.PressEscape(shown);
    });
    EXPECT_EQ(dialog.RunModal(true), quilt::IdCancel);
    EXPECT_EQ(dialog.log, std::vector<std::string>{"cancel"});
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

TEST_F(DialogTest, EndDialogFromOnInitDialogEndsTheRunAtOnce) {
    TestDialog dialog(AskId);
    dialog.init = [](TestDialog& self) { self.EndDialog(42); };
    EXPECT_EQ(dialog.RunModal(true), 42);
    EXPECT_EQ(driver.GetWaitingModalActions(), 0u);
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
    uint32_t start = driver.Now();
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

TEST_F(DialogTest, AModelessDialogEndedByItsOwnInitIsDeletedAfterItsCreation) {
    bool destroyed = false;
    auto* dialog = new TestDialog(AskId);
    dialog->destroyed = &destroyed;
    dialog->init = [](TestDialog& self) { self.EndDialog(quilt::IdCancel); };
    EXPECT_EQ(dialog->RunModeless(false), nullptr);
    EXPECT_TRUE(destroyed);
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

TEST_F(DialogTest, ASizeGripUnderAControlMakesTheDialogTaller) {
    struct GripCase {
        const char* name;
        uint16_t id;
        bool disableGrip;
        int32_t height;
        bool hasGrip;
    };
    // The control's bottom is at 100: the client reaches 100 + 16 + 1.
    const GripCase cases[] = {
        {"sizing frame", CoveredGripId, false, 117, true},
        {"grip disabled", CoveredGripId, true, 100, false},
        {"fixed frame", CoveredFixedId, false, 100, false},
    };
    for (const GripCase& test : cases) {
        TestDialog dialog(test.id);
        dialog.init = [&test](TestDialog& self) {
            if (test.disableGrip) {
                self.DisableSizeGrip();
            }
        };
        dialog.RunModeless(false);
        Rect client;
        dialog.GetClientRect(client);
        EXPECT_TRUE(client.Equals(Rect{0, 0, 200, test.height})) << test.name;
        EXPECT_EQ(dialog.GetInitialSize().height, test.height) << test.name;
        EXPECT_TRUE(driver.GetControlRect(dialog, Corner).Equals(Rect{160, 80, 200, 100}))
            << test.name;
        quilt::OffscreenWindow* grip = driver.FindControl(dialog, quilt::SizeGrip::ControlId);
        ASSERT_EQ(grip != nullptr, test.hasGrip) << test.name;
        if (grip != nullptr) {
            EXPECT_TRUE(grip->rect.Equals(Rect{184, 101, 200, 117})) << test.name;
            EXPECT_FALSE(grip->enabled) << test.name;
        }
    }
}

TEST(SizeGripGrowthTest, GrowthKeepsTheGripFreeOfControls) {
    struct GrowthCase {
        const char* name;
        std::vector<Rect> controls;
        int32_t growth;
    };
    const Rect client{0, 0, 200, 100};
    const GrowthCase cases[] = {
        {"no controls", {}, 0},
        {"clear of the corner", {{0, 0, 180, 80}}, 0},
        {"touching the corner's edge", {{0, 0, 184, 84}}, 0},
        {"over the corner", {{150, 70, 190, 90}}, 7},
        {"over the corner, another lower", {{150, 70, 190, 90}, {0, 90, 20, 99}}, 16},
        {"already room below", {{190, 84, 200, 85}, {0, 10, 10, 20}}, 2},
    };
    for (const GrowthCase& test : cases) {
        EXPECT_EQ(quilt::GetSizeGripGrowth(client, test.controls), test.growth) << test.name;
    }
}

TEST_F(DialogTest, ByIdOperationsOnAMissingControlAreQuietAndCheckStatesAreThree) {
    TestDialog dialog(AskId);
    dialog.RunModeless(false);
    const int32_t missing = 4242;
    Rect rect{1, 2, 3, 4};
    loam::String text("unchanged");
    quilt::Window* window = nullptr;
    EXPECT_FALSE(dialog.GetControlRect(missing, rect));
    EXPECT_TRUE(rect.Equals(Rect{1, 2, 3, 4}));
    EXPECT_FALSE(dialog.GetControlText(missing, text));
    EXPECT_TRUE(text == "unchanged");
    EXPECT_FALSE(dialog.SetControlText(missing, text));
    EXPECT_FALSE(dialog.SetControlId(missing, 7));
    EXPECT_FALSE(dialog.GetControlWindow(missing, &window));
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(dialog.GetCheck(missing), quilt::CheckStateUnchecked);
    EXPECT_FALSE(dialog.IsChecked(missing));
    static const int32_t ids[] = {missing, -1};
    dialog.EnableControls(ids);
    dialog.DisableControls(ids);
    dialog.ShowControls(ids);
    dialog.HideControls(ids);
    dialog.Check(missing);
    dialog.MoveControl(missing, 5, 5);
    dialog.OffsetControl(missing, 5, 5);
    dialog.SetControlSize(missing, 5, 5);
    dialog.SetControlRect(missing, rect);
    dialog.EnableControl(missing, false);

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

// The window of a run with /buildindex: a main dialog with a read-only line, a Quit button and
// a 100 ms timer, minimised, which ends the program by its own OnCancel.
class RebuildWindow : public Dialog {
public:
    RebuildWindow() : Dialog(DialogResource(RebuildId), nullptr) {}

    void OnInitDialog() override {
        Dialog::OnInitDialog();
        folder.BindToControl(this, FolderLine);
        timer = quilt::Timer::StartWindowTimer(true, 100, *this);
        SetShowState(quilt::ShowStateMinimised);
    }
    bool OnTimer(uint32_t) override {
        ++ticks;
        folder.SetContent(("/folder/" + std::to_string(ticks)).c_str());
        if (ticks == lastTick) {
            quilt::Timer::Stop(timer);
            OnCancel();
        }
        return true;
    }

    quilt::EditBox folder;
    uint32_t timer = 0;
    int ticks = 0;
    int lastTick = 5;
};

class RebuildApp : public quilt::ApplicationDialog {
public:
    enum class Make { Window, Nothing, Throw, NoTemplate };

    explicit RebuildApp(Make what = Make::Window) : make(what) { CreateImp(); }
    std::unique_ptr<Dialog> CreateDialog() override {
        if (make == Make::Throw) {
            throw std::runtime_error("no window");
        }
        if (make == Make::NoTemplate) {
            return std::make_unique<Dialog>(DialogResource(999), nullptr);
        }
        return make == Make::Window ? std::make_unique<RebuildWindow>() : nullptr;
    }
    RebuildWindow* GetRebuildWindow() {
        return static_cast<RebuildWindow*>(quilt::Application::GetMainWindow());
    }

    Make make;
};

TEST_F(DialogTest, AMainDialogRunsModelessUntilItsOwnEndQuitsTheLoop) {
    RebuildApp application;
    ASSERT_TRUE(application.Start());
    RebuildWindow* window = application.GetRebuildWindow();
    ASSERT_EQ(driver.FindDialog(RebuildId), window);
    EXPECT_TRUE(driver.IsShowing(*window));
    EXPECT_EQ(window->GetShowState(), quilt::ShowStateMinimised);
    EXPECT_TRUE(driver.GetScreenRect(*window).Equals(Rect{254, 324, 770, 444}));
    EXPECT_TRUE(driver.GetControlRect(*window, FolderLine).Equals(Rect{14, 38, 502, 66}));

    uint32_t start = driver.Now();
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(window->ticks, 5);
    EXPECT_EQ(driver.Now() - start, 500u);
    EXPECT_FALSE(window->HasNativeWindow());
    EXPECT_EQ(application.GetRebuildWindow(), window);
}

TEST_F(DialogTest, QuitBeforeTheFirstTickEndsTheProgram) {
    RebuildApp application;
    ASSERT_TRUE(application.Start());
    RebuildWindow* window = application.GetRebuildWindow();
    driver.Click(*window, quilt::IdCancel, driver.Now() + 50);
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(window->ticks, 0);
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
