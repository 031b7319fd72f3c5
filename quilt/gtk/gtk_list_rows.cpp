#include "quilt/gtk/gtk_list_rows.h"

#include "loam/string.h"

#include <algorithm>

namespace quilt {

namespace {

constexpr char typeName[] = "QuiltListRows";

int32_t CompareFolded(const char* left, const char* right) {
    for (;; ++left, ++right) {
        auto foldedLeft = static_cast<unsigned char>(loam::FoldToLower(*left));
        auto foldedRight = static_cast<unsigned char>(loam::FoldToLower(*right));
        if (foldedLeft != foldedRight || foldedLeft == 0) {
            return foldedLeft - foldedRight;
        }
    }
}

// Orders two rows by their first texts; the new row goes behind every row whose text is equal
// to its own without regard to case, so the two are never equal.
gint CompareWithNewRow(gconstpointer a, gconstpointer b, gpointer newRow) {
    const auto* left = static_cast<const ListRow*>(a);
    const auto* right = static_cast<const ListRow*>(b);
    int32_t order = CompareFolded(left->GetText(0), right->GetText(0));
    if (order != 0) {
        return order;
    }
    return left == newRow ? 1 : -1;
}

ListRow* NewRow(std::string_view text, uint32_t data, int32_t columns) {
    auto* row = new ListRow;
    row->data = data;
    row->cells.reserve(text.size() + static_cast<size_t>(columns));
    row->cells.assign(text);
    row->cells.append(static_cast<size_t>(columns), '\0');
    return row;
}

ListRow* RowOf(GSequenceIter* node) {
    return static_cast<ListRow*>(g_sequence_get(node));
}

std::string ToCss(const Colour& colour) {
    char text[8];
    g_snprintf(text, sizeof text, "#%02x%02x%02x", colour.red, colour.green, colour.blue);
    return text;
}

} // namespace

// The GObject that stands for the rows to GTK.
struct ListRowsModel {
    GObject parent;
    ListRows* rows;

    struct Class {
        GObjectClass parent;
    };

    static GType GetType();
    static ListRowsModel* From(GtkTreeModel* model) {
        return reinterpret_cast<ListRowsModel*>(model);
    }
    static ListRows& RowsOf(GtkTreeModel* model) { return *From(model)->rows; }

    static void Finalize(GObject* object);
    static void InitInterface(GtkTreeModelIface* iface);

    static GtkTreeModelFlags GetFlags(GtkTreeModel*) { return GTK_TREE_MODEL_LIST_ONLY; }
    static gint GetColumnCount(GtkTreeModel* model) {
        return ListRowFirstText + RowsOf(model).columnCount;
    }
    static GType GetColumnType(GtkTreeModel* model, gint column);
    static gboolean GetIter(GtkTreeModel* model, GtkTreeIter* iter, GtkTreePath* path);
    static GtkTreePath* GetPath(GtkTreeModel* model, GtkTreeIter* iter);
    static void GetValue(GtkTreeModel* model, GtkTreeIter* iter, gint column, GValue* value);
    static gboolean Next(GtkTreeModel* model, GtkTreeIter* iter);
    static gboolean Previous(GtkTreeModel* model, GtkTreeIter* iter);
    static gboolean Children(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent);
    static gboolean HasChild(GtkTreeModel*, GtkTreeIter*) { return FALSE; }
    static gint CountChildren(GtkTreeModel* model, GtkTreeIter* iter) {
        return iter == nullptr ? RowsOf(model).count : 0;
    }
    static gboolean NthChild(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent, gint row);
    static gboolean Parent(GtkTreeModel*, GtkTreeIter*, GtkTreeIter*) { return FALSE; }

