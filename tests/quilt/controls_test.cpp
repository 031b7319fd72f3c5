#include "quilt/button.h"
#include "quilt/check_box.h"
#include "quilt/edit_box.h"
#include "quilt/keys.h"
#include "quilt/progress_bar.h"
#include "quilt/slider.h"
#include "test_application.h"

#include <algorithm>
#include <optional>
#include <string>
#include <tuple>

namespace {

constexpr uint16_t ControlsId = 610;

constexpr int32_t Pattern = 1040;
constexpr int32_t Option = 1041;
constexpr int32_t DependentEdit = 1042;
constexpr int32_t DependentButton = 1043;
constexpr int32_t Limit = 1050;
constexpr int32_t Status = 1070;

constexpr DialogControlTemplate controls[] = {
    {Pattern, ControlKind::Edit, "", {10, 5, 80, 12}, quilt::StyleBorder},
    {Option, ControlKind::AutoCheckBox, "&Option", {10, 20, 60, 10}, 0},
    {DependentEdit, ControlKind::Edit, "", {10, 32, 80, 12}, quilt::StyleBorder},
    {DependentButton, ControlKind::PushButton, "More", {100, 32, 40, 14}, 0},
    {Limit, ControlKind::TrackBar, "", {10, 50, 100, 15}, 0},
    {Status, ControlKind::Edit, "read only", {100, 5, 60, 12}, quilt::StyleReadOnly},
    {quilt::IdOK, ControlKind::DefaultPushButton, "OK", {10, 80, 30, 14}, 0},
    {quilt::IdCancel, ControlKind::PushButton, "Cancel", {50, 80, 30, 14}, 0},
};

constexpr DialogTemplate templates[] = {
    {ControlsId, "Controls", 200, 100, "MS Sans Serif", 8, quilt::DialogStyleCaption, controls},
};

std::string Kind(int32_t kind, int32_t id) {
    return std::to_string(kind) + " " + std::to_string(id);
}

class LoggingCheckBox : public quilt::CheckBox {
public:
    explicit LoggingCheckBox(std::vector<std::string>& sharedLog) : log(sharedLog) {}
    void OnClicked() override {
        log.push_back("box clicked");
        quilt::CheckBox::OnClicked();
    }

    std::vector<std::string>& log;
};

// The template's dialog with a wrapper for each control that the tests talk to. What reaches
// its map is logged.
class ControlsDialog : public Dialog {
public:
    ControlsDialog() : Dialog(DialogResource(ControlsId), nullptr) {}

    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    void OnInitDialog() override {
        Dialog::OnInitDialog();
        pattern.BindToControl(this, Pattern);
        option.BindToControl(this, Option);
        limit.BindToControl(this, Limit);
        status.BindToControl(this, Status);
        if (init) {
            init(*this);
        }
    }
    bool OnNotification(int32_t kind, int32_t, int32_t id) {
        log.push_back(Kind(kind, id));
        if (kind == quilt::MsgEnterKey) {
            enteredText = pattern.GetContent().GetCString();
        }
        return true;
    }

    quilt::EditBox pattern;
    LoggingCheckBox option{log};
    quilt::Slider limit;
    quilt::EditBox status;
    std::function<void(ControlsDialog&)> init;
    std::vector<std::string> log;
    std::string enteredText;

    static const quilt::MessageMapEntry entries[];
    static const quilt::MessageMap messageMap;
};

const quilt::MessageMapEntry ControlsDialog::entries[] = {
    quilt::Notification(quilt::MsgClicked, Option, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgTextChange, Pattern, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgEnterKey, Pattern, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgFocusGained, Pattern, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgFocusLost, Pattern, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgSliderTrack, Limit, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgSliderThumbPosition, Limit, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgSliderEndTrack, Limit, &ControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgSliderLineUp, Limit, &ControlsDialog::OnNotification),
    quilt::EndOfMap,
};
const quilt::MessageMap ControlsDialog::messageMap{&Dialog::messageMap, entries};

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
    EXPECT_EQ(dialog.log,
              (std::vector<std::string>{Kind(quilt::MsgFocusLost, Pattern), "box clicked",
                                        Kind(quilt::MsgClicked, Option)}));
    EXPECT_EQ(driver.GetFocusId(dialog), Option);
}

TEST_F(ControlsTest, DependentsFollowTheStateOfTheirCheckBox) {
    Open();
    quilt::CheckBox& box = dialog.option;
    box.SetDependentDialog(&dialog);
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
}

