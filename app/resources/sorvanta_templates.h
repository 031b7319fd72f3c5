#pragma once

#include "loam/resource.h"

#include <cstdint>

// The program's own windows: their template ids and the ids of the controls that code talks to.
enum SorvantaDialog : uint16_t {
    DialogMainWindow = 114,
    DialogOptions = 122,
    DialogRebuildIndex = 124,
};

inline constexpr loam::ResourceId DialogResource(SorvantaDialog dialog) {
    return loam::ResourceId{loam::ResourceKindDialog, dialog};
}

// The main window.
enum MainWindowControl : int32_t {
    MainBuildButton = 1030,
    MainSearchPattern = 1032,
    MainFindButton = 1033,
    MainResultsList = 1034,
    MainIndexStatus = 1036,
    MainOptionsButton = 1037,
    MainSearchStatus = 1038,
    MainUseRegExp = 1046,
};

// The options dialog.
enum OptionsControl : int32_t {
    OptionsIndexFolder = 1039,
    OptionsBrowseButton = 1040,
    OptionsAutoWildcards = 1046,
    OptionsLimitSlider = 1080,
    OptionsLimitLabel = 1082,
};

// The rebuild-only window; its Quit button is the dialog's Cancel, id 2.
enum RebuildControl : int32_t {
    RebuildFolderLine = 1036,
};

// Makes the templates of the three windows known to the toolkit.
void RegisterSorvantaTemplates();
