#include "quilt/offscreen/offscreen_popup_menu_imp.h"

namespace quilt {

// A pick of a greyed item or of a separator does what a click on one does: nothing is chosen.
int32_t Offscreen_PopupMenuImp::Track(const std::vector<MenuItem>& shown, Window& owner,
                                      const Rect& shownArea, MenuSide shownSide) {
    items = &shown;
    window = &owner;
    area = shownArea;
    side = shownSide;
    std::optional<size_t> picked = GetAnswerer() ? GetAnswerer()(*this) : std::nullopt;
    items = nullptr;
    window = nullptr;
    if (!picked || *picked >= shown.size()) {
        return 0;
    }
    const MenuItem& item = shown[*picked];
    return item.enabled && !item.separator ? item.command : 0;
}

void Offscreen_PopupMenuImp::SetAnswerer(Answerer answerer) {
    GetAnswerer() = std::move(answerer);
}

Offscreen_PopupMenuImp::Answerer& Offscreen_PopupMenuImp::GetAnswerer() {
    static Answerer answerer;
    return answerer;
}

} // namespace quilt
