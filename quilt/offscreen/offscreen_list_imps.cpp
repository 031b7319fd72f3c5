#include "quilt/offscreen/offscreen_list_imps.h"

#include "quilt/dialog_template.h"
#include "quilt/message_target.h"

#include <strings.h>

namespace quilt {

namespace {

constexpr char placeholderName[] = "Call SetNumberOfColumns() and SetColumnName()! :-)";

bool IsOfClass(const OffscreenWindow* window, const char* className) {
    return window != nullptr && strcasecmp(window->className.GetCString(), className) == 0;
}

int32_t AsRow(uintptr_t word) {
    return static_cast<int32_t>(static_cast<uint32_t>(word));
}

void GiveRow(int32_t* out, int32_t row) {
    if (out != nullptr) {
        *out = row;
    }
}

} // namespace

const Offscreen_ListBoxImp::Route Offscreen_ListBoxImp::routes[] = {
    {NotifyListSelectionChange, &Offscreen_ListBoxImp::OnSelectionChange},
    {NotifyListActivate, &Offscreen_ListBoxImp::OnActivate},
    {NotifyListColumnClick, &Offscreen_ListBoxImp::OnColumnClick},
};

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

void Offscreen_ListBoxImp::EnableSorting() {
    if (OffscreenListView* view = GetView()) {
        view->style &= ~uint32_t{StyleSortAscending};
        SortByColumn();
    }
}

void Offscreen_ListBoxImp::DisableSorting() {
    if (OffscreenListView* view = GetView()) {
        view->style &= ~uint32_t{StyleSortAscending};
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
    if (OffscreenListRow* entry = GetRow(row)) {
        entry->checked = checked;
    }
}

bool Offscreen_ListBoxImp::IsItemChecked(int32_t row) {
    OffscreenListRow* entry = GetRow(row);
    return entry != nullptr && entry->checked;
}

bool Offscreen_ListBoxImp::Attach(OffscreenWindow* window) {
    if (!IsOfClass(window, ControlClassListView) || !Offscreen_WindowImp::Attach(window)) {
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

NotificationAnswer
Offscreen_ListBoxImp::TranslateNotification(const NativeNotification& notification,
                                            NotificationTranslation& out) {
    for (const Route& route : routes) {
        if (route.code == notification.code) {
            return (this->*route.handler)(notification, out);
        }
    }
    return AnswerDefault;
}

NotificationAnswer Offscreen_ListBoxImp::OnSelectionChange(const NativeNotification&,
                                                           NotificationTranslation& out) {
    out.kind = MsgSelectionChange;
    return AnswerDispatch;
}

NotificationAnswer Offscreen_ListBoxImp::OnActivate(const NativeNotification& notification,
                                                    NotificationTranslation& out) {
    out.kind = MsgItemActivate;
    out.parameter = AsRow(notification.word);
    return AnswerDispatch;
}

// The same column again flips the direction; another column sorts ascending first.
NotificationAnswer Offscreen_ListBoxImp::OnColumnClick(const NativeNotification& notification,
                                                       NotificationTranslation&) {
    auto* list = dynamic_cast<ListControl*>(GetOwner());
    if (list == nullptr) {
        return AnswerHandled;
    }
    int32_t column = AsRow(notification.word);
    if (column == sortColumn) {
        list->SetSortDirection(list->GetSortDirection() == SortAscending ? SortDescending
                                                                         : SortAscending);
    } else {
        sortColumn = column;
        list->SetSortDirection(SortAscending);
    }
    SortByColumn();
    return AnswerHandled;
}

void Offscreen_ListBoxImp::SortByColumn() {
    auto* list = dynamic_cast<ListControl*>(GetOwner());
    OffscreenListView* view = GetView();
    if (list == nullptr || view == nullptr) {
        return;
    }
    int32_t sign = list->GetSortDirection() == SortDescending ? -1 : 1;
    int32_t column = sortColumn;
    view->Sort([list, sign, column](int32_t a, int32_t b) {
        return sign * list->CompareItems(a, b, column);
    });
}

const Offscreen_DropDownListImp::Route Offscreen_DropDownListImp::routes[] = {
    {NotifyComboSelectionChange, &Offscreen_DropDownListImp::OnSelectionChange},
    {NotifyComboEditChange, &Offscreen_DropDownListImp::OnEditChange},
    {NotifyComboDropDown, &Offscreen_DropDownListImp::OnDropDown},
    {NotifyComboCloseUp, &Offscreen_DropDownListImp::OnCloseUp},
    {NotifyComboSelectionEndOk, &Offscreen_DropDownListImp::OnSelectionEndOk},
};

OffscreenComboBox* Offscreen_DropDownListImp::GetCombo() const {
    return dynamic_cast<OffscreenComboBox*>(GetNative());
}

void Offscreen_DropDownListImp::Clear() {
    if (historyMode) {
        history.Clear();
        return;
    }
    if (OffscreenComboBox* combo = GetCombo()) {
        combo->rows.clear();
        combo->selected = -1;
    }
}

int32_t Offscreen_DropDownListImp::GetCount() {
    if (historyMode) {
        return history.GetCount();
    }
    OffscreenComboBox* combo = GetCombo();
    return combo != nullptr ? combo->GetCount() : 0;
}

bool Offscreen_DropDownListImp::InsertNative(int32_t at, const loam::String& newText, int32_t* row,
                                             uint32_t data) {
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr) {
        return false;
    }
    GiveRow(row, combo->Insert(at, newText, data));
    return true;
}

bool Offscreen_DropDownListImp::InsertHistory(int32_t at, const loam::String& newText, int32_t* row,
                                              uint32_t data) {
    int32_t place = at < 0 ? history.GetCount() : at;
    if (!history.Insert(place, newText, data)) {
        return false;
    }
    GiveRow(row, place);
    return true;
}

bool Offscreen_DropDownListImp::AddItem(const loam::String& newText, int32_t* row, uint32_t data) {
    return historyMode ? InsertHistory(-1, newText, row, data)
                       : InsertNative(-1, newText, row, data);
}

bool Offscreen_DropDownListImp::InsertAfter(int32_t after, const loam::String& newText,
                                            int32_t* row, uint32_t data) {
    return InsertBefore(after + 1, newText, row, data);
}

bool Offscreen_DropDownListImp::InsertBefore(int32_t before, const loam::String& newText,
                                             int32_t* row, uint32_t data) {
    if (before < 0) {
        return false;
    }
    return historyMode ? InsertHistory(before, newText, row, data)
                       : InsertNative(before, newText, row, data);
}

bool Offscreen_DropDownListImp::RemoveItem(int32_t row) {
    if (historyMode) {
        return history.Remove(row);
    }
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr || !combo->IsRow(row)) {
        return false;
    }
    combo->rows.erase(combo->rows.begin() + row);
    return true;
}

// A row has one text: the column is not looked at.
bool Offscreen_DropDownListImp::SetItemText(int32_t row, const loam::String& newText, int32_t) {
    if (historyMode) {
        if (row < 0 || row >= history.GetCount()) {
            return false;
        }
        history.Get(row).text = newText;
        return true;
    }
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr || !combo->IsRow(row)) {
        return false;
    }
    combo->rows[static_cast<size_t>(row)].text = newText;
    return true;
}

bool Offscreen_DropDownListImp::SetItemData(int32_t row, uint32_t data) {
    if (historyMode) {
        if (row < 0 || row >= history.GetCount()) {
            return false;
        }
        history.Get(row).data = data;
        return true;
    }
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr || !combo->IsRow(row)) {
        return false;
    }
    combo->rows[static_cast<size_t>(row)].data = data;
    return true;
}

