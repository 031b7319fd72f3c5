#pragma once

#include <gtk/gtk.h>

namespace quilt {

// A tree view for the rows of a list control. It looks and reads like any tree view; it differs
// in how it tells the accessibility layer of a new model: GTK sends a notice per cell of the
// model, and each notice makes the desktop's bridge read the view's states, which for a list of
// many rows costs more than the rest of a fill. The states cannot change while the view takes
// its model, so they are read once for all the notices.
GtkWidget* NewListView(GtkTreeModel* model);
// The view shows `model`, or nothing for null.
void SetListViewModel(GtkWidget* view, GtkTreeModel* model);

} // namespace quilt
