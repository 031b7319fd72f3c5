#pragma once

#include "loam/string.h"
#include "quilt/gtk/gtk_list_rows.h"
#include "quilt/gtk/gtk_support.h"

#include <gtk/gtk.h>

#include <cstdint>

namespace quilt {

// The width that a column of a list view gets when it is added.
constexpr int32_t ListColumnWidth = 75;
// The id of a drop-down list's edit field, inside the list.
constexpr int32_t DropDownEditId = 1001;

// A list view: a tree view over rows of one column, in a scrolled window. A report view
// shows a header, whose clicks are reported; `native.inner` becomes the tree view.
GtkWidget* MakeListView(GtkNative& native, uint32_t style, const char* text);
// A drop-down list with an edit field; `native.inner` becomes the combo box, whose field has a
// native record of its own with the id DropDownEditId.
GtkWidget* MakeDropDownList(GtkNative& native, uint32_t style, const char* text);

// The list view's rows, whether or not the view shows them at the moment.
ListRows* GetListRows(GtkWidget* view);
// The rows and the view's columns take `count` texts: missing columns come behind the last,
// surplus ones go from the end.
void SetListColumnCount(GtkWidget* view, int32_t count);
int32_t GetListColumnCount(GtkWidget* view);
// The view lets go of its rows while many rows go in, and takes them back after.
void DetachListRows(GtkWidget* view);
void AttachListRows(GtkWidget* view);
bool IsListRowsAttached(GtkWidget* view);
// Shows a check box before every row's first text, which the user may click.
void ShowListCheckBoxes(GtkWidget* view, bool show);
// Sets a row's check mark; a change is reported to the list's parent.
void SetListRowChecked(GtkWidget* view, int32_t row, bool checked);
// The heading of `column` shows the sort in `descending` or ascending order, no other heading
// shows one; -1 leaves every heading without.
void ShowListSortColumn(GtkWidget* view, int32_t column, bool descending);

// The drop-down list's edit field.
GtkEntry* GetDropDownEntry(GtkWidget* combo);

} // namespace quilt
