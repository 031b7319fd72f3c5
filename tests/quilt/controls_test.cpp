#include "quilt/button.h"
#include "quilt/check_box.h"
#include "quilt/dialog.h"
#include "quilt/edit_box.h"
#include "quilt/keys.h"
#include "quilt/progress_bar.h"
#include "quilt/slider.h"
#include "test_application.h"

#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace {

constexpr uint16_t ControlsId = 610;

constexpr int32_t Pattern = 1040;
constexpr int32_t Option = 1041;
constexpr int32_t DependentEdit = 1042;
constexpr int32_t DependentButton = 1043;
constexpr int32_t Limit = 1050;
constexpr int32_t Bar = 1060;
constexpr int32_t Status = 1070;

constexpr DialogControlTemplate controls[] = {
    {Pattern, ControlKind::Edit, "", {10, 5, 80, 12}, quilt::StyleBorder},
    {Option, ControlKind::AutoCheckBox, "&Option", {10, 20, 60, 10}, 0},
    {DependentEdit, ControlKind::Edit, "", {10, 32, 80, 12}, quilt::StyleBorder},
    {DependentButton, ControlKind::PushButton, "More", {100, 32, 40, 14}, 0},
    {Limit, ControlKind::TrackBar, "", {10, 50, 100, 15}, 0},
    {Bar, ControlKind::ProgressBar, "", {10, 68, 100, 8}, 0},
    {Status, ControlKind::Edit, "read only", {100, 5, 60, 12}, quilt::StyleReadOnly},
    {quilt::IdOK, ControlKind::DefaultPushButton, "OK", {10, 80, 30, 14}, 0},
    {quilt::IdCancel, ControlKind::PushButton, "Cancel", {50, 80, 30, 14}, 0},
};

constexpr DialogTemplate templates[] = {
    {ControlsId, "Controls", 200, 100, "MS Sans Serif", 8, quilt::DialogStyleCaption, controls},
};

// Logs each notification that reaches it as "kind id".
class Recorder : public quilt::MessageTarget {
public:
    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    bool OnAny(int32_t kind, int32_t, int32_t id) {
        log.push_back(std::to_string(kind) + " " + std::to_string(id));
        return true;
    }

    std::vector<std::string> log;

    static const quilt::MessageMapEntry entries[];
    static const quilt::MessageMap messageMap;
};

const quilt::MessageMapEntry Recorder::entries[] = {
    quilt::NotificationRange(quilt::MsgEnterKey, quilt::AnyControl, quilt::AnyControl,
                             &Recorder::OnAny),
    quilt::EndOfMap,
};
const quilt::MessageMap Recorder::messageMap{&quilt::MessageTarget::messageMap, entries};

class LoggingCheckBox : public quilt::CheckBox {
public:
    explicit LoggingCheckBox(std::vector<std::string>& sharedLog) : log(sharedLog) {}
    void OnClicked() override {
        log.push_back("box clicked");
        quilt::CheckBox::OnClicked();
    }
    void OnStateChanged() override {
        ++stateChanges;
        quilt::CheckBox::OnStateChanged();
    }

    std::vector<std::string>& log;
    int stateChanges = 0;
};

// The template's dialog with a wrapper for each control that the tests talk to. What reaches
// its map is logged as "kind id", or "kind id parameter" for a kind that carries one.
class ControlsDialog : public Dialog {
public:
    ControlsDialog() : Dialog(DialogResource(ControlsId), nullptr) {}

    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    void OnInitDialog() override {
        Dialog::OnInitDialog();
        pattern.BindToControl(this, Pattern);
        option.BindToControl(this, Option);
        limit.BindToControl(this, Limit);
        bar.BindToControl(this, Bar);
        status.BindToControl(this, Status);
        if (init) {
            init(*this);
        }
    }
    bool OnNotification(int32_t kind, int32_t, int32_t id) {
        log.push_back(std::to_string(kind) + " " + std::to_string(id));
        if (kind == quilt::MsgEnterKey) {
            enteredText = pattern.GetContent().GetCString();
        }
        return true;
    }
    bool OnOptionClicked() {
        log.push_back("dialog clicked");
        return true;
    }
    bool OnTextChange(int32_t id) {
        log.push_back("change " + std::to_string(id));
        return true;
    }

    quilt::EditBox pattern;
    LoggingCheckBox option{log};
    quilt::Slider limit;
    quilt::ProgressBar bar;
    quilt::EditBox status;
    std::function<void(ControlsDialog&)> init;
    std::vector<std::string> log;
    std::string enteredText;

    static const quilt::MessageMapEntry entries[];
    static const quilt::MessageMap messageMap;
};

