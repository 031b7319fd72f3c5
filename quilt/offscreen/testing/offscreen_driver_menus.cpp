#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_file_transfer_imp.h"
#include "quilt/offscreen/offscreen_list_controls.h"
#include "quilt/offscreen/offscreen_popup_menu_imp.h"
#include "quilt/offscreen/offscreen_window_imp.h"
#include "quilt/offscreen/testing/offscreen_driver.h"
#include "quilt/window.h"

#include <string>

namespace quilt {

void OffscreenDriver::OnNextMenu(MenuAnswer answer) {
    menuAnswers.push_back(std::move(answer));
}

OffscreenDriver::MenuAnswer OffscreenDriver::PickMenuItem(const char* text) {
    std::string wanted(text);
    return [wanted](const Offscreen_PopupMenuImp& menu) -> std::optional<size_t> {
        const std::vector<MenuItem>& items = menu.GetItems();
        for (size_t place = 0; place < items.size(); ++place) {
            if (!items[place].separator && wanted == items[place].text.GetCString()) {
                return place;
            }
        }
        return std::nullopt;
    };
}

void OffscreenDriver::RightClickRow(Dialog& dialog, int32_t id, int32_t row,
                                    std::optional<uint32_t> at) {
    auto* list = dynamic_cast<OffscreenListView*>(FindControl(dialog, id));
    if (list == nullptr) {
        return;
    }
    OffscreenMessage message{OffscreenMessageKind::MouseDown};
    message.flags = MouseRight;
    message.point = list->GetRowPoint(row);
    PostToControl(dialog, id, message, at);
    message.kind = OffscreenMessageKind::MouseUp;
    PostToControl(dialog, id, message, at);
}

void OffscreenDriver::PressMenuKey(Dialog& dialog, int32_t id, bool shiftF10,
                                   std::optional<uint32_t> at) {
    OffscreenMessage message{OffscreenMessageKind::KeyDown};
    message.value = shiftF10 ? KeyF10 : KeyMenu;
    message.flags = shiftF10 ? uint32_t{ModifierShift} : 0u;
    PostToControl(dialog, id, message, at);
    message.kind = OffscreenMessageKind::KeyUp;
    PostToControl(dialog, id, message, at);
}

loam::String OffscreenDriver::GetClipboardText() const {
    return Offscreen_FileTransferImp::GetClipboardText();
}

std::optional<loam::String> OffscreenDriver::DragRowOut(Dialog& dialog, int32_t id, int32_t row) {
    auto* list = dynamic_cast<OffscreenListView*>(FindControl(dialog, id));
    if (list == nullptr || !list->IsRow(row) || list->imp == nullptr) {
        return std::nullopt;
    }
    list->Select(row);
    FileDragSource* source = Offscreen_FileTransferImp::FindDragSource(*list->imp->GetOwner());
    loam::String path;
    if (source == nullptr || !source->GetDragFile(path)) {
        return std::nullopt;
    }
    return path;
}

std::optional<size_t> OffscreenDriver::AnswerMenu(const Offscreen_PopupMenuImp& menu) {
    ++menusShown;
    if (menuAnswers.empty()) {
        return std::nullopt;
    }
    MenuAnswer answer = std::move(menuAnswers.front());
    menuAnswers.pop_front();
    return answer(menu);
}

} // namespace quilt
