#pragma once

#include "loam/string.h"
#include "quilt/date_time_box.h"
#include "quilt/gtk/gtk_support.h"

#include <gtk/gtk.h>

#include <cstdint>

namespace quilt {

// The widgets of the radio button, the date and time box and the tab control, made as
// MakeControl makes every control.
GtkWidget* MakeRadioButton(GtkNative& native, uint32_t style, const char* text);
GtkWidget* MakeDateTimePicker(GtkNative& native, uint32_t style, const char* text);
GtkWidget* MakeTabControl(GtkNative& native, uint32_t style, const char* text);

bool IsRadioButton(GtkWidget* control);
// 0 or 1. A change by the program is no click.
int32_t GetRadioState(GtkWidget* control);
void SetRadioState(GtkWidget* control, bool checked);

bool IsDateTimePicker(GtkWidget* control);
// False for a widget that is no date and time box.
bool GetDateTimeFields(GtkWidget* control, DateTimeFields& fields);
bool SetDateTimeFields(GtkWidget* control, const DateTimeFields& fields);
void SetDateTimePicture(GtkWidget* control, const loam::String& picture);

// The notebook of a tab control, or null.
GtkNotebook* GetNotebook(GtkWidget* control);
// Tabs without pages of their own: the pages are dialogs that lie over the notebook.
int32_t InsertNotebookTab(GtkWidget* control, int32_t position, const loam::String& title);
void DeleteNotebookTab(GtkWidget* control, int32_t position);
void SelectNotebookTab(GtkWidget* control, int32_t position);
// Where a page lies, in the client coordinates of the notebook's window.
bool GetNotebookDisplayArea(GtkWidget* control, Rect& area);

} // namespace quilt