    static void SetIter(ListRows& rows, GtkTreeIter& iter, GSequenceIter* node) {
        iter.stamp = rows.stamp;
        iter.user_data = node;
    }
    static bool IsEnd(GSequenceIter* node) { return g_sequence_iter_is_end(node) != FALSE; }
};

namespace {

GObjectClass* modelParentClass = nullptr;

} // namespace

GType ListRowsModel::GetType() {
    static const GType type = [] {
        GType registered = g_type_register_static_simple(
            G_TYPE_OBJECT, typeName, sizeof(Class),
            [](gpointer klass, gpointer) {
                modelParentClass = G_OBJECT_CLASS(g_type_class_peek_parent(klass));
                G_OBJECT_CLASS(klass)->finalize = Finalize;
            },
            sizeof(ListRowsModel), nullptr, GTypeFlags(0));
        const GInterfaceInfo treeModel{
            [](gpointer iface, gpointer) { InitInterface(static_cast<GtkTreeModelIface*>(iface)); },
            nullptr, nullptr};
        g_type_add_interface_static(registered, GTK_TYPE_TREE_MODEL, &treeModel);
        return registered;
    }();
    return type;
}

void ListRowsModel::Finalize(GObject* object) {
    delete reinterpret_cast<ListRowsModel*>(object)->rows;
    modelParentClass->finalize(object);
}

void ListRowsModel::InitInterface(GtkTreeModelIface* iface) {
    iface->get_flags = GetFlags;
    iface->get_n_columns = GetColumnCount;
    iface->get_column_type = GetColumnType;
    iface->get_iter = GetIter;
    iface->get_path = GetPath;
    iface->get_value = GetValue;
    iface->iter_next = Next;
    iface->iter_previous = Previous;
    iface->iter_children = Children;
    iface->iter_has_child = HasChild;
    iface->iter_n_children = CountChildren;
    iface->iter_nth_child = NthChild;
    iface->iter_parent = Parent;
}

GType ListRowsModel::GetColumnType(GtkTreeModel* model, gint column) {
    if (column < ListRowData || column >= GetColumnCount(model)) {
        return G_TYPE_INVALID;
    }
    static constexpr GType fixedTypes[] = {G_TYPE_UINT, G_TYPE_STRING, G_TYPE_BOOLEAN};
    return column < ListRowFirstText ? fixedTypes[column] : G_TYPE_STRING;
}

gboolean ListRowsModel::GetIter(GtkTreeModel* model, GtkTreeIter* iter, GtkTreePath* path) {
    if (gtk_tree_path_get_depth(path) != 1) {
        return FALSE;
    }
    return RowsOf(model).GetIter(gtk_tree_path_get_indices(path)[0], *iter);
}

GtkTreePath* ListRowsModel::GetPath(GtkTreeModel* model, GtkTreeIter* iter) {
    if (iter->stamp != RowsOf(model).stamp) {
        return nullptr;
    }
    auto* node = static_cast<GSequenceIter*>(iter->user_data);
    return gtk_tree_path_new_from_indices(g_sequence_iter_get_position(node), -1);
}

void ListRowsModel::GetValue(GtkTreeModel* model, GtkTreeIter* iter, gint column, GValue* value) {
    g_value_init(value, GetColumnType(model, column));
    if (iter->stamp != RowsOf(model).stamp || column < ListRowData) {
        return;
    }
    const ListRow& row = ListRows::At(iter);
    if (column == ListRowData) {
        g_value_set_uint(value, row.data);
    } else if (column == ListRowColour) {
        g_value_set_string(value, row.hasColour ? ToCss(row.colour).c_str() : nullptr);
    } else if (column == ListRowChecked) {
        g_value_set_boolean(value, row.checked);
    } else if (column < GetColumnCount(model)) {
        g_value_set_string(value, row.GetText(column - ListRowFirstText));
    }
}

gboolean ListRowsModel::Next(GtkTreeModel* model, GtkTreeIter* iter) {
    ListRows& rows = RowsOf(model);
    if (iter->stamp != rows.stamp) {
        return FALSE;
    }
    GSequenceIter* next = g_sequence_iter_next(static_cast<GSequenceIter*>(iter->user_data));
    if (IsEnd(next)) {
        iter->stamp = 0;
        return FALSE;
    }
    iter->user_data = next;
    return TRUE;
}

gboolean ListRowsModel::Previous(GtkTreeModel* model, GtkTreeIter* iter) {
    ListRows& rows = RowsOf(model);
    auto* node = static_cast<GSequenceIter*>(iter->user_data);
    if (iter->stamp != rows.stamp || g_sequence_iter_is_begin(node)) {
        iter->stamp = 0;
        return FALSE;
    }
    iter->user_data = g_sequence_iter_prev(node);
    return TRUE;
}

gboolean ListRowsModel::Children(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent) {
    ListRows& rows = RowsOf(model);
    if (parent != nullptr || rows.count == 0) {
        iter->stamp = 0;
        return FALSE;
    }
    SetIter(rows, *iter, g_sequence_get_begin_iter(rows.rows));
    return TRUE;
}

gboolean ListRowsModel::NthChild(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent,
                                 gint row) {
    if (parent != nullptr) {
        iter->stamp = 0;
        return FALSE;
    }
    return RowsOf(model).GetIter(row, *iter);
}

const char* ListRow::GetText(int32_t column) const {
    size_t start = 0;
    for (int32_t skipped = 0; skipped < column; ++skipped) {
        size_t end = cells.find('\0', start);
        if (end == std::string::npos) {
            return "";
        }
        start = end + 1;
    }
    return start < cells.size() ? cells.c_str() + start : "";
}

void ListRow::SetText(int32_t column, std::string_view text) {
    text = text.substr(0, text.find('\0'));
    auto present = static_cast<int32_t>(std::count(cells.begin(), cells.end(), '\0'));
    if (present <= column) {
        cells.append(static_cast<size_t>(column + 1 - present), '\0');
    }
    const char* start = GetText(column);
    size_t offset = static_cast<size_t>(start - cells.c_str());
    cells.replace(offset, std::string_view(start).size(), text);
}

void ListRow::SetColumnCount(int32_t count) {
    size_t end = 0;
    for (int32_t kept = 0; kept < count; ++kept) {
        size_t found = cells.find('\0', end);
        if (found == std::string::npos) {
            cells.append(static_cast<size_t>(count - kept), '\0');
            return;
        }
        end = found + 1;
    }
    cells.resize(end);
}

GtkTreeModel* ListRows::NewModel(int32_t textColumns) {
    auto* model = static_cast<ListRowsModel*>(g_object_new(ListRowsModel::GetType(), nullptr));
    auto* face = GTK_TREE_MODEL(model);
    model->rows = new ListRows(face, textColumns);
    return face;
}

ListRows* ListRows::Of(GtkTreeModel* model) {
    bool ours = model != nullptr && G_TYPE_CHECK_INSTANCE_TYPE(model, ListRowsModel::GetType());
    return ours ? ListRowsModel::From(model)->rows : nullptr;
}

ListRow& ListRows::At(const GtkTreeIter* iter) {
    return *RowOf(static_cast<GSequenceIter*>(iter->user_data));
}

ListRows::ListRows(GtkTreeModel* model, int32_t textColumns)
    : face(model), rows(g_sequence_new(nullptr)), columnCount(std::max(textColumns, 1)) {}

ListRows::~ListRows() {
    g_sequence_foreach(
        rows, [](gpointer row, gpointer) { delete static_cast<ListRow*>(row); }, nullptr);
    g_sequence_free(rows);
}

void ListRows::SetColumnCount(int32_t columns) {
    columnCount = std::max(columns, 1);
    g_sequence_foreach(
        rows,
        [](gpointer row, gpointer wanted) {
            static_cast<ListRow*>(row)->SetColumnCount(GPOINTER_TO_INT(wanted));
        },
        GINT_TO_POINTER(columnCount));
}

void ListRows::Forget() {
    nodes.clear();
    lastRow = -1;
    lastNode = nullptr;
    ++stamp;
}

GSequenceIter* ListRows::Find(int32_t row) {
    if (row < 0 || row >= count) {
        return nullptr;
    }
    if (row == lastRow) {
        return lastNode;
    }
    if (nodes.size() == static_cast<size_t>(count)) {
        return nodes[static_cast<size_t>(row)];
    }
    return g_sequence_get_iter_at_pos(rows, row);
}

void ListRows::Index() {
    if (nodes.size() == static_cast<size_t>(count)) {
        return;
    }
    nodes.clear();
    nodes.reserve(static_cast<size_t>(count));
    for (GSequenceIter* node = g_sequence_get_begin_iter(rows); !ListRowsModel::IsEnd(node);
         node = g_sequence_iter_next(node)) {
        nodes.push_back(node);
    }
}

int32_t ListRows::Place(GSequenceIter* node) {
    ++count;
    Forget();
    lastNode = node;
    lastRow = g_sequence_iter_get_position(node);
    if (shown) {
        GtkTreeIter iter;
        ListRowsModel::SetIter(*this, iter, node);
        GtkTreePath* path = gtk_tree_path_new_from_indices(lastRow, -1);
        gtk_tree_model_row_inserted(face, path, &iter);
        gtk_tree_path_free(path);
    }
    return lastRow;
}

int32_t ListRows::Insert(int32_t place, std::string_view text, uint32_t data) {
    GSequenceIter* before =
        place >= 0 && place < count ? Find(place) : g_sequence_get_end_iter(rows);
    return Place(g_sequence_insert_before(before, NewRow(text, data, columnCount)));
}

int32_t ListRows::InsertSorted(std::string_view text, uint32_t data) {
    ListRow* row = NewRow(text, data, columnCount);
    GSequenceIter* before = g_sequence_search(rows, row, CompareWithNewRow, row);
    return Place(g_sequence_insert_before(before, row));
}

bool ListRows::Remove(int32_t row) {
    GSequenceIter* node = Find(row);
    if (node == nullptr) {
        return false;
    }
    delete RowOf(node);
    g_sequence_remove(node);
    --count;
    Forget();
    if (shown) {
        GtkTreePath* path = gtk_tree_path_new_from_indices(row, -1);
        gtk_tree_model_row_deleted(face, path);
        gtk_tree_path_free(path);
    }
    return true;
}

// A view that shows the rows hears of them going from the last, so that each path it is told is the
// last row's.
void ListRows::Clear() {
    if (shown) {
        while (count > 0) {
            Remove(count - 1);
        }
        return;
    }
    g_sequence_foreach(
        rows, [](gpointer row, gpointer) { delete static_cast<ListRow*>(row); }, nullptr);
    g_sequence_remove_range(g_sequence_get_begin_iter(rows), g_sequence_get_end_iter(rows));
    count = 0;
    Forget();
}

ListRow* ListRows::Get(int32_t row) {
    GSequenceIter* node = Find(row);
    return node != nullptr ? RowOf(node) : nullptr;
}

void ListRows::Changed(int32_t row) {
    GtkTreeIter iter;
    if (!shown || !GetIter(row, iter)) {
        return;
    }
    GtkTreePath* path = gtk_tree_path_new_from_indices(row, -1);
    gtk_tree_model_row_changed(face, path, &iter);
    gtk_tree_path_free(path);
}

// The nodes stay where they are and take their new rows.
void ListRows::Reorder(const std::vector<int32_t>& order) {
    if (order.size() != static_cast<size_t>(count)) {
        return;
    }
    Index();
    std::vector<ListRow*> before;
    before.reserve(nodes.size());
    for (GSequenceIter* node : nodes) {
        before.push_back(RowOf(node));
    }
    for (size_t place = 0; place < nodes.size(); ++place) {
        g_sequence_set(nodes[place], before[static_cast<size_t>(order[place])]);
    }
    std::vector<GSequenceIter*> kept = std::move(nodes);
    Forget();
    nodes = std::move(kept);
    if (shown) {
        GtkTreePath* path = gtk_tree_path_new();
        gtk_tree_model_rows_reordered(face, path, nullptr, const_cast<gint*>(order.data()));
        gtk_tree_path_free(path);
    }
}

bool ListRows::GetIter(int32_t row, GtkTreeIter& iter) {
    GSequenceIter* node = Find(row);
    if (node == nullptr) {
        iter.stamp = 0;
        return false;
    }
    ListRowsModel::SetIter(*this, iter, node);
    return true;
}

} // namespace quilt
