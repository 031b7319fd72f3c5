#include "quilt/offscreen/offscreen_dialog_imp.h"

#include "quilt/application.h"
#include "quilt/dialog.h"
#include "quilt/font.h"
#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_controls.h"

#include <algorithm>

namespace quilt {

namespace {

void PressDefault(OffscreenDialogWindow& dialog, OffscreenWindow& target, uint32_t) {
    auto* focused = dynamic_cast<OffscreenButton*>(&target);
    if (focused != nullptr && focused->IsPushButton()) {
        focused->Click();
        return;
    }
    OffscreenWindow* defaultButton = nullptr;
    for (const auto& child : dialog.children) {
        if ((child->style & StyleDefaultButton) != 0) {
            defaultButton = child.get();
            break;
        }
    }
    dialog.PressButton(defaultButton != nullptr ? defaultButton->id : IdOK);
}

void PressCancel(OffscreenDialogWindow& dialog, OffscreenWindow&, uint32_t) {
    dialog.SendCommand(IdCancel);
}

void MoveFocus(OffscreenDialogWindow& dialog, OffscreenWindow& target, uint32_t modifiers) {
    std::vector<OffscreenWindow*> stops = dialog.GetTabStops();
    if (stops.empty()) {
        return;
    }
    auto count = static_cast<int32_t>(stops.size());
    bool backwards = (modifiers & ModifierShift) != 0;
    auto found = std::find(stops.begin(), stops.end(), &target);
    int32_t next = backwards ? count - 1 : 0;
    if (found != stops.end()) {
        auto index = static_cast<int32_t>(found - stops.begin());
        next = (index + (backwards ? count - 1 : 1)) % count;
    }
    OffscreenDialogWindow::FocusControl(*stops[next]);
}

struct DialogKey {
    int32_t key;
    void (*press)(OffscreenDialogWindow& dialog, OffscreenWindow& target, uint32_t modifiers);
};

constexpr DialogKey dialogKeys[] = {
    {KeyReturn, PressDefault},
    {KeyEscape, PressCancel},
    {KeyTab, MoveFocus},
};

void CollectTabStops(OffscreenWindow& window, std::vector<OffscreenWindow*>& stops) {
    for (const auto& child : window.children) {
        if (!child->IsEnabledAndVisible()) {
            continue;
        }
        if (dynamic_cast<OffscreenDialogWindow*>(child.get()) != nullptr) {
            CollectTabStops(*child, stops);
        } else if ((child->style & StyleTabStop) != 0) {
            stops.push_back(child.get());
        }
    }
}

bool IsApplicationQuitting() {
    Application* application = Application::GetCurrent();
    return application != nullptr && application->GetImp() != nullptr &&
           application->GetImp()->GetLoop().IsQuitting();
}

} // namespace

void OffscreenDialogWindow::DefaultHandling(const OffscreenMessage& message) {
    if (message.kind == OffscreenMessageKind::Close) {
        SendCommand(IdCancel);
        return;
    }
    OffscreenWindow::DefaultHandling(message);
}

bool OffscreenDialogWindow::TranslateDialogKey(OffscreenWindow& target,
                                               const OffscreenMessage& message) {
    bool isDown = message.kind == OffscreenMessageKind::KeyDown;
    if (!isDown && message.kind != OffscreenMessageKind::Char) {
        return false;
    }
    const DialogKey* key =
        std::find_if(std::begin(dialogKeys), std::end(dialogKeys),
                     [&message](const DialogKey& entry) { return entry.key == message.value; });
    if (key == std::end(dialogKeys)) {
        return false;
    }
    int32_t code = target.GetDialogCode(isDown ? KeyEventDown : KeyEventChar, message.value);
    bool wantsTab = message.value == KeyTab && (code & DialogCodeWantTab) != 0;
    if ((code & DialogCodeWantAllKeys) != 0 || wantsTab) {
        return false;
    }
    // The character that follows a key the dialog took is swallowed with it.
    if (isDown) {
        key->press(*this, target, message.flags);
    }
    return true;
}

std::vector<OffscreenWindow*> OffscreenDialogWindow::GetTabStops() {
    std::vector<OffscreenWindow*> stops;
    CollectTabStops(*this, stops);
    return stops;
}

void OffscreenDialogWindow::FocusControl(OffscreenWindow& control) {
    OffscreenHandle handle = control.handle;
    GetOffscreenDesktop().SetFocus(&control);
    auto* edit = dynamic_cast<OffscreenEdit*>(GetOffscreenDesktop().Find(handle));
    if (edit != nullptr && (edit->GetDialogCode(KeyEventDown, KeyTab) & DialogCodeHasSetSel)) {
        edit->Select(0, edit->text.GetLength());
    }
}

void OffscreenDialogWindow::PressButton(int32_t id) {
    OffscreenWindow* control = FindControl(id);
    if (control != nullptr && !control->IsEnabledAndVisible()) {
        return;
    }
    if (auto* button = dynamic_cast<OffscreenButton*>(control)) {
        button->Click();
        return;
    }
    SendCommand(id);
}

void OffscreenDialogWindow::SendCommand(int32_t id) {
    OffscreenMessage command{OffscreenMessageKind::Notify};
    command.value = id;
    command.event = ControlEvent::Clicked;
    GetOffscreenDesktop().Send(this, command);
}

bool Offscreen_DialogImp::RunNativeModal(const loam::ResourceId& resource, Window* parent) {
    OffscreenDesktop& desktop = GetOffscreenDesktop();
    OffscreenWindow* previousFocus = desktop.GetFocus();
    OffscreenHandle focusHandle = previousFocus != nullptr ? previousFocus->handle : 0;
    if (!CreateNativeDialog(resource, parent, false)) {
        return false;
    }
    // The owner takes no input while its modal dialog runs.
    OffscreenWindow* owner = GetNativeOf(parent);
    owner = owner != nullptr ? owner->GetTopLevel() : nullptr;
    OffscreenHandle ownerHandle = owner != nullptr && owner->enabled ? owner->handle : 0;
    if (ownerHandle != 0) {
        owner->enabled = false;
    }
    OffscreenHandle handle = GetNative() != nullptr ? GetNative()->handle : 0;
    if (IsModalRunning(handle)) {
        desktop.BeginModal(GetNative());
        RunModalLoop();
    }
    desktop.EndModal(handle);
    if (OffscreenWindow* stillThere = desktop.Find(ownerHandle)) {
        stillThere->enabled = true;
    }
    Destroy();
    if (OffscreenWindow* focus = desktop.Find(focusHandle)) {
        desktop.SetFocus(focus);
    }
    return true;
}

void Offscreen_DialogImp::EndNativeModal() {
    if (GetNative() != nullptr) {
        GetNative()->visible = false;
    }
}

bool Offscreen_DialogImp::CreateNativeDialog(const loam::ResourceId& resource, Window* parent,
                                             bool asChild) {
    dialogTemplate = FindDialogTemplate(resource);
    OffscreenWindow* parentNative = GetNativeOf(parent);
    if (dialogTemplate == nullptr || (asChild && parentNative == nullptr)) {
        return false;
    }
    OffscreenDesktop& desktop = GetOffscreenDesktop();
    auto window = std::make_unique<OffscreenDialogWindow>(asChild ? parentNative : nullptr);
    DialogUnits units = GetUnits();
    // A top-level dialog comes up at its owner's corner unless it is centred.
    Point origin = asChild ? Point{} : desktop.GetScreenOrigin(parentNative);
    window->rect = Rect{origin.x, origin.y, origin.x + units.ToPixelsX(dialogTemplate->width),
                        origin.y + units.ToPixelsY(dialogTemplate->height)};
    window->text = dialogTemplate->title;
    window->templateId = dialogTemplate->id;
    OffscreenWindow* added = desktop.AddWindow(std::move(window));
    for (const DialogControlTemplate& control : dialogTemplate->controls) {
        AddControl(*added, control, units);
    }
    if (!Attach(added)) {
        desktop.DestroyWindow(added);
        return false;
    }
    SetParentWindow(parent);
    if (!asChild && (dialogTemplate->style & DialogStyleCentre) != 0) {
        Offscreen_WindowImp::Center();
    }
    StartDialog((dialogTemplate->style & DialogStyleSizingFrame) != 0);
    return GetNative() != nullptr;
}

void Offscreen_DialogImp::AddControl(OffscreenWindow& dialog, const DialogControlTemplate& control,
                                     const DialogUnits& units) {
    auto window = MakeOffscreenWindow(control.kind,
                                      GetControlKindStyle(control.kind) | control.style, &dialog);
    window->id = control.id;
    window->text = control.text;
    window->rect = units.ToPixels(control.rect.ToRect());
    window->visible = (control.style & StyleHidden) == 0;
    window->enabled = (control.style & StyleDisabled) == 0;
    GetOffscreenDesktop().AddWindow(std::move(window));
}

void Offscreen_DialogImp::GetChildRects(std::vector<Rect>& rects) {
    for (const auto& child : GetNative()->children) {
        rects.push_back(child->rect);
    }
}

bool Offscreen_DialogImp::HasFocusWithin() {
    OffscreenWindow* focus = GetOffscreenDesktop().GetFocus();
    return focus != nullptr && focus->IsInside(GetNative());
}

void Offscreen_DialogImp::FocusFirstTabStop() {
    std::vector<OffscreenWindow*> stops =
        static_cast<OffscreenDialogWindow*>(GetNative())->GetTabStops();
    if (!stops.empty()) {
        OffscreenDialogWindow::FocusControl(*stops.front());
    }
}

bool Offscreen_DialogImp::IsModalRunning(OffscreenHandle handle) const {
    return !HasRunEnded() && GetOffscreenDesktop().Find(handle) != nullptr &&
           !IsApplicationQuitting();
}

// Pumps events and waits for the next, never running idle rounds. When nothing can come any
// more, or a test's time is up, the user gives up on the dialog: first as the close box does,
// then for good.
void Offscreen_DialogImp::RunModalLoop() {
    OffscreenDesktop& desktop = GetOffscreenDesktop();
    OffscreenHandle handle = GetNative()->handle;
    int32_t stalls = 0;
    while (IsModalRunning(handle)) {
        desktop.PumpMessages();
        if (!IsModalRunning(handle)) {
            return;
        }
        if (desktop.WaitMessage()) {
            stalls = 0;
            continue;
        }
        if (++stalls == 1) {
            desktop.Send(GetNative(), OffscreenMessage{OffscreenMessageKind::Close});
        } else {
            EndDialog(IdCancel);
        }
    }
}

void Offscreen_DialogImp::EnableControl(int32_t id, bool enable) {
    if (OffscreenWindow* control = FindControl(id)) {
        control->enabled = enable;
        control->needsPaint = true;
    }
}

void Offscreen_DialogImp::MoveControl(int32_t id, int32_t x, int32_t y) {
    if (OffscreenWindow* control = FindControl(id)) {
        const Rect& rect = control->rect;
        GetOffscreenDesktop().MoveWindow(control,
                                         Rect{x, y, x + rect.GetWidth(), y + rect.GetHeight()});
    }
}

void Offscreen_DialogImp::OffsetControl(int32_t id, int32_t dx, int32_t dy) {
    if (OffscreenWindow* control = FindControl(id)) {
        Rect rect = control->rect;
        rect.Offset(dx, dy);
        GetOffscreenDesktop().MoveWindow(control, rect);
    }
}

void Offscreen_DialogImp::SetControlSize(int32_t id, int32_t width, int32_t height) {
    Rect rect;
    if (GetControlRect(id, rect)) {
        SetControlRect(id, Rect{rect.left, rect.top, rect.left + width, rect.top + height});
    }
}

void Offscreen_DialogImp::SetVisible(int32_t id, bool visible) {
    if (OffscreenWindow* control = FindControl(id)) {
        control->visible = visible;
        control->needsPaint = true;
    }
}

void Offscreen_DialogImp::ShowControl(int32_t id) {
    SetVisible(id, true);
}

void Offscreen_DialogImp::HideControl(int32_t id) {
    SetVisible(id, false);
}

bool Offscreen_DialogImp::GetControlRect(int32_t id, Rect& rect) {
    OffscreenWindow* control = FindControl(id);
    if (control == nullptr) {
        return false;
    }
    rect = control->rect;
    return true;
}

void Offscreen_DialogImp::SetControlRect(int32_t id, const Rect& rect) {
    OffscreenWindow* control = FindControl(id);
    if (control == nullptr) {
        return;
    }
    if (deferDepth > 0) {
        deferredMoves.emplace_back(control->handle, rect);
        return;
    }
    GetOffscreenDesktop().MoveWindow(control, rect);
}

void Offscreen_DialogImp::EndLayout() {
    if (deferDepth == 0 || --deferDepth > 0) {
        return;
    }
    OffscreenDesktop& desktop = GetOffscreenDesktop();
    std::vector<std::pair<OffscreenHandle, Rect>> moves;
    moves.swap(deferredMoves);
    for (const auto& [handle, rect] : moves) {
        if (OffscreenWindow* control = desktop.Find(handle)) {
            desktop.MoveWindow(control, rect);
        }
    }
}

void Offscreen_DialogImp::SetCheck(int32_t id, int32_t state) {
    if (auto* button = dynamic_cast<OffscreenButton*>(FindControl(id))) {
        button->checkState = state;
        button->needsPaint = true;
    }
}

int32_t Offscreen_DialogImp::GetCheck(int32_t id) {
    if (GetNative() == nullptr) {
        return CheckStateIndeterminate;
    }
    auto* button = dynamic_cast<OffscreenButton*>(FindControl(id));
    return button != nullptr ? button->checkState : CheckStateUnchecked;
}

bool Offscreen_DialogImp::GetControlWindow(int32_t id, Window** window) {
    OffscreenWindow* control = FindControl(id);
    if (control == nullptr || control->imp == nullptr) {
        return false;
    }
    *window = control->imp->GetOwner();
    return true;
}

bool Offscreen_DialogImp::GetControlText(int32_t id, loam::String& text) {
    OffscreenWindow* control = FindControl(id);
    if (control == nullptr) {
        return false;
    }
    text = control->text;
    return true;
}

bool Offscreen_DialogImp::SetControlText(int32_t id, const loam::String& text) {
    OffscreenWindow* control = FindControl(id);
    if (control == nullptr) {
        return false;
    }
    control->SetNativeText(text);
    return true;
}

bool Offscreen_DialogImp::SetControlId(int32_t id, int32_t newId) {
    OffscreenWindow* control = FindControl(id);
    if (control == nullptr) {
        return false;
    }
    control->id = newId;
    return true;
}

void Offscreen_DialogImp::MapDialogRect(Rect& rect) {
    rect = GetUnits().ToPixels(rect);
}

void Offscreen_DialogImp::SetRect(const Rect& rect, bool repaint) {
    Offscreen_WindowImp::SetRect(rect, repaint);
    KeepPlacement();
}

OffscreenWindow* Offscreen_DialogImp::FindControl(int32_t id) const {
    return GetNative() != nullptr ? GetNative()->FindControl(id) : nullptr;
}

DialogUnits Offscreen_DialogImp::GetUnits() const {
    if (dialogTemplate == nullptr) {
        return DialogUnits::OfDialogFont();
    }
    Font font;
    font.Create(loam::String(dialogTemplate->fontName), dialogTemplate->fontPoints);
    return DialogUnits(font);
}

} // namespace quilt
