#include "quilt/dialog_imp.h"

#include "quilt/application.h"
#include "quilt/dialog.h"
#include "quilt/size_grip.h"

#include <algorithm>

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
    bool made = RunNativeModal(resource, parent);
    running = false;
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
    return OnNativeNotification(notification) != NotHandled;
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
