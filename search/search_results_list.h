#pragma once

#include "index/index_data.h"
#include "loam/file_spec.h"
#include "quilt/list_box.h"

#include <cstdint>

// The columns of the results list.
enum ResultColumn : int32_t {
    ResultColumnName = 0,
    ResultColumnFolder = 1,
    ResultColumnSize = 2,
    ResultColumnDate = 3,
};

// Compare two rows by the size, or the date, of the results that their data words name in the
// IndexData that `data` points to: -1, 0 or 1. Sizes compare as unsigned 32-bit values, a folder
// as 0. A row that can't be read, or no index, compares as equal.
int32_t CompareResultSizes(quilt::ListControl* list, uintptr_t data, int32_t rowA, int32_t rowB,
                           int32_t column);
int32_t CompareResultDates(quilt::ListControl* list, uintptr_t data, int32_t rowA, int32_t rowB,
                           int32_t column);

// The four-column list of the main window: one row per result of the last search, a full copy
// of its texts, with the result's ordinal as the row's data word. A fill always comes up in
// name order; a header click sorts, and the sort's state outlives the fill.
class SearchResultsList : public quilt::ListBox {
public:
    ~SearchResultsList() override = default;

    // Sets up the columns.
    bool BindToControl(quilt::Window* parent, int32_t id) override;
    // Rebuilds every row from the index's result table. The rows refer to `data` from now on.
    void Fill(IndexData& data);
    // The real folder on the disk of the selected row, names too long for the index restored;
    // false when none is selected.
    bool GetSelectedFolder(loam::FileSpec& folder);

private:
    IndexData* index = nullptr;
};
