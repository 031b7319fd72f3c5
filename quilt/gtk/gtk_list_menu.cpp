#include "quilt/gtk/gtk_list_menu.h"

#include "quilt/geometry.h"
#include "quilt/gtk/gtk_support.h"
#include "quilt/gtk/gtk_window_imp.h"

namespace quilt {

namespace {

// Reports the request with a point of the view's bin window, turned into the client
// coordinates of the control that holds the view.
void AskForMenu(GtkTreeView* view, gint binX, gint binY) {
    GtkWidget* widget = GTK_WIDGET(view);
    GtkWidget* placed = FindNativeWidgetAbove(widget);
    gint x = 0;
    gint y = 0;
    gtk_tree_view_convert_bin_window_to_widget_coords(view, binX, binY, &x, &y);
    if (placed != nullptr && placed != widget) {
        gtk_widget_translate_coordinates(widget, placed, x, y, &x, &y);
    }
    DeliverNotification(widget, ControlEvent::ContextMenu,
                        static_cast<uint32_t>(PackPoint(Point{x, y})));
}

gboolean OnButtonPress(GtkWidget* widget, GdkEventButton* event, gpointer) {
    auto* view = GTK_TREE_VIEW(widget);
    GtkTreePath* path = nullptr;
    if (!gdk_event_triggers_context_menu(reinterpret_cast<GdkEvent*>(event)) ||
        event->window != gtk_tree_view_get_bin_window(view) ||
        !gtk_tree_view_get_path_at_pos(view, static_cast<gint>(event->x),
                                       static_cast<gint>(event->y), &path, nullptr, nullptr,
                                       nullptr)) {
        return FALSE;
    }
    gtk_widget_grab_focus(widget);
    gtk_tree_view_set_cursor(view, path, nullptr, FALSE);
    gtk_tree_path_free(path);
    AskForMenu(view, static_cast<gint>(event->x), static_cast<gint>(event->y));
    return TRUE;
}

// Beside the selected row's first cell, just below its text; at the top left without one.
gboolean OnMenuKey(GtkWidget* widget, gpointer) {
    auto* view = GTK_TREE_VIEW(widget);
    GtkTreePath* path = nullptr;
    gtk_tree_view_get_cursor(view, &path, nullptr);
    GdkRectangle cell{0, 0, 0, 0};
    if (path != nullptr &&
        gtk_tree_selection_path_is_selected(gtk_tree_view_get_selection(view), path)) {
        gtk_tree_view_get_cell_area(view, path, gtk_tree_view_get_column(view, 0), &cell);
    }
    gtk_tree_path_free(path);
    AskForMenu(view, cell.x, cell.y + cell.height);
    return TRUE;
}

} // namespace

void ConnectListContextMenu(GtkWidget* view) {
    g_signal_connect(view, "button-press-event", G_CALLBACK(OnButtonPress), nullptr);
    g_signal_connect(view, "popup-menu", G_CALLBACK(OnMenuKey), nullptr);
}

} // namespace quilt
