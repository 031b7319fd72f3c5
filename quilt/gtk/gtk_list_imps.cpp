#include "quilt/gtk/gtk_list_imps.h"

#include "quilt/dialog_template.h"
#include "quilt/gtk/gtk_list_controls.h"
#include "quilt/gtk/gtk_support.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace quilt {

namespace {

// A column is fitted to the widest of this many of its longest texts: measuring every row of a
// long list would take longer than the fill, and the longest texts are the widest ones but for
// the width of their letters.
constexpr size_t fittedTexts = 48;
// Room beside a cell's text: the renderer's padding and the column's edges.
constexpr int32_t cellMargin = 12;
// Room beside a heading: the button's padding and the sort arrow.
constexpr int32_t headingMargin = 28;

void GiveRow(int32_t* out, int32_t row) {
    if (out != nullptr) {
        *out = row;
    }
}

// Measures texts as the view draws them, with one layout for them all.
class TextMeasure {
public:
    explicit TextMeasure(GtkWidget* view) : layout(gtk_widget_create_pango_layout(view, nullptr)) {}
    TextMeasure(const TextMeasure&) = delete;
    TextMeasure& operator=(const TextMeasure&) = delete;
    ~TextMeasure() { g_object_unref(layout); }

    int32_t GetWidth(std::string_view text) {
        pango_layout_set_text(layout, ToDisplayText(std::string(text).c_str()).c_str(), -1);
        int32_t width = 0;
        pango_layout_get_pixel_size(layout, &width, nullptr);
        return width;
    }

private:
    PangoLayout* layout;
};

// Quiet while the program changes a control itself.
class QuietChange {
public:
    explicit QuietChange(GtkNative* changed) : native(changed) {
        if (native != nullptr) {
            wasQuiet = native->quiet;
            native->quiet = true;
        }
    }
    QuietChange(const QuietChange&) = delete;
    QuietChange& operator=(const QuietChange&) = delete;
    ~QuietChange() {
        if (native != nullptr) {
            native->quiet = wasQuiet;
        }
    }

private:
    GtkNative* native;
    bool wasQuiet = false;
};

} // namespace

Gtk_ListBoxImp::~Gtk_ListBoxImp() {
    Unbind();
}

GtkWidget* Gtk_ListBoxImp::GetView() const {
    GtkNative* native = GetNative();
    return native != nullptr && GTK_IS_TREE_VIEW(native->inner) ? native->inner : nullptr;
}

ListRows* Gtk_ListBoxImp::GetRows() const {
    return boundRows;
}

ListRow* Gtk_ListBoxImp::GetRow(int32_t row) const {
    ListRows* rows = GetRows();
    return rows != nullptr ? rows->Get(row) : nullptr;
}

GtkTreeViewColumn* Gtk_ListBoxImp::GetColumn(int32_t column) const {
    GtkWidget* view = GetView();
    return view != nullptr && column >= 0 ? gtk_tree_view_get_column(GTK_TREE_VIEW(view), column)
                                          : nullptr;
}

void Gtk_ListBoxImp::ShowRows() {
    GtkWidget* view = GetView();
    if (view != nullptr && !IsListRowsAttached(view)) {
        AttachListRows(view);
    }
}

void Gtk_ListBoxImp::Clear() {
    GtkWidget* view = GetView();
    if (view == nullptr) {
        return;
    }
    // A view that watches its rows would hear of every row going, one at a time.
    bool attached = IsListRowsAttached(view);
    if (attached) {
        DetachListRows(view);
    }
    GetRows()->Clear();
    ShowListSortColumn(view, -1, false);
    if (attached) {
        AttachListRows(view);
    }
}

int32_t Gtk_ListBoxImp::GetCount() {
    ListRows* rows = GetRows();
    return rows != nullptr ? rows->GetCount() : 0;
}

bool Gtk_ListBoxImp::Insert(int32_t at, const loam::String& text, int32_t* row, uint32_t data) {
    ListRows* rows = GetRows();
    if (rows == nullptr) {
        return false;
    }
    bool sorted = (GetNative()->style & StyleSortAscending) != 0;
    GiveRow(row, sorted ? rows->InsertSorted(text.GetCString(), data)
                        : rows->Insert(at, text.GetCString(), data));
    return true;
}

