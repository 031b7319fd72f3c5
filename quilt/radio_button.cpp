#include "quilt/radio_button.h"

#include "quilt/dialog_template.h"
#include "quilt/imp_factory.h"

namespace quilt {

namespace {

bool IsRadio(uint32_t style) {
    return (style & StyleRadio) != 0;
}

} // namespace

std::pair<size_t, size_t> FindRadioGroup(std::span<const uint32_t> styles, size_t index) {
    size_t first = index;
    while (first > 0 && (styles[first] & StyleGroup) == 0 && IsRadio(styles[first - 1])) {
        --first;
    }
    size_t last = index + 1;
    while (last < styles.size() && IsRadio(styles[last]) && (styles[last] & StyleGroup) == 0) {
        ++last;
    }
    return {first, last};
}

RadioButton::RadioButton() : Window(GetImpFactory().CreateRadioButtonImp()) {
    radioImp = dynamic_cast<RadioButtonImp*>(GetImp());
}

bool RadioButton::Create(Window* parent, const Rect& rect, bool autoCheck, int32_t id) {
    SetParent(parent);
    return radioImp->Create(parent, rect, autoCheck, id);
}

} // namespace quilt