const quilt::MessageMapEntry ControlsDialog::entries[] = {
    quilt::Notification(quilt::MsgClicked, Option, &ControlsDialog::OnOptionClicked),
    quilt::Notification(quilt::MsgTextChange, Pattern, &ControlsDialog::OnTextChange),
    quilt::Notification(quilt::MsgEnterKey, Pattern, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgFocusGained, Pattern, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgFocusLost, Pattern, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgSliderTrack, Limit, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgSliderThumbPosition, Limit, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgSliderEndTrack, Limit, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgSliderLineUp, Limit, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgSliderLineDown, Limit, &ControlsDialog::OnNotification),
    quilt::EndOfMap,
};
const quilt::MessageMap ControlsDialog::messageMap{&Dialog::messageMap, entries};

std::string Kind(int32_t kind, int32_t id) {
    return std::to_string(kind) + " " + std::to_string(id);
}

class ControlsTest : public TemplateTest {
protected:
    ControlsTest() : TemplateTest(templates) {}

    // Opens the dialog modeless; the test never ends it, its destructor takes the window.
    void Open() { ASSERT_NE(dialog.RunModeless(false), nullptr); }
    void Serve() { driver.PumpMessages(); }

    ControlsDialog dialog;
};

TEST_F(ControlsTest, AClickTogglesTheBoxThenReachesItThenTheDialog) {
    Open();
    dialog.log.clear();
    driver.Click(dialog, Option);
    Serve();
    EXPECT_EQ(driver.GetCheckState(dialog, Option), quilt::CheckStateChecked);
    EXPECT_TRUE(dialog.option.IsChecked());
    // The click takes the focus from the edit box first.
    EXPECT_EQ(dialog.log, (std::vector<std::string>{Kind(quilt::MsgFocusLost, Pattern),
                                                    "box clicked", "dialog clicked"}));
    EXPECT_EQ(driver.GetFocusId(dialog), Option);
}

TEST_F(ControlsTest, DependentsFollowTheStateOfTheirCheckBox) {
    Open();
    quilt::CheckBox& box = dialog.option;
    // Before a dialog is set the id is dropped, not kept for later.
    box.AddDependent(DependentEdit);
    box.SetDependentDialog(&dialog);
    box.SetChecked(true);
    box.SetChecked(false);
    EXPECT_TRUE(driver.IsControlEnabled(dialog, DependentEdit));

    static const int32_t dependents[] = {DependentEdit, DependentButton, -1};
    const auto click = [&] {
        driver.Click(dialog, Option);
        Serve();
    };
    const std::tuple<const char*, std::function<void()>, bool> steps[] = {
        {"added to an unchecked box", [&] { box.AddDependents(dependents); }, false},
        {"checked", [&] { box.SetChecked(true); }, true},
        {"indeterminate", [&] { box.SetState(quilt::CheckStateIndeterminate); }, false},
        {"clicked", click, true},
        {"clicked again", click, false},
    };
    for (const auto& [name, act, enabled] : steps) {
        act();
        EXPECT_EQ(driver.IsControlEnabled(dialog, DependentEdit), enabled) << name;
        EXPECT_EQ(driver.IsControlEnabled(dialog, DependentButton), enabled) << name;
    }
    // Input to a disabled dependent is lost.
    driver.TypeText(dialog, DependentEdit, "x");
    Serve();
    EXPECT_TRUE(driver.GetControlText(dialog, DependentEdit) == "");
}

TEST_F(ControlsTest, OnlyARealChangeOfStateIsReported) {
    Open();
    LoggingCheckBox& box = dialog.option;
    const std::pair<int32_t, int> steps[] = {
        {quilt::CheckStateUnchecked, 0},
        {quilt::CheckStateChecked, 1},
        {quilt::CheckStateChecked, 1},
        {quilt::CheckStateIndeterminate, 2},
        {7, 3},
        {quilt::CheckStateUnchecked, 3},
    };
    for (const auto& [state, changes] : steps) {
        box.SetState(state);
        EXPECT_EQ(box.stateChanges, changes) << state;
    }
    EXPECT_EQ(box.GetState(), quilt::CheckStateUnchecked);
}