TEST_F(ControlsTest, ReturnInAnEditBoxRaisesEnterKeyWhenTheBoxTakesIt) {
    for (bool notifies : {false, true}) {
        ControlsDialog modal;
        modal.init = [notifies](ControlsDialog& self) { self.pattern.SetEnterNotifies(notifies); };
        driver.OnNextModal([&](Dialog& shown) {
            driver.TypeText(shown, Pattern, "abc");
            driver.PressReturn(shown);
            driver.PressEscape(shown);
        });
        // Return the box takes is not the dialog's: Escape ends it.
        EXPECT_EQ(modal.RunModal(false), notifies ? quilt::IdCancel : quilt::IdOK);
        EXPECT_EQ(modal.enteredText, notifies ? "abc" : "");
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
    EXPECT_EQ(std::count(dialog.log.begin(), dialog.log.end(), Kind(quilt::MsgTextChange, Pattern)),
              5);
    // The box had the focus from the start, as the first tab stop, and lost it to the other.
    EXPECT_EQ(dialog.log.front(), Kind(quilt::MsgFocusGained, Pattern));
    EXPECT_EQ(dialog.log.back(), Kind(quilt::MsgFocusLost, Pattern));
}

TEST_F(ControlsTest, SelectionAndCaretOfAnEditBox) {
    Open();
    quilt::EditBox& box = dialog.pattern;
    box.SetContent("hello world");
    EXPECT_FALSE(box.GetSelection(nullptr, nullptr));
    EXPECT_FALSE(box.SetSelection(3, 3));
    EXPECT_FALSE(box.SetSelection(4, 2));
    EXPECT_TRUE(box.SetSelection(6, 11));

    // Unfocused, the box replaces what was selected when it lost the focus, not what the
    // caret shows now.
    driver.PressTab(dialog);
    Serve();
    ASSERT_FALSE(box.HasFocus());
    box.SetCaret(2);
    box.InsertText(loam::String("there"), false);
    EXPECT_TRUE(box.GetContent() == "hello there");

    box.SetFocus();
    box.SetSelection(0, 5);
    box.InsertText(loam::String("Hi"), true);
    EXPECT_TRUE(box.GetContent() == "Hi there");
    EXPECT_EQ(box.GetCaret(), 2);
}

// A drag past the end stops there; a key moves the thumb by a line.
TEST_F(ControlsTest, ASliderReportsWhatTheUserDoesWithIt) {
    Open();
    quilt::Slider& slider = dialog.limit;
    slider.SetRange(1, 50);
    slider.SetFocus();
    using namespace quilt;
    const std::vector<int32_t> drag = {MsgSliderTrack, MsgSliderThumbPosition, MsgSliderEndTrack};
    const std::tuple<int32_t, int32_t, std::vector<int32_t>> cases[] = {
        {30, 30, drag}, {99, 50, drag}, {-1, 49, {MsgSliderLineUp, MsgSliderEndTrack}}};
    for (const auto& [target, position, kinds] : cases) {
        dialog.log.clear();
        if (target < 0)
            driver.PressKey(dialog, KeyLeft);
        else
            driver.MoveSlider(dialog, Limit, target);
        Serve();
        EXPECT_EQ(slider.GetPos(), position) << target;
        std::vector<std::string> expected;
        for (int32_t kind : kinds)
            expected.push_back(Kind(kind, Limit));
        EXPECT_EQ(dialog.log, expected) << target;
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

TEST_F(ControlsTest, ControlsMadeByCodeWorkLikeTemplateOnes) {
    Dialog dynamic(quilt::DynamicDialogResource, nullptr);
    quilt::Button button;
    quilt::EditBox edit;
    quilt::ProgressBar bar;
    driver.OnNextModal([&](Dialog& shown) {
        ASSERT_TRUE(button.Create(&shown, Rect{0, 0, 50, 20}, quilt::IdCancel));
        ASSERT_TRUE(edit.Create(&shown, Rect{0, 60, 100, 80}));
        ASSERT_TRUE(bar.Create(&shown, Rect{0, 120, 100, 130}, -1));
        EXPECT_FALSE(quilt::EditBox().Create(nullptr, Rect{0, 0, 1, 1}));
        // A wrapper refuses a control of another class.
        EXPECT_FALSE(quilt::Slider().BindToControl(&shown, 1001));
        // Free ids come from 1001 up.
        EXPECT_EQ(bar.GetId(), 1002);
        edit.SetContent("made");
        EXPECT_TRUE(driver.GetControlText(shown, 1001) == "made");
        bar.SetRange(-10, 10);
        bar.SetPos(0);
        bar.SetPos(11);
        EXPECT_EQ(driver.GetProgressPosition(shown, 1002), 32767);
        driver.Click(shown, quilt::IdCancel);
    });
    EXPECT_EQ(dynamic.RunModal(false), quilt::IdCancel);
}

} // namespace
