#include "quilt/offscreen/offscreen_list_controls.h"

#include "quilt/dialog_template.h"
#include "quilt/keys.h"

#include <algorithm>

namespace quilt {

namespace {

const loam::String emptyCell;

int32_t CompareFolded(const loam::String& a, const loam::String& b) {
    const char* left = a.GetCString();
    const char* right = b.GetCString();
    for (;; ++left, ++right) {
        auto foldedLeft = static_cast<unsigned char>(loam::FoldToLower(*left));
        auto foldedRight = static_cast<unsigned char>(loam::FoldToLower(*right));
        if (foldedLeft != foldedRight || foldedLeft == 0) {
            return foldedLeft - foldedRight;
        }
    }
}

uint32_t AsDetail(int32_t value) {
    return static_cast<uint32_t>(value);
}

// Each notification may destroy the control: the next is sent only while it is still there.
void NotifyWhileThere(OffscreenHandle handle, ControlEvent event, uint32_t detail = 0) {
    if (OffscreenWindow* window = GetOffscreenDesktop().Find(handle)) {
        NotifyParent(*window, event, detail);
    }
}

// The right button selects the row under it, as the desktop's lists do, and asks for the
// row's menu there.
void ListRightButtonDown(OffscreenListView& list, const OffscreenMessage& message) {
    int32_t row = list.GetRowAt(message.point);
    if (row < 0 || list.GetColumnAt(message.point) >= 0) {
        return;
    }
    OffscreenHandle handle = list.handle;
    GetOffscreenDesktop().SetFocus(&list);
    list.Select(row);
    NotifyWhileThere(handle, ControlEvent::ContextMenu, AsDetail(PackPoint(message.point)));
}

void ListMouseDown(OffscreenListView& list, const OffscreenMessage& message) {
    if ((message.flags & MouseRight) != 0) {
        ListRightButtonDown(list, message);
        return;
    }
    if (!IsLeftButton(message)) {
        return;
    }
    OffscreenHandle handle = list.handle;
    GetOffscreenDesktop().SetFocus(&list);
    auto* view = dynamic_cast<OffscreenListView*>(GetOffscreenDesktop().Find(handle));
    if (view == nullptr) {
        return;
    }
    int32_t column = view->GetColumnAt(message.point);
    if (column >= 0) {
        NotifyParent(*view, ControlEvent::ColumnClicked, AsDetail(column));
        return;
    }
    int32_t row = view->GetRowAt(message.point);
    if (view->checkBoxes && row >= 0 &&
        message.point.x + view->scrollPos[0] < OffscreenListView::CheckBoxWidth) {
        view->SetChecked(row, !view->GetRow(row).checked);
        return;
    }
    view->Select(row);
}

void ListDoubleClick(OffscreenListView& list, const OffscreenMessage& message) {
    if (!IsLeftButton(message) || list.GetColumnAt(message.point) >= 0) {
        return;
    }
    OffscreenHandle handle = list.handle;
    int32_t row = list.GetRowAt(message.point);
    list.Select(row);
    NotifyWhileThere(handle, ControlEvent::ItemActivated, AsDetail(row));
}

// The Menu key, or Shift+F10 on a keyboard without one, asks for the menu of the selected row,
// beside the row.
bool IsMenuKey(const OffscreenMessage& message) {
    return message.value == KeyMenu ||
           (message.value == KeyF10 && (message.flags & ModifierShift) != 0);
}

void ListKeyDown(OffscreenListView& list, const OffscreenMessage& message) {
    int32_t selected = list.GetSelected();
    if (IsMenuKey(message)) {
        Point place = list.IsRow(selected) ? list.GetRowPoint(selected) : Point{};
        NotifyParent(list, ControlEvent::ContextMenu, AsDetail(PackPoint(place)));
    } else if (message.value == KeyDown && list.IsRow(selected + 1)) {
        list.Select(selected + 1);
    } else if (message.value == KeyUp && selected > 0) {
        list.Select(selected - 1);
    }
}

constexpr NativeRoute<OffscreenListView> listRoutes[] = {
    {OffscreenMessageKind::MouseDown, ListMouseDown},
    {OffscreenMessageKind::MouseDoubleClick, ListDoubleClick},
    {OffscreenMessageKind::KeyDown, ListKeyDown},
};

void ComboMouseDown(OffscreenComboBox& combo, const OffscreenMessage& message) {
    combo.OnMouseDown(message);
}

// The field takes the focus and the keys of the combo box.
void ComboSetFocus(OffscreenComboBox& combo, const OffscreenMessage&) {
    GetOffscreenDesktop().SetFocus(combo.GetEdit());
}

void ComboKey(OffscreenComboBox& combo, const OffscreenMessage& message) {
    GetOffscreenDesktop().Send(combo.GetEdit(), message);
}

// The field's change is the combo box's own.
void ComboNotify(OffscreenComboBox& combo, const OffscreenMessage& message) {
    combo.text = combo.GetEdit()->text;
    if (message.event == ControlEvent::TextChanged) {
        NotifyParent(combo, ControlEvent::TextChanged);
    }
}

constexpr NativeRoute<OffscreenComboBox> comboRoutes[] = {
    {OffscreenMessageKind::MouseDown, ComboMouseDown},
    {OffscreenMessageKind::SetFocus, ComboSetFocus},
    {OffscreenMessageKind::Char, ComboKey},
    {OffscreenMessageKind::KeyDown, ComboKey},
    {OffscreenMessageKind::KeyUp, ComboKey},
    {OffscreenMessageKind::Notify, ComboNotify},
};

} // namespace

const loam::String& OffscreenListRow::GetCell(int32_t column) const {
    if (column < 0 || static_cast<size_t>(column) >= cells.size()) {
        return emptyCell;
    }
    return cells[static_cast<size_t>(column)];
}

OffscreenListRow& OffscreenRowList::At(int32_t index) const {
    if (flatValid) {
        return *flat[static_cast<size_t>(index)];
    }
    auto [block, offset] = Locate(index);
    return *blocks[block][offset];
}

std::pair<size_t, size_t> OffscreenRowList::Locate(int32_t index) const {
    auto rest = static_cast<size_t>(index);
    for (size_t block = 0; block < blocks.size(); ++block) {
        if (rest < blocks[block].size() || block + 1 == blocks.size()) {
            return {block, rest};
        }
        rest -= blocks[block].size();
    }
    return {0, 0};
}

int32_t OffscreenRowList::FindSortedPlace(const loam::String& text) const {
    auto notAbove = [&text](const std::unique_ptr<OffscreenListRow>& row) {
        return CompareFolded(text, row->GetCell(0)) >= 0;
    };
    auto block =
        std::partition_point(blocks.begin(), blocks.end(),
                             [&notAbove](const Block& entry) { return notAbove(entry.back()); });
    if (block == blocks.end()) {
        return count;
    }
    int32_t before = 0;
    for (auto earlier = blocks.begin(); earlier != block; ++earlier) {
        before += static_cast<int32_t>(earlier->size());
    }
    auto place = std::partition_point(block->begin(), block->end(), notAbove);
    return before + static_cast<int32_t>(place - block->begin());
}

void OffscreenRowList::Insert(int32_t index, std::unique_ptr<OffscreenListRow> row) {
    flatValid = false;
    ++count;
    if (blocks.empty()) {
        blocks.emplace_back();
    }
    auto [block, offset] = Locate(index);
    Block& target = blocks[block];
    target.insert(target.begin() + static_cast<std::ptrdiff_t>(offset), std::move(row));
    if (target.size() < 2 * BlockSize) {
        return;
    }
    Block upper(std::make_move_iterator(target.begin() + BlockSize),
                std::make_move_iterator(target.end()));
    target.resize(BlockSize);
    blocks.insert(blocks.begin() + static_cast<std::ptrdiff_t>(block) + 1, std::move(upper));
}

void OffscreenRowList::Erase(int32_t index) {
    flatValid = false;
    auto [block, offset] = Locate(index);
    Block& target = blocks[block];
    target.erase(target.begin() + static_cast<std::ptrdiff_t>(offset));
    if (target.empty()) {
        blocks.erase(blocks.begin() + static_cast<std::ptrdiff_t>(block));
    }
    --count;
}

void OffscreenRowList::Clear() {
    blocks.clear();
    flat.clear();
    flatValid = false;
    count = 0;
}

void OffscreenRowList::Reorder(const std::vector<int32_t>& order) {
    std::vector<std::unique_ptr<OffscreenListRow>> all;
    all.reserve(static_cast<size_t>(count));
    for (Block& block : blocks) {
        for (auto& row : block) {
            all.push_back(std::move(row));
        }
    }
    Clear();
    Block current;
    for (int32_t index : order) {
        current.push_back(std::move(all[static_cast<size_t>(index)]));
        if (current.size() == BlockSize) {
            blocks.push_back(std::move(current));
            current.clear();
        }
    }
    if (!current.empty()) {
        blocks.push_back(std::move(current));
    }
    count = static_cast<int32_t>(order.size());
}

void OffscreenRowList::Index() const {
    if (flatValid) {
        return;
    }
    flat.clear();
    for (const Block& block : blocks) {
        for (const auto& row : block) {
            flat.push_back(row.get());
        }
    }
    flatValid = true;
}

void OffscreenListView::DefaultHandling(const OffscreenMessage& message) {
    if (!RouteNative(*this, listRoutes, message)) {
        OffscreenWindow::DefaultHandling(message);
    }
}

bool OffscreenListView::ShowsHeader() const {
    return (style & StyleReportView) != 0 && !headerHidden;
}

int32_t OffscreenListView::Insert(int32_t at, const loam::String& text, uint32_t data) {
    auto row = std::make_unique<OffscreenListRow>();
    row->cells.push_back(text);
    row->data = data;
    int32_t place = GetCount();
    if ((style & StyleSortAscending) != 0) {
        place = rows.FindSortedPlace(text);
    } else if (at >= 0 && at < GetCount()) {
        place = at;
    }
    rows.Insert(place, std::move(row));
    needsPaint = true;
    return place;
}

bool OffscreenListView::Remove(int32_t row) {
    if (!IsRow(row)) {
        return false;
    }
    rows.Erase(row);
    needsPaint = true;
    return true;
}

void OffscreenListView::Clear() {
    rows.Clear();
    sortColumn = -1;
    scrollPos[1] = 0;
    needsPaint = true;
}

void OffscreenListView::Select(int32_t row) {
    int32_t selected = GetSelected();
    if (row == selected || (row != -1 && !IsRow(row))) {
        return;
    }
    if (selected != -1) {
        GetRow(selected).selected = false;
    }
    if (row != -1) {
        GetRow(row).selected = true;
    }
    needsPaint = true;
    NotifyParent(*this, ControlEvent::SelectionChanged);
}

void OffscreenListView::SetChecked(int32_t row, bool checked) {
    if (!IsRow(row) || GetRow(row).checked == checked) {
        return;
    }
    GetRow(row).checked = checked;
    needsPaint = true;
    NotifyParent(*this, ControlEvent::ItemCheckChanged, AsDetail(row));
}

int32_t OffscreenListView::GetSelected() const {
    rows.Index();
    for (int32_t row = 0; row < GetCount(); ++row) {
        if (GetRow(row).selected) {
            return row;
        }
    }
    return -1;
}

// The rows stay where they are while the comparison reads them, and move once at the end.
void OffscreenListView::Reorder(const std::vector<int32_t>& order) {
    if (order.size() != static_cast<size_t>(GetCount())) {
        return;
    }
    rows.Reorder(order);
    needsPaint = true;
}

void OffscreenListView::ShowSortColumn(int32_t column, SortDirection direction) {
    sortColumn = column;
    sortDirection = direction;
    needsPaint = true;
}

int32_t OffscreenListView::GetRowAt(const Point& point) const {
    int32_t top = ShowsHeader() ? HeaderHeight : 0;
    if (point.y < top) {
        return -1;
    }
    int32_t row = scrollPos[1] + (point.y - top) / RowHeight;
    return IsRow(row) ? row : -1;
}

int32_t OffscreenListView::GetColumnAt(const Point& point) const {
    if (!ShowsHeader() || point.y < 0 || point.y >= HeaderHeight) {
        return -1;
    }
    int32_t left = -scrollPos[0];
    for (size_t column = 0; column < columns.size(); ++column) {
        int32_t right = left + columns[column].width;
        if (point.x >= left && point.x < right) {
            return static_cast<int32_t>(column);
        }
        left = right;
    }
    return -1;
}

Point OffscreenListView::GetRowPoint(int32_t row) {
    int32_t top = ShowsHeader() ? HeaderHeight : 0;
    int32_t visible = std::max(1, (rect.GetHeight() - top) / RowHeight);
    if (row < scrollPos[1] || row >= scrollPos[1] + visible) {
        scrollPos[1] = std::max(0, row);
    }
    int32_t left = checkBoxes ? CheckBoxWidth + 2 : 2;
    return Point{left, top + (row - scrollPos[1]) * RowHeight + RowHeight / 2};
}

Point OffscreenListView::GetCheckBoxPoint(int32_t row) {
    Point point = GetRowPoint(row);
    point.x = CheckBoxWidth / 2 - scrollPos[0];
    return point;
}

Point OffscreenListView::GetHeaderPoint(int32_t column) const {
    int32_t left = -scrollPos[0];
    for (int32_t before = 0; before < column && static_cast<size_t>(before) < columns.size();
         ++before) {
        left += columns[static_cast<size_t>(before)].width;
    }
    int32_t width = static_cast<size_t>(column) < columns.size()
                        ? columns[static_cast<size_t>(column)].width
                        : 0;
    return Point{left + width / 2, HeaderHeight / 2};
}

int32_t OffscreenListView::GetContentWidth(int32_t column) const {
    int32_t longest = 0;
    rows.Index();
    for (int32_t row = 0; row < GetCount(); ++row) {
        longest = std::max(longest, GetRow(row).GetCell(column).GetLength());
    }
    return longest * CharacterWidth + CellMargin;
}

void OffscreenComboBox::DefaultHandling(const OffscreenMessage& message) {
    if (!RouteNative(*this, comboRoutes, message)) {
        OffscreenWindow::DefaultHandling(message);
    }
}

void OffscreenComboBox::SetNativeText(const loam::String& newText) {
    OffscreenWindow::SetNativeText(newText);
    GetEdit()->SetNativeText(newText);
}

OffscreenEdit* OffscreenComboBox::GetEdit() {
    if (auto* edit = dynamic_cast<OffscreenEdit*>(FindChild(EditId))) {
        return edit;
    }
    auto made = MakeOffscreenWindow(ControlKind::Edit, StyleAutoHScroll, this);
    made->id = EditId;
    made->rect = Rect{0, 0, std::max(0, rect.GetWidth() - ArrowWidth), FieldHeight};
    made->visible = true;
    made->text = text;
    return static_cast<OffscreenEdit*>(GetOffscreenDesktop().AddWindow(std::move(made)));
}

int32_t OffscreenComboBox::Insert(int32_t at, const loam::String& rowText, uint32_t data) {
    auto place = rows.end();
    if (at >= 0 && at < GetCount()) {
        place = rows.begin() + at;
    } else if (at < 0 && sorted) {
        place = std::upper_bound(rows.begin(), rows.end(), rowText,
                                 [](const loam::String& value, const Row& entry) {
                                     return CompareFolded(value, entry.text) < 0;
                                 });
    }
    return static_cast<int32_t>(rows.insert(place, Row{rowText, data}) - rows.begin());
}

Point OffscreenComboBox::GetArrowPoint() const {
    return Point{rect.GetWidth() - ArrowWidth / 2, FieldHeight / 2};
}

Point OffscreenComboBox::GetListRowPoint(int32_t row) const {
    return Point{2, FieldHeight + row * RowHeight + RowHeight / 2};
}

void OffscreenComboBox::OnMouseDown(const OffscreenMessage& message) {
    if (!IsLeftButton(message)) {
        return;
    }
    const Point& point = message.point;
    if (dropped && point.y >= FieldHeight) {
        int32_t row = (point.y - FieldHeight) / RowHeight;
        if (IsRow(row)) {
            ChooseRow(row);
        }
        return;
    }
    if (point.y < FieldHeight && point.x >= rect.GetWidth() - ArrowWidth) {
        if (dropped) {
            Close();
        } else {
            Open();
        }
        return;
    }
    // A press in the field puts the caret at the end of its text.
    OffscreenHandle self = handle;
    GetOffscreenDesktop().SetFocus(GetEdit());
    if (auto* combo = dynamic_cast<OffscreenComboBox*>(GetOffscreenDesktop().Find(self))) {
        OffscreenEdit* edit = combo->GetEdit();
        edit->Select(edit->text.GetLength(), edit->text.GetLength());
    }
}

void OffscreenComboBox::ChooseRow(int32_t row) {
    OffscreenHandle self = handle;
    selected = row;
    SetNativeText(rows[static_cast<size_t>(row)].text);
    NotifyParent(*this, ControlEvent::SelectionChanged);
    if (auto* combo = dynamic_cast<OffscreenComboBox*>(GetOffscreenDesktop().Find(self))) {
        combo->Close();
    }
    NotifyWhileThere(self, ControlEvent::SelectionEnded);
}

void OffscreenComboBox::Open() {
    dropped = true;
    needsPaint = true;
    NotifyParent(*this, ControlEvent::ListOpened);
}

void OffscreenComboBox::Close() {
    dropped = false;
    needsPaint = true;
    NotifyParent(*this, ControlEvent::ListClosed);
}

} // namespace quilt
