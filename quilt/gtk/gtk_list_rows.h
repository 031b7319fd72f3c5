#pragma once

#include "quilt/colour.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quilt {

// The columns that a list view's rows show to GTK: the row's data word, its text colour
// ("#rrggbb" or none), its check mark, then one text per column. Texts are the toolkit's bytes;
// a cell shows them through ToDisplayText as it is drawn.
enum ListRowColumn : int32_t {
    ListRowData,
    ListRowColour,
    ListRowChecked,
    ListRowFirstText,
};

// The order of a sorted list: bytes compared with ASCII letters folded to lower case.
int32_t CompareFolded(const char* left, const char* right);

// One row of a list view. Its texts sit in one buffer, each ended by a NUL, so that a row of
// several columns costs one allocation.
struct ListRow {
    uint32_t data = 0;
    bool checked = false;
    bool hasColour = false;
    Colour colour;
    std::string cells;

    // An empty text for a column that the row does not have.
    const char* GetText(int32_t column) const;
    // A text for a column that the row does not have yet gives it the columns up to that one.
    void SetText(int32_t column, std::string_view text);
    // Texts of surplus columns go; missing ones come empty.
    void SetColumnCount(int32_t count);

private:
    friend class ListRows;
    size_t slot = 0; // where ListRows keeps the row
};

// The rows of a list view in their order, which a GtkTreeModel shows to the view. The rows live
// here rather than in a list store, so that a fill copies each text once and a cell is read
// without a GValue. While a view shows the model it hears of every change; rows that no view
// shows change without a word, and the view that takes them reads them whole.
class ListRows {
public:
    // A new model of `textColumns` texts per row; the caller owns the one reference.
    static GtkTreeModel* NewModel(int32_t textColumns);
    // The rows behind a model made by NewModel, or null for any other model.
    static ListRows* Of(GtkTreeModel* model);
    // The row that an iterator of such a model stands for.
    static ListRow& At(const GtkTreeIter* iter);

    ListRows(const ListRows&) = delete;
    ListRows& operator=(const ListRows&) = delete;

    void SetShown(bool isShown) { shown = isShown; }

    int32_t GetCount() const { return count; }
    int32_t GetColumnCount() const { return columnCount; }
    // Only while no view shows the model: a view takes a model's columns as fixed.
    void SetColumnCount(int32_t columns);

    // Puts a row of the first text `text` at `place`, or behind the last row when `place` is out
    // of range; gives where it went.
    int32_t Insert(int32_t place, std::string_view text, uint32_t data);
    // Puts a row where the first texts stay in ascending order without regard to case, behind
    // every text equal to its own; gives where it went.
    int32_t InsertSorted(std::string_view text, uint32_t data);
    bool Remove(int32_t row);
    void Clear();
    // Null when there is no such row.
    ListRow* Get(int32_t row);
    // Every row in no particular order, which is quicker to walk than the rows in their order.
    const std::vector<std::unique_ptr<ListRow>>& GetRowsInAnyOrder() const { return owned; }
    // A row was changed through Get.
    void Changed(int32_t row);
    // `order` names, for each new place, the row that was there before.
    void Reorder(const std::vector<int32_t>& order);

    bool GetIter(int32_t row, GtkTreeIter& iter);

private:
    friend struct ListRowsModel;
    ListRows(GtkTreeModel* face, int32_t textColumns);

    struct Spot {
        size_t block;
        size_t offset;
    };

    ListRow* Adopt(std::string_view text, uint32_t data);
    void Disown(ListRow* row);
    // False when there is no such row.
    bool Locate(int32_t row, Spot& spot);
    int32_t GetPlace(const Spot& spot);
    // Puts `row` at `spot` and gives its place.
    int32_t Put(Spot spot, ListRow* row);
    void SetIter(GtkTreeIter& iter, const Spot& spot) const;
    // Rows were added, removed or moved: iterators and block starts no longer hold.
    void Forget();

    GtkTreeModel* face;
    // The rows in their order, in blocks of at most a few hundred: a row goes in or out by moving
    // the rest of its block, and a place is found through the blocks' first places.
    std::vector<std::vector<ListRow*>> blocks;
    std::vector<int32_t> starts; // each block's first place, while it holds
    bool startsHold = false;
    // The rows in the order they came, which is close to the order they lie in memory.
    std::vector<std::unique_ptr<ListRow>> owned;
    int32_t count = 0;
    int32_t columnCount;
    bool shown = false;
    gint stamp = 1;
};

} // namespace quilt
