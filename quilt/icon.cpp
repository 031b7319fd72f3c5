#include "quilt/icon.h"

#include "quilt/imp_factory.h"

#include <vector>

namespace quilt {

namespace {

std::vector<std::span<const IconTableEntry>>& GetTables() {
    static std::vector<std::span<const IconTableEntry>> tables;
    return tables;
}

} // namespace

void RegisterIconTable(std::span<const IconTableEntry> icons) {
    GetTables().push_back(icons);
}

const char* FindIconImage(const loam::ResourceId& resource) {
    if (resource.kind != loam::ResourceKindIcon) {
        return nullptr;
    }
    const auto& tables = GetTables();
    for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
        for (const IconTableEntry& entry : *table) {
            if (entry.id == resource.id) {
                return entry.image;
            }
        }
    }
    return nullptr;
}

Icon::Icon() : Icon(GetImpFactory().CreateIconImp()) {}

Icon::Icon(std::unique_ptr<IconImp> iconImp) : imp(std::move(iconImp)) {}

Icon::~Icon() = default;

bool Icon::Load(const loam::ResourceId& resource) {
    loaded = imp->Load(resource);
    return loaded;
}

} // namespace quilt