TEST_F(ControlsTest, ReturnInAnEditBoxRaisesEnterKeyWhenTheBoxTakesIt) {
    Recorder elsewhere;
    const std::string enter = Kind(quilt::MsgEnterKey, Pattern);
    const std::tuple<const char*, std::function<void(ControlsDialog&)>, int32_t,
                     std::vector<std::string>, std::vector<std::string>>
        cases[] = {
            {"the box leaves Return alone", {}, quilt::IdOK, {}, {}},
            {"the box raises it on its dialog",
             [](ControlsDialog& self) { self.pattern.SetEnterNotifies(true); },
             quilt::IdCancel,
             {enter},
             {}},
            {"the box raises it elsewhere under another id",
             [&elsewhere](ControlsDialog& self) {
                 self.pattern.SetEnterNotifies(true);
                 self.pattern.SetEnterTarget(&elsewhere, 77);
             },
             quilt::IdCancel,
             {},
             {Kind(quilt::MsgEnterKey, 77)}},
        };
    for (const auto& [name, setUp, result, dialogLog, elsewhereLog] : cases) {
        ControlsDialog modal;
        elsewhere.log.clear();
        modal.init = setUp;
        driver.OnNextModal([&](Dialog& shown) {
            driver.TypeText(shown, Pattern, "abc");
            driver.PressReturn(shown);
            driver.PressEscape(shown);
        });
        EXPECT_EQ(modal.RunModal(false), result) << name;
        std::vector<std::string> entered;
        for (const std::string& entry : modal.log) {
            if (entry == enter) {
                entered.push_back(entry);
                EXPECT_EQ(modal.enteredText, "abc") << name;
            }
        }
        EXPECT_EQ(entered, dialogLog) << name;
        EXPECT_EQ(elsewhere.log, elsewhereLog) << name;
    }
}

TEST_F(ControlsTest, TypingEditsTheTextAndTellsTheDialog) {
    Open();
    driver.TypeText(dialog, Pattern, "abd");
    driver.PressKey(dialog, quilt::KeyBackspace);
    driver.TypeText(dialog, Pattern, "c");
    driver.TypeText(dialog, Status, "ignored");
    Serve();
    EXPECT_TRUE(dialog.pattern.GetContent() == "abc");
    EXPECT_TRUE(dialog.status.GetContent() == "read only");
    int changes = 0;
    for (const std::string& entry : dialog.log) {
        changes += entry == "change 1040" ? 1 : 0;
    }
    EXPECT_EQ(changes, 5);
    // The box had the focus from the start, as the first tab stop, and lost it to the other.
    EXPECT_EQ(dialog.log.front(), Kind(quilt::MsgFocusGained, Pattern));
    EXPECT_EQ(dialog.log.back(), Kind(quilt::MsgFocusLost, Pattern));
}

TEST_F(ControlsTest, SelectionAndCaretOfAnEditBox) {
    Open();
    quilt::EditBox& box = dialog.pattern;
    box.SetContent("hello world");
    int32_t start = -5;
    int32_t end = -5;
    EXPECT_FALSE(box.GetSelection(&start, &end));
    EXPECT_EQ(start, -5);
    EXPECT_FALSE(box.SetSelection(3, 3));
    EXPECT_FALSE(box.SetSelection(4, 2));
    EXPECT_TRUE(box.SetSelection(6, 11));
    EXPECT_TRUE(box.GetSelection(&start, nullptr));
    EXPECT_EQ(start, 6);

    // Unfocused, the box replaces what was selected when it lost the focus, not what the
    // caret shows now.
    driver.PressTab(dialog);
    Serve();
    ASSERT_FALSE(box.HasFocus());
    box.SetCaret(2);
    box.InsertText(loam::String("there"), false);
    EXPECT_TRUE(box.GetContent() == "hello there");

    box.AppendText(loam::String("!"));
    EXPECT_TRUE(box.GetContent() == "hello there!");
    box.SetFocus();
    box.SetSelection(0, 5);
    box.InsertText(loam::String("Hi"), true);
    EXPECT_TRUE(box.HasFocus());
    EXPECT_TRUE(box.GetContent() == "Hi there!");
    EXPECT_EQ(box.GetCaret(), 2);
    box.SetSelection(1, 4);
    box.ClearSelection();
    EXPECT_FALSE(box.GetSelection(nullptr, nullptr));
    EXPECT_EQ(box.GetCaret(), 0);
}

TEST_F(ControlsTest, ASliderReportsWhatTheUserDoesWithIt) {
    Open();
    quilt::Slider& slider = dialog.limit;
    slider.SetRange(1, 50);
    slider.SetPos(10);
    int32_t minimum = 0;
    int32_t maximum = 0;
    slider.GetRange(minimum, maximum);
    EXPECT_EQ(minimum, 1);
    EXPECT_EQ(maximum, 50);
    slider.SetFocus();

    const std::vector<int32_t> drag = {quilt::MsgSliderTrack, quilt::MsgSliderThumbPosition,
                                       quilt::MsgSliderEndTrack};
    const std::tuple<const char*, std::function<void()>, int32_t, std::vector<int32_t>> cases[] = {
        {"drag", [&] { driver.MoveSlider(dialog, Limit, 30); }, 30, drag},
        {"drag past the end", [&] { driver.MoveSlider(dialog, Limit, 99); }, 50, drag},
        {"left key",
         [&] { driver.PressKey(dialog, quilt::KeyLeft); },
         49,
         {quilt::MsgSliderLineUp, quilt::MsgSliderEndTrack}},
        {"down key",
         [&] { driver.PressKey(dialog, quilt::KeyDown); },
         50,
         {quilt::MsgSliderLineDown, quilt::MsgSliderEndTrack}},
    };
    for (const auto& [name, act, position, kinds] : cases) {
        dialog.log.clear();
        act();
        Serve();
        EXPECT_EQ(slider.GetPos(), position) << name;
        std::vector<std::string> expected;
        for (int32_t kind : kinds)
            expected.push_back(Kind(kind, Limit));
        EXPECT_EQ(dialog.log, expected) << name;
    }
    slider.SetRange(10, 20);
    EXPECT_EQ(driver.GetSliderPosition(dialog, Limit), 20);
}

