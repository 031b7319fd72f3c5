#pragma once

#include "loam/string.h"
#include "quilt/geometry.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <string>

namespace quilt {

class Gtk_WindowImp;

// What the backend keeps on each widget that stands for a native window: a top-level window, a
// dialog, or a control placed in its parent's client area.
struct GtkNative {
    int32_t id = 0;
    uint32_t style = 0; // ControlStyle bits for a control
    // In the parent's client coordinates as last placed; the client size for a top-level window.
    Rect rect;
    // The widget that holds the text, value or state: a scrolled window's text view, the
    // window's own widget otherwise.
    GtkWidget* inner = nullptr;
    // Where children go: the client area of a top-level window or of a child window.
    GtkWidget* clientArea = nullptr;
    Gtk_WindowImp* imp = nullptr;    // the Imp bound to this window, if any
    cairo_t* paintContext = nullptr; // set while the window paints
    bool quiet = false;              // a change by the program itself: no notification
    // The text that the window paints itself, which the accessibility layer reads as the
    // description of its top-level window.
    std::string paintedText;
};

// Opens the display once; false when none can be opened, X11 or Wayland.
bool OpenGtkDisplay();

// Attaches a new record to `widget`, which owns it from now on.
GtkNative& AttachNative(GtkWidget* widget);
// The record of `widget`, or null when it stands for no native window.
GtkNative* FindNative(GtkWidget* widget);
// The record of `widget` or of the nearest widget above it that has one.
GtkNative* FindNativeAbove(GtkWidget* widget);
// The widget that holds that record, or null.
GtkWidget* FindNativeWidgetAbove(GtkWidget* widget);

// A GtkFixed that asks for no size of its own, so that its window can shrink while the layout
// moves the children back inside.
GtkWidget* NewClientArea();

// Text between the toolkit and GTK. Toolkit text is bytes; GTK takes UTF-8. Bytes that are not
// UTF-8, as a file name may be, and characters that would turn the text around are shown as
// escapes (loam::MakeDisplayText).
std::string ToDisplayText(const char* bytes);
inline std::string ToDisplayText(const loam::String& bytes) {
    return ToDisplayText(bytes.GetCString());
}
// Text that a person edits and the program reads back, as an editable box or a drop-down list's
// rows hold it: UTF-8 stays as it stands, every character of it, so that a pattern comes back as
// it was put in. Only bytes that are not UTF-8, which GTK can't hold, make the text shown with
// escapes. A box that can't be edited only shows its text, with ToDisplayText.
std::string ToEditableText(const char* bytes);
inline std::string ToEditableText(const loam::String& bytes) {
    return ToEditableText(bytes.GetCString());
}
// The text for an entry or a text view: ToEditableText when a person can edit it, else
// ToDisplayText.
std::string ToBoxText(GtkWidget* box, const loam::String& bytes);
// A control's label with its mnemonic: "&Find" underlines F, "&&" is an ampersand.
std::string ToMnemonicText(const char* text);
// A label without its mnemonic mark, as the accessibility layer names a control.
std::string WithoutMnemonic(const char* text);

// The toolkit's key code and modifier flags for a GDK key event; false for a key the toolkit
// does not report.
bool TranslateKey(const GdkEventKey& event, int32_t& key, uint32_t& modifiers);
// The toolkit's mouse flags for a button event: the button over the held modifiers.
uint32_t TranslateButton(guint button, guint state);
// The held buttons and modifiers during a pointer move.
uint32_t TranslateHeldButtons(guint state);

} // namespace quilt
