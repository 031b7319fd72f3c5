#pragma once

#include "quilt/popup_menu.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace quilt {

// The popup menu of the headless platform. Nobody sees it: a menu that comes up asks the
// answerer, if one is set, which reads the items and picks one by its place from the top, or
// dismisses the menu. Without an answerer every menu is dismissed.
class Offscreen_PopupMenuImp : public PopupMenuImp {
public:
    // The place of the item picked, or none to dismiss the menu.
    using Answerer = std::function<std::optional<size_t>(const Offscreen_PopupMenuImp&)>;

    int32_t Track(const std::vector<MenuItem>& shown, Window& owner, const Rect& shownArea,
                  MenuSide shownSide) override;

    // What the answerer reads while the menu is up.
    const std::vector<MenuItem>& GetItems() const { return *items; }
    Window& GetWindow() const { return *window; }
    const Rect& GetArea() const { return area; }
    MenuSide GetSide() const { return side; }

    // Empty: every menu is dismissed.
    static void SetAnswerer(Answerer answerer);

private:
    static Answerer& GetAnswerer();

    const std::vector<MenuItem>* items = nullptr;
    Window* window = nullptr;
    Rect area;
    MenuSide side = MenuSide::Below;
};

} // namespace quilt
