#include "quilt/slider.h"

#include "quilt/imp_factory.h"
#include "quilt/message_target.h"

#include <iterator>

namespace quilt {

namespace {

// The kind of each ScrollAction, in the order of the actions.
constexpr int32_t sliderKinds[] = {
    MsgSliderLineUp, MsgSliderLineDown, MsgSliderPageUp, MsgSliderPageDown, MsgSliderThumbPosition,
    MsgSliderTrack,  MsgSliderTop,      MsgSliderBottom, MsgSliderEndTrack,
};

} // namespace

NotificationAnswer SliderImp::TranslateNotification(const NativeNotification& notification,
                                                    NotificationTranslation& out) {
    if (notification.event != ControlEvent::Scrolled ||
        notification.detail >= std::size(sliderKinds)) {
        return AnswerDefault;
    }
    out.kind = sliderKinds[notification.detail];
    return AnswerDispatch;
}

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
