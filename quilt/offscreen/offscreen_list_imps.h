#pragma once

#include "quilt/drop_down_list.h"
#include "quilt/list_box.h"
#include "quilt/offscreen/offscreen_list_controls.h"
#include "quilt/offscreen/offscreen_window_imp.h"

#include <cstdint>
#include <functional>

namespace quilt {

// Binds a list view. A report view gets a placeholder column at once, so that a list whose
// columns were never set up shows it; the placeholder counts as the first column.
class Offscreen_ListBoxImp : public ListBoxImp, public Offscreen_WindowImp {
public:
    static constexpr int32_t PlaceholderWidth = 10000;
    static constexpr int32_t NewColumnWidth = 75;

    using Offscreen_WindowImp::Create;

    void Clear() override;
    int32_t GetCount() override;
    bool AddItem(const loam::String& text, int32_t* row, uint32_t data) override;
    bool InsertAfter(int32_t after, const loam::String& text, int32_t* row, uint32_t data) override;
    bool InsertBefore(int32_t before, const loam::String& text, int32_t* row,
                      uint32_t data) override;
    bool RemoveItem(int32_t row) override;
    bool SetItemText(int32_t row, const loam::String& text, int32_t column) override;
    bool SetItemData(int32_t row, uint32_t data) override;
    bool GetItemText(int32_t row, loam::String& text, int32_t column) override;
    bool GetItemData(int32_t row, uint32_t& data) override;
    bool SelectItem(int32_t row) override;
    bool GetSelection(int32_t& row) override;
    int32_t FindItem(const loam::String& text) override;
    void DisableSorting() override;
    void SetItemHeight(int32_t) override {}
    void MeasureItems() override {}

    void ReorderRows(const std::vector<int32_t>& order) override;
    void ShowSortColumn(int32_t column, SortDirection direction) override;
    void SetNumberOfColumns(int32_t count) override;
    int32_t GetNumberOfColumns() override;
    void ShowColumnHeaders(bool show) override;
    void SetColumnName(int32_t column, const loam::String& name) override;
    void SetColumnWidth(int32_t column, int32_t width) override;
    int32_t GetColumnWidth(int32_t column) override;
    void FitColumn(int32_t column) override;
    void FitColumnsEqually() override;
    int32_t GetSelectionCount() override;
    bool GetSelectionList(int32_t*& rows, int32_t& count) override;
    void FreeSelectionList(int32_t* rows) override { delete[] rows; }
    void SetItemColour(int32_t row, const Colour& colour) override;
    void ClearItemColour(int32_t row) override;
    void EnableCheckBoxes(bool enable) override;
    void SetItemChecked(int32_t row, bool checked) override;
    bool IsItemChecked(int32_t row) override;

    bool Attach(OffscreenWindow* window) override;
    void Unbind() override;
    void OnNativeWindowGone() override;

private:
    // A sort reads rows by the hundred thousand: the bound view is kept at hand.
    OffscreenListView* GetView() const { return boundView; }
    OffscreenListRow* GetRow(int32_t row) const;
    bool Insert(int32_t at, const loam::String& text, int32_t* row, uint32_t data);

    OffscreenListView* boundView = nullptr;
    bool hasColours = false;
};

// Binds a combo box; one with an edit field hands the field to the portable side.
class Offscreen_DropDownListImp : public DropDownListImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;

    bool SelectItem(int32_t row) override;
    bool GetSelection(int32_t& row) override;
    void EnableSorting() override;
    void DisableSorting() override;
    void SetItemHeight(int32_t) override {}
    void MeasureItems() override {}

    bool Attach(OffscreenWindow* window) override;

protected:
    void NativeClear() override;
    int32_t NativeGetCount() override;
    int32_t NativeInsert(int32_t at, const loam::String& text, uint32_t data) override;
    bool NativeRemove(int32_t row) override;
    bool NativeSetItemText(int32_t row, const loam::String& text) override;
    bool NativeSetItemData(int32_t row, uint32_t data) override;
    bool NativeGetItemText(int32_t row, loam::String& text) override;
    bool NativeGetItemData(int32_t row, uint32_t& data) override;

private:
    OffscreenComboBox* GetCombo() const;
    // The row, or null when there is no such row or no native list.
    OffscreenComboBox::Row* GetRow(int32_t row) const;
};

} // namespace quilt
