#include "quilt/dialog_imp.h"

#include "quilt/application.h"
#include "quilt/dialog.h"
#include "quilt/keys.h"
#include "quilt/size_grip.h"

#include <algorithm>
#include <cctype>

namespace quilt {

int32_t ToCheckState(int32_t requested) {
    bool known = requested == CheckStateChecked || requested == CheckStateIndeterminate;
    return known ? requested : CheckStateUnchecked;
}

int32_t ReadCheckState(int32_t native) {
    bool plain = native == CheckStateUnchecked || native == CheckStateChecked;
    return plain ? native : CheckStateIndeterminate;
}

int32_t GetSizeGripGrowth(const Rect& client, const std::vector<Rect>& controls) {
    Rect grip = SizeGrip::GetGripRect(client);
    bool covered = std::any_of(controls.begin(), controls.end(),
                               [&grip](const Rect& rect) { return rect.Intersects(grip); });
    if (!covered) {
        return 0;
    }
    Rect all;
    for (const Rect& rect : controls) {
        all.Union(all, rect);
    }
    int32_t bottom = all.bottom + SizeGrip::Height + 1;
    return std::max(bottom - client.bottom, 0);
}

int32_t GetMnemonicKey(const char* text) {
    for (const char* at = text; *at != '\0'; ++at) {
        if (*at != '&') {
            continue;
        }
        ++at;
        if (*at == '\0') {
            return 0;
        }
        if (*at != '&') {
            return std::toupper(static_cast<unsigned char>(*at));
        }
    }
    return 0;
}

std::vector<DialogImp*> DialogImp::modalRuns;

const DialogImp::DialogKey DialogImp::dialogKeys[] = {
    {KeyReturn, &DialogImp::PressDefault},
    {KeyEscape, &DialogImp::PressCancel},
    {KeyTab, &DialogImp::MoveFocus},
};

DialogImp::DialogImp() = default;

DialogImp::~DialogImp() = default;

int32_t DialogImp::RunModal(const loam::ResourceId& resource, Window* parent, bool centre) {
    if (GetNativeHandle() != nullptr || running) {
        return -1;
    }
    centreOnInit = centre;
    modal = true;
    running = true;
    ended = false;
    result = -1;
    modalRuns.push_back(this);
    bool made = RunNativeModal(resource, parent);
    modalRuns.erase(std::find(modalRuns.begin(), modalRuns.end(), this));
    running = false;
    // A dialog that ran over another modal dialog gives the front back to that one, even when
    // its owner is another window, such as the main window of a question without a parent.
    RaiseTopLevel(modalRuns.empty() ? parent : modalRuns.back()->GetOwner());
    return made ? result : -1;
}

NativeHandle DialogImp::RunModeless(const loam::ResourceId& resource, Window* parent, bool centre) {
    if (GetNativeHandle() != nullptr || running) {
        return nullptr;
    }
    modal = false;
    centreOnInit = centre;
    creating = true;
    bool made = CreateNativeDialog(resource, parent, false);
    creating = false;
    if (deletionPending) {
        delete GetOwner();
        return nullptr;
    }
    return made ? GetNativeHandle() : nullptr;
}

void DialogImp::EndDialog(int32_t code) {
    if (!modal) {
        Destroy();
        return;
    }
    if (running && !ended) {
        result = code;
        ended = true;
    }
    EndNativeModal();
}

bool DialogImp::CreateChildDialog(const loam::ResourceId& resource, Window* parent) {
    return GetNativeHandle() == nullptr && !running && CreateNativeDialog(resource, parent, true);
}

void DialogImp::StartDialog(bool resizable) {
    Dialog* dialog = nullptr;
    if (!GetOwner()->AsDialog(&dialog)) {
        return;
    }
    dialog->InitDialog();
    if (GetNativeHandle() == nullptr || (running && ended)) {
        return;
    }
    if (resizable && useSizeGrip) {
        CreateSizeGrip(*dialog);
    }
    if (centreOnInit) {
        Center();
    }
    Show(ShowModeShow);
    if (GetNativeHandle() != nullptr && !HasFocusWithin()) {
        FocusFirstTabStop();
    }
}

void DialogImp::MoveControl(int32_t id, int32_t x, int32_t y) {
    Rect rect;
    if (GetControlRect(id, rect)) {
        SetControlRect(id, Rect{x, y, x + rect.GetWidth(), y + rect.GetHeight()});
    }
}

void DialogImp::OffsetControl(int32_t id, int32_t dx, int32_t dy) {
    Rect rect;
    if (GetControlRect(id, rect)) {
        rect.Offset(dx, dy);
        SetControlRect(id, rect);
    }
}

void DialogImp::SetControlSize(int32_t id, int32_t width, int32_t height) {
    Rect rect;
    if (GetControlRect(id, rect)) {
        SetControlRect(id, Rect{rect.left, rect.top, rect.left + width, rect.top + height});
    }
}

void DialogImp::SetControlRect(int32_t id, const Rect& rect) {
    if (deferDepth > 0) {
        deferredMoves.emplace_back(id, rect);
        return;
    }
    PlaceControlNow(id, rect);
}

void DialogImp::EndLayout() {
    if (deferDepth == 0 || --deferDepth > 0) {
        return;
    }
    std::vector<std::pair<int32_t, Rect>> moves;
    moves.swap(deferredMoves);
    for (const auto& [id, rect] : moves) {
        PlaceControlNow(id, rect);
    }
}

int32_t DialogImp::GetCheck(int32_t id) {
    return GetNativeHandle() != nullptr ? GetNativeCheck(id) : CheckStateIndeterminate;
}

const DialogImp::DialogKey* DialogImp::FindDialogKey(int32_t key) {
    for (const DialogKey& entry : dialogKeys) {
        if (entry.key == key) {
            return &entry;
        }
    }
    return nullptr;
}

// A mnemonic that no control's text marks is left to the platform.
bool DialogImp::TakeMnemonic(int32_t key) {
    std::vector<DialogControl> controls = GetAllControls(true);
    auto named = std::find_if(controls.begin(), controls.end(),
                              [key](const DialogControl& c) { return c.mnemonic == key; });
    if (named == controls.end()) {
        return false;
    }
    takenMnemonic = key;
    PressMnemonic(controls, named - controls.begin());
    return true;
}

bool DialogImp::OnDialogKey(KeyEventKind kind, int32_t key, uint32_t modifiers, WindowImp* focusImp,
                            int32_t nativeCode) {
    if (kind == KeyEventUp) {
        return false;
    }
    // The character of a mnemonic's key is no typing.
    if (kind == KeyEventChar && takenMnemonic != 0 && std::toupper(key) == takenMnemonic) {
        takenMnemonic = 0;
        return true;
    }
    if (kind == KeyEventDown) {
        takenMnemonic = 0;
    }
    if (kind == KeyEventDown && (modifiers & ModifierAlt) != 0 && key < 128 &&
        std::isalnum(key) != 0) {
        return TakeMnemonic(key);
    }
    const DialogKey* dialogKey = FindDialogKey(key);
    if (dialogKey == nullptr) {
        return false;
    }
    int32_t code = focusImp != nullptr && focusImp != this
                       ? focusImp->GetDialogCode(kind, key, nativeCode)
                       : nativeCode;
    bool wantsTab = key == KeyTab && (code & DialogCodeWantTab) != 0;
    if ((code & DialogCodeWantAllKeys) != 0 || wantsTab) {
        return false;
    }
    if (kind == KeyEventDown) {
        (this->*dialogKey->press)(key, modifiers);
    }
    return true;
}

void DialogImp::CloseByUser() {
    if (!GetOwner()->OnClose()) {
        SendCommand(IdCancel);
    }
}

void DialogImp::CollectControls(NativeHandle page, bool usableOnly,
                                std::vector<DialogControl>& controls) {
    std::vector<DialogControl> level;
    GetControls(page, level);
    for (const DialogControl& control : level) {
        if (control.page && control.usable) {
            CollectControls(control.handle, usableOnly, controls);
        } else if (!control.page && (control.usable || !usableOnly)) {
            controls.push_back(control);
        }
    }
}

std::vector<DialogControl> DialogImp::GetAllControls(bool usableOnly) {
    std::vector<DialogControl> controls;
    if (GetNativeHandle() != nullptr) {
        CollectControls(nullptr, usableOnly, controls);
    }
    return controls;
}

std::vector<DialogControl> DialogImp::GetTabStops() {
    std::vector<DialogControl> stops = GetAllControls(true);
    stops.erase(
        std::remove_if(stops.begin(), stops.end(),
                       [](const DialogControl& c) { return (c.style & StyleTabStop) == 0; }),
        stops.end());
    return stops;
}

void DialogImp::SendCommand(int32_t id) {
    OnControlEvent(NativeNotification{ControlEvent::Clicked, id, 0});
}

// The default button is the first control with its style, in a page too; without one, Return
// is a click on OK.
void DialogImp::PressDefault(int32_t, uint32_t) {
    NativeHandle focus = GetFocusControl();
    std::vector<DialogControl> controls = GetAllControls(false);
    auto focused = std::find_if(controls.begin(), controls.end(), [focus](const DialogControl& c) {
        return focus != nullptr && c.handle == focus;
    });
    if (focused != controls.end() && focused->pushButton && focused->usable) {
        ClickControl(focus);
        return;
    }
    auto found = std::find_if(controls.begin(), controls.end(), [](const DialogControl& c) {
        return (c.style & StyleDefaultButton) != 0;
    });
    if (found == controls.end()) {
        SendCommand(IdOK);
    } else if (found->usable) {
        ClickControl(found->handle);
    }
}

void DialogImp::PressCancel(int32_t, uint32_t) {
    SendCommand(IdCancel);
}

void DialogImp::MoveFocus(int32_t, uint32_t modifiers) {
    std::vector<DialogControl> stops = GetTabStops();
    if (stops.empty()) {
        return;
    }
    auto count = static_cast<int32_t>(stops.size());
    bool backwards = (modifiers & ModifierShift) != 0;
    NativeHandle focus = GetFocusControl();
    auto found = std::find_if(stops.begin(), stops.end(), [focus](const DialogControl& c) {
        return focus != nullptr && c.handle == focus;
    });
    int32_t next = backwards ? count - 1 : 0;
    if (found != stops.end()) {
        auto index = static_cast<int32_t>(found - stops.begin());
        next = (index + (backwards ? count - 1 : 1)) % count;
    }
    FocusControl(stops[next].handle);
}

// A button or check box is clicked, a check box focused first; any other control, a label
// above all, gives the focus to the next tab stop after it, the first one again after the last.
void DialogImp::PressMnemonic(const std::vector<DialogControl>& controls, size_t index) {
    const DialogControl& named = controls[index];
    if (named.pushButton) {
        ClickControl(named.handle);
        return;
    }
    if (named.checkable) {
        FocusControl(named.handle);
        ClickControl(named.handle);
        return;
    }
    if ((named.style & StyleTabStop) != 0) {
        FocusControl(named.handle);
        return;
    }
    for (size_t step = 1; step < controls.size(); ++step) {
        const DialogControl& next = controls[(index + step) % controls.size()];
        if ((next.style & StyleTabStop) != 0) {
            FocusControl(next.handle);
            return;
        }
    }
}

void DialogImp::FocusFirstTabStop() {
    std::vector<DialogControl> stops = GetTabStops();
    if (!stops.empty()) {
        FocusControl(stops.front().handle);
    }
}

// No control may cover the grip: the dialog grows below its lowest control instead, and its
// initial size grows with it so that the layout starts from the grown size.
void DialogImp::CreateSizeGrip(Dialog& dialog) {
    Rect client;
    GetClientRect(client);
    std::vector<Rect> controls;
    GetChildRects(controls);
    int32_t growth = GetSizeGripGrowth(client, controls);
    if (growth > 0) {
        dialog.GrowInitialSize(0, growth);
        client.bottom += growth;
        SetClientRect(client);
    }
    if (GetNativeHandle() == nullptr) {
        return;
    }
    sizeGrip = std::make_unique<SizeGrip>();
    if (sizeGrip->CreateInCorner(*GetOwner())) {
        sizeGrip->GetImp()->SendToBottom();
    }
}

bool DialogImp::OnControlEvent(const NativeNotification& notification) {
    if (IsCommandEvent(notification.event)) {
        MessageTarget* target = GetCommandTarget();
        if (target == nullptr && GetOwner() != Application::GetMainWindow()) {
            target = GetOwner();
        }
        if (target != nullptr && target->OnCommand(notification.id)) {
            return true;
        }
        Application* application = Application::GetCurrent();
        if (application != nullptr && application->OnCommand(notification.id)) {
            return true;
        }
    }
    return OnNativeNotification(notification);
}

NotificationAnswer DialogImp::TranslateNotification(const NativeNotification& notification,
                                                    NotificationTranslation& out) {
    Window* control = nullptr;
    if (notification.id != 0 && GetControlWindow(notification.id, &control)) {
        return control->GetImp()->TranslateNotification(notification, out);
    }
    return WindowImp::TranslateNotification(notification, out);
}

bool DialogImp::OnNativeSize(int32_t width, int32_t height) {
    if (sizeGrip != nullptr) {
        sizeGrip->MoveToCorner(width, height);
    }
    return WindowImp::OnNativeSize(width, height);
}

void DialogImp::NotifyNativeDestroyed() {
    bool deletesItself = !modal && !ownerGone && Application::GetMainWindow() != GetOwner();
    WindowImp::NotifyNativeDestroyed();
    if (!deletesItself) {
        return;
    }
    if (creating) {
        deletionPending = true;
        return;
    }
    delete GetOwner();
}

} // namespace quilt
