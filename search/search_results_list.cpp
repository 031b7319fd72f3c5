#include "search/search_results_list.h"

#include "index/long_name.h"
#include "loam/format.h"
#include "quilt/wait_cursor.h"

namespace {

struct ColumnSetup {
    const char* heading;
    int32_t width;
};

constexpr ColumnSetup columns[] = {
    {"Name", 100},
    {"Folder", 200},
    {"Size", 60},
    {"Date", 60},
};

constexpr char dateFormat[] = "%d/%m/%y %H:%M";

template <class Value> int32_t CompareValues(Value a, Value b) {
    return a < b ? -1 : (b < a ? 1 : 0);
}

// Reads both rows' ordinals; false when either can't be read or there is no index.
bool GetOrdinals(quilt::ListControl* list, uintptr_t data, int32_t rowA, int32_t rowB, uint32_t& a,
                 uint32_t& b) {
    return data != 0 && list->GetItemData(rowA, a) && list->GetItemData(rowB, b);
}

const IndexData& AsIndex(uintptr_t data) {
    return *reinterpret_cast<const IndexData*>(data);
}

void AddRow(quilt::ListBox& list, const IndexData& data, int32_t ordinal) {
    int32_t row = -1;
    list.AddItem(data.GetResultName(ordinal), &row, static_cast<uint32_t>(ordinal));
    list.SetItemText(row, data.GetResultFolder(ordinal), ResultColumnFolder);
    loam::String text;
    if (!data.IsResultFolder(ordinal)) {
        loam::FormatByteSize(text, data.GetResultSize(ordinal));
        list.SetItemText(row, text, ResultColumnSize);
    }
    data.GetResultDate(ordinal).Format(text, dateFormat);
    list.SetItemText(row, text, ResultColumnDate);
}

} // namespace

int32_t CompareResultSizes(quilt::ListControl* list, uintptr_t data, int32_t rowA, int32_t rowB,
                           int32_t) {
    uint32_t a = 0;
    uint32_t b = 0;
    if (!GetOrdinals(list, data, rowA, rowB, a, b)) {
        return 0;
    }
    const IndexData& index = AsIndex(data);
    return CompareValues(index.GetResultSize(static_cast<int32_t>(a)),
                         index.GetResultSize(static_cast<int32_t>(b)));
}

int32_t CompareResultDates(quilt::ListControl* list, uintptr_t data, int32_t rowA, int32_t rowB,
                           int32_t) {
    uint32_t a = 0;
    uint32_t b = 0;
    if (!GetOrdinals(list, data, rowA, rowB, a, b)) {
        return 0;
    }
    const IndexData& index = AsIndex(data);
    return CompareValues(index.GetResultDate(static_cast<int32_t>(a)).GetSeconds(),
                         index.GetResultDate(static_cast<int32_t>(b)).GetSeconds());
}

bool SearchResultsList::BindToControl(quilt::Window* parent, int32_t id) {
    if (!ListBox::BindToControl(parent, id)) {
        return false;
    }
    SetNumberOfColumns(static_cast<int32_t>(std::size(columns)));
    for (int32_t column = 0; column < static_cast<int32_t>(std::size(columns)); ++column) {
        SetColumnName(column, columns[column].heading);
        SetColumnWidth(column, columns[column].width);
    }
    return true;
}

// Rows are placed by name as they come; no earlier column sort is applied.
void SearchResultsList::Fill(IndexData& data) {
    index = &data;
    quilt::WaitCursor wait;
    LockUpdates();
    Clear();
    for (int32_t ordinal = 0; ordinal < data.GetResultCount(); ++ordinal) {
        AddRow(*this, data, ordinal);
    }
    auto word = reinterpret_cast<uintptr_t>(index);
    SetColumnSorter(CompareResultSizes, word, ResultColumnSize);
    SetColumnSorter(CompareResultDates, word, ResultColumnDate);
    FitColumn(ResultColumnSize);
    FitColumn(ResultColumnDate);
    UnlockUpdates();
}

bool SearchResultsList::GetSelectedFolder(loam::FileSpec& folder) {
    int32_t row = -1;
    uint32_t ordinal = 0;
    if (index == nullptr || !GetSelection(row) || !GetItemData(row, ordinal)) {
        return false;
    }
    GetRealFolderOf(*index, index->GetResult(static_cast<int32_t>(ordinal)), folder);
    return true;
}
