#pragma once

#include "loam/string.h"
#include "quilt/colour.h"
#include "quilt/list_control.h"

#include <cstdint>
#include <vector>

namespace quilt {

// The platform side of a list box: a plain list of rows, or a list of rows in columns under a
// header, which the native control that it is bound to decides. The backend reports
// SelectionChanged, ItemActivated and ItemCheckChanged (detail: the row), ContextMenu and
// ColumnClicked (detail: the column); this class turns them into MsgSelectionChange,
// MsgItemActivate, MsgItemCheckChange and MsgContextMenu, and sorts on a column click through the
// owner's CompareItems: the same column again flips the direction, another column starts
// ascending. The heading of the column sorted by shows the direction of the sort.
class ListBoxImp : public ListControlImp {
public:
    // Stops placing new rows by the native sorted style and sorts the rows by the last column
    // clicked, in the owner's direction.
    void EnableSorting() override;
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;

    // Puts the native rows in a new order at once: place i gets the row that stood at
    // `order[i]`. A view that shows them follows each row to its new place, with its selection.
    virtual void ReorderRows(const std::vector<int32_t>& order) = 0;
    // The heading of `column` shows that the rows are sorted by it in `direction`, and no other
    // heading shows a sort; until the rows go, as nothing then stands in that order.
    virtual void ShowSortColumn(int32_t column, SortDirection direction) = 0;
    // At least 1; missing columns come behind the last, surplus ones go from the end.
    virtual void SetNumberOfColumns(int32_t count) = 0;
    virtual int32_t GetNumberOfColumns() = 0;
    virtual void ShowColumnHeaders(bool show) = 0;
    virtual void SetColumnName(int32_t column, const loam::String& name) = 0;
    virtual void SetColumnWidth(int32_t column, int32_t width) = 0;
    virtual int32_t GetColumnWidth(int32_t column) = 0;
    // Fits the column to its contents; any column but the last to its heading too.
    virtual void FitColumn(int32_t column) = 0;
    virtual void FitColumnsEqually() = 0;
    virtual int32_t GetSelectionCount() = 0;
    // The selected rows, allocated; freed with FreeSelectionList.
    virtual bool GetSelectionList(int32_t*& rows, int32_t& count) = 0;
    virtual void FreeSelectionList(int32_t* rows) = 0;
    virtual void SetItemColour(int32_t row, const Colour& colour) = 0;
    virtual void ClearItemColour(int32_t row) = 0;
    virtual void EnableCheckBoxes(bool enable) = 0;
    virtual void SetItemChecked(int32_t row, bool checked) = 0;
    virtual bool IsItemChecked(int32_t row) = 0;

private:
    struct Route {
        ControlEvent event;
        NotificationAnswer (ListBoxImp::*handler)(const NativeNotification&,
                                                  NotificationTranslation&);
    };
    static const Route routes[];

    NotificationAnswer OnSelectionChanged(const NativeNotification&, NotificationTranslation& out);
    NotificationAnswer OnItemActivated(const NativeNotification& notification,
                                       NotificationTranslation& out);
    NotificationAnswer OnItemCheckChanged(const NativeNotification& notification,
                                          NotificationTranslation& out);
    NotificationAnswer OnColumnClicked(const NativeNotification& notification,
                                       NotificationTranslation&);
    NotificationAnswer OnContextMenu(const NativeNotification& notification,
                                     NotificationTranslation& out);
    void SortByColumn();

    int32_t sortColumn = 0;
};

// A list box adopted from a dialog, plain or in columns. Rows added to a list sorted by its
// template stand in ascending order of their column-0 text, without regard to case; a sort by
// a header click is remembered by the control, and rows added later are not placed by it.
class ListBox : public ListControl {
public:
    ListBox();

    virtual int32_t GetSelectionCount() { return boxImp->GetSelectionCount(); }
    virtual bool GetSelectionList(int32_t*& rows, int32_t& count) {
        return boxImp->GetSelectionList(rows, count);
    }
    virtual void FreeSelectionList(int32_t* rows) { boxImp->FreeSelectionList(rows); }

    void SetNumberOfColumns(int32_t count) { boxImp->SetNumberOfColumns(count); }
    int32_t GetNumberOfColumns() { return boxImp->GetNumberOfColumns(); }
    void ShowColumnHeaders(bool show) { boxImp->ShowColumnHeaders(show); }
    void SetColumnName(int32_t column, const loam::String& name) {
        boxImp->SetColumnName(column, name);
    }
    void SetColumnWidth(int32_t column, int32_t width) { boxImp->SetColumnWidth(column, width); }
    int32_t GetColumnWidth(int32_t column) { return boxImp->GetColumnWidth(column); }
    void FitColumn(int32_t column) { boxImp->FitColumn(column); }
    void FitColumnsEqually() { boxImp->FitColumnsEqually(); }
    void SetItemColour(int32_t row, const Colour& colour) { boxImp->SetItemColour(row, colour); }
    void ClearItemColour(int32_t row) { boxImp->ClearItemColour(row); }
    void EnableCheckBoxes(bool enable) { boxImp->EnableCheckBoxes(enable); }
    void SetItemChecked(int32_t row, bool checked) { boxImp->SetItemChecked(row, checked); }
    bool IsItemChecked(int32_t row) { return boxImp->IsItemChecked(row); }
    void CheckAll();
    void UncheckAll();

private:
    ListBoxImp* boxImp;
};

} // namespace quilt
