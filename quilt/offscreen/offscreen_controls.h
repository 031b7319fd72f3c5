#pragma once

#include "loam/string.h"
#include "quilt/colour.h"
#include "quilt/offscreen/offscreen_desktop.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace quilt {

// Tells the control's parent window what happened to it.
void NotifyParent(OffscreenWindow& control, ControlEvent event, uint32_t detail = 0);

// One row of a control's table of what it does with a message itself.
template <class Control> struct NativeRoute {
    OffscreenMessageKind kind;
    void (*handler)(Control&, const OffscreenMessage&);
};

// Runs the control's row for the message; false when the control has none.
template <class Control, size_t Count>
bool RouteNative(Control& control, const NativeRoute<Control> (&routes)[Count],
                 const OffscreenMessage& message) {
    for (const NativeRoute<Control>& route : routes) {
        if (route.kind == message.kind) {
            route.handler(control, message);
            return true;
        }
    }
    return false;
}

bool IsLeftButton(const OffscreenMessage& message);

// A push button, check box, radio button or group box, by its style.
struct OffscreenButton : OffscreenWindow {
    using OffscreenWindow::OffscreenWindow;

    void DefaultHandling(const OffscreenMessage& message) override;
    bool IsPushButton() const;
    // What a click does: an automatic check box toggles, an automatic radio button is checked
    // in its group, then the parent hears of the click.
    // The button may be gone when this returns.
    void Click();

    int32_t checkState = 0;
};

struct OffscreenEdit : OffscreenWindow {
    using OffscreenWindow::OffscreenWindow;

    void DefaultHandling(const OffscreenMessage& message) override;
    // New text puts the caret at its start.
    void SetNativeText(const loam::String& newText) override;
    int32_t GetNativeDialogCode(KeyEventKind kind, int32_t value) const override;
    // Held within the text, start before end.
    void Select(int32_t start, int32_t end);
    // The caret goes behind the new text; the parent hears of the update and the change.
    void ReplaceSelection(const loam::String& replacement);

    int32_t selectionStart = 0;
    int32_t selectionEnd = 0;
    std::optional<Colour> textColour;
    std::optional<Colour> backColour;
};

struct OffscreenTrackBar : OffscreenWindow {
    using OffscreenWindow::OffscreenWindow;

    void DefaultHandling(const OffscreenMessage& message) override;
    int32_t GetNativeDialogCode(KeyEventKind kind, int32_t value) const override;
    void SetRange(int32_t minimum, int32_t maximum);
    // Held within the range.
    void SetPosition(int32_t value);

    int32_t rangeMin = 0;
    int32_t rangeMax = 100;
    int32_t position = 0;
};

// Its range is always 0 to 65535.
struct OffscreenProgressBar : OffscreenWindow {
    using OffscreenWindow::OffscreenWindow;

    int32_t position = 0;
};

// The native window of a kind of control; a kind that has no behaviour of its own here gets a
// plain window. `style` holds every ControlStyle bit of the control.
std::unique_ptr<OffscreenWindow> MakeOffscreenWindow(ControlKind kind, uint32_t style,
                                                     OffscreenWindow* parent);

} // namespace quilt
