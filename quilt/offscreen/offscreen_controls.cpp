#include "quilt/offscreen/offscreen_controls.h"

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_further_controls.h"
#include "quilt/offscreen/offscreen_list_controls.h"

#include <algorithm>

namespace quilt {

bool IsLeftButton(const OffscreenMessage& message) {
    return (message.flags & MouseLeft) != 0;
}

namespace {

void TakeFocus(OffscreenWindow& control) {
    GetOffscreenDesktop().SetFocus(&control);
}

void ButtonMouseDown(OffscreenButton& button, const OffscreenMessage& message) {
    if (IsLeftButton(message) && (button.style & StyleGroupBox) == 0) {
        TakeFocus(button);
    }
}

void ButtonMouseUp(OffscreenButton& button, const OffscreenMessage& message) {
    if (IsLeftButton(message)) {
        button.Click();
    }
}

void ButtonKeyUp(OffscreenButton& button, const OffscreenMessage& message) {
    if (message.value == KeySpace) {
        button.Click();
    }
}

constexpr NativeRoute<OffscreenButton> buttonRoutes[] = {
    {OffscreenMessageKind::MouseDown, ButtonMouseDown},
    {OffscreenMessageKind::MouseUp, ButtonMouseUp},
    {OffscreenMessageKind::KeyUp, ButtonKeyUp},
};

bool IsReadOnly(const OffscreenEdit& edit) {
    return (edit.style & StyleReadOnly) != 0;
}

// Text is 8-bit: a character outside that, or a control character, types nothing.
bool IsTypable(int32_t character) {
    return character >= KeySpace && character <= 255 && character != KeyDelete;
}

// Backspace takes the selection, or the character before the caret.
void EraseBackward(OffscreenEdit& edit) {
    if (edit.selectionStart == edit.selectionEnd) {
        if (edit.selectionStart == 0) {
            return;
        }
        edit.Select(edit.selectionStart - 1, edit.selectionEnd);
    }
    edit.ReplaceSelection(loam::String());
}

void EraseForward(OffscreenEdit& edit) {
    if (edit.selectionStart == edit.selectionEnd) {
        if (edit.selectionEnd == edit.text.GetLength()) {
            return;
        }
        edit.Select(edit.selectionStart, edit.selectionEnd + 1);
    }
    edit.ReplaceSelection(loam::String());
}

void EditChar(OffscreenEdit& edit, const OffscreenMessage& message) {
    if (IsReadOnly(edit)) {
        return;
    }
    if (message.value == KeyBackspace) {
        EraseBackward(edit);
        return;
    }
    if (IsTypable(message.value)) {
        loam::String typed;
        typed.Append(static_cast<char>(message.value));
        edit.ReplaceSelection(typed);
    }
}

void EditKeyDown(OffscreenEdit& edit, const OffscreenMessage& message) {
    int32_t caret = edit.selectionStart;
    if (message.value == KeyLeft) {
        edit.Select(caret - 1, caret - 1);
    } else if (message.value == KeyRight) {
        caret = edit.selectionEnd;
        edit.Select(caret + 1, caret + 1);
    } else if (message.value == KeyDelete && !IsReadOnly(edit)) {
        EraseForward(edit);
    }
}

void EditMouseDown(OffscreenEdit& edit, const OffscreenMessage& message) {
    if (!IsLeftButton(message)) {
        return;
    }
    OffscreenHandle handle = edit.handle;
    TakeFocus(edit);
    // Whoever lost the focus may have destroyed the box.
    if (auto* focused = dynamic_cast<OffscreenEdit*>(GetOffscreenDesktop().Find(handle))) {
        int32_t end = focused->text.GetLength();
        focused->Select(end, end);
    }
}

void EditSetFocus(OffscreenEdit& edit, const OffscreenMessage&) {
    NotifyParent(edit, ControlEvent::FocusGained);
}

void EditKillFocus(OffscreenEdit& edit, const OffscreenMessage&) {
    NotifyParent(edit, ControlEvent::FocusLost);
}

constexpr NativeRoute<OffscreenEdit> editRoutes[] = {
    {OffscreenMessageKind::Char, EditChar},
    {OffscreenMessageKind::KeyDown, EditKeyDown},
    {OffscreenMessageKind::MouseDown, EditMouseDown},
    {OffscreenMessageKind::SetFocus, EditSetFocus},
    {OffscreenMessageKind::KillFocus, EditKillFocus},
};

// Each notification may destroy the slider: each is sent only while it is still there.
void NotifyScrolls(OffscreenTrackBar& bar, std::initializer_list<ScrollAction> actions) {
    OffscreenHandle handle = bar.handle;
    for (ScrollAction action : actions) {
        OffscreenWindow* window = GetOffscreenDesktop().Find(handle);
        if (window == nullptr) {
            return;
        }
        NotifyParent(*window, ControlEvent::Scrolled, action);
    }
}

void TrackBarDrag(OffscreenTrackBar& bar, const OffscreenMessage& message) {
    bar.SetPosition(message.value);
    NotifyScrolls(bar, {ScrollThumbTrack, ScrollThumbPosition, ScrollEndTrack});
}

bool IsBackwardKey(int32_t key) {
    return key == KeyLeft || key == KeyUp;
}

bool IsForwardKey(int32_t key) {
    return key == KeyRight || key == KeyDown;
}

void TrackBarKeyDown(OffscreenTrackBar& bar, const OffscreenMessage& message) {
    if (IsBackwardKey(message.value)) {
        bar.SetPosition(bar.position - 1);
        NotifyScrolls(bar, {ScrollLineUp});
    } else if (IsForwardKey(message.value)) {
        bar.SetPosition(bar.position + 1);
        NotifyScrolls(bar, {ScrollLineDown});
    }
}

void TrackBarKeyUp(OffscreenTrackBar& bar, const OffscreenMessage& message) {
    if (IsBackwardKey(message.value) || IsForwardKey(message.value)) {
        NotifyScrolls(bar, {ScrollEndTrack});
    }
}

void TrackBarMouseDown(OffscreenTrackBar& bar, const OffscreenMessage& message) {
    if (IsLeftButton(message)) {
        TakeFocus(bar);
    }
}

constexpr NativeRoute<OffscreenTrackBar> trackBarRoutes[] = {
    {OffscreenMessageKind::ThumbDrag, TrackBarDrag},
    {OffscreenMessageKind::KeyDown, TrackBarKeyDown},
    {OffscreenMessageKind::KeyUp, TrackBarKeyUp},
    {OffscreenMessageKind::MouseDown, TrackBarMouseDown},
};

template <class Control> std::unique_ptr<OffscreenWindow> Make(OffscreenWindow* parent) {
    return std::make_unique<Control>(parent);
}

struct NativeClass {
    ControlKind kind;
    std::unique_ptr<OffscreenWindow> (*make)(OffscreenWindow* parent);
};

constexpr NativeClass nativeClasses[] = {
    {ControlKind::PushButton, Make<OffscreenButton>},
    {ControlKind::DefaultPushButton, Make<OffscreenButton>},
    {ControlKind::CheckBox, Make<OffscreenButton>},
    {ControlKind::AutoCheckBox, Make<OffscreenButton>},
    {ControlKind::GroupBox, Make<OffscreenButton>},
    {ControlKind::Edit, Make<OffscreenEdit>},
    {ControlKind::TrackBar, Make<OffscreenTrackBar>},
    {ControlKind::ProgressBar, Make<OffscreenProgressBar>},
    {ControlKind::ListView, Make<OffscreenListView>},
    {ControlKind::ComboBoxWithEdit, Make<OffscreenComboBox>},
    {ControlKind::RadioButton, Make<OffscreenButton>},
    {ControlKind::AutoRadioButton, Make<OffscreenButton>},
    {ControlKind::DateTimePicker, Make<OffscreenDateTimeBox>},
    {ControlKind::TabControl, Make<OffscreenTabControl>},
};

} // namespace

void NotifyParent(OffscreenWindow& control, ControlEvent event, uint32_t detail) {
    if (control.parent == nullptr) {
        return;
    }
    OffscreenMessage message{OffscreenMessageKind::Notify};
    message.value = control.id;
    message.event = event;
    message.flags = detail;
    GetOffscreenDesktop().Send(control.parent, message);
}

void OffscreenButton::DefaultHandling(const OffscreenMessage& message) {
    if (!RouteNative(*this, buttonRoutes, message)) {
        OffscreenWindow::DefaultHandling(message);
    }
}

bool OffscreenButton::IsPushButton() const {
    return (style & (StyleCheckBox | StyleGroupBox | StyleRadio)) == 0;
}

void OffscreenButton::Click() {
    if ((style & StyleGroupBox) != 0) {
        return;
    }
    bool automatic = (style & StyleAutoCheck) != 0;
    if (automatic && (style & StyleRadio) != 0) {
        CheckRadioInGroup(*this);
    } else if (automatic) {
        checkState = checkState == CheckStateChecked ? CheckStateUnchecked : CheckStateChecked;
        needsPaint = true;
    }
    NotifyParent(*this, ControlEvent::Clicked);
}

void OffscreenEdit::DefaultHandling(const OffscreenMessage& message) {
    if (!RouteNative(*this, editRoutes, message)) {
        OffscreenWindow::DefaultHandling(message);
    }
}

void OffscreenEdit::SetNativeText(const loam::String& newText) {
    OffscreenWindow::SetNativeText(newText);
    selectionStart = 0;
    selectionEnd = 0;
}

int32_t OffscreenEdit::GetNativeDialogCode(KeyEventKind, int32_t) const {
    return DialogCodeWantArrows | DialogCodeHasSetSel;
}

void OffscreenEdit::Select(int32_t start, int32_t end) {
    int32_t length = text.GetLength();
    start = std::clamp(start, 0, length);
    end = std::clamp(end, 0, length);
    selectionStart = std::min(start, end);
    selectionEnd = std::max(start, end);
}

void OffscreenEdit::ReplaceSelection(const loam::String& replacement) {
    loam::String changed = text.Left(selectionStart);
    changed.Append(replacement);
    changed.Append(text.Mid(selectionEnd));
    int32_t caret = selectionStart + replacement.GetLength();
    text = changed;
    selectionStart = caret;
    selectionEnd = caret;
    needsPaint = true;
    OffscreenHandle self = handle;
    NotifyParent(*this, ControlEvent::TextUpdated);
    if (OffscreenWindow* stillThere = GetOffscreenDesktop().Find(self)) {
        NotifyParent(*stillThere, ControlEvent::TextChanged);
    }
}

void OffscreenTrackBar::DefaultHandling(const OffscreenMessage& message) {
    if (!RouteNative(*this, trackBarRoutes, message)) {
        OffscreenWindow::DefaultHandling(message);
    }
}

int32_t OffscreenTrackBar::GetNativeDialogCode(KeyEventKind, int32_t) const {
    return DialogCodeWantArrows;
}

void OffscreenTrackBar::SetRange(int32_t minimum, int32_t maximum) {
    rangeMin = minimum;
    rangeMax = std::max(minimum, maximum);
    SetPosition(position);
}

void OffscreenTrackBar::SetPosition(int32_t value) {
    position = std::clamp(value, rangeMin, rangeMax);
    needsPaint = true;
}

std::unique_ptr<OffscreenWindow> MakeOffscreenWindow(ControlKind kind, uint32_t style,
                                                     OffscreenWindow* parent) {
    std::unique_ptr<OffscreenWindow> window;
    for (const NativeClass& nativeClass : nativeClasses) {
        if (nativeClass.kind == kind) {
            window = nativeClass.make(parent);
        }
    }
    if (window == nullptr) {
        window = std::make_unique<OffscreenWindow>(parent);
    }
    window->style = style;
    return window;
}

} // namespace quilt