bool Gtk_ListBoxImp::AddItem(const loam::String& text, int32_t* row, uint32_t data) {
    return Insert(-1, text, row, data);
}

bool Gtk_ListBoxImp::InsertAfter(int32_t after, const loam::String& text, int32_t* row,
                                 uint32_t data) {
    return Insert(after + 1, text, row, data);
}

bool Gtk_ListBoxImp::InsertBefore(int32_t before, const loam::String& text, int32_t* row,
                                  uint32_t data) {
    return Insert(before, text, row, data);
}

bool Gtk_ListBoxImp::RemoveItem(int32_t row) {
    ListRows* rows = GetRows();
    return rows != nullptr && rows->Remove(row);
}

bool Gtk_ListBoxImp::SetItemText(int32_t row, const loam::String& text, int32_t column) {
    ListRows* rows = GetRows();
    ListRow* entry = rows != nullptr ? rows->Get(row) : nullptr;
    if (entry == nullptr || column < 0 || column >= rows->GetColumnCount()) {
        return false;
    }
    entry->SetText(column, text.GetCString());
    rows->Changed(row);
    return true;
}

bool Gtk_ListBoxImp::SetItemData(int32_t row, uint32_t data) {
    ListRow* entry = GetRow(row);
    if (entry == nullptr) {
        return false;
    }
    entry->data = data;
    return true;
}

// A column the list does not have reads as empty.
bool Gtk_ListBoxImp::GetItemText(int32_t row, loam::String& text, int32_t column) {
    ListRows* rows = GetRows();
    ListRow* entry = rows != nullptr ? rows->Get(row) : nullptr;
    if (entry == nullptr) {
        return false;
    }
    text = column >= 0 && column < rows->GetColumnCount() ? entry->GetText(column) : "";
    return true;
}

bool Gtk_ListBoxImp::GetItemData(int32_t row, uint32_t& data) {
    ListRow* entry = GetRow(row);
    if (entry == nullptr) {
        return false;
    }
    data = entry->data;
    return true;
}

bool Gtk_ListBoxImp::SelectItem(int32_t row) {
    GtkWidget* view = GetView();
    if (view == nullptr || (row != -1 && GetRow(row) == nullptr)) {
        return false;
    }
    ShowRows();
    GtkTreeSelection* selection = gtk_tree_view_get_selection(GTK_TREE_VIEW(view));
    gtk_tree_selection_unselect_all(selection);
    if (row == -1) {
        return true;
    }
    GtkTreePath* path = gtk_tree_path_new_from_indices(row, -1);
    gtk_tree_selection_select_path(selection, path);
    gtk_tree_view_scroll_to_cell(GTK_TREE_VIEW(view), path, nullptr, FALSE, 0, 0);
    gtk_tree_path_free(path);
    return true;
}

bool Gtk_ListBoxImp::GetSelection(int32_t& row) {
    int32_t* rows = nullptr;
    int32_t count = 0;
    if (!GetSelectionList(rows, count) || count == 0) {
        FreeSelectionList(rows);
        return false;
    }
    row = rows[0];
    FreeSelectionList(rows);
    return true;
}

int32_t Gtk_ListBoxImp::FindItem(const loam::String& text) {
    ListRows* rows = GetRows();
    if (rows == nullptr) {
        return -1;
    }
    for (int32_t row = 0; row < rows->GetCount(); ++row) {
        if (std::strcmp(rows->Get(row)->GetText(0), text.GetCString()) == 0) {
            return row;
        }
    }
    return -1;
}

void Gtk_ListBoxImp::DisableSorting() {
    if (GtkNative* native = GetNative()) {
        native->style &= ~uint32_t{StyleSortAscending};
    }
}

// The rows move at once: a view that shows them tells the accessibility layer of the new order
// once.
void Gtk_ListBoxImp::ReorderRows(const std::vector<int32_t>& order) {
    if (ListRows* rows = GetRows()) {
        rows->Reorder(order);
    }
}

void Gtk_ListBoxImp::ShowSortColumn(int32_t column, SortDirection direction) {
    if (GtkWidget* view = GetView()) {
        ShowListSortColumn(view, column, direction == SortDescending);
    }
}

