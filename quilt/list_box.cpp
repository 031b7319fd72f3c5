#include "quilt/list_box.h"

#include "quilt/imp_factory.h"
#include "quilt/message_target.h"

#include <algorithm>
#include <numeric>

namespace quilt {

namespace {

int32_t AsRow(uint32_t detail) {
    return static_cast<int32_t>(detail);
}

} // namespace

const ListBoxImp::Route ListBoxImp::routes[] = {
    {ControlEvent::SelectionChanged, &ListBoxImp::OnSelectionChanged},
    {ControlEvent::ItemActivated, &ListBoxImp::OnItemActivated},
    {ControlEvent::ItemCheckChanged, &ListBoxImp::OnItemCheckChanged},
    {ControlEvent::ColumnClicked, &ListBoxImp::OnColumnClicked},
    {ControlEvent::ContextMenu, &ListBoxImp::OnContextMenu},
};

void ListBoxImp::EnableSorting() {
    DisableSorting();
    SortByColumn();
}

NotificationAnswer ListBoxImp::TranslateNotification(const NativeNotification& notification,
                                                     NotificationTranslation& out) {
    for (const Route& route : routes) {
        if (route.event == notification.event) {
            return (this->*route.handler)(notification, out);
        }
    }
    return AnswerDefault;
}

NotificationAnswer ListBoxImp::OnSelectionChanged(const NativeNotification&,
                                                  NotificationTranslation& out) {
    out.kind = MsgSelectionChange;
    return AnswerDispatch;
}

NotificationAnswer ListBoxImp::OnItemActivated(const NativeNotification& notification,
                                               NotificationTranslation& out) {
    out.kind = MsgItemActivate;
    out.parameter = AsRow(notification.detail);
    return AnswerDispatch;
}

NotificationAnswer ListBoxImp::OnItemCheckChanged(const NativeNotification& notification,
                                                  NotificationTranslation& out) {
    out.kind = MsgItemCheckChange;
    out.parameter = AsRow(notification.detail);
    return AnswerDispatch;
}

NotificationAnswer ListBoxImp::OnContextMenu(const NativeNotification& notification,
                                             NotificationTranslation& out) {
    out.kind = MsgContextMenu;
    out.parameter = static_cast<int32_t>(notification.detail);
    return AnswerDispatch;
}

// The same column again flips the direction; another column sorts ascending first.
NotificationAnswer ListBoxImp::OnColumnClicked(const NativeNotification& notification,
                                               NotificationTranslation&) {
    auto* list = dynamic_cast<ListControl*>(GetOwner());
    if (list == nullptr) {
        return AnswerHandled;
    }
    int32_t column = AsRow(notification.detail);
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

void ListBoxImp::SortByColumn() {
    auto* list = dynamic_cast<ListControl*>(GetOwner());
    if (list == nullptr) {
        return;
    }
    SortDirection direction =
        list->GetSortDirection() == SortDescending ? SortDescending : SortAscending;
    int32_t sign = direction == SortDescending ? -1 : 1;
    int32_t column = sortColumn;
    std::vector<int32_t> order(static_cast<size_t>(std::max(list->GetCount(), 0)));
    std::iota(order.begin(), order.end(), 0);
    // The rows stay where they are until the order is found; rows that compare equal keep theirs.
    list->BeginSortSnapshot(column);
    std::stable_sort(order.begin(), order.end(), [list, sign, column](int32_t a, int32_t b) {
        return sign * list->CompareItems(a, b, column) < 0;
    });
    list->EndSortSnapshot();
    if (order.size() > 1) {
        ReorderRows(order);
    }
    ShowSortColumn(column, direction);
}

ListBox::ListBox() : ListControl(GetImpFactory().CreateListBoxImp()) {
    boxImp = dynamic_cast<ListBoxImp*>(GetImp());
}

void ListBox::CheckAll() {
    for (int32_t row = 0; row < GetCount(); ++row) {
        SetItemChecked(row, true);
    }
}

void ListBox::UncheckAll() {
    for (int32_t row = 0; row < GetCount(); ++row) {
        SetItemChecked(row, false);
    }
}

} // namespace quilt
