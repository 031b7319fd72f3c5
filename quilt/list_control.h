#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quilt {

// The platform side of every control that holds rows of text. Rows count from 0; an operation
// on a control without a native window does nothing and answers false, 0 or -1.
class ListControlImp : public virtual WindowImp {
public:
    virtual void Clear() = 0;
    virtual int32_t GetCount() = 0;
    // `row` gets where the row went, which a sorted control decides; it may be null.
    virtual bool AddItem(const loam::String& text, int32_t* row, uint32_t data) = 0;
    virtual bool InsertAfter(int32_t after, const loam::String& text, int32_t* row,
                             uint32_t data) = 0;
    virtual bool InsertBefore(int32_t before, const loam::String& text, int32_t* row,
                              uint32_t data) = 0;
    virtual bool RemoveItem(int32_t row) = 0;
    virtual bool SetItemText(int32_t row, const loam::String& text, int32_t column) = 0;
    virtual bool SetItemData(int32_t row, uint32_t data) = 0;
    virtual bool GetItemText(int32_t row, loam::String& text, int32_t column) = 0;
    virtual bool GetItemData(int32_t row, uint32_t& data) = 0;
    virtual bool SelectItem(int32_t row) = 0;
    virtual bool GetSelection(int32_t& row) = 0;
    // The first row whose column-0 text is exactly `text`, or -1.
    virtual int32_t FindItem(const loam::String& text) = 0;
    virtual void EnableSorting() = 0;
    virtual void DisableSorting() = 0;
    virtual void SetItemHeight(int32_t height) = 0;
    virtual void MeasureItems() = 0;
};

class ListControl;

// Compares two rows, by their indexes at the time of the call, in one column: negative, 0 or
// positive. `data` is the word given with the function.
using ListSorter = int32_t (*)(ListControl* list, uintptr_t data, int32_t rowA, int32_t rowB,
                               int32_t column);

enum SortDirection : int32_t {
    SortAscending = 0,
    SortDescending = 1,
};

// A control of rows, each with a data word beside its text. How a column sorts is kept here,
// on the portable side, and survives a rebinding.
class ListControl : public Window {
public:
    explicit ListControl(std::unique_ptr<WindowImp> imp);

    virtual void Clear() { listImp->Clear(); }
    virtual int32_t GetCount() { return listImp->GetCount(); }
    // Loads each string, up to the id 0 that ends the array; stops at the first failure.
    virtual bool AddItems(const loam::ResourceId* items);
    virtual bool AddItem(const loam::String& text, int32_t* row = nullptr, uint32_t data = 0) {
        return listImp->AddItem(text, row, data);
    }
    virtual bool InsertAfter(int32_t after, const loam::String& text, int32_t* row = nullptr,
                             uint32_t data = 0) {
        return listImp->InsertAfter(after, text, row, data);
    }
    virtual bool InsertBefore(int32_t before, const loam::String& text, int32_t* row = nullptr,
                              uint32_t data = 0) {
        return listImp->InsertBefore(before, text, row, data);
    }
    virtual bool RemoveItem(int32_t row) { return listImp->RemoveItem(row); }
    virtual bool SetItemText(int32_t row, const loam::String& text, int32_t column = 0) {
        return listImp->SetItemText(row, text, column);
    }
    virtual bool GetItemText(int32_t row, loam::String& text, int32_t column = 0);
    virtual bool SetItemData(int32_t row, uint32_t data) { return listImp->SetItemData(row, data); }
    virtual bool GetItemData(int32_t row, uint32_t& data);
    virtual bool SelectItem(int32_t row) { return listImp->SelectItem(row); }
    virtual bool SelectItemByText(const loam::String& text);
    virtual bool SelectItemByResource(const loam::ResourceId& text);
    virtual bool GetSelection(int32_t& row) { return listImp->GetSelection(row); }
    virtual bool IsResourceSelected(const loam::ResourceId& text);
    // The selected row's column-0 text is not empty and equals `text` exactly.
    virtual bool IsTextSelected(const loam::String& text);
    virtual bool IsItemSelected(int32_t row);
    virtual bool IsResourceNotSelected(const loam::ResourceId& text) {
        return !IsResourceSelected(text);
    }
    virtual bool IsTextNotSelected(const loam::String& text) { return !IsTextSelected(text); }
    virtual bool IsItemNotSelected(int32_t row) { return !IsItemSelected(row); }
    virtual void EnableSorting() { listImp->EnableSorting(); }
    virtual void DisableSorting() { listImp->DisableSorting(); }
    virtual void SetSortDirection(int32_t direction) { sortDirection = direction; }
    virtual int32_t GetSortDirection() { return sortDirection; }
    // Column -1 sets the function of every column without one of its own.
    virtual void SetColumnSorter(ListSorter sorter, uintptr_t data, int32_t column);
    // The column's own function, else the default one, else the built-in text comparison.
    virtual ListSorter GetColumnSorter(int32_t column);
    virtual uintptr_t GetColumnSorterData(int32_t column);
    virtual int32_t CompareItems(int32_t rowA, int32_t rowB, int32_t column);

    // A sort compares each row many times while the rows stand still, so between these two
    // calls every row's data word, and its text in `column` when the column sorts by text, is
    // read from one copy taken at the start. A row that can't be read leaves the copy untaken.
    void BeginSortSnapshot(int32_t column);
    void EndSortSnapshot() { snapshot.reset(); }

    void SetItemHeight(int32_t height) { listImp->SetItemHeight(height); }
    void MeasureItems() { listImp->MeasureItems(); }

    // Compares the two rows' texts of the column byte by byte; 0 when either can't be read.
    static int32_t CompareText(ListControl* list, uintptr_t data, int32_t rowA, int32_t rowB,
                               int32_t column);

private:
    struct ColumnSorter {
        ListSorter sorter;
        uintptr_t data;
    };

    struct SortSnapshot {
        int32_t column = -1;
        std::vector<uint32_t> data;
        std::vector<loam::String> texts; // empty when the column sorts by its own function
    };

    // The copy's text of the row in the column, or null when the copy does not hold it.
    const loam::String* GetSnapshotText(int32_t row, int32_t column) const;

    ListControlImp* listImp;
    std::unique_ptr<SortSnapshot> snapshot;
    ListSorter defaultSorter = nullptr;
    uintptr_t defaultSorterData = 0;
    std::vector<ColumnSorter> sorters;
    int32_t sortDirection = SortAscending;
};

} // namespace quilt
