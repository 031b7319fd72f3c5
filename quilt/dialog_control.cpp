#include "quilt/dialog_control.h"

#include "quilt/imp_factory.h"

namespace quilt {

bool DialogControlImp::BindToControl(Window* parent, int32_t id) {
    Rect rect;
    bool tabStop = false;
    return GetNativeHandle() == nullptr && RemovePlaceholder(parent, id, rect, tabStop) &&
           Create(parent, rect, id, tabStop);
}

DialogControl::DialogControl() : Window(GetImpFactory().CreateDialogControlImp()) {
    controlImp = dynamic_cast<DialogControlImp*>(GetImp());
}

bool DialogControl::Create(Window* parent, const Rect& rect, int32_t id, bool tabStop) {
    SetParent(parent);
    return controlImp->Create(parent, rect, id, tabStop);
}

} // namespace quilt