TEST(ProgressScaleTest, AnyRangeLandsOnTheSixteenBitScale) {
    const std::tuple<int32_t, int32_t, int32_t, std::optional<int32_t>> cases[] = {
        {50, 0, 100, 32767},        {0, 0, 100, 0},
        {100, 0, 100, 65535},       {101, 0, 100, std::nullopt},
        {-1, 0, 100, std::nullopt}, {2500000, 0, 10000000, 16383},
        {1, 0, 200000, 0},          {2147483647, -2147483647 - 1, 2147483647, 65535},
        {-50, -100, 0, 32767},      {5, 5, 5, std::nullopt},
        {5, 10, 0, std::nullopt},
    };
    for (const auto& [value, minimum, maximum, native] : cases) {
        EXPECT_EQ(quilt::ScaleProgress(value, minimum, maximum), native)
            << value << " in " << minimum << ".." << maximum;
    }
}

TEST_F(ControlsTest, AWrapperRefusesAControlOfAnotherClass) {
    Open();
    quilt::Button button;
    quilt::Slider slider;
    EXPECT_FALSE(button.BindToControl(&dialog, Pattern));
    EXPECT_FALSE(slider.BindToControl(&dialog, Option));
    EXPECT_EQ(button.GetId(), -1);
    EXPECT_FALSE(button.IsPushed());
    EXPECT_EQ(slider.GetPos(), 0);
    quilt::Button ok;
    EXPECT_TRUE(ok.BindToControl(&dialog, quilt::IdOK));
    EXPECT_FALSE(ok.IsPushed());
}

TEST_F(ControlsTest, ControlsMadeByCodeWorkLikeTemplateOnes) {
    Dialog dynamic(quilt::DynamicDialogResource, nullptr);
    quilt::Button button;
    quilt::CheckBox box;
    quilt::EditBox edit;
    quilt::Slider slider;
    quilt::ProgressBar bar;
    quilt::EditBox orphan;
    driver.OnNextModal([&](Dialog& shown) {
        ASSERT_TRUE(button.Create(&shown, Rect{0, 0, 50, 20}, quilt::IdCancel));
        ASSERT_TRUE(box.Create(&shown, Rect{0, 30, 50, 50}, 1500));
        ASSERT_TRUE(edit.Create(&shown, Rect{0, 60, 100, 80}));
        ASSERT_TRUE(slider.Create(&shown, Rect{0, 90, 100, 110}));
        ASSERT_TRUE(bar.Create(&shown, Rect{0, 120, 100, 130}, -1));
        EXPECT_FALSE(orphan.Create(nullptr, Rect{0, 0, 1, 1}));
        // Free ids come from 1001 up.
        EXPECT_EQ(edit.GetId(), 1001);
        EXPECT_EQ(slider.GetId(), 1002);
        EXPECT_EQ(bar.GetId(), 1003);
        EXPECT_EQ(edit.GetParent(), &shown);
        edit.SetContent("made");
        EXPECT_TRUE(driver.GetControlText(shown, 1001) == "made");
        slider.SetRange(0, 10);
        slider.SetPos(4);
        EXPECT_EQ(driver.GetSliderPosition(shown, 1002), 4);
        bar.SetRange(-10, 10);
        bar.SetPos(0);
        bar.SetPos(11);
        EXPECT_EQ(driver.GetProgressPosition(shown, 1003), 32767);
        // Only the program checks a check box made by code.
        driver.Click(shown, 1500);
        driver.PumpMessages();
        EXPECT_EQ(box.GetState(), quilt::CheckStateUnchecked);
        box.SetChecked(true);
        EXPECT_EQ(driver.GetCheckState(shown, 1500), quilt::CheckStateChecked);
        driver.Click(shown, quilt::IdCancel);
    });
    EXPECT_EQ(dynamic.RunModal(false), quilt::IdCancel);
}

} // namespace
