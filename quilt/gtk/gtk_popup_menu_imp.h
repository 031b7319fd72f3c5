#pragma once

#include "quilt/popup_menu.h"

namespace quilt {

// A GtkMenu, made for one showing and destroyed after it; the showing runs a modal loop until
// the menu is gone.
class Gtk_PopupMenuImp : public PopupMenuImp {
public:
    int32_t Track(const std::vector<MenuItem>& items, Window& window, const Rect& area,
                  MenuSide side) override;
};

} // namespace quilt