void Gtk_ListBoxImp::SetNumberOfColumns(int32_t count) {
    if (GtkWidget* view = GetView()) {
        SetListColumnCount(view, count);
    }
}

int32_t Gtk_ListBoxImp::GetNumberOfColumns() {
    GtkWidget* view = GetView();
    return view != nullptr ? GetListColumnCount(view) : 0;
}

void Gtk_ListBoxImp::ShowColumnHeaders(bool show) {
    if (GtkWidget* view = GetView()) {
        gtk_tree_view_set_headers_visible(GTK_TREE_VIEW(view), show);
    }
}

void Gtk_ListBoxImp::SetColumnName(int32_t column, const loam::String& name) {
    if (GtkTreeViewColumn* entry = GetColumn(column)) {
        gtk_tree_view_column_set_title(entry, ToDisplayText(name).c_str());
    }
}

void Gtk_ListBoxImp::SetColumnWidth(int32_t column, int32_t width) {
    if (GtkTreeViewColumn* entry = GetColumn(column)) {
        gtk_tree_view_column_set_fixed_width(entry, std::max(width, 1));
    }
}

int32_t Gtk_ListBoxImp::GetColumnWidth(int32_t column) {
    GtkTreeViewColumn* entry = GetColumn(column);
    return entry != nullptr ? gtk_tree_view_column_get_fixed_width(entry) : 0;
}

// The last column is fitted to its contents alone, as it may stretch to the edge anyway.
void Gtk_ListBoxImp::FitColumn(int32_t column) {
    GtkTreeViewColumn* entry = GetColumn(column);
    if (entry == nullptr) {
        return;
    }
    std::vector<std::string_view> texts;
    texts.reserve(static_cast<size_t>(GetCount()));
    for (const std::unique_ptr<ListRow>& row : GetRows()->GetRowsInAnyOrder()) {
        texts.emplace_back(row->GetText(column));
    }
    auto longerFirst = [](std::string_view a, std::string_view b) {
        return a.size() != b.size() ? a.size() > b.size() : a < b;
    };
    auto measured = static_cast<std::ptrdiff_t>(std::min(texts.size(), fittedTexts));
    std::partial_sort(texts.begin(), texts.begin() + measured, texts.end(), longerFirst);
    texts.erase(std::unique(texts.begin(), texts.begin() + measured), texts.end());
    TextMeasure measure(GetView());
    int32_t width = 0;
    for (std::string_view text : texts) {
        width = std::max(width, measure.GetWidth(text) + cellMargin);
    }
    if (column + 1 < GetNumberOfColumns()) {
        const char* heading = gtk_tree_view_column_get_title(entry);
        width =
            std::max(width, measure.GetWidth(heading != nullptr ? heading : "") + headingMargin);
    }
    SetColumnWidth(column, width);
}

void Gtk_ListBoxImp::FitColumnsEqually() {
    int32_t count = GetNumberOfColumns();
    GtkNative* native = GetNative();
    if (count == 0 || native == nullptr) {
        return;
    }
    int32_t width = (native->rect.GetWidth() - 1) / count - 1;
    for (int32_t column = 0; column < count; ++column) {
        SetColumnWidth(column, width);
    }
}

int32_t Gtk_ListBoxImp::GetSelectionCount() {
    GtkWidget* view = GetView();
    if (view == nullptr) {
        return 0;
    }
    ShowRows();
    return gtk_tree_selection_count_selected_rows(gtk_tree_view_get_selection(GTK_TREE_VIEW(view)));
}

bool Gtk_ListBoxImp::GetSelectionList(int32_t*& rows, int32_t& count) {
    GtkWidget* view = GetView();
    rows = nullptr;
    count = 0;
    if (view == nullptr) {
        return false;
    }
    ShowRows();
    GList* paths = gtk_tree_selection_get_selected_rows(
        gtk_tree_view_get_selection(GTK_TREE_VIEW(view)), nullptr);
    count = static_cast<int32_t>(g_list_length(paths));
    rows = new int32_t[static_cast<size_t>(std::max(count, 1))]{};
    int32_t index = 0;
    for (GList* item = paths; item != nullptr; item = item->next) {
        rows[index++] = gtk_tree_path_get_indices(static_cast<GtkTreePath*>(item->data))[0];
    }
    g_list_free_full(paths, reinterpret_cast<GDestroyNotify>(gtk_tree_path_free));
    return true;
}