bool Offscreen_DropDownListImp::GetItemText(int32_t row, loam::String& out, int32_t) {
    if (historyMode) {
        if (row < 0 || row >= history.GetCount()) {
            return false;
        }
        out = history.Get(row).text;
        return true;
    }
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr || !combo->IsRow(row)) {
        return false;
    }
    out = combo->rows[static_cast<size_t>(row)].text;
    return true;
}

bool Offscreen_DropDownListImp::GetItemData(int32_t row, uint32_t& data) {
    if (historyMode) {
        if (row < 0 || row >= history.GetCount()) {
            return false;
        }
        data = history.Get(row).data;
        return true;
    }
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr || !combo->IsRow(row)) {
        return false;
    }
    data = combo->rows[static_cast<size_t>(row)].data;
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
    textValid = false;
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

int32_t Offscreen_DropDownListImp::FindItem(const loam::String& wanted) {
    if (historyMode) {
        return history.Find(wanted);
    }
    OffscreenComboBox* combo = GetCombo();
    for (int32_t row = 0; combo != nullptr && row < combo->GetCount(); ++row) {
        if (combo->rows[static_cast<size_t>(row)].text == wanted) {
            return row;
        }
    }
    return -1;
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

void Offscreen_DropDownListImp::ClearEditSelection() {
    if (OffscreenComboBox* combo = GetCombo()) {
        combo->GetEdit()->Select(0, 0);
    }
}

void Offscreen_DropDownListImp::SetEditSelection(int32_t start, int32_t end) {
    if (hasEdit) {
        edit.SetSelection(start, end);
    }
    textValid = false;
}

void Offscreen_DropDownListImp::SetHistoryMode(bool on) {
    if (on == historyMode) {
        return;
    }
    if (!on) {
        historyMode = false;
        Rebuild();
        return;
    }
    DisableSorting();
    history.Clear();
    OffscreenComboBox* combo = GetCombo();
    for (int32_t row = 0; combo != nullptr && row < combo->GetCount(); ++row) {
        const OffscreenComboBox::Row& entry = combo->rows[static_cast<size_t>(row)];
        if (!history.Append(entry.text, entry.data)) {
            break;
        }
    }
    historyMode = true;
}

void Offscreen_DropDownListImp::AddToHistory(const loam::String& added) {
    if (historyMode) {
        history.Add(added);
    }
}

void Offscreen_DropDownListImp::SetEnterNotifies(bool notifies) {
    if (hasEdit) {
        edit.SetEnterNotifies(notifies);
    }
}

bool Offscreen_DropDownListImp::SetText(const loam::String& newText) {
    if (!Offscreen_WindowImp::SetText(newText)) {
        return false;
    }
    if (hasEdit) {
        text = newText;
        textValid = true;
    }
    return true;
}

bool Offscreen_DropDownListImp::GetText(loam::String& out) {
    if (!hasEdit) {
        return Offscreen_WindowImp::GetText(out);
    }
    if (!textValid) {
        if (!Offscreen_WindowImp::GetText(text)) {
            return false;
        }
        textValid = true;
    }
    out = text;
    return true;
}

void Offscreen_DropDownListImp::Rebuild() {
    OffscreenComboBox* combo = GetCombo();
    if (combo == nullptr) {
        return;
    }
    loam::String current;
    GetText(current);
    text = current;
    combo->rows.clear();
    combo->selected = -1;
    for (int32_t row = 0; row < history.GetCount(); ++row) {
        combo->rows.push_back(OffscreenComboBox::Row{history.Get(row).text, history.Get(row).data});
    }
    if (history.GetCount() > 0) {
        text = history.Get(0).text;
    }
    SetText(text);
}

bool Offscreen_DropDownListImp::Attach(OffscreenWindow* window) {
    if (!IsOfClass(window, ControlClassComboBox) || !Offscreen_WindowImp::Attach(window)) {
        return false;
    }
    OffscreenComboBox* combo = GetCombo();
    hasEdit = (combo->style & StyleDropDown) != 0;
    if (!hasEdit) {
        return true;
    }
    Window* dialog = GetParent();
    edit.BindToHandle(
        dialog, reinterpret_cast<NativeHandle>(static_cast<uintptr_t>(combo->GetEdit()->handle)));
    edit.SetEnterTarget(dialog, combo->id);
    return true;
}

NotificationAnswer
Offscreen_DropDownListImp::TranslateNotification(const NativeNotification& notification,
                                                 NotificationTranslation& out) {
    for (const Route& route : routes) {
        if (route.code == notification.code) {
            return (this->*route.handler)(notification, out);
        }
    }
    return AnswerDefault;
}

NotificationAnswer Offscreen_DropDownListImp::OnSelectionChange(const NativeNotification&,
                                                                NotificationTranslation& out) {
    int32_t row = -1;
    if (hasEdit && GetSelection(row)) {
        text = GetCombo()->rows[static_cast<size_t>(row)].text;
        textValid = true;
        AddToHistory(text);
    }
    out.kind = MsgListSelChange;
    return AnswerDispatch;
}

NotificationAnswer Offscreen_DropDownListImp::OnEditChange(const NativeNotification& notification,
                                                           NotificationTranslation& out) {
    textValid = false;
    out.kind = MsgListTextChange;
    out.parameter = notification.id;
    return AnswerDispatch;
}

NotificationAnswer Offscreen_DropDownListImp::OnDropDown(const NativeNotification&,
                                                         NotificationTranslation&) {
    if (historyMode) {
        Rebuild();
    }
    return AnswerHandled;
}

NotificationAnswer Offscreen_DropDownListImp::OnCloseUp(const NativeNotification&,
                                                        NotificationTranslation&) {
    textValid = false;
    return AnswerHandled;
}

NotificationAnswer Offscreen_DropDownListImp::OnSelectionEndOk(const NativeNotification&,
                                                               NotificationTranslation& out) {
    out.kind = MsgListSelEndOk;
    return AnswerDispatch;
}

} // namespace quilt
