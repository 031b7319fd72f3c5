#include "quilt/dialog.h"

#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_desktop.h"
#include "test_application.h"

#include <string>
#include <utility>
#include <vector>

namespace {

constexpr uint16_t KeysId = 610;
constexpr int32_t NameLabel = 1050;
constexpr int32_t NameBox = 1051;
constexpr int32_t Option = 1052;
constexpr int32_t Extra = 1053;

// In tab order: the box, the check box, Go (the default), Cancel, Extra. The label names the box.
constexpr DialogControlTemplate keysControls[] = {
    {NameLabel, ControlKind::StaticLeft, "&Name:", {5, 5, 30, 8}, 0},
    {NameBox, ControlKind::Edit, "", {40, 5, 60, 12}, quilt::StyleBorder},
    {Option, ControlKind::AutoCheckBox, "&Option", {5, 20, 60, 10}, 0},
    {quilt::IdOK, ControlKind::DefaultPushButton, "&Go", {5, 34, 30, 14}, 0},
    {quilt::IdCancel, ControlKind::PushButton, "Cancel", {40, 34, 30, 14}, 0},
    {Extra, ControlKind::PushButton, "E&xtra && more", {75, 34, 30, 14}, 0},
};

constexpr DialogTemplate templates[] = {
    {KeysId, "Keys", 110, 52, "MS Sans Serif", 8,
     quilt::DialogStyleCaption | quilt::DialogStyleModalFrame, keysControls},
};

// Records every command that reaches it, and ends neither on OK nor on Cancel, so that a key's
// whole effect can be read afterwards.
class KeysDialog : public Dialog {
public:
    explicit KeysDialog(Window* parent = nullptr) : Dialog(DialogResource(KeysId), parent) {}
    bool OnCommand(int32_t id) override {
        commands.push_back(id);
        return true;
    }
    std::vector<int32_t> commands;
};

class DialogKeysTest : public TemplateTest {
protected:
    DialogKeysTest() : TemplateTest(templates) {}
};

using Key = std::pair<int32_t, uint32_t>;
constexpr uint32_t Alt = quilt::ModifierAlt;
constexpr uint32_t Shift = quilt::ModifierShift;

TEST_F(DialogKeysTest, EachDialogKeyReachesItsControl) {
    struct Case {
        const char* what;
        bool disableDefault;
        std::vector<Key> keys;
        std::vector<int32_t> commands;
        int32_t focus;
        int32_t check;
    };
    const Case cases[] = {
        {"Return in the box presses the default button",
         false,
         {{quilt::KeyReturn, 0}},
         {quilt::IdOK},
         NameBox,
         0},
        {"Return on a push button presses that button",
         false,
         {{quilt::KeyTab, 0}, {quilt::KeyTab, 0}, {quilt::KeyTab, 0}, {quilt::KeyReturn, 0}},
         {quilt::IdCancel},
         quilt::IdCancel,
         0},
        {"a disabled default button takes no Return",
         true,
         {{quilt::KeyReturn, 0}},
         {},
         NameBox,
         0},
        {"Escape is Cancel", false, {{quilt::KeyEscape, 0}}, {quilt::IdCancel}, NameBox, 0},
        {"Shift+Tab from the first stop wraps to the last",
         false,
         {{quilt::KeyTab, Shift}},
         {},
         Extra,
         0},
        {"Tab passes over a disabled button",
         true,
         {{quilt::KeyTab, 0}, {quilt::KeyTab, 0}},
         {},
         quilt::IdCancel,
         0},
        {"a check box's mnemonic focuses and ticks it", false, {{'O', Alt}}, {Option}, Option, 1},
        {"a push button's mnemonic clicks it, past an ampersand",
         false,
         {{'X', Alt}},
         {Extra},
         NameBox,
         0},
        {"a label's mnemonic focuses the control it names",
         false,
         {{quilt::KeyTab, 0}, {'N', Alt}},
         {},
         NameBox,
         0},
        {"a letter that no text marks does nothing", false, {{'Z', Alt}}, {}, NameBox, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        KeysDialog dialog;
        dialog.RunModeless(false);
        if (c.disableDefault) {
            dialog.DisableControlById(quilt::IdOK);
        }
        for (const auto& [key, modifiers] : c.keys) {
            driver.PressKey(dialog, key, modifiers);
            driver.PumpMessages();
        }
        EXPECT_EQ(dialog.commands, c.commands);
        EXPECT_EQ(driver.GetFocusId(dialog), c.focus);
        EXPECT_EQ(driver.GetCheckState(dialog, Option), c.check);
    }
}

TEST(MnemonicKeyTest, TheMarkedCharacterInUpperCase) {
    const std::pair<const char*, int32_t> cases[] = {
        {"&Find", 'F'},    {"F&ilename:", 'I'}, {"Fish && &chips", 'C'}, {"No mark", 0},
        {"Trailing &", 0}, {"&&", 0},           {"&1 first", '1'},
    };
    for (const auto& [text, key] : cases) {
        EXPECT_EQ(quilt::GetMnemonicKey(text), key) << text;
    }
}

uintptr_t TopWindow() {
    return quilt::GetOffscreenDesktop().GetTopWindows().back()->handle;
}

uintptr_t HandleOf(quilt::Window& window) {
    return reinterpret_cast<uintptr_t>(window.GetNativeHandle());
}

// A question without a parent belongs to the main window; when it closes, the dialog that it
// ran over comes to the front again, not its owner. When that dialog closes in turn, its owner
// comes to the front, above a window that was in front of it before.
TEST_F(DialogKeysTest, AModalDialogGivesTheFrontBackToTheWindowItRanOver) {
    KeysDialog owner;
    owner.RunModeless(false);
    KeysDialog other;
    other.RunModeless(false);
    KeysDialog outer(&owner);
    uintptr_t outerHandle = 0;
    uintptr_t topAfterInner = 0;
    driver.OnNextModal([&](Dialog&) {
        outerHandle = HandleOf(outer);
        KeysDialog inner(&owner);
        driver.OnNextModal([](Dialog& shown) { shown.EndDialog(quilt::IdCancel); });
        inner.RunModal(false);
        topAfterInner = TopWindow();
        outer.EndDialog(quilt::IdCancel);
    });
    outer.RunModal(false);
    EXPECT_EQ(topAfterInner, outerHandle);
    EXPECT_EQ(TopWindow(), HandleOf(owner));
}

} // namespace
