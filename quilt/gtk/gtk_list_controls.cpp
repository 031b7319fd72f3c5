#include "quilt/gtk/gtk_list_controls.h"

#include "quilt/dialog_template.h"
#include "quilt/gtk/gtk_list_menu.h"
#include "quilt/gtk/gtk_list_view.h"
#include "quilt/gtk/gtk_window_imp.h"

#include <string>

namespace quilt {

namespace {

constexpr char rowsKey[] = "quilt-list-rows";
constexpr char columnKey[] = "quilt-list-column";
constexpr char checkRendererKey[] = "quilt-check-renderer";
constexpr char placeholderName[] = "Call SetNumberOfColumns() and SetColumnName()! :-)";
constexpr int32_t placeholderWidth = 10000;

uint32_t AsDetail(int32_t value) {
    return static_cast<uint32_t>(value);
}

bool IsQuiet(GtkWidget* widget) {
    GtkNative* native = FindNativeAbove(widget);
    return native == nullptr || native->quiet;
}

void Notify(GtkWidget* widget, ControlEvent event, uint32_t detail = 0) {
    if (!IsQuiet(widget)) {
        DeliverNotification(widget, event, detail);
    }
}

// The rows are looked up on every call of the list's Imp: by their quark, not by their name.
GQuark RowsQuark() {
    static const GQuark quark = g_quark_from_static_string(rowsKey);
    return quark;
}

GtkTreeModel* GetModel(GtkWidget* view) {
    return static_cast<GtkTreeModel*>(g_object_get_qdata(G_OBJECT(view), RowsQuark()));
}

// The program's own change of the model tells nobody.
void ShowModel(GtkWidget* view, bool shown) {
    GtkNative* native = FindNativeAbove(view);
    bool wasQuiet = native->quiet;
    native->quiet = true;
    SetListViewModel(view, shown ? GetModel(view) : nullptr);
    GetListRows(view)->SetShown(shown);
    native->quiet = wasQuiet;
}

// Only the rows on the screen are drawn, so a name's display form is made for those alone.
void ShowCellText(GtkTreeViewColumn*, GtkCellRenderer* renderer, GtkTreeModel*, GtkTreeIter* iter,
                  gpointer column) {
    const ListRow& row = ListRows::At(iter);
    std::string shown = ToDisplayText(row.GetText(GPOINTER_TO_INT(column)));
    GdkRGBA colour{row.colour.red / 255.0, row.colour.green / 255.0, row.colour.blue / 255.0, 1};
    g_object_set(renderer, "text", shown.c_str(), "foreground-rgba",
                 row.hasColour ? &colour : nullptr, nullptr);
}

void OnColumnClicked(GtkTreeViewColumn* column, gpointer view) {
    int32_t index = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(column), columnKey));
    Notify(GTK_WIDGET(view), ControlEvent::ColumnClicked, AsDetail(index));
}

