#include "quilt/gtk/gtk_support.h"
#include "quilt/keys.h"

#include <gtest/gtest.h>

namespace {

TEST(GtkText, MnemonicMarksBecomeGtkMarks) {
    struct Case {
        const char* text;
        const char* marked;
        const char* plain;
    };
    const Case cases[] = {
        {"&Find", "_Find", "Find"},
        {"F&ilename:", "F_ilename:", "Filename:"},
        {"Salt && Pepper", "Salt & Pepper", "Salt & Pepper"},
        {"snake_case", "snake__case", "snake_case"},
        {"trailing&", "trailing&", "trailing&"},
        {"", "", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(quilt::ToMnemonicText(c.text), c.marked) << c.text;
        EXPECT_EQ(quilt::WithoutMnemonic(c.text), c.plain) << c.text;
    }
}

// What GTK is given is UTF-8. Nothing in a text that is only shown hides or turns around part of
// a name; a text that a person edits and the program reads back keeps every character that GTK
// can hold, and is escaped only when it is not UTF-8.
TEST(GtkText, ShownTextEscapesWhatDisguisesANameAndEditedTextKeepsIt) {
    const struct {
        const char* bytes;
        const char* shown;
        const char* edited;
    } cases[] = {
        {"caf\xc3\xa9.txt", "caf\xc3\xa9.txt", "caf\xc3\xa9.txt"},
        {"caf\xe9.txt", "caf\\xE9.txt", "caf\\xE9.txt"},
        {"rtl\xE2\x80\xAEtxt.exe", "rtl\\u202Etxt.exe", "rtl\xE2\x80\xAEtxt.exe"},
        {"\xE2\x81\xA6*.pdf\xE9", "\\u2066*.pdf\\xE9", "\\u2066*.pdf\\xE9"},
        {"", "", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(quilt::ToDisplayText(c.bytes), c.shown) << c.bytes;
        EXPECT_EQ(quilt::ToEditableText(c.bytes), c.edited) << c.bytes;
        EXPECT_TRUE(g_utf8_validate(quilt::ToEditableText(c.bytes).c_str(), -1, nullptr));
    }
}

TEST(GtkKeys, KeysAndModifiersBecomeTheToolkitsCodes) {
    struct Case {
        guint keyval;
        guint state;
        bool reported;
        int32_t key;
        uint32_t modifiers;
    };
    const Case cases[] = {
        {GDK_KEY_Return, 0, true, quilt::KeyReturn, 0},
        {GDK_KEY_KP_Enter, 0, true, quilt::KeyReturn, 0},
        {GDK_KEY_ISO_Left_Tab, GDK_SHIFT_MASK, true, quilt::KeyTab, quilt::ModifierShift},
        {GDK_KEY_f, GDK_MOD1_MASK, true, 'F', quilt::ModifierAlt},
        {GDK_KEY_F, GDK_SHIFT_MASK | GDK_CONTROL_MASK, true, 'F',
         quilt::ModifierShift | quilt::ModifierControl},
        {GDK_KEY_7, 0, true, '7', 0},
        {GDK_KEY_F24, 0, true, quilt::KeyF24, 0},
        {GDK_KEY_Menu, 0, true, quilt::KeyMenu, 0},
        {GDK_KEY_Down, GDK_SUPER_MASK, true, quilt::KeyDown, quilt::ModifierSuper},
        {GDK_KEY_Page_Up, 0, false, 0, 0},
        {GDK_KEY_Home, 0, false, 0, 0},
    };
    for (const Case& c : cases) {
        GdkEventKey event{};
        event.keyval = c.keyval;
        event.state = c.state;
        int32_t key = 0;
        uint32_t modifiers = 0;
        ASSERT_EQ(quilt::TranslateKey(event, key, modifiers), c.reported) << c.keyval;
        if (c.reported) {
            EXPECT_EQ(key, c.key) << c.keyval;
            EXPECT_EQ(modifiers, c.modifiers) << c.keyval;
        }
    }
}

TEST(GtkMouse, ButtonsNameThemselvesOverTheHeldModifiers) {
    EXPECT_EQ(quilt::TranslateButton(1, GDK_CONTROL_MASK), quilt::MouseLeft | quilt::MouseControl);
    EXPECT_EQ(quilt::TranslateButton(3, GDK_BUTTON1_MASK), quilt::MouseRight);
    EXPECT_EQ(quilt::TranslateHeldButtons(GDK_BUTTON1_MASK | GDK_BUTTON2_MASK | GDK_SHIFT_MASK),
              quilt::MouseLeft | quilt::MouseMiddle | quilt::MouseShift);
}

} // namespace
