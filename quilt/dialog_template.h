#pragma once

#include "loam/resource.h"
#include "quilt/dialog_units.h"
#include "quilt/geometry.h"

#include <cstdint>
#include <span>

namespace quilt {

// What a control of a dialog template is. Each backend makes its own widget for each kind.
enum class ControlKind : int32_t {
    PushButton,
    DefaultPushButton,
    CheckBox,     // only the program changes its state
    AutoCheckBox, // a click toggles it
    Edit,
    StaticLeft,
    StaticCentred,
    StaticRight,
    GroupBox,
    ListView,
    ComboBoxWithEdit,
    TrackBar,
    ProgressBar,
    RadioButton,     // only the program checks it
    AutoRadioButton, // a click checks it and unchecks the rest of its group
    DateTimePicker,
    TabControl,
};

// Style bits of a control. A template gives the first group; the kind brings the second.
enum ControlStyle : uint32_t {
    StyleTabStop = 1u << 0,
    StyleHidden = 1u << 1,
    StyleDisabled = 1u << 2,
    StyleBorder = 1u << 3,
    StyleReadOnly = 1u << 4,
    StyleAutoHScroll = 1u << 5,
    StyleMultiLine = 1u << 6,
    StyleReportView = 1u << 7,
    StyleSingleSelection = 1u << 8,
    StyleSortAscending = 1u << 9,
    StyleGroup = 1u << 10, // the first control of a group of radio buttons

    StyleDefaultButton = 1u << 16,
    StyleCheckBox = 1u << 17,
    StyleAutoCheck = 1u << 18,
    StyleGroupBox = 1u << 19,
    StyleCentred = 1u << 20,
    StyleRightAligned = 1u << 21,
    StyleDropDown = 1u << 22,
    StyleRadio = 1u << 23,
};

enum DialogStyle : uint32_t {
    DialogStyleCaption = 1u << 0,
    DialogStyleSystemMenu = 1u << 1,
    DialogStyleMinimiseBox = 1u << 2,
    DialogStyleMaximiseBox = 1u << 3,
    DialogStyleSizingFrame = 1u << 4, // the user can resize it: it gets a size grip
    DialogStyleModalFrame = 1u << 5,
    DialogStyleCentre = 1u << 6, // centred on the screen when it is made
};

// A position and size in dialog units, as a template gives them.
struct DialogUnitRect {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;

    // Left, top, right and bottom, still in dialog units.
    constexpr Rect ToRect() const { return Rect{x, y, x + width, y + height}; }
};

// The id of a control that nobody addresses, such as a label.
constexpr int32_t NoControlId = -1;

struct DialogControlTemplate {
    int32_t id = NoControlId;
    ControlKind kind = ControlKind::StaticLeft;
    const char* text = "";
    DialogUnitRect rect;
    uint32_t style = 0; // ControlStyle bits of the first group
};

// A dialog as the program's resources hold it. The controls come in tab order.
struct DialogTemplate {
    uint16_t id = 0;
    const char* title = "";
    int32_t width = 0; // client size in dialog units
    int32_t height = 0;
    const char* fontName = DialogFontFace;
    int32_t fontPoints = DialogFontPoints;
    uint32_t style = 0; // DialogStyle bits
    std::span<const DialogControlTemplate> controls;
};

// The style bits that a kind of control implies, beside those its template gives.
uint32_t GetControlKindStyle(ControlKind kind);

// A dialog built with this resource has no template of its own: it comes up as an empty dialog
// of 100 by 100 dialog units, centred, and makes its controls by code.
inline constexpr loam::ResourceId DynamicDialogResource{loam::ResourceKindDialog, 0};

// Adds a program's templates to those that FindDialogTemplate finds. The table must outlive the
// process's use of it; a later table's template wins over an earlier one's for the same id.
void RegisterDialogTemplates(std::span<const DialogTemplate> templates);
// The template of a dialog resource (kind 2), or null.
const DialogTemplate* FindDialogTemplate(const loam::ResourceId& resource);

} // namespace quilt
