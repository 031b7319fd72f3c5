#pragma once

#include "index/index_data.h"
#include "loam/file_spec.h"
#include "quilt/file_transfer.h"
#include "quilt/list_box.h"
#include "quilt/popup_menu.h"

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

// The commands of a row's context menu, which go to the list's parent.
enum ResultCommand : int32_t {
    ResultOpen = 1101,
    ResultOpenFolder = 1102,
    ResultCopyPath = 1103,
    ResultCopyName = 1104,
};

// The four-column list of the main window: one row per result of the last search, a full copy
// of its texts, with the result's ordinal as the row's data word. A fill always comes up in
// name order; a header click sorts, and the sort's state outlives the fill.
//
// The selected row is also a file of the desktop: Return on it does what a double click does,
// Ctrl+C sends ResultCopyPath to the parent, its context menu offers the ResultCommands, and it
// can be dragged out to another program. Paths stay bytes throughout.
class SearchResultsList : public quilt::ListBox, public quilt::FileDragSource {
public:
    ~SearchResultsList() override = default;

    // Sets up the columns, and the drag of a row.
    bool BindToControl(quilt::Window* parent, int32_t id) override;
    // Rebuilds every row from the index's result table. The rows refer to `data` from now on.
    void Fill(IndexData& data);
    // The real folder on the disk of the selected row, names too long for the index restored;
    // false when none is selected.
    bool GetSelectedFolder(loam::FileSpec& folder);
    // The real full path, or the real name, of the selected row's entry, as the folder is;
    // false when none is selected.
    bool GetSelectedEntry(loam::FileSpec& entry);
    bool GetSelectedName(loam::String& name);
    // The context menu of the selected row, with Open Containing Folder greyed for a root,
    // which has no folder; false when no row is selected.
    bool PrepareMenu(quilt::PopupMenu& menu);

    bool OnWantKey(int32_t key) override;
    bool OnKeyDown(int32_t key, uint32_t modifiers) override;
    bool GetDragFile(loam::String& path) override;

private:
    bool GetSelectedOrdinal(int32_t& ordinal);

    IndexData* index = nullptr;
    quilt::FileDrag drag;
};
