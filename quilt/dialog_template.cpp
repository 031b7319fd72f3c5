#include "quilt/dialog_template.h"

#include "quilt/dialog_units.h"

#include <algorithm>
#include <vector>

namespace quilt {

namespace {

struct KindStyle {
    ControlKind kind;
    uint32_t style;
};

constexpr KindStyle kindStyles[] = {
    {ControlKind::PushButton, StyleTabStop},
    {ControlKind::DefaultPushButton, StyleTabStop | StyleDefaultButton},
    {ControlKind::CheckBox, StyleTabStop | StyleCheckBox},
    {ControlKind::AutoCheckBox, StyleTabStop | StyleCheckBox | StyleAutoCheck},
    {ControlKind::Edit, StyleTabStop},
    {ControlKind::StaticCentred, StyleCentred},
    {ControlKind::StaticRight, StyleRightAligned},
    {ControlKind::GroupBox, StyleGroupBox},
    {ControlKind::ListView, StyleTabStop},
    {ControlKind::ComboBoxWithEdit, StyleTabStop | StyleDropDown},
    {ControlKind::TrackBar, StyleTabStop},
    {ControlKind::RadioButton, StyleRadio},
    {ControlKind::AutoRadioButton, StyleRadio | StyleAutoCheck},
    {ControlKind::DateTimePicker, StyleTabStop},
    {ControlKind::TabControl, StyleTabStop},
};

constexpr DialogTemplate dynamicTemplate{
    DynamicDialogResource.id,
    "Quilt Dynamic Dialog - call SetText() to change this text!",
    100,
    100,
    DialogFontFace,
    DialogFontPoints,
    DialogStyleCentre | DialogStyleModalFrame,
    {},
};

std::vector<std::span<const DialogTemplate>>& GetTables() {
    static std::vector<std::span<const DialogTemplate>> tables;
    return tables;
}

} // namespace

uint32_t GetControlKindStyle(ControlKind kind) {
    for (const KindStyle& entry : kindStyles) {
        if (entry.kind == kind) {
            return entry.style;
        }
    }
    return 0;
}

void RegisterDialogTemplates(std::span<const DialogTemplate> templates) {
    auto& tables = GetTables();
    bool known = std::any_of(tables.begin(), tables.end(), [templates](const auto& table) {
        return table.data() == templates.data() && table.size() == templates.size();
    });
    if (!known) {
        tables.push_back(templates);
    }
}

const DialogTemplate* FindDialogTemplate(const loam::ResourceId& resource) {
    if (resource.kind != loam::ResourceKindDialog) {
        return nullptr;
    }
    if (resource.id == DynamicDialogResource.id) {
        return &dynamicTemplate;
    }
    const auto& tables = GetTables();
    for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
        for (const DialogTemplate& entry : *table) {
            if (entry.id == resource.id) {
                return &entry;
            }
        }
    }
    return nullptr;
}

} // namespace quilt
