#pragma once

#include "loam/string.h"
#include "quilt/geometry.h"

#include <gtk/gtk.h>

#include <cstdint>

namespace quilt {

// What a control tells the window it sits in.
enum GtkNotifyCode : int32_t {
    GtkNotifyClicked = 0,
    GtkNotifyEditSetFocus = 0x100,
    GtkNotifyEditKillFocus = 0x200,
    GtkNotifyEditChange = 0x300,
    GtkNotifyEditUpdate = 0x400,
    GtkNotifyScroll = 0x114, // the detail is a GtkScrollCode
};

// What the user did to a track bar, in the order of the toolkit's slider kinds.
enum GtkScrollCode : uint32_t {
    GtkScrollLineUp = 0,
    GtkScrollLineDown = 1,
    GtkScrollPageUp = 2,
    GtkScrollPageDown = 3,
    GtkScrollThumbPosition = 4,
    GtkScrollThumbTrack = 5,
    GtkScrollTop = 6,
    GtkScrollBottom = 7,
    GtkScrollEndTrack = 8,
};

// Makes the widget of a native control class (the ControlClass... names, without regard to
// case) with ControlStyle bits and its text; its native record is attached and its
// notifications go to the window it will sit in. A class without behaviour of its own gets a
// plain label.
GtkWidget* MakeControl(const char* className, uint32_t style, const char* text);
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
