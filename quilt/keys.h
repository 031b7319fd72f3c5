#pragma once

#include <cstdint>

namespace quilt {

// The toolkit's own key codes. Digits and letters are their ASCII upper-case codes, '0' to '9'
// and 'A' to 'Z'. A backend reports no key that has no code here (Page Up, Home, Insert...).
enum KeyCode : int32_t {
    KeyBackspace = 8,
    KeyTab = 9,
    KeyReturn = 13,
    KeyEscape = 27,
    KeySpace = 32,
    KeyDelete = 127,
    KeyLeft = 128,
    KeyRight = 129,
    KeyUp = 130,
    KeyDown = 131,
    KeyShift = 136,
    KeyControl = 137,
    KeyAlt = 138,
    KeyF1 = 139,
    KeyF10 = 148,
    KeyF24 = 162,
    KeyMenu = 163, // the key that asks for the focused control's context menu
};

// Modifier flags given with a key.
enum KeyModifier : uint32_t {
    ModifierShift = 2,
    ModifierControl = 4,
    ModifierAlt = 8,
    ModifierSuper = 32, // either logo key
};

// Flags given with a mouse event. In a move they say which buttons are held; in a press,
// release or double click they name the button the event is about, over the held modifiers.
enum MouseFlag : uint32_t {
    MouseLeft = 2,
    MouseMiddle = 4,
    MouseRight = 8,
    MouseControl = 0x10000,
    MouseShift = 0x20000,
};

} // namespace quilt
