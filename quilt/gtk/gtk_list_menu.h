#pragma once

#include <gtk/gtk.h>

namespace quilt {

// A list view asks for its context menu as the desktop's lists do: a press of the right button
// on a row selects the row and asks for the menu under the pointer; the menu key and Shift+F10
// ask for the selected row's menu beside that row.
void ConnectListContextMenu(GtkWidget* view);

} // namespace quilt
