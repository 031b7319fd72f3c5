#include "quilt/offscreen/offscreen_list_imps.h"

#include "quilt/dialog_template.h"

namespace quilt {

namespace {

constexpr char placeholderName[] = "Call SetNumberOfColumns() and SetColumnName()! :-)";

void GiveRow(int32_t* out, int32_t row) {
    if (out != nullptr) {
        *out = row;
    }
}

} // namespace

OffscreenListRow* Offscreen_ListBoxImp::GetRow(int32_t row) const {
    OffscreenListView* view = GetView();
    return view != nullptr && view->IsRow(row) ? &view->GetRow(row) : nullptr;
}

void Offscreen_ListBoxImp::Clear() {
    if (OffscreenListView* view = GetView()) {
        view->Clear();
    }
}

int32_t Offscreen_ListBoxImp::GetCount() {
    OffscreenListView* view = GetView();
    return view != nullptr ? view->GetCount() : 0;
}

bool Offscreen_ListBoxImp::Insert(int32_t at, const loam::String& text, int32_t* row,
                                  uint32_t data) {
    OffscreenListView* view = GetView();
    if (view == nullptr) {
        return false;
    }
    GiveRow(row, view->Insert(at, text, data));
    return true;
}

bool Offscreen_ListBoxImp::AddItem(const loam::String& text, int32_t* row, uint32_t data) {
    return Insert(-1, text, row, data);
}

bool Offscreen_ListBoxImp::InsertAfter(int32_t after, const loam::String& text, int32_t* row,
                                       uint32_t data) {
    return Insert(after + 1, text, row, data);
}

bool Offscreen_ListBoxImp::InsertBefore(int32_t before, const loam::String& text, int32_t* row,
                                        uint32_t data) {
    return Insert(before, text, row, data);
}

bool Offscreen_ListBoxImp::RemoveItem(int32_t row) {
    OffscreenListView* view = GetView();
    return view != nullptr && view->Remove(row);
}

bool Offscreen_ListBoxImp::SetItemText(int32_t row, const loam::String& text, int32_t column) {
    OffscreenListRow* entry = GetRow(row);
    if (entry == nullptr || column < 0) {
        return false;
    }
    if (entry->cells.size() <= static_cast<size_t>(column)) {
        entry->cells.resize(static_cast<size_t>(column) + 1);
    }
    entry->cells[static_cast<size_t>(column)] = text;
    GetView()->needsPaint = true;
    return true;
}

bool Offscreen_ListBoxImp::SetItemData(int32_t row, uint32_t data) {
    OffscreenListRow* entry = GetRow(row);
    if (entry == nullptr) {
        return false;
    }
    entry->data = data;
    return true;
}

bool Offscreen_ListBoxImp::GetItemText(int32_t row, loam::String& text, int32_t column) {
    OffscreenListRow* entry = GetRow(row);
    if (entry == nullptr) {
        return false;
    }
    text = entry->GetCell(column);
    return true;
}

bool Offscreen_ListBoxImp::GetItemData(int32_t row, uint32_t& data) {
    OffscreenListRow* entry = GetRow(row);
    if (entry == nullptr) {
        return false;
    }
    data = entry->data;
    return true;
}

bool Offscreen_ListBoxImp::SelectItem(int32_t row) {
    OffscreenListView* view = GetView();
    if (view == nullptr || (row != -1 && !view->IsRow(row))) {
        return false;
    }
    view->Select(row);
    return true;
}

bool Offscreen_ListBoxImp::GetSelection(int32_t& row) {
    OffscreenListView* view = GetView();
    int32_t selected = view != nullptr ? view->GetSelected() : -1;
    if (selected < 0) {
        return false;
    }
    row = selected;
    return true;
}

int32_t Offscreen_ListBoxImp::FindItem(const loam::String& text) {
    if (OffscreenListView* view = GetView()) {
        view->rows.Index();
    }
    for (int32_t row = 0; row < GetCount(); ++row) {
        if (GetRow(row)->GetCell(0) == text) {
            return row;
        }
    }
    return -1;
}

void Offscreen_ListBoxImp::DisableSorting() {
    if (OffscreenListView* view = GetView()) {
        view->style &= ~uint32_t{StyleSortAscending};
    }
}

void Offscreen_ListBoxImp::ReorderRows(const std::vector<int32_t>& order) {
    if (OffscreenListView* view = GetView()) {
        view->Reorder(order);
    }
}

void Offscreen_ListBoxImp::ShowSortColumn(int32_t column, SortDirection direction) {
    if (OffscreenListView* view = GetView()) {
        view->ShowSortColumn(column, direction);
    }
}

void Offscreen_ListBoxImp::SetNumberOfColumns(int32_t count) {
    OffscreenListView* view = GetView();
    if (view == nullptr || count < 1) {
        return;
    }
    view->columns.resize(static_cast<size_t>(count), OffscreenListColumn{"", NewColumnWidth});
    view->needsPaint = true;
}

int32_t Offscreen_ListBoxImp::GetNumberOfColumns() {
    OffscreenListView* view = GetView();
    return view != nullptr ? static_cast<int32_t>(view->columns.size()) : 0;
}

void Offscreen_ListBoxImp::ShowColumnHeaders(bool show) {
    OffscreenListView* view = GetView();
    if (view != nullptr && view->headerHidden == show) {
        view->headerHidden = !show;
        view->needsPaint = true;
    }
}

void Offscreen_ListBoxImp::SetColumnName(int32_t column, const loam::String& name) {
    OffscreenListView* view = GetView();
    if (view != nullptr && column >= 0 && static_cast<size_t>(column) < view->columns.size()) {
        view->columns[static_cast<size_t>(column)].name = name;
    }
}

void Offscreen_ListBoxImp::SetColumnWidth(int32_t column, int32_t width) {
    OffscreenListView* view = GetView();
    if (view != nullptr && column >= 0 && static_cast<size_t>(column) < view->columns.size()) {
        view->columns[static_cast<size_t>(column)].width = width;
    }
}

int32_t Offscreen_ListBoxImp::GetColumnWidth(int32_t column) {
    OffscreenListView* view = GetView();
    if (view == nullptr || column < 0 || static_cast<size_t>(column) >= view->columns.size()) {
        return 0;
    }
    return view->columns[static_cast<size_t>(column)].width;
}

// The last column is fitted to its contents alone, as it may stretch to the edge anyway.
void Offscreen_ListBoxImp::FitColumn(int32_t column) {
    OffscreenListView* view = GetView();
    if (view == nullptr || column < 0 || static_cast<size_t>(column) >= view->columns.size()) {
        return;
    }
    int32_t width = view->GetContentWidth(column);
    if (static_cast<size_t>(column) + 1 < view->columns.size()) {
        int32_t heading = view->columns[static_cast<size_t>(column)].name.GetLength() *
                              OffscreenListView::CharacterWidth +
                          OffscreenListView::CellMargin;
        width = std::max(width, heading);
    }
    SetColumnWidth(column, width);
}

void Offscreen_ListBoxImp::FitColumnsEqually() {
    OffscreenListView* view = GetView();
    if (view == nullptr || view->columns.empty()) {
        return;
    }
    auto count = static_cast<int32_t>(view->columns.size());
    int32_t width = (view->rect.GetWidth() - 1) / count - 1;
    for (OffscreenListColumn& column : view->columns) {
        column.width = width;
    }
}

int32_t Offscreen_ListBoxImp::GetSelectionCount() {
    int32_t row = -1;
    return GetSelection(row) ? 1 : 0;
}

bool Offscreen_ListBoxImp::GetSelectionList(int32_t*& rows, int32_t& count) {
    int32_t row = -1;
    count = GetSelection(row) ? 1 : 0;
    rows = new int32_t[1]{row};
    return true;
}

void Offscreen_ListBoxImp::SetItemColour(int32_t row, const Colour& colour) {
    if (OffscreenListRow* entry = GetRow(row)) {
        entry->colour = colour;
        hasColours = true;
    }
}

void Offscreen_ListBoxImp::ClearItemColour(int32_t row) {
    if (OffscreenListRow* entry = GetRow(row)) {
        entry->colour.reset();
    }
}

void Offscreen_ListBoxImp::EnableCheckBoxes(bool enable) {
    if (OffscreenListView* view = GetView()) {
        view->checkBoxes = enable;
    }
}

void Offscreen_ListBoxImp::SetItemChecked(int32_t row, bool checked) {
    if (OffscreenListView* view = GetView()) {
        view->SetChecked(row, checked);
    }
}

bool Offscreen_ListBoxImp::IsItemChecked(int32_t row) {
    OffscreenListRow* entry = GetRow(row);
    return entry != nullptr && entry->checked;
}

bool Offscreen_ListBoxImp::Attach(OffscreenWindow* window) {
    if (dynamic_cast<OffscreenListView*>(window) == nullptr ||
        !Offscreen_WindowImp::Attach(window)) {
        return false;
    }
    boundView = static_cast<OffscreenListView*>(window);
    if ((boundView->style & StyleReportView) != 0 && boundView->columns.empty()) {
        boundView->columns.push_back(OffscreenListColumn{placeholderName, PlaceholderWidth});
    }
    return true;
}

void Offscreen_ListBoxImp::Unbind() {
    boundView = nullptr;
    Offscreen_WindowImp::Unbind();
}

void Offscreen_ListBoxImp::OnNativeWindowGone() {
    boundView = nullptr;
    Offscreen_WindowImp::OnNativeWindowGone();
}

OffscreenComboBox* Offscreen_DropDownListImp::GetCombo() const {
    return dynamic_cast<OffscreenComboBox*>(GetNative());
}

OffscreenComboBox::Row* Offscreen_DropDownListImp::GetRow(int32_t row) const {
    OffscreenComboBox* combo = GetCombo();
    return combo != nullptr && combo->IsRow(row) ? &combo->rows[static_cast<size_t>(row)] : nullptr;
}

void Offscreen_DropDownListImp::NativeClear() {
    if (OffscreenComboBox* combo = GetCombo()) {
        combo->rows.clear();
        combo->selected = -1;
    }
}

int32_t Offscreen_DropDownListImp::NativeGetCount() {
    OffscreenComboBox* combo = GetCombo();
    return combo != nullptr ? combo->GetCount() : 0;
}

int32_t Offscreen_DropDownListImp::NativeInsert(int32_t at, const loam::String& text,
                                                uint32_t data) {
    OffscreenComboBox* combo = GetCombo();
    return combo != nullptr ? combo->Insert(at, text, data) : -1;
}

bool Offscreen_DropDownListImp::NativeRemove(int32_t row) {
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr || !combo->IsRow(row)) {
        return false;
    }
    combo->rows.erase(combo->rows.begin() + row);
    return true;
}

