#pragma once

#include "quilt/browse_dialog.h"
#include "quilt/drop_down_list.h"
#include "quilt/gtk/gtk_list_rows.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/list_box.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace quilt {

// Binds a list view: a tree view over the rows of ListRows. Between LockUpdates and
// UnlockUpdates the view lets go of its rows, so that a fill of many rows costs the rows alone.
class Gtk_ListBoxImp : public ListBoxImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    ~Gtk_ListBoxImp() override;

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

    void LockUpdates() override;
    void UnlockUpdates() override;
    bool Attach(GtkWidget* native) override;
    void Unbind() override;

private:
    GtkWidget* GetView() const;
    ListRows* GetRows() const;
    // Null when there is no such row.
    ListRow* GetRow(int32_t row) const;
    GtkTreeViewColumn* GetColumn(int32_t column) const;
    bool Insert(int32_t at, const loam::String& text, int32_t* row, uint32_t data);
    // Selection lives in the view: a view without its rows takes them back first.
    void ShowRows();

    // The view's rows while bound, looked up once: every call reads them.
    ListRows* boundRows = nullptr;
    int32_t lockDepth = 0;
};

// Binds a drop-down list with an edit field: a GtkComboBoxText whose rows keep their data
// words beside them.
class Gtk_DropDownListImp : public DropDownListImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;

    bool SelectItem(int32_t row) override;
    bool GetSelection(int32_t& row) override;
    void EnableSorting() override { sorted = true; }
    void DisableSorting() override { sorted = false; }
    void SetItemHeight(int32_t) override {}
    void MeasureItems() override {}

    bool Attach(GtkWidget* native) override;

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
    GtkComboBox* GetCombo() const;
    GtkListStore* GetStore() const;
    bool GetIter(int32_t row, GtkTreeIter& iter) const;

    std::vector<uint32_t> rowData; // the data word of each row, in row order
    bool sorted = false;
};

// The folder chooser: a GtkFileChooserDialog that chooses folders only, with the caption and the
// status line above and below its tree.
class Gtk_BrowseDialogImp : public BrowseDialogImp {
public:
    // The system's own folder, which the status line never previews.
    static constexpr char SystemRoot[] = "/usr";

    void Init(uint32_t chooserFlags, Window* parentWindow) override;
    bool Run(const loam::String* caption, const loam::String* statusPrefix,
             const loam::FileSpec& startPath, loam::String& chosen) override;

private:
    uint32_t flags = 0;
    Window* parent = nullptr;
};

} // namespace quilt
