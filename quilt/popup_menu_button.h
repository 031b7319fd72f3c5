#pragma once

#include "loam/resource.h"
#include "quilt/image_button.h"
#include "quilt/popup_menu.h"

#include <cstdint>

namespace quilt {

// Who a popup menu button asks before its menu comes up.
class PopupMenuHandler {
public:
    // May change the menu; true when the command chosen is to come back to OnMenuCommand,
    // false when it goes to the button's parent as a command.
    virtual bool PrepareMenu(PopupMenu& menu) = 0;
    virtual void OnMenuCommand(int32_t command) = 0;

protected:
    ~PopupMenuHandler() = default;
};

// An image button with a right arrow whose click brings up a menu beside it instead of telling
// the dialog: the menu's top left corner one pixel right of the button, level with its top.
class PopupMenuButtonImp : public virtual ImageButtonImp {
public:
    // Loads the menu into the owner's holder and shows the arrow. A null handler leaves every
    // command to the parent.
    bool SetMenu(const loam::ResourceId& resource, PopupMenuHandler* menuHandler);
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;

private:
    void ShowMenu();

    PopupMenuHandler* handler = nullptr;
};

class PopupMenuButton : public ImageButton {
public:
    PopupMenuButton();

    using ImageButton::BindToControl;
    // Binds to a control of a dialog, then sets the menu.
    bool BindToControl(Window* parent, int32_t id, const loam::ResourceId& resource,
                       PopupMenuHandler* handler);
    bool SetMenu(const loam::ResourceId& resource, PopupMenuHandler* handler) {
        return menuImp->SetMenu(resource, handler);
    }
    // The holder of the button's menu.
    PopupMenu& GetMenu() { return menu; }

private:
    PopupMenuButtonImp* menuImp;
    PopupMenu menu;
};

} // namespace quilt
