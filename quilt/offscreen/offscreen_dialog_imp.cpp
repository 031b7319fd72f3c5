#include "quilt/offscreen/offscreen_dialog_imp.h"

#include "quilt/application.h"
#include "quilt/dialog.h"
#include "quilt/font.h"
#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_controls.h"

#include <algorithm>

namespace quilt {

namespace {

NativeHandle ToNativeHandle(const OffscreenWindow& window) {
    return reinterpret_cast<NativeHandle>(static_cast<uintptr_t>(window.handle));
}

OffscreenWindow* FromNativeHandle(NativeHandle handle) {
    auto number = static_cast<OffscreenHandle>(reinterpret_cast<uintptr_t>(handle));
    return GetOffscreenDesktop().Find(number);
}

Offscreen_DialogImp* DialogImpOf(OffscreenWindow& window) {
    return dynamic_cast<Offscreen_DialogImp*>(window.imp);
}

bool IsApplicationQuitting() {
    Application* application = Application::GetCurrent();
    return application != nullptr && application->GetImp() != nullptr &&
           application->GetImp()->GetLoop().IsQuitting();
}

} // namespace

void OffscreenDialogWindow::DefaultHandling(const OffscreenMessage& message) {
    Offscreen_DialogImp* dialog = DialogImpOf(*this);
    if (message.kind == OffscreenMessageKind::Close && dialog != nullptr) {
        dialog->CloseByUser();
        return;
    }
    OffscreenWindow::DefaultHandling(message);
}

bool OffscreenDialogWindow::TranslateDialogKey(OffscreenWindow& target,
                                               const OffscreenMessage& message) {
    Offscreen_DialogImp* dialog = DialogImpOf(*this);
    bool isDown = message.kind == OffscreenMessageKind::KeyDown;
    if (dialog == nullptr || (!isDown && message.kind != OffscreenMessageKind::Char)) {
        return false;
    }
    KeyEventKind kind = isDown ? KeyEventDown : KeyEventChar;
    return dialog->OnDialogKey(kind, message.value, message.flags, target.imp,
                               target.GetNativeDialogCode(kind, message.value));
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
    DialogUnits units = GetDialogUnits();
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

void Offscreen_DialogImp::GetControls(NativeHandle page, std::vector<DialogControl>& controls) {
    OffscreenWindow* container = page != nullptr ? FromNativeHandle(page) : GetNative();
    if (container == nullptr) {
        return;
    }
    for (const auto& child : container->children) {
        auto* button = dynamic_cast<OffscreenButton*>(child.get());
        DialogControl control;
        control.handle = ToNativeHandle(*child);
        control.id = child->id;
        control.style = child->style;
        control.usable = child->IsEnabledAndVisible();
        control.page = dynamic_cast<OffscreenDialogWindow*>(child.get()) != nullptr;
        control.pushButton = button != nullptr && button->IsPushButton();
        control.checkable = button != nullptr && !button->IsPushButton();
        control.mnemonic = GetMnemonicKey(child->text.GetCString());
        controls.push_back(control);
    }
}

NativeHandle Offscreen_DialogImp::GetFocusControl() {
    OffscreenWindow* focus = GetOffscreenDesktop().GetFocus();
    bool inside = focus != nullptr && focus != GetNative() && focus->IsInside(GetNative());
    return inside ? ToNativeHandle(*focus) : nullptr;
}

void Offscreen_DialogImp::FocusControl(NativeHandle control) {
    OffscreenWindow* window = FromNativeHandle(control);
    if (window == nullptr) {
        return;
    }
    GetOffscreenDesktop().SetFocus(window);
    auto* edit = dynamic_cast<OffscreenEdit*>(FromNativeHandle(control));
    if (edit != nullptr && (edit->GetDialogCode(KeyEventDown, KeyTab) & DialogCodeHasSetSel)) {
        edit->Select(0, edit->text.GetLength());
    }
}

void Offscreen_DialogImp::ClickControl(NativeHandle control) {
    auto* button = dynamic_cast<OffscreenButton*>(FromNativeHandle(control));
    if (button != nullptr && button->IsEnabledAndVisible()) {
        button->Click();
    }
}

void Offscreen_DialogImp::RaiseTopLevel(Window* window) {
    OffscreenWindow* native = GetNativeOf(window);
    if (native != nullptr) {
        GetOffscreenDesktop().BringToTop(native->GetTopLevel());
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

bool Offscreen_DialogImp::GetControlRect(int32_t id, Rect& rect) {
    OffscreenWindow* control = FindControl(id);
    if (control == nullptr) {
        return false;
    }
    rect = control->rect;
    return true;
}

void Offscreen_DialogImp::PlaceControlNow(int32_t id, const Rect& rect) {
    if (OffscreenWindow* control = FindControl(id)) {
        GetOffscreenDesktop().MoveWindow(control, rect);
    }
}

void Offscreen_DialogImp::SetControlVisible(int32_t id, bool visible) {
    if (OffscreenWindow* control = FindControl(id)) {
        control->visible = visible;
        control->needsPaint = true;
    }
}

void Offscreen_DialogImp::SetCheck(int32_t id, int32_t state) {
    if (auto* button = dynamic_cast<OffscreenButton*>(FindControl(id))) {
        button->checkState = state;
        button->needsPaint = true;
    }
}

int32_t Offscreen_DialogImp::GetNativeCheck(int32_t id) {
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

void Offscreen_DialogImp::SetRect(const Rect& rect, bool repaint) {
    Offscreen_WindowImp::SetRect(rect, repaint);
    KeepPlacement();
}

OffscreenWindow* Offscreen_DialogImp::FindControl(int32_t id) const {
    return GetNative() != nullptr ? GetNative()->FindControl(id) : nullptr;
}

DialogUnits Offscreen_DialogImp::GetDialogUnits() const {
    if (dialogTemplate == nullptr) {
        return DialogUnits::OfDialogFont();
    }
    Font font;
    font.Create(loam::String(dialogTemplate->fontName), dialogTemplate->fontPoints);
    return DialogUnits(font);
}

} // namespace quilt
