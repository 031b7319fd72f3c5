#include "quilt/slider.h"

#include "quilt/imp_factory.h"

namespace quilt {

Slider::Slider() : Window(GetImpFactory().CreateSliderImp()) {
    sliderImp = dynamic_cast<SliderImp*>(GetImp());
}

bool Slider::Create(Window* parent, const Rect& rect) {
    if (!sliderImp->Create(parent, rect)) {
        return false;
    }
    SetParent(parent);
    return true;
}

} // namespace quilt
