#include "quilt/popup_menu_button.h"

#include "quilt/imp_factory.h"

namespace quilt {

bool PopupMenuButtonImp::SetMenu(const loam::ResourceId& resource, PopupMenuHandler* menuHandler) {
    auto* button = dynamic_cast<PopupMenuButton*>(GetOwner());
    SetMode(ImageButtonArrow);
    handler = menuHandler;
    return button != nullptr && button->GetMenu().Load(resource);
}

NotificationAnswer PopupMenuButtonImp::TranslateNotification(const NativeNotification& notification,
                                                             NotificationTranslation& out) {
    if (notification.event != ControlEvent::Clicked) {
        return ImageButtonImp::TranslateNotification(notification, out);
    }
    ShowMenu();
    return AnswerHandled;
}

// The handler may end the dialog or the button with the command: nothing is touched after it.
void PopupMenuButtonImp::ShowMenu() {
    auto* button = dynamic_cast<PopupMenuButton*>(GetOwner());
    Rect client;
    if (button == nullptr || !GetClientRect(client)) {
        return;
    }
    PopupMenuHandler* asked = handler;
    bool returns = asked != nullptr && asked->PrepareMenu(button->GetMenu());
    Window* parent = button->GetParent();
    int32_t command = button->GetMenu().TrackAt(*button, Point{client.right + 1, client.top});
    if (command == 0) {
        return;
    }
    if (returns) {
        asked->OnMenuCommand(command);
    } else if (parent != nullptr) {
        parent->OnCommand(command);
    }
}

PopupMenuButton::PopupMenuButton() : ImageButton(GetImpFactory().CreatePopupMenuButtonImp()) {
    menuImp = dynamic_cast<PopupMenuButtonImp*>(GetImp());
}

bool PopupMenuButton::BindToControl(Window* parent, int32_t id, const loam::ResourceId& resource,
                                    PopupMenuHandler* handler) {
    return BindToControl(parent, id) && SetMenu(resource, handler);
}

} // namespace quilt
