#include "quilt/list_control.h"

#include <algorithm>

namespace quilt {

namespace {

// The table of column sorters grows in steps of this many entries.
constexpr size_t sorterStep = 4;

} // namespace

ListControl::ListControl(std::unique_ptr<WindowImp> imp) : Window(std::move(imp)) {
    listImp = dynamic_cast<ListControlImp*>(GetImp());
}

bool ListControl::AddItems(const loam::ResourceId* items) {
    for (; items->id != 0; ++items) {
        loam::String text;
        loam::LoadResourceString(*items, text);
        if (!AddItem(text, nullptr, 0)) {
            return false;
        }
    }
    return true;
}

bool ListControl::GetItemText(int32_t row, loam::String& text, int32_t column) {
    if (const loam::String* copy = GetSnapshotText(row, column)) {
        text = *copy;
        return true;
    }
    return listImp->GetItemText(row, text, column);
}

bool ListControl::GetItemData(int32_t row, uint32_t& data) {
    if (snapshot != nullptr && row >= 0 && static_cast<size_t>(row) < snapshot->data.size()) {
        data = snapshot->data[static_cast<size_t>(row)];
        return true;
    }
    return listImp->GetItemData(row, data);
}

void ListControl::BeginSortSnapshot(int32_t column) {
    auto copy = std::make_unique<SortSnapshot>();
    copy->column = column;
    auto count = static_cast<size_t>(std::max(GetCount(), 0));
    copy->data.resize(count);
    bool byText = GetColumnSorter(column) == &ListControl::CompareText;
    copy->texts.resize(byText ? count : 0);
    for (size_t row = 0; row < count; ++row) {
        auto index = static_cast<int32_t>(row);
        if (!listImp->GetItemData(index, copy->data[row]) ||
            (byText && !listImp->GetItemText(index, copy->texts[row], column))) {
            return;
        }
    }
    snapshot = std::move(copy);
}

const loam::String* ListControl::GetSnapshotText(int32_t row, int32_t column) const {
    if (snapshot == nullptr || column != snapshot->column || row < 0 ||
        static_cast<size_t>(row) >= snapshot->texts.size()) {
        return nullptr;
    }
    return &snapshot->texts[static_cast<size_t>(row)];
}

bool ListControl::SelectItemByText(const loam::String& text) {
    int32_t row = listImp->FindItem(text);
    return row >= 0 && SelectItem(row);
}

bool ListControl::SelectItemByResource(const loam::ResourceId& text) {
    return SelectItemByText(text.GetString());
}

bool ListControl::IsResourceSelected(const loam::ResourceId& text) {
    return IsTextSelected(text.GetString());
}

bool ListControl::IsTextSelected(const loam::String& text) {
    int32_t row = -1;
    loam::String selected;
    if (!GetSelection(row) || !GetItemText(row, selected, 0)) {
        return false;
    }
    return !selected.IsEmpty() && selected == text;
}

bool ListControl::IsItemSelected(int32_t row) {
    int32_t selected = -1;
    return GetSelection(selected) && selected == row;
}

void ListControl::SetColumnSorter(ListSorter sorter, uintptr_t data, int32_t column) {
    if (column == -1) {
        defaultSorter = sorter;
        defaultSorterData = data;
        return;
    }
    if (column < 0) {
        return;
    }
    auto needed = static_cast<size_t>(column) + 1;
    if (needed > sorters.size()) {
        size_t grown = (needed + sorterStep - 1) / sorterStep * sorterStep;
        sorters.resize(grown, ColumnSorter{&ListControl::CompareText, 0});
    }
    sorters[static_cast<size_t>(column)] = ColumnSorter{sorter, data};
}

ListSorter ListControl::GetColumnSorter(int32_t column) {
    if (column >= 0 && static_cast<size_t>(column) < sorters.size()) {
        return sorters[static_cast<size_t>(column)].sorter;
    }
    return defaultSorter != nullptr ? defaultSorter : &ListControl::CompareText;
}

uintptr_t ListControl::GetColumnSorterData(int32_t column) {
    if (column >= 0 && static_cast<size_t>(column) < sorters.size()) {
        return sorters[static_cast<size_t>(column)].data;
    }
    return defaultSorterData;
}

int32_t ListControl::CompareItems(int32_t rowA, int32_t rowB, int32_t column) {
    ListSorter sorter = GetColumnSorter(column);
    return sorter(this, GetColumnSorterData(column), rowA, rowB, column);
}

int32_t ListControl::CompareText(ListControl* list, uintptr_t, int32_t rowA, int32_t rowB,
                                 int32_t column) {
    const loam::String* copyA = list->GetSnapshotText(rowA, column);
    const loam::String* copyB = list->GetSnapshotText(rowB, column);
    if (copyA != nullptr && copyB != nullptr) {
        return copyA->Compare(*copyB);
    }
    loam::String textA;
    loam::String textB;
    if (!list->GetItemText(rowA, textA, column) || !list->GetItemText(rowB, textB, column)) {
        return 0;
    }
    return textA.Compare(textB);
}

} // namespace quilt