void Gtk_ListBoxImp::SetItemColour(int32_t row, const Colour& colour) {
    if (ListRow* entry = GetRow(row)) {
        entry->hasColour = true;
        entry->colour = colour;
        GetRows()->Changed(row);
    }
}

void Gtk_ListBoxImp::ClearItemColour(int32_t row) {
    if (ListRow* entry = GetRow(row)) {
        entry->hasColour = false;
        GetRows()->Changed(row);
    }
}

void Gtk_ListBoxImp::EnableCheckBoxes(bool enable) {
    if (GtkWidget* view = GetView()) {
        ShowListCheckBoxes(view, enable);
    }
}

void Gtk_ListBoxImp::SetItemChecked(int32_t row, bool checked) {
    if (GtkWidget* view = GetView()) {
        SetListRowChecked(view, row, checked);
    }
}

bool Gtk_ListBoxImp::IsItemChecked(int32_t row) {
    ListRow* entry = GetRow(row);
    return entry != nullptr && entry->checked;
}

void Gtk_ListBoxImp::LockUpdates() {
    GtkWidget* view = GetView();
    if (view != nullptr && lockDepth++ == 0 && IsListRowsAttached(view)) {
        DetachListRows(view);
    }
}

void Gtk_ListBoxImp::UnlockUpdates() {
    GtkWidget* view = GetView();
    if (view == nullptr || lockDepth == 0 || --lockDepth > 0) {
        return;
    }
    ShowRows();
}

bool Gtk_ListBoxImp::Attach(GtkWidget* native) {
    GtkNative* record = FindNative(native);
    if (record == nullptr || !GTK_IS_TREE_VIEW(record->inner) || !Gtk_WindowImp::Attach(native)) {
        return false;
    }
    boundRows = GetListRows(record->inner);
    return true;
}

void Gtk_ListBoxImp::Unbind() {
    if (lockDepth > 0) {
        lockDepth = 0;
        ShowRows();
    }
    boundRows = nullptr;
    Gtk_WindowImp::Unbind();
}

GtkComboBox* Gtk_DropDownListImp::GetCombo() const {
    GtkNative* native = GetNative();
    return native != nullptr && GTK_IS_COMBO_BOX(native->inner) ? GTK_COMBO_BOX(native->inner)
                                                                : nullptr;
}

GtkListStore* Gtk_DropDownListImp::GetStore() const {
    GtkComboBox* combo = GetCombo();
    return combo != nullptr ? GTK_LIST_STORE(gtk_combo_box_get_model(combo)) : nullptr;
}

bool Gtk_DropDownListImp::GetIter(int32_t row, GtkTreeIter& iter) const {
    GtkListStore* store = GetStore();
    return store != nullptr && row >= 0 &&
           gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(store), &iter, nullptr, row) != FALSE;
}

void Gtk_DropDownListImp::NativeClear() {
    if (GtkComboBox* combo = GetCombo()) {
        QuietChange quiet(GetNative());
        gtk_combo_box_text_remove_all(GTK_COMBO_BOX_TEXT(combo));
    }
}

int32_t Gtk_DropDownListImp::NativeGetCount() {
    GtkListStore* store = GetStore();
    return store != nullptr ? gtk_tree_model_iter_n_children(GTK_TREE_MODEL(store), nullptr) : 0;
}

// The data word goes in the row's id, which the combo box keeps beside its text.
int32_t Gtk_DropDownListImp::NativeInsert(int32_t at, const loam::String& text, uint32_t data) {
    GtkComboBox* combo = GetCombo();
    if (combo == nullptr) {
        return -1;
    }
    int32_t count = NativeGetCount();
    int32_t place = count;
    if (at >= 0 && at < count) {
        place = at;
    } else if (at < 0 && sorted) {
        loam::String rowText;
        place = 0;
        while (place < count && NativeGetItemText(place, rowText) &&
               CompareFolded(text.GetCString(), rowText.GetCString()) >= 0) {
            ++place;
        }
    }
    std::string id = std::to_string(data);
    QuietChange quiet(GetNative());
    gtk_combo_box_text_insert(GTK_COMBO_BOX_TEXT(combo), place, id.c_str(),
                              ToEditableText(text).c_str());
    return place;
}

