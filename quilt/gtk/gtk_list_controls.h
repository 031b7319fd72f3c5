#pragma once

#include "loam/string.h"
#include "quilt/gtk/gtk_support.h"

#include <gtk/gtk.h>

#include <cstdint>

namespace quilt {

// The columns of a list view's store: the row's data word, its text colour ("#rrggbb" or none),
// its check mark, then one text per column. Texts are the toolkit's bytes, shown through
// ToDisplayText as they are drawn.
enum ListStoreColumn : int32_t {
    ListStoreData,
    ListStoreColour,
    ListStoreChecked,
    ListStoreFirstText,
};

// The width that a column of a list view gets when it is added.
constexpr int32_t ListColumnWidth = 75;
// The id of a drop-down list's edit field, inside the list.
constexpr int32_t DropDownEditId = 1001;

// A list view: a tree view over a list store with one column, in a scrolled window. A report view
// shows a header, whose clicks are reported; `native.inner` becomes the tree view.
GtkWidget* MakeListView(GtkNative& native, uint32_t style, const char* text);
// A drop-down list with an edit field; `native.inner` becomes the combo box, whose field has a
// native record of its own with the id DropDownEditId.
GtkWidget* MakeDropDownList(GtkNative& native, uint32_t style, const char* text);

// The list view's store, whether or not the view shows it at the moment.
GtkListStore* GetListStore(GtkWidget* view);
// A new store of `count` text columns in the view's place, with the rows of the old one; the
// view's columns follow: missing ones come behind the last, surplus ones go from the end.
void SetListColumnCount(GtkWidget* view, int32_t count);
int32_t GetListColumnCount(GtkWidget* view);
// The view lets go of its store while many rows go in, and takes it back after.
void DetachListStore(GtkWidget* view);
void AttachListStore(GtkWidget* view);
bool IsListStoreAttached(GtkWidget* view);
// Shows a check box before every row's first text.
void ShowListCheckBoxes(GtkWidget* view, bool show);

// The drop-down list's edit field.
GtkEntry* GetDropDownEntry(GtkWidget* combo);

} // namespace quilt
