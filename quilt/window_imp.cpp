#include "quilt/window_imp.h"

#include "quilt/application.h"
#include "quilt/timer.h"
#include "quilt/window.h"

namespace quilt {

bool WindowImp::CreateFromResource(Window& window, Window* parent, int32_t kind,
                                   const loam::ResourceId* title) {
    if (title == nullptr) {
        return Create(window, parent, kind, nullptr);
    }
    loam::String text;
    loam::LoadResourceString(*title, text);
    return Create(window, parent, kind, &text);
}

NotificationAnswer WindowImp::TranslateNotification(const NativeNotification& notification,
                                                    NotificationTranslation& out) {
    if (notification.event != ControlEvent::Clicked) {
        return AnswerDefault;
    }
    out.kind = MsgClicked;
    out.parameter = notification.id;
    return AnswerDispatch;
}

bool WindowImp::OnNativeNotification(const NativeNotification& notification) {
    NotificationTranslation translation;
    NotificationAnswer answer = TranslateNotification(notification, translation);
    if (answer != AnswerDispatch) {
        return answer == AnswerHandled;
    }
    MessageTarget* target = commandTarget != nullptr ? commandTarget : owner;
    const int32_t* parameter = translation.parameter ? &*translation.parameter : nullptr;
    return target->Dispatch(translation.kind, 0, notification.id, parameter);
}

bool WindowImp::OnControlEvent(const NativeNotification& notification) {
    if (!IsCommandEvent(notification.event)) {
        return OnNativeNotification(notification);
    }
    if (owner->OnCommand(notification.id)) {
        return true;
    }
    Application* application = Application::GetCurrent();
    return notification.event == ControlEvent::Accelerator && application != nullptr &&
           application->OnCommand(notification.id);
}

bool WindowImp::OnNativeSize(int32_t width, int32_t height) {
    return owner->OnSize(width, height);
}

int32_t WindowImp::GetDialogCode(KeyEventKind kind, int32_t value, int32_t previousCode) {
    bool wants = kind == KeyEventChar ? owner->OnWantChar(static_cast<uint16_t>(value))
                                      : owner->OnWantKey(value);
    return wants ? previousCode | DialogCodeWantAllKeys : previousCode;
}

bool WindowImp::ConstrainSize(Size& size) {
    return owner->OnConstrainSize(size);
}

bool WindowImp::CreateChildControl(Window& control, const ChildControl& childSpec) {
    int32_t id = childSpec.id == -1 ? GetFreeChildId() : childSpec.id;
    return CreateNativeChild(control, childSpec, id);
}

bool WindowImp::CreateControlOfKind(Window& control, Window* parent, ControlKind kind,
                                    uint32_t style, const Rect& rect, int32_t id) {
    if (parent == nullptr) {
        return false;
    }
    ChildControl childSpec;
    childSpec.kind = kind;
    childSpec.style = style;
    childSpec.rect = rect;
    childSpec.id = id;
    childSpec.tabStop = (style & StyleTabStop) != 0;
    return parent->GetImp()->CreateChildControl(control, childSpec);
}

void WindowImp::NotifyNativeDestroyed() {
    Timer::ForgetWindow(owner);
    if (Application::GetMainWindow() == owner) {
        QuitApplication();
    }
    owner->OnDestroy();
}

} // namespace quilt