bool Gtk_DropDownListImp::NativeRemove(int32_t row) {
    GtkComboBox* combo = GetCombo();
    if (combo == nullptr || row < 0 || row >= NativeGetCount()) {
        return false;
    }
    QuietChange quiet(GetNative());
    gtk_combo_box_text_remove(GTK_COMBO_BOX_TEXT(combo), row);
    return true;
}

bool Gtk_DropDownListImp::NativeSetItemText(int32_t row, const loam::String& text) {
    GtkTreeIter iter;
    if (!GetIter(row, iter)) {
        return false;
    }
    gtk_list_store_set(GetStore(), &iter, 0, ToEditableText(text).c_str(), -1);
    return true;
}

bool Gtk_DropDownListImp::NativeSetItemData(int32_t row, uint32_t data) {
    GtkTreeIter iter;
    if (!GetIter(row, iter)) {
        return false;
    }
    gtk_list_store_set(GetStore(), &iter, 1, std::to_string(data).c_str(), -1);
    return true;
}

bool Gtk_DropDownListImp::NativeGetItemText(int32_t row, loam::String& text) {
    GtkTreeIter iter;
    if (!GetIter(row, iter)) {
        return false;
    }
    gchar* value = nullptr;
    gtk_tree_model_get(GTK_TREE_MODEL(GetStore()), &iter, 0, &value, -1);
    text = value != nullptr ? value : "";
    g_free(value);
    return true;
}

bool Gtk_DropDownListImp::NativeGetItemData(int32_t row, uint32_t& data) {
    GtkTreeIter iter;
    if (!GetIter(row, iter)) {
        return false;
    }
    gchar* value = nullptr;
    gtk_tree_model_get(GTK_TREE_MODEL(GetStore()), &iter, 1, &value, -1);
    data = value != nullptr ? static_cast<uint32_t>(g_ascii_strtoull(value, nullptr, 10)) : 0;
    g_free(value);
    return true;
}

// The program's choice of a row tells nobody; the field takes the row's text.
bool Gtk_DropDownListImp::SelectItem(int32_t row) {
    GtkComboBox* combo = GetCombo();
    if (combo == nullptr || row < -1 || row >= NativeGetCount()) {
        return false;
    }
    QuietChange quiet(GetNative());
    gtk_combo_box_set_active(combo, row);
    return true;
}

bool Gtk_DropDownListImp::GetSelection(int32_t& row) {
    GtkComboBox* combo = GetCombo();
    int32_t active = combo != nullptr ? gtk_combo_box_get_active(combo) : -1;
    if (active < 0) {
        return false;
    }
    row = active;
    return true;
}

bool Gtk_DropDownListImp::Attach(GtkWidget* native) {
    GtkNative* record = FindNative(native);
    if (record == nullptr || !GTK_IS_COMBO_BOX(record->inner) || !Gtk_WindowImp::Attach(native)) {
        return false;
    }
    BindEdit(GetParentWindow(), GTK_WIDGET(GetDropDownEntry(record->inner)), record->id);
    return true;
}

void Gtk_BrowseDialogImp::Init(uint32_t chooserFlags, Window* parentWindow) {
    flags = chooserFlags;
    parent = parentWindow;
}

