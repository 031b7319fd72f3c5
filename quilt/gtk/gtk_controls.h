#pragma once

#include "loam/string.h"
#include "quilt/dialog_template.h"
#include "quilt/geometry.h"

#include <gtk/gtk.h>

#include <cstdint>

namespace quilt {

// Makes the widget of a kind of control with every ControlStyle bit of the control and its text;
// its native record is attached and its events go to the window it will sit in. A kind without
// behaviour of its own gets a plain label.
GtkWidget* MakeControl(ControlKind kind, uint32_t style, const char* text);
// Puts a control into a window's client area at `rect` and shows it unless it is hidden.
void PlaceControl(GtkWidget* clientArea, GtkWidget* control, int32_t id, const Rect& rect);
// Moves and sizes a control within its client area.
void MoveControlTo(GtkWidget* control, const Rect& rect);

bool SetControlText(GtkWidget* control, const loam::String& text);
bool GetControlText(GtkWidget* control, loam::String& text);

// A check box's state: 0, 1, or 2 for any other. A change by the program is no click.
int32_t GetCheckState(GtkWidget* control);
void SetCheckState(GtkWidget* control, int32_t state);
bool IsCheckBox(GtkWidget* control);
bool IsPushButton(GtkWidget* control);

// Presses a button as a click does, if it is enabled and shown.
void PressButton(GtkWidget* control);

} // namespace quilt