GtkTreeViewColumn* NewViewColumn(GtkWidget* view, int32_t index, const char* title, int32_t width) {
    GtkTreeViewColumn* column = gtk_tree_view_column_new();
    gtk_tree_view_column_set_title(column, title);
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_fixed_width(column, width);
    gtk_tree_view_column_set_resizable(column, TRUE);
    gtk_tree_view_column_set_clickable(column, TRUE);
    g_object_set_data(G_OBJECT(column), columnKey, GINT_TO_POINTER(index));
    GtkCellRenderer* text = gtk_cell_renderer_text_new();
    g_object_set(text, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    gtk_tree_view_column_pack_start(column, text, TRUE);
    gtk_tree_view_column_set_cell_data_func(column, text, ShowCellText, GINT_TO_POINTER(index),
                                            nullptr);
    g_signal_connect(column, "clicked", G_CALLBACK(OnColumnClicked), view);
    gtk_tree_view_append_column(GTK_TREE_VIEW(view), column);
    return column;
}

void OnCheckToggled(GtkCellRendererToggle*, gchar* path, gpointer view) {
    int32_t row = static_cast<int32_t>(g_ascii_strtoll(path, nullptr, 10));
    ListRow* entry = GetListRows(GTK_WIDGET(view))->Get(row);
    if (entry != nullptr) {
        SetListRowChecked(GTK_WIDGET(view), row, !entry->checked);
    }
}

void OnSelectionChanged(GtkTreeSelection* selection, gpointer) {
    Notify(GTK_WIDGET(gtk_tree_selection_get_tree_view(selection)), ControlEvent::SelectionChanged);
}

void OnRowActivated(GtkTreeView* view, GtkTreePath* path, GtkTreeViewColumn*, gpointer) {
    Notify(GTK_WIDGET(view), ControlEvent::ItemActivated,
           AsDetail(gtk_tree_path_get_indices(path)[0]));
}

// The field's text is the list's, for the dialog it sits in.
void OnEntryChanged(GtkEditable*, gpointer combo) {
    Notify(GTK_WIDGET(combo), ControlEvent::TextChanged);
}

// A row taken from the open list is chosen there and then.
void OnComboChanged(GtkComboBox* combo, gpointer) {
    if (gtk_combo_box_get_active(combo) < 0) {
        return;
    }
    GtkWidget* widget = GTK_WIDGET(combo);
    Notify(widget, ControlEvent::SelectionChanged);
    Notify(widget, ControlEvent::SelectionEnded);
}

// The list may fill its rows anew as it opens: it hears of the opening before GTK sizes the
// popup, from the key that opens it or from a press on its arrow.
void OnPopupShown(GObject* combo, GParamSpec*, gpointer) {
    gboolean shown = FALSE;
    g_object_get(combo, "popup-shown", &shown, nullptr);
    if (!shown) {
        Notify(GTK_WIDGET(combo), ControlEvent::ListClosed);
    }
}

void OnPopupKey(GtkComboBox* combo, gpointer) {
    Notify(GTK_WIDGET(combo), ControlEvent::ListOpened);
}

gboolean OnArrowPress(GtkWidget*, GdkEventButton* event, gpointer combo) {
    gboolean shown = FALSE;
    g_object_get(combo, "popup-shown", &shown, nullptr);
    if (event->button == 1 && !shown) {
        Notify(GTK_WIDGET(combo), ControlEvent::ListOpened);
    }
    return FALSE;
}

void ConnectArrow(GtkWidget* child, gpointer combo) {
    if (GTK_IS_TOGGLE_BUTTON(child)) {
        g_signal_connect(child, "button-press-event", G_CALLBACK(OnArrowPress), combo);
    }
}

} // namespace

GtkWidget* MakeListView(GtkNative& native, uint32_t style, const char*) {
    GtkTreeModel* rows = ListRows::NewModel(1);
    GtkWidget* view = NewListView(rows);
    g_object_set_qdata_full(G_OBJECT(view), RowsQuark(), rows, g_object_unref);
    ListRows::Of(rows)->SetShown(true);
    bool report = (style & StyleReportView) != 0;
    NewViewColumn(view, 0, report ? placeholderName : "", report ? placeholderWidth : 1);
    gtk_tree_view_set_headers_visible(GTK_TREE_VIEW(view), report);
    gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(view), TRUE);
    gtk_tree_view_set_enable_search(GTK_TREE_VIEW(view), FALSE);
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(view));
    gtk_tree_selection_set_mode(selection, (style & StyleSingleSelection) != 0
                                               ? GTK_SELECTION_SINGLE
                                               : GTK_SELECTION_MULTIPLE);
    g_signal_connect(selection, "changed", G_CALLBACK(OnSelectionChanged), nullptr);
    g_signal_connect(view, "row-activated", G_CALLBACK(OnRowActivated), nullptr);
    ConnectListContextMenu(view);
    GtkWidget* scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_AUTOMATIC,
                                   GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroller), (style & StyleBorder) != 0
                                                                           ? GTK_SHADOW_IN
                                                                           : GTK_SHADOW_NONE);
    gtk_container_add(GTK_CONTAINER(scroller), view);
    gtk_widget_show(view);
    native.inner = view;
    return scroller;
}

