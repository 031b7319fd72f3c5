#include "quilt/drop_down_list.h"

#include "quilt/imp_factory.h"

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
