#pragma once

#include "loam/resource.h"

#include <cstdint>
#include <span>

namespace quilt {

enum MenuItemStyle : uint32_t {
    MenuItemGreyed = 1u << 0,    // shown, but the user cannot choose it
    MenuItemSeparator = 1u << 1, // a line between groups of items; its command and text are unused
};

// One item of a menu as the program's resources hold it. The text marks its mnemonic as a
// dialog template's label does: "&Open" underlines O, "&&" is an ampersand.
struct MenuItemTemplate {
    int32_t command = 0;
    const char* text = "";
    uint32_t style = 0; // MenuItemStyle bits
};

// A popup menu as the program's resources hold it: its items from top to bottom.
struct MenuTemplate {
    uint16_t id = 0;
    std::span<const MenuItemTemplate> items;
};

inline constexpr loam::ResourceId MenuResource(uint16_t id) {
    return loam::ResourceId{loam::ResourceKindMenu, id};
}

// Adds a program's menus to those that FindMenuTemplate finds. The table must outlive the
// process's use of it; a later table's menu wins over an earlier one's for the same id.
void RegisterMenuTemplates(std::span<const MenuTemplate> templates);
// The template of a menu resource (kind 3), or null.
const MenuTemplate* FindMenuTemplate(const loam::ResourceId& resource);

} // namespace quilt
