#include "app/resources/sorvanta_templates.h"

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"

namespace {

using quilt::ControlKind;
using quilt::DialogControlTemplate;
using quilt::DialogTemplate;
using quilt::NoControlId;

constexpr uint32_t frame = quilt::DialogStyleCaption | quilt::DialogStyleSystemMenu;

constexpr DialogControlTemplate mainWindowControls[] = {
    {MainSearchPattern, ControlKind::ComboBoxWithEdit, "", {41, 7, 68, 189}, 0},
    {MainUseRegExp, ControlKind::AutoCheckBox, "&Regular expression", {114, 9, 76, 10}, 0},
    {MainFindButton, ControlKind::DefaultPushButton, "&Find", {196, 7, 50, 14}, 0},
    {MainOptionsButton, ControlKind::PushButton, "&Options...", {249, 7, 50, 14}, 0},
    {MainResultsList,
     ControlKind::ListView,
     "",
     {7, 43, 292, 69},
     quilt::StyleReportView | quilt::StyleSingleSelection | quilt::StyleSortAscending |
         quilt::StyleBorder},
    {MainBuildButton, ControlKind::PushButton, "Start Indexing", {7, 119, 60, 14}, 0},
    {MainIndexStatus,
     ControlKind::Edit,
     "",
     {73, 121, 211, 12},
     quilt::StyleReadOnly | quilt::StyleMultiLine | quilt::StyleAutoHScroll},
    {MainSearchStatus, ControlKind::Edit, "", {7, 28, 292, 12}, quilt::StyleReadOnly},
    {NoControlId, ControlKind::StaticLeft, "F&ilename:", {7, 9, 31, 8}, 0},
};

constexpr DialogControlTemplate optionsControls[] = {
    {NoControlId, ControlKind::GroupBox, "Index location", {7, 7, 228, 34}, 0},
    {OptionsIndexFolder,
     ControlKind::Edit,
     "",
     {14, 20, 162, 14},
     quilt::StyleBorder | quilt::StyleAutoHScroll},
    {OptionsBrowseButton, ControlKind::PushButton, "&Browse", {179, 20, 50, 14}, 0},
    {NoControlId, ControlKind::StaticRight, "Maximum results to display:", {7, 50, 86, 8}, 0},
    {OptionsLimitLabel, ControlKind::StaticLeft, "XXX,XXX", {96, 50, 31, 8}, 0},
    {OptionsLimitSlider, ControlKind::TrackBar, "", {127, 47, 108, 15}, 0},
    {OptionsAutoWildcards, ControlKind::AutoCheckBox, "&Automatic wildcards", {14, 68, 79, 10}, 0},
    {quilt::IdOK, ControlKind::DefaultPushButton, "OK", {63, 90, 50, 14}, 0},
    {quilt::IdCancel, ControlKind::PushButton, "Cancel", {129, 90, 50, 14}, 0},
};

constexpr DialogControlTemplate rebuildControls[] = {
    {quilt::IdCancel, ControlKind::PushButton, "&Quit", {104, 39, 50, 14}, 0},
    {NoControlId,
     ControlKind::StaticCentred,
     "Sorvanta is rebuilding its index...",
     {7, 7, 244, 8},
     0},
    {RebuildFolderLine,
     ControlKind::Edit,
     "",
     {7, 19, 244, 14},
     quilt::StyleReadOnly | quilt::StyleAutoHScroll | quilt::StyleBorder},
};

constexpr DialogTemplate templates[] = {
    {DialogMainWindow, "Sorvanta - v1.14", 306, 140, quilt::DialogFontFace, quilt::DialogFontPoints,
     frame | quilt::DialogStyleSizingFrame | quilt::DialogStyleMinimiseBox |
         quilt::DialogStyleMaximiseBox,
     mainWindowControls},
    {DialogOptions, "Sorvanta Options", 242, 111, quilt::DialogFontFace, quilt::DialogFontPoints,
     frame | quilt::DialogStyleModalFrame, optionsControls},
    {DialogRebuildIndex, "Sorvanta", 258, 60, quilt::DialogFontFace, quilt::DialogFontPoints,
     frame | quilt::DialogStyleMinimiseBox, rebuildControls},
};

} // namespace

void RegisterSorvantaTemplates() {
    quilt::RegisterDialogTemplates(templates);
}
