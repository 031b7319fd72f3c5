#include "quilt/dialog_template.h"

#include "quilt/dialog_units.h"

#include <algorithm>
#include <vector>

namespace quilt {

namespace {

struct KindClass {
    ControlKind kind;
    ControlClass controlClass;
};

constexpr KindClass kindClasses[] = {
    {ControlKind::PushButton, {ControlClassButton, StyleTabStop}},
    {ControlKind::DefaultPushButton, {ControlClassButton, StyleTabStop | StyleDefaultButton}},
    {ControlKind::CheckBox, {ControlClassButton, StyleTabStop | StyleCheckBox}},
    {ControlKind::AutoCheckBox,
     {ControlClassButton, StyleTabStop | StyleCheckBox | StyleAutoCheck}},
    {ControlKind::Edit, {ControlClassEdit, StyleTabStop}},
    {ControlKind::StaticLeft, {ControlClassStatic, 0}},
    {ControlKind::StaticCentred, {ControlClassStatic, StyleCentred}},
    {ControlKind::StaticRight, {ControlClassStatic, StyleRightAligned}},
    {ControlKind::GroupBox, {ControlClassButton, StyleGroupBox}},
    {ControlKind::ListView, {ControlClassListView, StyleTabStop}},
    {ControlKind::ComboBoxWithEdit, {ControlClassComboBox, StyleTabStop | StyleDropDown}},
    {ControlKind::TrackBar, {ControlClassTrackBar, StyleTabStop}},
    {ControlKind::ProgressBar, {ControlClassProgressBar, 0}},
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

ControlClass GetControlClass(ControlKind kind) {
    for (const KindClass& entry : kindClasses) {
        if (entry.kind == kind) {
            return entry.controlClass;
        }
    }
    return ControlClass{ControlClassStatic, 0};
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
