#include "quilt/gtk/gtk_list_rows.h"

#include "loam/string.h"

#include <algorithm>

namespace quilt {

namespace {

constexpr char typeName[] = "QuiltListRows";

// A block that grows beyond this many rows is split in two; a reorder fills blocks to half of it.
constexpr size_t blockRows = 512;

// True when `row` goes before `newRow` in sorted order: a new row goes behind every row whose
// first text is equal to its own without regard to case.
bool GoesBefore(const ListRow* row, const ListRow* newRow) {
    return CompareFolded(row->GetText(0), newRow->GetText(0)) <= 0;
}

std::string ToCss(const Colour& colour) {
    char text[8];
    g_snprintf(text, sizeof text, "#%02x%02x%02x", colour.red, colour.green, colour.blue);
    return text;
}

} // namespace

int32_t CompareFolded(const char* left, const char* right) {
    for (;; ++left, ++right) {
        auto foldedLeft = static_cast<unsigned char>(loam::FoldToLower(*left));
        auto foldedRight = static_cast<unsigned char>(loam::FoldToLower(*right));
        if (foldedLeft != foldedRight || foldedLeft == 0) {
            return foldedLeft - foldedRight;
        }
    }
}

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

    // An iterator holds its row and the row's block and place in the block.
    static bool ToSpot(ListRows& rows, const GtkTreeIter* iter, ListRows::Spot& spot) {
        if (iter->stamp != rows.stamp) {
            return false;
        }
        spot = {GPOINTER_TO_SIZE(iter->user_data), GPOINTER_TO_SIZE(iter->user_data2)};
        return true;
    }
    static gboolean Invalid(GtkTreeIter* iter) {
        iter->stamp = 0;
        return FALSE;
    }
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
    ListRows& rows = RowsOf(model);
    ListRows::Spot spot{};
    if (!ToSpot(rows, iter, spot)) {
        return nullptr;
    }
    return gtk_tree_path_new_from_indices(rows.GetPlace(spot), -1);
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
    ListRows::Spot spot{};
    if (!ToSpot(rows, iter, spot)) {
        return Invalid(iter);
    }
    if (++spot.offset == rows.blocks[spot.block].size()) {
        spot = {spot.block + 1, 0};
    }
    if (spot.block == rows.blocks.size()) {
        return Invalid(iter);
    }
    rows.SetIter(*iter, spot);
    return TRUE;
}

gboolean ListRowsModel::Previous(GtkTreeModel* model, GtkTreeIter* iter) {
    ListRows& rows = RowsOf(model);
    ListRows::Spot spot{};
    if (!ToSpot(rows, iter, spot) || (spot.block == 0 && spot.offset == 0)) {
        return Invalid(iter);
    }
    if (spot.offset == 0) {
        spot.block -= 1;
        spot.offset = rows.blocks[spot.block].size();
    }
    spot.offset -= 1;
    rows.SetIter(*iter, spot);
    return TRUE;
}

gboolean ListRowsModel::Children(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent) {
    ListRows& rows = RowsOf(model);
    if (parent != nullptr || rows.count == 0) {
        return Invalid(iter);
    }
    rows.SetIter(*iter, {0, 0});
    return TRUE;
}

