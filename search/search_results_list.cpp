#include "search/search_results_list.h"

#include "index/long_name.h"
#include "loam/format.h"
#include "quilt/keys.h"
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

constexpr quilt::MenuItemTemplate rowMenuItems[] = {
    {ResultOpen, "&Open", 0},
    {ResultOpenFolder, "Open Containing &Folder", 0},
    {ResultCopyPath, "Copy &Path", 0},
    {ResultCopyName, "Copy &Name", 0},
};

constexpr quilt::MenuTemplate rowMenu{0, rowMenuItems};

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
    drag.Enable(*this, *this);
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

bool SearchResultsList::GetSelectedOrdinal(int32_t& ordinal) {
    int32_t row = -1;
    uint32_t data = 0;
    if (index == nullptr || !GetSelection(row) || row < 0 || !GetItemData(row, data)) {
        return false;
    }
    ordinal = static_cast<int32_t>(data);
    return true;
}

bool SearchResultsList::GetSelectedFolder(loam::FileSpec& folder) {
    int32_t ordinal = 0;
    if (!GetSelectedOrdinal(ordinal)) {
        return false;
    }
    GetRealFolderOf(*index, index->GetResult(ordinal), folder);
    return true;
}

bool SearchResultsList::GetSelectedEntry(loam::FileSpec& entry) {
    int32_t ordinal = 0;
    if (!GetSelectedOrdinal(ordinal)) {
        return false;
    }
    // A root's name is its whole path with its separator, which a path to copy goes without.
    loam::String path = GetRealPathOf(*index, index->GetResult(ordinal));
    if (path.GetLength() > 1 && path.GetCString()[path.GetLength() - 1] == loam::NativeSeparator) {
        path.Truncate(path.GetLength() - 1);
    }
    entry.SetPath(path);
    return true;
}

bool SearchResultsList::GetSelectedName(loam::String& name) {
    int32_t ordinal = 0;
    if (!GetSelectedOrdinal(ordinal)) {
        return false;
    }
    const IndexRecord* record = index->GetResult(ordinal);
    if (!MayStandForLongName(*record)) {
        name = index->GetResultName(ordinal);
        return true;
    }
    loam::FileSpec real(GetRealPathOf(*index, record).GetCString());
    real.GetLeafName(name);
    return true;
}

bool SearchResultsList::PrepareMenu(quilt::PopupMenu& menu) {
    int32_t ordinal = 0;
    if (!GetSelectedOrdinal(ordinal)) {
        return false;
    }
    menu.Load(rowMenu);
    menu.EnableItem(ResultOpenFolder, !index->GetResultFolder(ordinal).IsEmpty());
    return true;
}

// Return belongs to the dialog's default button unless a row is selected.
bool SearchResultsList::OnWantKey(int32_t key) {
    int32_t ordinal = 0;
    return key == quilt::KeyReturn && GetSelectedOrdinal(ordinal);
}

// Both keys reach the parent as the double click and the menu command do.
bool SearchResultsList::OnKeyDown(int32_t key, uint32_t modifiers) {
    int32_t row = -1;
    Window* parent = GetParent();
    if (parent == nullptr || !GetSelection(row) || row < 0) {
        return false;
    }
    if (key == quilt::KeyReturn && modifiers == 0) {
        parent->GetImp()->OnControlEvent(quilt::NativeNotification{
            quilt::ControlEvent::ItemActivated, GetId(), static_cast<uint32_t>(row)});
        return true;
    }
    if (key == 'C' && modifiers == quilt::ModifierControl) {
        parent->OnCommand(ResultCopyPath);
        return true;
    }
    return false;
}

bool SearchResultsList::GetDragFile(loam::String& path) {
    loam::FileSpec entry;
    if (!GetSelectedEntry(entry)) {
        return false;
    }
    path = entry.GetPath();
    return true;
}
