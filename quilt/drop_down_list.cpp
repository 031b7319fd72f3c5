#include "quilt/drop_down_list.h"

#include "quilt/imp_factory.h"
#include "quilt/message_target.h"

#include <algorithm>

namespace quilt {

bool DropDownHistory::Append(const loam::String& text, uint32_t data) {
    return Insert(GetCount(), text, data);
}

bool DropDownHistory::Insert(int32_t row, const loam::String& text, uint32_t data) {
    if (row < 0 || row > GetCount() || row >= limit) {
        return false;
    }
    entries.insert(entries.begin() + row, Entry{text, data});
    return true;
}

bool DropDownHistory::Remove(int32_t row) {
    if (row < 0 || row >= GetCount()) {
        return false;
    }
    entries.erase(entries.begin() + row);
    return true;
}

int32_t DropDownHistory::Find(const loam::String& text) const {
    auto found = std::find_if(entries.begin(), entries.end(),
                              [&text](const Entry& entry) { return entry.text == text; });
    return found != entries.end() ? static_cast<int32_t>(found - entries.begin()) : -1;
}

void DropDownHistory::Add(const loam::String& text) {
    std::erase_if(entries, [&text](const Entry& entry) { return entry.text == text; });
    entries.push_front(Entry{text, 0});
    Trim();
}

void DropDownHistory::SetLimit(int32_t newLimit) {
    limit = newLimit;
    Trim();
}

void DropDownHistory::Trim() {
    while (!entries.empty() && GetCount() >= limit) {
        entries.pop_back();
    }
}

namespace {

void GiveRow(int32_t* out, int32_t row) {
    if (out != nullptr) {
        *out = row;
    }
}

} // namespace

const DropDownListImp::Route DropDownListImp::routes[] = {
    {ControlEvent::SelectionChanged, &DropDownListImp::OnSelectionChanged},
    {ControlEvent::TextChanged, &DropDownListImp::OnTextChanged},
    {ControlEvent::ListOpened, &DropDownListImp::OnListOpened},
    {ControlEvent::SelectionEnded, &DropDownListImp::OnSelectionEnded},
};

void DropDownListImp::Clear() {
    if (historyMode) {
        history.Clear();
        return;
    }
    NativeClear();
}

int32_t DropDownListImp::GetCount() {
    return historyMode ? history.GetCount() : NativeGetCount();
}

bool DropDownListImp::InsertNative(int32_t at, const loam::String& text, int32_t* row,
                                   uint32_t data) {
    int32_t place = NativeInsert(at, text, data);
    if (place < 0) {
        return false;
    }
    GiveRow(row, place);
    return true;
}

bool DropDownListImp::InsertHistory(int32_t at, const loam::String& text, int32_t* row,
                                    uint32_t data) {
    int32_t place = at < 0 ? history.GetCount() : at;
    if (!history.Insert(place, text, data)) {
        return false;
    }
    GiveRow(row, place);
    return true;
}

bool DropDownListImp::AddItem(const loam::String& text, int32_t* row, uint32_t data) {
    return historyMode ? InsertHistory(-1, text, row, data) : InsertNative(-1, text, row, data);
}

bool DropDownListImp::InsertAfter(int32_t after, const loam::String& text, int32_t* row,
                                  uint32_t data) {
    return InsertBefore(after + 1, text, row, data);
}

bool DropDownListImp::InsertBefore(int32_t before, const loam::String& text, int32_t* row,
                                   uint32_t data) {
    if (before < 0) {
        return false;
    }
    return historyMode ? InsertHistory(before, text, row, data)
                       : InsertNative(before, text, row, data);
}

bool DropDownListImp::RemoveItem(int32_t row) {
    return historyMode ? history.Remove(row) : NativeRemove(row);
}

bool DropDownListImp::SetItemText(int32_t row, const loam::String& text, int32_t) {
    if (!historyMode) {
        return NativeSetItemText(row, text);
    }
    if (!IsHistoryRow(row)) {
        return false;
    }
    history.Get(row).text = text;
    return true;
}

bool DropDownListImp::SetItemData(int32_t row, uint32_t data) {
    if (!historyMode) {
        return NativeSetItemData(row, data);
    }
    if (!IsHistoryRow(row)) {
        return false;
    }
    history.Get(row).data = data;
    return true;
}

bool DropDownListImp::GetItemText(int32_t row, loam::String& text, int32_t) {
    if (!historyMode) {
        return NativeGetItemText(row, text);
    }
    if (!IsHistoryRow(row)) {
        return false;
    }
    text = history.Get(row).text;
    return true;
}

bool DropDownListImp::GetItemData(int32_t row, uint32_t& data) {
    if (!historyMode) {
        return NativeGetItemData(row, data);
    }
    if (!IsHistoryRow(row)) {
        return false;
    }
    data = history.Get(row).data;
    return true;
}

int32_t DropDownListImp::FindItem(const loam::String& text) {
    if (historyMode) {
        return history.Find(text);
    }
    loam::String rowText;
    for (int32_t row = 0; row < NativeGetCount(); ++row) {
        if (NativeGetItemText(row, rowText) && rowText == text) {
            return row;
        }
    }
    return -1;
}

void DropDownListImp::ClearEditSelection() {
    if (hasEdit) {
        edit.ClearSelection();
    }
}

void DropDownListImp::SetEditSelection(int32_t start, int32_t end) {
    if (hasEdit) {
        edit.SetSelection(start, end);
    }
}

void DropDownListImp::SetHistoryMode(bool on) {
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
    loam::String text;
    uint32_t data = 0;
    for (int32_t row = 0; row < NativeGetCount(); ++row) {
        if (!NativeGetItemText(row, text) || !NativeGetItemData(row, data) ||
            !history.Append(text, data)) {
            break;
        }
    }
    historyMode = true;
}

void DropDownListImp::AddToHistory(const loam::String& text) {
    if (historyMode) {
        history.Add(text);
    }
}

void DropDownListImp::SetEnterNotifies(bool notifies) {
    if (hasEdit) {
        edit.SetEnterNotifies(notifies);
    }
}

void DropDownListImp::BindEdit(Window* dialog, NativeHandle field, int32_t listId) {
    hasEdit = edit.BindToHandle(dialog, field);
    if (hasEdit) {
        edit.SetEnterTarget(dialog, listId);
    }
}

void DropDownListImp::Rebuild() {
    loam::String text;
    GetText(text);
    NativeClear();
    for (int32_t row = 0; row < history.GetCount(); ++row) {
        NativeInsert(row, history.Get(row).text, history.Get(row).data);
    }
    if (history.GetCount() > 0) {
        text = history.Get(0).text;
    }
    SetText(text);
}

NotificationAnswer DropDownListImp::TranslateNotification(const NativeNotification& notification,
                                                          NotificationTranslation& out) {
    for (const Route& route : routes) {
        if (route.event == notification.event) {
            return (this->*route.handler)(notification, out);
        }
    }
    return AnswerDefault;
}

// A row chosen in a list with a field is a text the user gave.
NotificationAnswer DropDownListImp::OnSelectionChanged(const NativeNotification&,
                                                       NotificationTranslation& out) {
    int32_t row = -1;
    loam::String text;
    if (hasEdit && GetSelection(row) && NativeGetItemText(row, text)) {
        AddToHistory(text);
    }
    out.kind = MsgListSelChange;
    return AnswerDispatch;
}

NotificationAnswer DropDownListImp::OnTextChanged(const NativeNotification& notification,
                                                  NotificationTranslation& out) {
    out.kind = MsgListTextChange;
    out.parameter = notification.id;
    return AnswerDispatch;
}

NotificationAnswer DropDownListImp::OnListOpened(const NativeNotification&,
                                                 NotificationTranslation&) {
    if (historyMode) {
        Rebuild();
    }
    return AnswerHandled;
}

NotificationAnswer DropDownListImp::OnSelectionEnded(const NativeNotification&,
                                                     NotificationTranslation& out) {
    out.kind = MsgListSelEndOk;
    return AnswerDispatch;
}

DropDownList::DropDownList() : ListControl(GetImpFactory().CreateDropDownListImp()) {
    dropImp = dynamic_cast<DropDownListImp*>(GetImp());
}

void DropDownList::SetHistoryMode(bool on) {
    historyMode = on;
    dropImp->SetHistoryMode(on);
}

void DropDownList::AddCurrentTextToHistory() {
    loam::String text;
    if (GetText(text) && !text.IsEmpty()) {
        AddToHistory(text);
    }
}

} // namespace quilt
