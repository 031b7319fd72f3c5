#include "quilt/offscreen/offscreen_list_controls.h"

#include "quilt/dialog_template.h"
#include "quilt/keys.h"

#include <algorithm>
#include <numeric>

namespace quilt {

namespace {

const loam::String emptyCell;

template <class Control> struct NativeRoute {
    OffscreenMessageKind kind;
    void (*handler)(Control&, const OffscreenMessage&);
};

template <class Control, size_t Count>
bool RouteNative(Control& control, const NativeRoute<Control> (&routes)[Count],
                 const OffscreenMessage& message) {
    for (const NativeRoute<Control>& route : routes) {
        if (route.kind == message.kind) {
            route.handler(control, message);
            return true;
        }
    }
    return false;
}

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

bool IsLeftButton(const OffscreenMessage& message) {
    return (message.flags & MouseLeft) != 0;
}

uint32_t AsDetail(int32_t value) {
    return static_cast<uint32_t>(value);
}

// Each notification may destroy the control: the next is sent only while it is still there.
void NotifyWhileThere(OffscreenHandle handle, int32_t code, uint32_t detail = 0) {
    if (OffscreenWindow* window = GetOffscreenDesktop().Find(handle)) {
        NotifyParent(*window, code, detail);
    }
}

void ListMouseDown(OffscreenListView& list, const OffscreenMessage& message) {
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
        NotifyParent(*view, NotifyListColumnClick, AsDetail(column));
        return;
    }
    view->Select(view->GetRowAt(message.point));
}

void ListDoubleClick(OffscreenListView& list, const OffscreenMessage& message) {
    if (!IsLeftButton(message) || list.GetColumnAt(message.point) >= 0) {
        return;
    }
    OffscreenHandle handle = list.handle;
    int32_t row = list.GetRowAt(message.point);
    list.Select(row);
    NotifyWhileThere(handle, NotifyListActivate, AsDetail(row));
}

void ListKeyDown(OffscreenListView& list, const OffscreenMessage& message) {
    int32_t selected = list.GetSelected();
    if (message.value == KeyDown && list.IsRow(selected + 1)) {
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
    if (message.code == NotifyEditChange) {
        NotifyParent(combo, NotifyComboEditChange);
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
    auto place = rows.end();
    if ((style & StyleSortAscending) != 0) {
        place = std::upper_bound(rows.begin(), rows.end(), text,
                                 [](const loam::String& value, const auto& entry) {
                                     return CompareFolded(value, entry->GetCell(0)) < 0;
                                 });
    } else if (at >= 0 && at < GetCount()) {
        place = rows.begin() + at;
    }
    auto inserted = rows.insert(place, std::move(row));
    needsPaint = true;
    return static_cast<int32_t>(inserted - rows.begin());
}

bool OffscreenListView::Remove(int32_t row) {
    if (!IsRow(row)) {
        return false;
    }
    rows.erase(rows.begin() + row);
    needsPaint = true;
    return true;
}

void OffscreenListView::Clear() {
    rows.clear();
    scrollPos[1] = 0;
    needsPaint = true;
}

void OffscreenListView::Select(int32_t row) {
    if (row == GetSelected() || (row != -1 && !IsRow(row))) {
        return;
    }
    for (auto& entry : rows) {
        entry->selected = false;
    }
    if (row != -1) {
        rows[static_cast<size_t>(row)]->selected = true;
    }
    needsPaint = true;
    NotifyParent(*this, NotifyListSelectionChange);
}

int32_t OffscreenListView::GetSelected() const {
    auto found =
        std::find_if(rows.begin(), rows.end(), [](const auto& entry) { return entry->selected; });
    return found != rows.end() ? static_cast<int32_t>(found - rows.begin()) : -1;
}

// The rows stay where they are while the comparison reads them, and move once at the end.
void OffscreenListView::Sort(const std::function<int32_t(int32_t, int32_t)>& compare) {
    std::vector<int32_t> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&compare](int32_t a, int32_t b) { return compare(a, b) < 0; });
    std::vector<std::unique_ptr<OffscreenListRow>> sorted;
    sorted.reserve(rows.size());
    for (int32_t index : order) {
        sorted.push_back(std::move(rows[static_cast<size_t>(index)]));
    }
    rows.swap(sorted);
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
    return Point{2, top + (row - scrollPos[1]) * RowHeight + RowHeight / 2};
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
    for (const auto& row : rows) {
        longest = std::max(longest, row->GetCell(column).GetLength());
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
    auto made = MakeOffscreenWindow(ControlClassEdit, StyleAutoHScroll, this);
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
    NotifyParent(*this, NotifyComboSelectionChange);
    if (auto* combo = dynamic_cast<OffscreenComboBox*>(GetOffscreenDesktop().Find(self))) {
        combo->Close();
    }
    NotifyWhileThere(self, NotifyComboSelectionEndOk);
}

void OffscreenComboBox::Open() {
    dropped = true;
    needsPaint = true;
    NotifyParent(*this, NotifyComboDropDown);
}

void OffscreenComboBox::Close() {
    dropped = false;
    needsPaint = true;
    NotifyParent(*this, NotifyComboCloseUp);
}

} // namespace quilt
