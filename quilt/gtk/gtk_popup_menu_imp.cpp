#include "quilt/gtk/gtk_popup_menu_imp.h"

#include "quilt/gtk/gtk_application_imp.h"
#include "quilt/gtk/gtk_support.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/window.h"

#include <gtk/gtk.h>

#include <algorithm>

namespace quilt {

namespace {

constexpr char commandKey[] = "quilt-menu-command";

struct Tracking {
    int32_t chosen = 0;
    bool up = true;
    guint pending = 0; // the idle round that ends the loop
};

void OnItemActivated(GtkMenuItem* item, gpointer data) {
    static_cast<Tracking*>(data)->chosen =
        GPOINTER_TO_INT(g_object_get_data(G_OBJECT(item), commandKey));
}

// GTK takes a menu down before it activates the item chosen, on the same stack: the loop ends
// on a later pass, when the choice is known.
void OnDeactivated(GtkMenuShell*, gpointer data) {
    auto* tracking = static_cast<Tracking*>(data);
    if (tracking->pending != 0) {
        return;
    }
    tracking->pending = g_idle_add(
        [](gpointer state) {
            auto* ended = static_cast<Tracking*>(state);
            ended->up = false;
            ended->pending = 0;
            return G_SOURCE_REMOVE;
        },
        tracking);
}

GtkWidget* NewItem(const MenuItem& item, Tracking& tracking) {
    if (item.separator) {
        return gtk_separator_menu_item_new();
    }
    GtkWidget* widget =
        gtk_menu_item_new_with_mnemonic(ToMnemonicText(item.text.GetCString()).c_str());
    gtk_widget_set_sensitive(widget, item.enabled);
    g_object_set_data(G_OBJECT(widget), commandKey, GINT_TO_POINTER(item.command));
    g_signal_connect(widget, "activate", G_CALLBACK(OnItemActivated), &tracking);
    return widget;
}

// The widget whose top left corner is the origin of the window's client coordinates.
GtkWidget* GetClientOrigin(Window& window) {
    auto* imp = dynamic_cast<Gtk_WindowImp*>(window.GetImp());
    if (imp == nullptr) {
        return nullptr;
    }
    GtkWidget* area = imp->GetClientArea();
    return area != nullptr ? area : imp->GetWidget();
}

} // namespace

int32_t Gtk_PopupMenuImp::Track(const std::vector<MenuItem>& items, Window& window,
                                const Rect& area, MenuSide side) {
    GtkWidget* origin = GetClientOrigin(window);
    GtkWidget* top = origin != nullptr ? gtk_widget_get_toplevel(origin) : nullptr;
    gint x = 0;
    gint y = 0;
    if (top == nullptr || gtk_widget_get_window(top) == nullptr ||
        !gtk_widget_translate_coordinates(origin, top, area.left, area.top, &x, &y)) {
        return 0;
    }
    Tracking tracking;
    GtkWidget* menu = gtk_menu_new();
    for (const MenuItem& item : items) {
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), NewItem(item, tracking));
    }
    gtk_widget_show_all(menu);
    gtk_menu_attach_to_widget(GTK_MENU(menu), top, nullptr);
    g_signal_connect(menu, "deactivate", G_CALLBACK(OnDeactivated), &tracking);
    GdkRectangle rect{x, y, std::max(area.GetWidth(), 1), std::max(area.GetHeight(), 1)};
    gtk_menu_popup_at_rect(GTK_MENU(menu), gtk_widget_get_window(top), &rect,
                           side == MenuSide::Right ? GDK_GRAVITY_NORTH_EAST
                                                   : GDK_GRAVITY_SOUTH_WEST,
                           GDK_GRAVITY_NORTH_WEST, nullptr);
    // A menu that could not take the pointer is not shown, and would never be taken down.
    if (gtk_widget_get_visible(menu)) {
        RunGtkModalLoop([&tracking] { return tracking.up; });
    }
    g_signal_handlers_disconnect_by_data(menu, &tracking);
    if (tracking.pending != 0) {
        g_source_remove(tracking.pending);
    }
    gtk_widget_destroy(menu);
    return tracking.chosen;
}

} // namespace quilt
