#include "quilt/offscreen/offscreen_control_imps.h"

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"

#include <algorithm>

namespace quilt {

namespace {

template <class Native> bool IsOf(const OffscreenWindow* window) {
    return dynamic_cast<const Native*>(window) != nullptr;
}

} // namespace

bool Offscreen_ButtonImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::PushButton, StyleTabStop, rect,
                               id);
}

bool Offscreen_ButtonImp::IsPushed() {
    auto* button = dynamic_cast<OffscreenButton*>(GetNative());
    return button != nullptr && button->checkState == CheckStateChecked;
}

bool Offscreen_ButtonImp::Attach(OffscreenWindow* window) {
    return IsOf<OffscreenButton>(window) && Offscreen_WindowImp::Attach(window);
}

OffscreenButton* Offscreen_CheckBoxImp::GetButton() const {
    return dynamic_cast<OffscreenButton*>(GetNative());
}

int32_t Offscreen_CheckBoxImp::GetState() {
    OffscreenButton* button = GetButton();
    return button != nullptr ? button->checkState : CheckStateUnchecked;
}

void Offscreen_CheckBoxImp::SetState(int32_t state) {
    if (OffscreenButton* button = GetButton()) {
        button->checkState = state;
        button->needsPaint = true;
    }
}

bool Offscreen_CheckBoxImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::CheckBox, StyleCheckBox, rect, id);
}

bool Offscreen_CheckBoxImp::Attach(OffscreenWindow* window) {
    return IsOf<OffscreenButton>(window) && Offscreen_WindowImp::Attach(window);
}

OffscreenEdit* Offscreen_EditBoxImp::GetEdit() const {
    return dynamic_cast<OffscreenEdit*>(GetNative());
}

bool Offscreen_EditBoxImp::Create(Window* parent, const Rect& rect) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::Edit, StyleBorder | StyleTabStop,
                               rect, -1);
}

void Offscreen_EditBoxImp::AppendText(const loam::String& text) {
    if (OffscreenEdit* edit = GetEdit()) {
        int32_t end = edit->text.GetLength();
        edit->Select(end, end);
        edit->ReplaceSelection(text);
    }
}

void Offscreen_EditBoxImp::InsertText(const loam::String& text, bool moveCaret) {
    OffscreenEdit* edit = GetEdit();
    if (edit == nullptr) {
        return;
    }
    if (!HasFocus()) {
        edit->Select(savedStart, savedEnd);
    }
    int32_t caret = edit->selectionStart + text.GetLength();
    edit->ReplaceSelection(text);
    if (!moveCaret || GetEdit() == nullptr) {
        return;
    }
    SetFocus();
    if (OffscreenEdit* focused = GetEdit()) {
        focused->Select(caret, caret);
    }
}

int32_t Offscreen_EditBoxImp::GetCaret() {
    OffscreenEdit* edit = GetEdit();
    return edit != nullptr ? edit->selectionStart : 0;
}

void Offscreen_EditBoxImp::SetCaret(int32_t position) {
    if (OffscreenEdit* edit = GetEdit()) {
        edit->Select(position, position);
    }
}

bool Offscreen_EditBoxImp::GetSelection(int32_t* start, int32_t* end) {
    OffscreenEdit* edit = GetEdit();
    if (edit == nullptr || edit->selectionStart == edit->selectionEnd) {
        return false;
    }
    if (start != nullptr) {
        *start = edit->selectionStart;
    }
    if (end != nullptr) {
        *end = edit->selectionEnd;
    }
    return true;
}

bool Offscreen_EditBoxImp::SetSelection(int32_t start, int32_t end) {
    OffscreenEdit* edit = GetEdit();
    if (edit == nullptr || end <= start) {
        return false;
    }
    edit->Select(start, end);
    return true;
}

void Offscreen_EditBoxImp::ClearSelection() {
    if (OffscreenEdit* edit = GetEdit()) {
        edit->Select(0, 0);
    }
}

void Offscreen_EditBoxImp::SetTextColour(const Colour& colour) {
    if (OffscreenEdit* edit = GetEdit()) {
        edit->textColour = colour;
        edit->needsPaint = true;
    }
}

void Offscreen_EditBoxImp::SetBackColour(const Colour& colour) {
    if (OffscreenEdit* edit = GetEdit()) {
        edit->backColour = colour;
        edit->needsPaint = true;
    }
}

void Offscreen_EditBoxImp::ResetTextColour() {
    if (OffscreenEdit* edit = GetEdit()) {
        edit->textColour.reset();
        edit->needsPaint = true;
    }
}

void Offscreen_EditBoxImp::ResetBackColour() {
    if (OffscreenEdit* edit = GetEdit()) {
        edit->backColour.reset();
        edit->needsPaint = true;
    }
}

bool Offscreen_EditBoxImp::Attach(OffscreenWindow* window) {
    return IsOf<OffscreenEdit>(window) && Offscreen_WindowImp::Attach(window);
}

bool Offscreen_EditBoxImp::WindowProc(const OffscreenMessage& message) {
    OffscreenEdit* edit = GetEdit();
    if (message.kind == OffscreenMessageKind::KillFocus && edit != nullptr) {
        savedStart = edit->selectionStart;
        savedEnd = edit->selectionEnd;
    }
    return Offscreen_WindowImp::WindowProc(message);
}

OffscreenTrackBar* Offscreen_SliderImp::GetTrackBar() const {
    return dynamic_cast<OffscreenTrackBar*>(GetNative());
}

bool Offscreen_SliderImp::Create(Window* parent, const Rect& rect) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::TrackBar,
                               StyleBorder | StyleTabStop, rect, -1);
}

void Offscreen_SliderImp::SetRange(int32_t minimum, int32_t maximum) {
    if (OffscreenTrackBar* bar = GetTrackBar()) {
        bar->SetRange(minimum, maximum);
    }
}

void Offscreen_SliderImp::GetRange(int32_t& minimum, int32_t& maximum) {
    OffscreenTrackBar* bar = GetTrackBar();
    minimum = bar != nullptr ? bar->rangeMin : 0;
    maximum = bar != nullptr ? bar->rangeMax : 0;
}

void Offscreen_SliderImp::SetPos(int32_t position) {
    if (OffscreenTrackBar* bar = GetTrackBar()) {
        bar->SetPosition(position);
    }
}

int32_t Offscreen_SliderImp::GetPos() {
    OffscreenTrackBar* bar = GetTrackBar();
    return bar != nullptr ? bar->position : 0;
}

bool Offscreen_SliderImp::Attach(OffscreenWindow* window) {
    return IsOf<OffscreenTrackBar>(window) && Offscreen_WindowImp::Attach(window);
}

void Offscreen_ProgressBarImp::SetRange(int32_t minimum, int32_t maximum) {
    rangeMin = minimum;
    rangeMax = maximum;
}

void Offscreen_ProgressBarImp::SetPos(int32_t value) {
    auto* bar = dynamic_cast<OffscreenProgressBar*>(GetNative());
    std::optional<int32_t> position = ScaleProgress(value, rangeMin, rangeMax);
    if (bar != nullptr && position) {
        bar->position = *position;
        bar->needsPaint = true;
    }
}

bool Offscreen_ProgressBarImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::ProgressBar,
                               StyleBorder | StyleTabStop, rect, id);
}

bool Offscreen_ProgressBarImp::Attach(OffscreenWindow* window) {
    return IsOf<OffscreenProgressBar>(window) && Offscreen_WindowImp::Attach(window);
}

} // namespace quilt
