#include "quilt/popup_menu.h"

#include "quilt/imp_factory.h"
#include "quilt/window.h"

namespace quilt {

PopupMenu::PopupMenu() : imp(GetImpFactory().CreatePopupMenuImp()) {}

PopupMenu::~PopupMenu() = default;

bool PopupMenu::Load(const loam::ResourceId& resource) {
    const MenuTemplate* menu = FindMenuTemplate(resource);
    if (menu == nullptr) {
        return false;
    }
    Load(*menu);
    return true;
}

void PopupMenu::Load(const MenuTemplate& menu) {
    items.clear();
    for (const MenuItemTemplate& item : menu.items) {
        if ((item.style & MenuItemSeparator) != 0) {
            AddSeparator();
        } else {
            AddItem(item.command, loam::String(item.text), (item.style & MenuItemGreyed) == 0);
        }
    }
}

void PopupMenu::AddItem(int32_t command, const loam::String& text, bool enabled) {
    items.push_back(MenuItem{command, text, enabled, false});
}

void PopupMenu::AddSeparator() {
    items.push_back(MenuItem{0, loam::String(), false, true});
}

bool PopupMenu::EnableItem(int32_t command, bool enable) {
    bool found = false;
    for (MenuItem& item : items) {
        if (!item.separator && item.command == command) {
            item.enabled = enable;
            found = true;
        }
    }
    return found;
}

bool PopupMenu::IsItemEnabled(int32_t command) const {
    for (const MenuItem& item : items) {
        if (!item.separator && item.command == command) {
            return item.enabled;
        }
    }
    return false;
}

int32_t PopupMenu::TrackAt(Window& window, const Point& point) {
    return Track(window, Rect{point.x, point.y, point.x, point.y}, MenuSide::Below);
}

int32_t PopupMenu::TrackBeside(Window& window, MenuSide side) {
    Rect area;
    if (!window.GetClientRect(area)) {
        return 0;
    }
    return Track(window, area, side);
}

// What the platform answers is checked against the items: only an enabled item's command
// comes back.
int32_t PopupMenu::Track(Window& window, const Rect& area, MenuSide side) {
    if (items.empty() || !window.HasNativeWindow()) {
        return 0;
    }
    int32_t chosen = imp->Track(items, window, area, side);
    for (const MenuItem& item : items) {
        if (chosen != 0 && !item.separator && item.enabled && item.command == chosen) {
            return chosen;
        }
    }
    return 0;
}

} // namespace quilt
