#include "quilt/offscreen/offscreen_control_imps.h"

#include "quilt/dialog.h"
#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/gc.h"

#include <algorithm>
#include <typeinfo>

namespace quilt {

namespace {

template <class Native> bool IsOf(const OffscreenWindow* window) {
    return dynamic_cast<const Native*>(window) != nullptr;
}

// A window of no control class of its own: a label, or a child window of the toolkit's.
bool IsPlainWindow(const OffscreenWindow* window) {
    return window != nullptr && typeid(*window) == typeid(OffscreenWindow);
}

bool IsRadioButton(const OffscreenWindow* window) {
    return IsOf<OffscreenButton>(window) && (window->style & StyleRadio) != 0;
}

// What the focus passes over as a page comes up: labels, and radio buttons not checked.
bool TakesPageFocus(const OffscreenWindow& window) {
    if (IsPlainWindow(&window) && (window.style & StyleTabStop) == 0) {
        return false;
    }
    if (IsRadioButton(&window)) {
        return static_cast<const OffscreenButton&>(window).checkState == CheckStateChecked;
    }
    return window.enabled && window.visible;
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

OffscreenButton* Offscreen_RadioButtonImp::GetButton() const {
    return dynamic_cast<OffscreenButton*>(GetNative());
}

int32_t Offscreen_RadioButtonImp::GetState() {
    OffscreenButton* button = GetButton();
    return button != nullptr ? button->checkState : CheckStateIndeterminate;
}

void Offscreen_RadioButtonImp::SetState(int32_t state) {
    if (OffscreenButton* button = GetButton()) {
        button->checkState = state == CheckStateChecked ? CheckStateChecked : CheckStateUnchecked;
        button->needsPaint = true;
    }
}

bool Offscreen_RadioButtonImp::Create(Window* parent, const Rect& rect, bool autoCheck,
                                      int32_t id) {
    ControlKind kind = autoCheck ? ControlKind::AutoRadioButton : ControlKind::RadioButton;
    return CreateControlOfKind(*GetOwner(), parent, kind, GetControlKindStyle(kind), rect, id);
}

bool Offscreen_RadioButtonImp::Attach(OffscreenWindow* window) {
    return IsRadioButton(window) && Offscreen_WindowImp::Attach(window);
}

OffscreenDateTimeBox* Offscreen_DateTimeBoxImp::GetBox() const {
    return dynamic_cast<OffscreenDateTimeBox*>(GetNative());
}

bool Offscreen_DateTimeBoxImp::Attach(OffscreenWindow* window) {
    return IsOf<OffscreenDateTimeBox>(window) && Offscreen_WindowImp::Attach(window);
}

bool Offscreen_DateTimeBoxImp::GetFields(DateTimeFields& fields) {
    OffscreenDateTimeBox* box = GetBox();
    if (box == nullptr) {
        return false;
    }
    fields = box->fields;
    return true;
}

bool Offscreen_DateTimeBoxImp::SetFields(const DateTimeFields& fields) {
    OffscreenDateTimeBox* box = GetBox();
    loam::DateTime checked;
    if (box == nullptr || !fields.ToDateTime(checked)) {
        return false;
    }
    box->SetFields(fields);
    return true;
}

void Offscreen_DateTimeBoxImp::SetPicture(const loam::String& picture) {
    if (OffscreenDateTimeBox* box = GetBox()) {
        box->SetPicture(picture);
    }
}

bool Offscreen_URLButtonImp::Attach(OffscreenWindow* window) {
    if (!IsPlainWindow(window) || !Offscreen_WindowImp::Attach(window)) {
        return false;
    }
    underlined = true;
    textColour = LinkColour;
    window->needsPaint = true;
    return true;
}

bool Offscreen_URLButtonImp::WindowProc(const OffscreenMessage& message) {
    if (message.kind == OffscreenMessageKind::MouseDown && IsLeftButton(message)) {
        OpenLink();
    }
    return Offscreen_WindowImp::WindowProc(message);
}

OffscreenTabControl* Offscreen_TabControlImp::GetTabs() const {
    return dynamic_cast<OffscreenTabControl*>(GetNative());
}

bool Offscreen_TabControlImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::TabControl,
                               GetControlKindStyle(ControlKind::TabControl), rect, id);
}

bool Offscreen_TabControlImp::Attach(OffscreenWindow* window) {
    return IsOf<OffscreenTabControl>(window) && Offscreen_WindowImp::Attach(window);
}

void Offscreen_TabControlImp::Show(int32_t mode) {
    Offscreen_WindowImp::Show(mode);
    ShowPages(mode);
}

void Offscreen_TabControlImp::SetRect(const Rect& rect, bool repaint) {
    Offscreen_WindowImp::SetRect(rect, repaint);
    OnResized(rect.GetWidth(), rect.GetHeight());
}

int32_t Offscreen_TabControlImp::InsertNativeTab(int32_t position, const loam::String& title) {
    OffscreenTabControl* tabs = GetTabs();
    return tabs != nullptr ? tabs->InsertTab(position, title) : -1;
}

void Offscreen_TabControlImp::DeleteNativeTab(int32_t position) {
    if (OffscreenTabControl* tabs = GetTabs()) {
        tabs->DeleteTab(position);
    }
}

void Offscreen_TabControlImp::SelectNativeTab(int32_t position) {
    if (OffscreenTabControl* tabs = GetTabs()) {
        tabs->SelectTab(position);
    }
}

int32_t Offscreen_TabControlImp::GetNativeSelection() {
    OffscreenTabControl* tabs = GetTabs();
    return tabs != nullptr ? tabs->selected : -1;
}

bool Offscreen_TabControlImp::GetDisplayArea(Rect& area) {
    OffscreenTabControl* tabs = GetTabs();
    if (tabs == nullptr) {
        return false;
    }
    area = tabs->GetDisplayArea();
    return true;
}

void Offscreen_TabControlImp::FocusPage(Dialog& page) {
    OffscreenWindow* native = GetNativeOf(&page);
    if (native == nullptr) {
        return;
    }
    for (const auto& child : native->children) {
        if (TakesPageFocus(*child)) {
            GetOffscreenDesktop().SetFocus(child.get());
            return;
        }
    }
}

bool Offscreen_DialogControlImp::Create(Window* parent, const Rect& rect, int32_t id,
                                        bool tabStop) {
    OffscreenWindow* parentNative = GetNativeOf(parent);
    if (parentNative == nullptr || GetNative() != nullptr) {
        return false;
    }
    auto created = std::make_unique<OffscreenWindow>(parentNative);
    created->id = id;
    created->rect = rect;
    created->style = tabStop ? uint32_t{StyleTabStop} : 0u;
    created->visible = true;
    SetParentWindow(parent);
    return Attach(GetOffscreenDesktop().AddWindow(std::move(created)));
}

bool Offscreen_DialogControlImp::Attach(OffscreenWindow* window) {
    return IsPlainWindow(window) && Offscreen_WindowImp::Attach(window);
}

// The placeholder's rectangle is its whole window, edge included, as the desktop keeps it.
bool Offscreen_DialogControlImp::RemovePlaceholder(Window* parent, int32_t id, Rect& rect,
                                                   bool& tabStop) {
    OffscreenWindow* parentNative = GetNativeOf(parent);
    OffscreenWindow* placeholder = parentNative != nullptr ? parentNative->FindChild(id) : nullptr;
    if (placeholder == nullptr) {
        return false;
    }
    rect = placeholder->rect;
    tabStop = (placeholder->style & StyleTabStop) != 0;
    GetOffscreenDesktop().DestroyWindow(placeholder);
    return true;
}

bool Offscreen_ImageButtonImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::PushButton, StyleTabStop, rect,
                               id);
}

bool Offscreen_ImageButtonImp::IsPushed() {
    auto* button = dynamic_cast<OffscreenButton*>(GetNative());
    return button != nullptr && button->checkState == CheckStateChecked;
}

bool Offscreen_ImageButtonImp::Attach(OffscreenWindow* window) {
    auto* button = dynamic_cast<OffscreenButton*>(window);
    return button != nullptr && button->IsPushButton() && Offscreen_WindowImp::Attach(window);
}

bool Offscreen_ImageButtonImp::WindowProc(const OffscreenMessage& message) {
    if (message.kind == OffscreenMessageKind::Paint && GetNative() != nullptr) {
        Rect client;
        GetClientRect(client);
        RedrawGC gc(*GetOwner());
        PaintFace(gc, client, IsPushed());
    }
    return Offscreen_WindowImp::WindowProc(message);
}

} // namespace quilt
