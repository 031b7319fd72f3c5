#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/geometry.h"
#include "quilt/menu_template.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quilt {

class Window;

// One item of a popup menu. The text marks its mnemonic with '&', as a template does.
struct MenuItem {
    int32_t command = 0;
    loam::String text;
    bool enabled = true;
    bool separator = false;
};

// Where a menu comes up, beside an area of a window's client area.
enum class MenuSide : int32_t {
    Below, // its top left corner at the area's bottom left
    Right, // its top left corner at the area's top right
};

// The platform's popup menu: shown over `window`, beside `area` in that window's client
// coordinates, it takes the mouse and the keyboard until the user chooses an item or dismisses
// it. No idle work runs meanwhile, as under any modal window.
class PopupMenuImp {
public:
    virtual ~PopupMenuImp() = default;
    // The command of the item chosen, or 0 when the menu was dismissed. A greyed item or a
    // separator cannot be chosen.
    virtual int32_t Track(const std::vector<MenuItem>& items, Window& window, const Rect& area,
                          MenuSide side) = 0;
};

// A context menu or the menu of a button: a list of commands that the program fills, from a
// menu template or item by item, and shows at a point or beside a control. The command chosen
// is answered, not sent: the caller decides where it goes.
class PopupMenu {
public:
    PopupMenu();
    PopupMenu(const PopupMenu&) = delete;
    PopupMenu& operator=(const PopupMenu&) = delete;
    ~PopupMenu();

    // Replaces the items by those of the template; false, with the items untouched, when there
    // is no menu of that id.
    bool Load(const loam::ResourceId& resource);
    void Load(const MenuTemplate& menu);
    void AddItem(int32_t command, const loam::String& text, bool enabled = true);
    void AddSeparator();
    void Clear() { items.clear(); }
    // Greys or restores every item of the command; false when none has it.
    bool EnableItem(int32_t command, bool enable);
    bool IsItemEnabled(int32_t command) const;
    const std::vector<MenuItem>& GetItems() const { return items; }

    // Shows the menu with its top left corner at `point`, in the client coordinates of
    // `window`; the command chosen, or 0. An empty menu is not shown.
    int32_t TrackAt(Window& window, const Point& point);
    // Shows the menu beside the whole of `window`.
    int32_t TrackBeside(Window& window, MenuSide side);

private:
    int32_t Track(Window& window, const Rect& area, MenuSide side);

    std::unique_ptr<PopupMenuImp> imp;
    std::vector<MenuItem> items;
};

} // namespace quilt