gboolean ListRowsModel::NthChild(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent,
                                 gint row) {
    if (parent != nullptr) {
        return Invalid(iter);
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
    return *static_cast<ListRow*>(iter->user_data3);
}

ListRows::ListRows(GtkTreeModel* model, int32_t textColumns)
    : face(model), columnCount(std::max(textColumns, 1)) {}

void ListRows::SetColumnCount(int32_t columns) {
    columnCount = std::max(columns, 1);
    for (const std::unique_ptr<ListRow>& row : owned) {
        row->SetColumnCount(columnCount);
    }
}

// A row's other texts usually follow its first at once: room for them saves growing the buffer
// text by text.
ListRow* ListRows::Adopt(std::string_view text, uint32_t data) {
    constexpr size_t roomForOtherTexts = 96;
    auto row = std::make_unique<ListRow>();
    row->data = data;
    row->cells.reserve(text.size() + roomForOtherTexts);
    row->cells.assign(text);
    row->cells.append(static_cast<size_t>(columnCount), '\0');
    row->slot = owned.size();
    owned.push_back(std::move(row));
    return owned.back().get();
}

void ListRows::Disown(ListRow* row) {
    size_t slot = row->slot;
    owned[slot] = std::move(owned.back());
    owned[slot]->slot = slot;
    owned.pop_back();
}

void ListRows::Forget() {
    startsHold = false;
    ++stamp;
}

bool ListRows::Locate(int32_t row, Spot& spot) {
    if (row < 0 || row >= count) {
        return false;
    }
    GetPlace({0, 0});
    auto block = static_cast<size_t>(std::upper_bound(starts.begin(), starts.end(), row) -
                                     starts.begin() - 1);
    spot = {block, static_cast<size_t>(row - starts[block])};
    return true;
}

int32_t ListRows::GetPlace(const Spot& spot) {
    if (!startsHold) {
        starts.resize(blocks.size());
        int32_t start = 0;
        for (size_t block = 0; block < blocks.size(); ++block) {
            starts[block] = start;
            start += static_cast<int32_t>(blocks[block].size());
        }
        startsHold = true;
    }
    return spot.block < starts.size() ? starts[spot.block] + static_cast<int32_t>(spot.offset) : 0;
}

void ListRows::SetIter(GtkTreeIter& iter, const Spot& spot) const {
    iter.stamp = stamp;
    iter.user_data = GSIZE_TO_POINTER(spot.block);
    iter.user_data2 = GSIZE_TO_POINTER(spot.offset);
    iter.user_data3 = blocks[spot.block][spot.offset];
}

int32_t ListRows::Put(Spot spot, ListRow* row) {
    if (blocks.empty()) {
        blocks.emplace_back();
    }
    std::vector<ListRow*>& block = blocks[spot.block];
    block.insert(block.begin() + static_cast<std::ptrdiff_t>(spot.offset), row);
    if (block.size() > blockRows) {
        size_t half = block.size() / 2;
        std::vector<ListRow*> back(block.begin() + static_cast<std::ptrdiff_t>(half), block.end());
        block.resize(half);
        blocks.insert(blocks.begin() + static_cast<std::ptrdiff_t>(spot.block) + 1,
                      std::move(back));
        if (spot.offset >= half) {
            spot = {spot.block + 1, spot.offset - half};
        }
    }
    ++count;
    Forget();
    int32_t place = GetPlace(spot);
    if (shown) {
        GtkTreeIter iter;
        SetIter(iter, spot);
        GtkTreePath* path = gtk_tree_path_new_from_indices(place, -1);
        gtk_tree_model_row_inserted(face, path, &iter);
        gtk_tree_path_free(path);
    }
    return place;
}

int32_t ListRows::Insert(int32_t place, std::string_view text, uint32_t data) {
    Spot spot{};
    if (!Locate(place, spot)) {
        spot = blocks.empty() ? Spot{0, 0} : Spot{blocks.size() - 1, blocks.back().size()};
    }
    return Put(spot, Adopt(text, data));
}

// The first block whose last row goes behind the new one holds its place.
int32_t ListRows::InsertSorted(std::string_view text, uint32_t data) {
    ListRow* row = Adopt(text, data);
    auto block = std::partition_point(
        blocks.begin(), blocks.end(),
        [row](const std::vector<ListRow*>& rows) { return GoesBefore(rows.back(), row); });
    if (block == blocks.end()) {
        Spot end = blocks.empty() ? Spot{0, 0} : Spot{blocks.size() - 1, blocks.back().size()};
        return Put(end, row);
    }
    auto offset = std::partition_point(block->begin(), block->end(), [row](const ListRow* other) {
        return GoesBefore(other, row);
    });
    return Put(
        {static_cast<size_t>(block - blocks.begin()), static_cast<size_t>(offset - block->begin())},
        row);
}

bool ListRows::Remove(int32_t row) {
    Spot spot{};
    if (!Locate(row, spot)) {
        return false;
    }
    std::vector<ListRow*>& block = blocks[spot.block];
    Disown(block[spot.offset]);
    block.erase(block.begin() + static_cast<std::ptrdiff_t>(spot.offset));
    if (block.empty()) {
        blocks.erase(blocks.begin() + static_cast<std::ptrdiff_t>(spot.block));
    }
    --count;
    Forget();
    if (shown) {
        GtkTreePath* path = gtk_tree_path_new_from_indices(row, -1);
        gtk_tree_model_row_deleted(face, path);
        gtk_tree_path_free(path);
    }
    return true;
}

// A view that shows the rows hears of them going from the last, so that each path it is told is
// the last row's.
void ListRows::Clear() {
    if (shown) {
        while (count > 0) {
            Remove(count - 1);
        }
        return;
    }
    blocks.clear();
    owned.clear();
    count = 0;
    Forget();
}

ListRow* ListRows::Get(int32_t row) {
    Spot spot{};
    return Locate(row, spot) ? blocks[spot.block][spot.offset] : nullptr;
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

// The rows go back into blocks half full, so that the next rows go in without a split.
void ListRows::Reorder(const std::vector<int32_t>& order) {
    if (order.size() != static_cast<size_t>(count)) {
        return;
    }
    std::vector<ListRow*> before;
    before.reserve(order.size());
    for (const std::vector<ListRow*>& block : blocks) {
        before.insert(before.end(), block.begin(), block.end());
    }
    blocks.clear();
    for (size_t place = 0; place < order.size(); ++place) {
        if (place % (blockRows / 2) == 0) {
            blocks.emplace_back();
        }
        blocks.back().push_back(before[static_cast<size_t>(order[place])]);
    }
    Forget();
    if (shown) {
        GtkTreePath* path = gtk_tree_path_new();
        gtk_tree_model_rows_reordered(face, path, nullptr, const_cast<gint*>(order.data()));
        gtk_tree_path_free(path);
    }
}

bool ListRows::GetIter(int32_t row, GtkTreeIter& iter) {
    Spot spot{};
    if (!Locate(row, spot)) {
        iter.stamp = 0;
        return false;
    }
    SetIter(iter, spot);
    return true;
}

} // namespace quilt