bool Offscreen_DropDownListImp::NativeSetItemText(int32_t row, const loam::String& text) {
    OffscreenComboBox::Row* entry = GetRow(row);
    if (entry == nullptr) {
        return false;
    }
    entry->text = text;
    return true;
}

bool Offscreen_DropDownListImp::NativeSetItemData(int32_t row, uint32_t data) {
    OffscreenComboBox::Row* entry = GetRow(row);
    if (entry == nullptr) {
        return false;
    }
    entry->data = data;
    return true;
}

bool Offscreen_DropDownListImp::NativeGetItemText(int32_t row, loam::String& text) {
    OffscreenComboBox::Row* entry = GetRow(row);
    if (entry == nullptr) {
        return false;
    }
    text = entry->text;
    return true;
}

bool Offscreen_DropDownListImp::NativeGetItemData(int32_t row, uint32_t& data) {
    OffscreenComboBox::Row* entry = GetRow(row);
    if (entry == nullptr) {
        return false;
    }
    data = entry->data;
    return true;
}

// The selection is always the native list's, in history mode too.
bool Offscreen_DropDownListImp::SelectItem(int32_t row) {
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr || (row != -1 && !combo->IsRow(row))) {
        return false;
    }
    combo->selected = row;
    if (row != -1) {
        combo->SetNativeText(combo->rows[static_cast<size_t>(row)].text);
    }
    return true;
}

bool Offscreen_DropDownListImp::GetSelection(int32_t& row) {
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr || combo->selected < 0) {
        return false;
    }
    row = combo->selected;
    return true;
}

void Offscreen_DropDownListImp::EnableSorting() {
    if (OffscreenComboBox* combo = GetCombo()) {
        combo->sorted = true;
    }
}

void Offscreen_DropDownListImp::DisableSorting() {
    if (OffscreenComboBox* combo = GetCombo()) {
        combo->sorted = false;
    }
}

bool Offscreen_DropDownListImp::Attach(OffscreenWindow* window) {
    auto* combo = dynamic_cast<OffscreenComboBox*>(window);
    if (combo == nullptr || !Offscreen_WindowImp::Attach(window)) {
        return false;
    }
    if ((combo->style & StyleDropDown) != 0) {
        BindEdit(GetParent(),
                 reinterpret_cast<NativeHandle>(static_cast<uintptr_t>(combo->GetEdit()->handle)),
                 combo->id);
    }
    return true;
}

} // namespace quilt
