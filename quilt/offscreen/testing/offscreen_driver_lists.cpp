#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_browse_dialog_imp.h"
#include "quilt/offscreen/offscreen_list_controls.h"
#include "quilt/offscreen/testing/offscreen_driver.h"

namespace quilt {

namespace {

OffscreenListView* AsListView(OffscreenWindow* window) {
    return dynamic_cast<OffscreenListView*>(window);
}

} // namespace

void OffscreenDriver::PostMouseToControl(Dialog& dialog, int32_t id, OffscreenMessageKind kind,
                                         Point point, std::optional<uint32_t> at) {
    OffscreenMessage message{kind};
    message.flags = MouseLeft;
    message.point = point;
    PostToControl(dialog, id, message, at);
}

void OffscreenDriver::PressAndRelease(Dialog& dialog, int32_t id, Point point,
                                      std::optional<uint32_t> at) {
    PostMouseToControl(dialog, id, OffscreenMessageKind::MouseDown, point, at);
    PostMouseToControl(dialog, id, OffscreenMessageKind::MouseUp, point, at);
}

void OffscreenDriver::ClickColumnHeader(Dialog& dialog, int32_t id, int32_t column,
                                        std::optional<uint32_t> at) {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    if (list == nullptr) {
        return;
    }
    PressAndRelease(dialog, id, list->GetHeaderPoint(column), at);
}

void OffscreenDriver::ClickRow(Dialog& dialog, int32_t id, int32_t row,
                               std::optional<uint32_t> at) {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    if (list == nullptr) {
        return;
    }
    PressAndRelease(dialog, id, list->GetRowPoint(row), at);
}

void OffscreenDriver::DoubleClickRow(Dialog& dialog, int32_t id, int32_t row,
                                     std::optional<uint32_t> at) {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    if (list == nullptr) {
        return;
    }
    ClickRow(dialog, id, row, at);
    Point point = list->GetRowPoint(row);
    PostMouseToControl(dialog, id, OffscreenMessageKind::MouseDoubleClick, point, at);
    PostMouseToControl(dialog, id, OffscreenMessageKind::MouseUp, point, at);
}

void OffscreenDriver::ClickCheckBox(Dialog& dialog, int32_t id, int32_t row,
                                    std::optional<uint32_t> at) {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    if (list == nullptr) {
        return;
    }
    PressAndRelease(dialog, id, list->GetCheckBoxPoint(row), at);
}

int32_t OffscreenDriver::GetRowCount(Dialog& dialog, int32_t id) const {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    return list != nullptr ? list->GetCount() : 0;
}

loam::String OffscreenDriver::GetCellText(Dialog& dialog, int32_t id, int32_t row,
                                          int32_t column) const {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    if (list == nullptr || !list->IsRow(row)) {
        return loam::String();
    }
    return list->GetRow(row).GetCell(column);
}

int32_t OffscreenDriver::GetSelectedRow(Dialog& dialog, int32_t id) const {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    return list != nullptr ? list->GetSelected() : -1;
}

int32_t OffscreenDriver::GetSortColumn(Dialog& dialog, int32_t id, SortDirection& direction) const {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    if (list == nullptr) {
        return -1;
    }
    direction = list->sortDirection;
    return list->sortColumn;
}

loam::String OffscreenDriver::GetColumnName(Dialog& dialog, int32_t id, int32_t column) const {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    if (list == nullptr || column < 0 || static_cast<size_t>(column) >= list->columns.size()) {
        return loam::String();
    }
    return list->columns[static_cast<size_t>(column)].name;
}

int32_t OffscreenDriver::GetColumnWidth(Dialog& dialog, int32_t id, int32_t column) const {
    OffscreenListView* list = AsListView(FindControl(dialog, id));
    if (list == nullptr || column < 0 || static_cast<size_t>(column) >= list->columns.size()) {
        return 0;
    }
    return list->columns[static_cast<size_t>(column)].width;
}

void OffscreenDriver::ToggleDropDown(Dialog& dialog, int32_t id, std::optional<uint32_t> at) {
    auto* combo = dynamic_cast<OffscreenComboBox*>(FindControl(dialog, id));
    if (combo != nullptr) {
        PostMouseToControl(dialog, id, OffscreenMessageKind::MouseDown, combo->GetArrowPoint(), at);
    }
}

void OffscreenDriver::ChooseDropDownRow(Dialog& dialog, int32_t id, int32_t row,
                                        std::optional<uint32_t> at) {
    auto* combo = dynamic_cast<OffscreenComboBox*>(FindControl(dialog, id));
    if (combo != nullptr) {
        PostMouseToControl(dialog, id, OffscreenMessageKind::MouseDown, combo->GetListRowPoint(row),
                           at);
    }
}

std::vector<loam::String> OffscreenDriver::GetDropDownRows(Dialog& dialog, int32_t id) const {
    std::vector<loam::String> texts;
    if (auto* combo = dynamic_cast<OffscreenComboBox*>(FindControl(dialog, id))) {
        for (const OffscreenComboBox::Row& row : combo->rows) {
            texts.push_back(row.text);
        }
    }
    return texts;
}

void OffscreenDriver::OnNextFolderChoice(FolderAnswer answer) {
    folderAnswers.push_back(std::move(answer));
}

std::optional<loam::String>
OffscreenDriver::AnswerFolderChoice(Offscreen_BrowseDialogImp& chooser) {
    if (folderAnswers.empty()) {
        return std::nullopt;
    }
    FolderAnswer answer = std::move(folderAnswers.front());
    folderAnswers.pop_front();
    return answer(chooser);
}

} // namespace quilt
