#include "quilt/menu_template.h"

#include <algorithm>
#include <vector>

namespace quilt {

namespace {

std::vector<std::span<const MenuTemplate>>& GetTables() {
    static std::vector<std::span<const MenuTemplate>> tables;
    return tables;
}

} // namespace

void RegisterMenuTemplates(std::span<const MenuTemplate> templates) {
    auto& tables = GetTables();
    bool known = std::any_of(tables.begin(), tables.end(), [templates](const auto& table) {
        return table.data() == templates.data() && table.size() == templates.size();
    });
    if (!known) {
        tables.push_back(templates);
    }
}

const MenuTemplate* FindMenuTemplate(const loam::ResourceId& resource) {
    if (resource.kind != loam::ResourceKindMenu) {
        return nullptr;
    }
    const auto& tables = GetTables();
    for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
        for (const MenuTemplate& entry : *table) {
            if (entry.id == resource.id) {
                return &entry;
            }
        }
    }
    return nullptr;
}

} // namespace quilt
