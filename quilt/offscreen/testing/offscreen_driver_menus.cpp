#include "quilt/offscreen/offscreen_popup_menu_imp.h"
#include "quilt/offscreen/testing/offscreen_driver.h"

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
