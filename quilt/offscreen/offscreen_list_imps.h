#pragma once

#include "quilt/drop_down_list.h"
#include "quilt/edit_box.h"
#include "quilt/list_box.h"
#include "quilt/offscreen/offscreen_list_controls.h"
#include "quilt/offscreen/offscreen_window_imp.h"

#include <cstdint>

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
    void EnableSorting() override;
    void DisableSorting() override;
    void SetItemHeight(int32_t) override {}
    void MeasureItems() override {}

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
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;

private:
    // A sort reads rows by the hundred thousand: the bound view is kept at hand.
    OffscreenListView* GetView() const { return boundView; }
    OffscreenListRow* GetRow(int32_t row) const;
    bool Insert(int32_t at, const loam::String& text, int32_t* row, uint32_t data);
    NotificationAnswer OnSelectionChange(const NativeNotification&, NotificationTranslation& out);
    NotificationAnswer OnActivate(const NativeNotification& notification,
                                  NotificationTranslation& out);
    NotificationAnswer OnColumnClick(const NativeNotification& notification,
                                     NotificationTranslation& out);
    void SortByColumn();

    struct Route {
        int32_t code;
        NotificationAnswer (Offscreen_ListBoxImp::*handler)(const NativeNotification&,
                                                            NotificationTranslation&);
    };
    static const Route routes[];

    OffscreenListView* boundView = nullptr;
    int32_t sortColumn = 0;
    bool hasColours = false;
};

// Binds a combo box; one with an edit field binds the field too, whose Return can go to the
// parent under the list's own id. The last known text of the field is kept, and the native
// field is read again only after the user changed it.
class Offscreen_DropDownListImp : public DropDownListImp, public Offscreen_WindowImp {
public:
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
    void EnableSorting() override;
    void DisableSorting() override;
    void SetItemHeight(int32_t) override {}
    void MeasureItems() override {}

    void ClearEditSelection() override;
    void SetEditSelection(int32_t start, int32_t end) override;
    void SetHistoryMode(bool on) override;
    void AddToHistory(const loam::String& text) override;
    void SetHistoryLimit(int32_t limit) override { history.SetLimit(limit); }
    void SetEnterNotifies(bool notifies) override;

    bool SetText(const loam::String& newText) override;
    bool GetText(loam::String& out) override;
    void BeginResize() override { edit.BeginResize(); }
    void EndResize() override { edit.EndResize(); }
    bool Attach(OffscreenWindow* window) override;
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;

private:
    OffscreenComboBox* GetCombo() const;
    bool InsertNative(int32_t at, const loam::String& newText, int32_t* row, uint32_t data);
    bool InsertHistory(int32_t at, const loam::String& newText, int32_t* row, uint32_t data);
    // The native list anew from the history, whose newest entry becomes the text.
    void Rebuild();
    NotificationAnswer OnSelectionChange(const NativeNotification&, NotificationTranslation& out);
    NotificationAnswer OnEditChange(const NativeNotification& notification,
                                    NotificationTranslation& out);
    NotificationAnswer OnDropDown(const NativeNotification&, NotificationTranslation&);
    NotificationAnswer OnCloseUp(const NativeNotification&, NotificationTranslation&);
    NotificationAnswer OnSelectionEndOk(const NativeNotification&, NotificationTranslation& out);

    struct Route {
        int32_t code;
        NotificationAnswer (Offscreen_DropDownListImp::*handler)(const NativeNotification&,
                                                                 NotificationTranslation&);
    };
    static const Route routes[];

    bool historyMode = false;
    bool hasEdit = false;
    EditBox edit;
    DropDownHistory history;
    loam::String text;
    bool textValid = false;
};

} // namespace quilt
