#pragma once

#include "loam/string.h"
#include "quilt/colour.h"
#include "quilt/list_control.h"
#include "quilt/offscreen/offscreen_controls.h"
#include "quilt/offscreen/offscreen_desktop.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quilt {

struct OffscreenListRow {
    std::vector<loam::String> cells; // column 0 first; a missing cell is empty
    uint32_t data = 0;
    std::optional<Colour> colour;
    bool selected = false;
    bool checked = false;

    const loam::String& GetCell(int32_t column) const;
};

// The rows of a list view in display order, in blocks, so that a row inserted among tens of
// thousands moves no more than its block.
class OffscreenRowList {
public:
    int32_t GetCount() const { return count; }
    OffscreenListRow& At(int32_t index) const;
    // The first index whose row's column-0 text is above `text`, without regard to case.
    int32_t FindSortedPlace(const loam::String& text) const;
    void Insert(int32_t index, std::unique_ptr<OffscreenListRow> row);
    void Erase(int32_t index);
    void Clear();
    // Row `order[i]` becomes row i.
    void Reorder(const std::vector<int32_t>& order);
    // Makes access by index direct until the next insertion or removal.
    void Index() const;

private:
    static constexpr size_t BlockSize = 256;
    using Block = std::vector<std::unique_ptr<OffscreenListRow>>;

    // The block and the place in it of an index; an index at the count is the end of the last.
    std::pair<size_t, size_t> Locate(int32_t index) const;

    std::vector<Block> blocks;
    int32_t count = 0;
    mutable std::vector<OffscreenListRow*> flat;
    mutable bool flatValid = false;
};

struct OffscreenListColumn {
    loam::String name;
    int32_t width = 0;
};

// A list view of rows in columns under a header. The rows are kept in display order; a view
// sorted by its style places each new row in ascending order of its column-0 text, without
// regard to case. The first visible row is its vertical scroll position.
struct OffscreenListView : OffscreenWindow {
    static constexpr int32_t HeaderHeight = 20;
    static constexpr int32_t RowHeight = 16;
    // Of the dialog font, for fitting a column to its texts.
    static constexpr int32_t CharacterWidth = 6;
    static constexpr int32_t CellMargin = 12;
    // The check box stands at the left end of a row, before its first text.
    static constexpr int32_t CheckBoxWidth = 16;

    using OffscreenWindow::OffscreenWindow;

    void DefaultHandling(const OffscreenMessage& message) override;
    int32_t GetNativeDialogCode(KeyEventKind, int32_t) const override {
        return DialogCodeWantArrows;
    }

    int32_t GetCount() const { return rows.GetCount(); }
    bool IsRow(int32_t row) const { return row >= 0 && row < GetCount(); }
    OffscreenListRow& GetRow(int32_t row) const { return rows.At(row); }
    bool ShowsHeader() const;
    // Where the sort puts it in a sorted view, else at `at`, or at the end for -1; the row it
    // went to.
    int32_t Insert(int32_t at, const loam::String& text, uint32_t data);
    bool Remove(int32_t row);
    void Clear();
    // Single selection: -1 clears it. The parent hears of a change.
    void Select(int32_t row);
    int32_t GetSelected() const;
    // The parent hears of a change.
    void SetChecked(int32_t row, bool checked);
    // Place i gets the row that stood at `order[i]`; an order of another length is ignored.
    void Reorder(const std::vector<int32_t>& order);
    void ShowSortColumn(int32_t column, SortDirection direction);
    // The row or column under a point of the client area, -1 for none.
    int32_t GetRowAt(const Point& point) const;
    int32_t GetColumnAt(const Point& point) const;
    // Where a click on the row or on the column's heading goes, scrolling the row into view.
    Point GetRowPoint(int32_t row);
    // Where a click on the row's check box goes.
    Point GetCheckBoxPoint(int32_t row);
    Point GetHeaderPoint(int32_t column) const;
    int32_t GetContentWidth(int32_t column) const;

    OffscreenRowList rows;
    std::vector<OffscreenListColumn> columns;
    bool headerHidden = false;
    bool checkBoxes = false;
    // The heading that shows the sort of the rows, -1 for none, and in which direction.
    int32_t sortColumn = -1;
    SortDirection sortDirection = SortAscending;
};

// A drop-down list with an edit field, which is its child 1001 and holds its text. The field
// takes the focus and the keys; a press on the arrow at the right opens and closes the list.
struct OffscreenComboBox : OffscreenWindow {
    static constexpr int32_t EditId = 1001;
    static constexpr int32_t FieldHeight = 20;
    static constexpr int32_t ArrowWidth = 16;
    static constexpr int32_t RowHeight = 16;

    struct Row {
        loam::String text;
        uint32_t data = 0;
    };

    using OffscreenWindow::OffscreenWindow;

    void DefaultHandling(const OffscreenMessage& message) override;
    void SetNativeText(const loam::String& newText) override;

    // Made when first asked for.
    OffscreenEdit* GetEdit();
    int32_t GetCount() const { return static_cast<int32_t>(rows.size()); }
    bool IsRow(int32_t row) const { return row >= 0 && row < GetCount(); }
    // At `at`, or in ascending order for -1 in a sorted list, at the end otherwise.
    int32_t Insert(int32_t at, const loam::String& text, uint32_t data);
    Point GetArrowPoint() const;
    Point GetListRowPoint(int32_t row) const;

    // A press on a row of the open list chooses it; on the arrow, opens or closes the list;
    // in the field, puts the caret at the end of the text.
    void OnMouseDown(const OffscreenMessage& message);

    std::vector<Row> rows;
    int32_t selected = -1;
    bool dropped = false;
    bool sorted = false;

private:
    void ChooseRow(int32_t row);
    void Open();
    void Close();
};

} // namespace quilt