namespace {

struct ChooserState {
    uint32_t flags;
    loam::String prefix;
    loam::FileSpec start;
    GtkWidget* status;
};

// Once the chooser has its size, it is made to fit the work area of its screen and centred on
// its owner, or on that work area without one, inside it.
void PlaceChooser(GtkWidget* dialog, gpointer ownerWindow) {
    GdkDisplay* display = gtk_widget_get_display(dialog);
    GdkWindow* window = gtk_widget_get_window(dialog);
    GdkMonitor* monitor = window != nullptr ? gdk_display_get_monitor_at_window(display, window)
                                            : gdk_display_get_primary_monitor(display);
    GdkRectangle area{0, 0, 0, 0};
    if (monitor != nullptr) {
        gdk_monitor_get_workarea(monitor, &area);
    }
    gint width = 0;
    gint height = 0;
    gtk_window_get_size(GTK_WINDOW(dialog), &width, &height);
    width = std::min(width, area.width);
    height = std::min(height, area.height);
    gtk_window_resize(GTK_WINDOW(dialog), width, height);
    GdkRectangle owner = area;
    GdkWindow* ownerGdk =
        ownerWindow != nullptr ? gtk_widget_get_window(GTK_WIDGET(ownerWindow)) : nullptr;
    if (ownerGdk != nullptr) {
        gdk_window_get_origin(ownerGdk, &owner.x, &owner.y);
        gtk_window_get_size(GTK_WINDOW(ownerWindow), &owner.width, &owner.height);
    }
    gint x = owner.x + owner.width / 2 - width / 2;
    gint y = owner.y + owner.height / 2 - height / 2;
    x = std::clamp(x, area.x, area.x + area.width - width);
    y = std::clamp(y, area.y, area.y + area.height - height);
    gtk_window_move(GTK_WINDOW(dialog), x, y);
}

void ShowChooserStatus(GtkFileChooser* chooser, gpointer data) {
    auto* state = static_cast<ChooserState*>(data);
    gchar* selected = gtk_file_chooser_get_filename(chooser);
    loam::String text = GetBrowseStatusText(state->flags, state->prefix, state->start,
                                            loam::String(selected != nullptr ? selected : ""),
                                            loam::String(Gtk_BrowseDialogImp::SystemRoot));
    g_free(selected);
    gtk_label_set_text(GTK_LABEL(state->status), ToDisplayText(text).c_str());
}

} // namespace

// A start path that keeps its leaf names a file in the folder to start from.
bool Gtk_BrowseDialogImp::Run(const loam::String* caption, const loam::String* statusPrefix,
                              const loam::FileSpec& startPath, loam::String& chosen) {
    GtkWidget* owner = Gtk_WindowImp::GetWidgetOf(parent);
    GtkWindow* ownerWindow =
        owner != nullptr ? GTK_WINDOW(gtk_widget_get_toplevel(owner)) : nullptr;
    std::string title = caption != nullptr ? ToDisplayText(*caption) : std::string();
    GtkWidget* dialog = gtk_file_chooser_dialog_new(
        title.c_str(), ownerWindow, GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, "_Cancel",
        GTK_RESPONSE_CANCEL, "_Select", GTK_RESPONSE_ACCEPT, nullptr);
    auto* chooser = GTK_FILE_CHOOSER(dialog);
    gtk_file_chooser_set_local_only(chooser, TRUE);
    loam::FileSpec folder = startPath;
    if ((flags & BrowseKeepLeaf) != 0) {
        startPath.GetParent(folder);
    }
    gtk_file_chooser_set_current_folder(chooser, folder.GetPath().GetCString());
    ChooserState state{flags, statusPrefix != nullptr ? *statusPrefix : loam::String(), startPath,
                       gtk_label_new(nullptr)};
    gtk_label_set_xalign(GTK_LABEL(state.status), 0);
    gtk_label_set_ellipsize(GTK_LABEL(state.status), PANGO_ELLIPSIZE_MIDDLE);
    gtk_file_chooser_set_extra_widget(chooser, state.status);
    ShowChooserStatus(chooser, &state);
    g_signal_connect(chooser, "selection-changed", G_CALLBACK(ShowChooserStatus), &state);
    g_signal_connect_after(dialog, "map", G_CALLBACK(PlaceChooser), ownerWindow);
    bool accepted = gtk_dialog_run(GTK_DIALOG(dialog)) == GTK_RESPONSE_ACCEPT;
    gchar* folderChosen = accepted ? gtk_file_chooser_get_filename(chooser) : nullptr;
    chosen = folderChosen != nullptr ? folderChosen : "";
    g_free(folderChosen);
    gtk_widget_destroy(dialog);
    return accepted && !chosen.IsEmpty();
}

} // namespace quilt