GtkWidget* MakeDropDownList(GtkNative& native, uint32_t, const char* text) {
    GtkWidget* combo = gtk_combo_box_text_new_with_entry();
    GtkEntry* entry = GetDropDownEntry(combo);
    gtk_entry_set_text(entry, ToEditableText(text).c_str());
    gtk_entry_set_width_chars(entry, 1);
    GtkNative& field = AttachNative(GTK_WIDGET(entry));
    field.id = DropDownEditId;
    field.style = StyleAutoHScroll | StyleTabStop;
    g_signal_connect(entry, "changed", G_CALLBACK(OnEntryChanged), combo);
    g_signal_connect(combo, "changed", G_CALLBACK(OnComboChanged), nullptr);
    g_signal_connect(combo, "notify::popup-shown", G_CALLBACK(OnPopupShown), nullptr);
    g_signal_connect(combo, "popup", G_CALLBACK(OnPopupKey), nullptr);
    gtk_container_forall(GTK_CONTAINER(combo), ConnectArrow, combo);
    native.inner = combo;
    return combo;
}

ListRows* GetListRows(GtkWidget* view) {
    return ListRows::Of(GetModel(view));
}

int32_t GetListColumnCount(GtkWidget* view) {
    return static_cast<int32_t>(gtk_tree_view_get_n_columns(GTK_TREE_VIEW(view)));
}

void SetListColumnCount(GtkWidget* view, int32_t count) {
    int32_t present = GetListColumnCount(view);
    if (count < 1 || count == present) {
        return;
    }
    bool attached = IsListRowsAttached(view);
    if (attached) {
        ShowModel(view, false);
    }
    GetListRows(view)->SetColumnCount(count);
    for (int32_t index = present - 1; index >= count; --index) {
        gtk_tree_view_remove_column(GTK_TREE_VIEW(view),
                                    gtk_tree_view_get_column(GTK_TREE_VIEW(view), index));
    }
    for (int32_t index = present; index < count; ++index) {
        NewViewColumn(view, index, "", ListColumnWidth);
    }
    if (attached) {
        ShowModel(view, true);
    }
}

void DetachListRows(GtkWidget* view) {
    ShowModel(view, false);
}

void AttachListRows(GtkWidget* view) {
    ShowModel(view, true);
}

bool IsListRowsAttached(GtkWidget* view) {
    return gtk_tree_view_get_model(GTK_TREE_VIEW(view)) != nullptr;
}

// The check box joins the first column only when asked for, so that a list without them reads
// as plain text cells to the accessibility layer.
void ShowListCheckBoxes(GtkWidget* view, bool show) {
    auto* check =
        static_cast<GtkCellRenderer*>(g_object_get_data(G_OBJECT(view), checkRendererKey));
    GtkTreeViewColumn* first = gtk_tree_view_get_column(GTK_TREE_VIEW(view), 0);
    if (check == nullptr && show && first != nullptr) {
        check = gtk_cell_renderer_toggle_new();
        gtk_tree_view_column_pack_start(first, check, FALSE);
        gtk_cell_layout_reorder(GTK_CELL_LAYOUT(first), check, 0);
        gtk_tree_view_column_add_attribute(first, check, "active", ListRowChecked);
        g_object_set(check, "activatable", TRUE, nullptr);
        g_signal_connect(check, "toggled", G_CALLBACK(OnCheckToggled), view);
        g_object_set_data(G_OBJECT(view), checkRendererKey, check);
    }
    if (check != nullptr) {
        g_object_set(check, "visible", show, nullptr);
        gtk_widget_queue_draw(view);
    }
}

void SetListRowChecked(GtkWidget* view, int32_t row, bool checked) {
    ListRows* rows = GetListRows(view);
    ListRow* entry = rows->Get(row);
    if (entry == nullptr || entry->checked == checked) {
        return;
    }
    entry->checked = checked;
    rows->Changed(row);
    Notify(view, ControlEvent::ItemCheckChanged, AsDetail(row));
}

void ShowListSortColumn(GtkWidget* view, int32_t column, bool descending) {
    auto* tree = GTK_TREE_VIEW(view);
    for (int32_t index = 0; index < GetListColumnCount(view); ++index) {
        GtkTreeViewColumn* entry = gtk_tree_view_get_column(tree, index);
        gtk_tree_view_column_set_sort_indicator(entry, index == column);
        gtk_tree_view_column_set_sort_order(entry,
                                            descending ? GTK_SORT_DESCENDING : GTK_SORT_ASCENDING);
    }
}

GtkEntry* GetDropDownEntry(GtkWidget* combo) {
    return GTK_ENTRY(gtk_bin_get_child(GTK_BIN(combo)));
}

} // namespace quilt
