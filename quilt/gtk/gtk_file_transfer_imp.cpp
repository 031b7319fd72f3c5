#include "quilt/gtk/gtk_file_transfer_imp.h"

#include "quilt/gtk/gtk_support.h"
#include "quilt/gtk/gtk_window_imp.h"

#include <gtk/gtk.h>

#include <string>

namespace quilt {

namespace {

enum TargetInfo : guint {
    InfoUriList,
    InfoPlainBytes, // "text/plain": the bytes as they are
    InfoText,       // every other form of text, which GTK makes from UTF-8
};

GtkTargetEntry dragTargets[] = {
    {const_cast<gchar*>("text/uri-list"), 0, InfoUriList},
    {const_cast<gchar*>("text/plain"), 0, InfoPlainBytes},
};

void SetBytes(GtkSelectionData* data, const char* bytes, size_t length) {
    gtk_selection_data_set(data, gtk_selection_data_get_target(data), 8,
                           reinterpret_cast<const guchar*>(bytes), static_cast<gint>(length));
}

// A list view's drag starts on a row: a press below the rows, though a row may still be
// selected, only takes the focus, and never reaches the drag source.
gboolean OnPressBelowRows(GtkWidget* widget, GdkEventButton* event, gpointer) {
    auto* view = GTK_TREE_VIEW(widget);
    if (event->button != 1 || event->window != gtk_tree_view_get_bin_window(view) ||
        gtk_tree_view_get_path_at_pos(view, static_cast<gint>(event->x),
                                      static_cast<gint>(event->y), nullptr, nullptr, nullptr,
                                      nullptr)) {
        return FALSE;
    }
    gtk_widget_grab_focus(widget);
    return TRUE;
}

// A drag that carries no file ends where it starts.
void OnDragBegin(GtkWidget*, GdkDragContext* context, gpointer source) {
    loam::String path;
    if (!static_cast<FileDragSource*>(source)->GetDragFile(path)) {
        gtk_drag_cancel(context);
    }
}

void OnDragDataGet(GtkWidget*, GdkDragContext*, GtkSelectionData* data, guint info, guint,
                   gpointer source) {
    loam::String path;
    if (!static_cast<FileDragSource*>(source)->GetDragFile(path)) {
        return;
    }
    loam::String list;
    if (info == InfoPlainBytes) {
        SetBytes(data, path.GetCString(), path.GetLength());
    } else if (info == InfoUriList && GetUriList(path, list)) {
        SetBytes(data, list.GetCString(), list.GetLength());
    }
}

// The widget that the user presses on: a list view's tree view, not its scrolled window.
GtkWidget* GetPressedWidget(Window& control) {
    GtkWidget* placed = Gtk_WindowImp::GetWidgetOf(&control);
    GtkNative* native = placed != nullptr ? FindNative(placed) : nullptr;
    return native != nullptr && native->inner != nullptr ? native->inner : placed;
}

void GetClipboardData(GtkClipboard*, GtkSelectionData* data, guint info, gpointer owner) {
    const auto& text = *static_cast<const std::string*>(owner);
    if (info == InfoPlainBytes) {
        SetBytes(data, text.data(), text.size());
    } else {
        gtk_selection_data_set_text(data, text.c_str(), static_cast<gint>(text.size()));
    }
}

void ClearClipboardData(GtkClipboard*, gpointer owner) {
    delete static_cast<std::string*>(owner);
}

// Text that is UTF-8 goes in every form of text that GTK knows; other bytes as plain bytes only,
// as a conversion would lose them.
GtkTargetList* NewTextTargets(const loam::String& text) {
    GtkTargetList* targets = gtk_target_list_new(nullptr, 0);
    GdkAtom plain = gdk_atom_intern_static_string("text/plain");
    if (g_utf8_validate(text.GetCString(), -1, nullptr)) {
        gtk_target_list_add_text_targets(targets, InfoText);
        gtk_target_list_remove(targets, plain);
    }
    gtk_target_list_add(targets, plain, 0, InfoPlainBytes);
    return targets;
}

} // namespace

bool Gtk_FileTransferImp::CopyText(const loam::String& text) {
    GdkDisplay* display = gdk_display_get_default();
    GtkClipboard* clipboard = display != nullptr
                                  ? gtk_clipboard_get_for_display(display, GDK_SELECTION_CLIPBOARD)
                                  : nullptr;
    if (clipboard == nullptr) {
        return false;
    }
    GtkTargetList* targets = NewTextTargets(text);
    gint count = 0;
    GtkTargetEntry* table = gtk_target_table_new_from_list(targets, &count);
    auto* owner = new std::string(text.GetCString(), text.GetLength());
    bool set = gtk_clipboard_set_with_data(clipboard, table, static_cast<guint>(count),
                                           GetClipboardData, ClearClipboardData, owner);
    gtk_target_table_free(table, count);
    gtk_target_list_unref(targets);
    if (!set) {
        delete owner;
        return false;
    }
    // A clipboard manager may keep the text after the program has ended.
    gtk_clipboard_set_can_store(clipboard, nullptr, 0);
    return true;
}

bool Gtk_FileTransferImp::EnableFileDrag(Window& control, FileDragSource& source) {
    GtkWidget* widget = GetPressedWidget(control);
    if (widget == nullptr) {
        return false;
    }
    // A tree view's own drags need a model that moves its rows; the widget's plain drag source
    // needs nothing of the model, and the file comes from the selection. The press below the
    // rows is taken before the drag source hears of it.
    if (GTK_IS_TREE_VIEW(widget)) {
        g_signal_connect(widget, "button-press-event", G_CALLBACK(OnPressBelowRows), nullptr);
    }
    gtk_drag_source_set(widget, GDK_BUTTON1_MASK, dragTargets, G_N_ELEMENTS(dragTargets),
                        static_cast<GdkDragAction>(GDK_ACTION_COPY | GDK_ACTION_LINK));
    g_signal_connect(widget, "drag-begin", G_CALLBACK(OnDragBegin), &source);
    g_signal_connect(widget, "drag-data-get", G_CALLBACK(OnDragDataGet), &source);
    return true;
}

} // namespace quilt
