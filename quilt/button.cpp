#include "quilt/button.h"

#include "quilt/imp_factory.h"

namespace quilt {

Button::Button() : Window(GetImpFactory().CreateButtonImp()) {
    buttonImp = dynamic_cast<ButtonImp*>(GetImp());
}

bool Button::Create(Window* parent, const Rect& rect, int32_t id) {
    SetParent(parent);
    return buttonImp->Create(parent, rect, id);
}

} // namespace quilt
