#pragma once

#include "quilt/geometry.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>

namespace quilt {

class SliderImp : public virtual WindowImp {
public:
    using WindowImp::Create;
    // A slider with a border, made by code with a free id.
    virtual bool Create(Window* parent, const Rect& rect) = 0;
    // The position is held within the new range.
    virtual void SetRange(int32_t minimum, int32_t maximum) = 0;
    virtual void GetRange(int32_t& minimum, int32_t& maximum) = 0;
    virtual void SetPos(int32_t position) = 0;
    virtual int32_t GetPos() = 0;
    // Each ScrollAction is a MsgSlider... kind.
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;
};

// A track bar. What the user does with it reaches the dialog as the MsgSlider... kinds.
class Slider : public Window {
public:
    Slider();

    void SetRange(int32_t minimum, int32_t maximum) { sliderImp->SetRange(minimum, maximum); }
    void GetRange(int32_t& minimum, int32_t& maximum) { sliderImp->GetRange(minimum, maximum); }
    void SetPos(int32_t position) { sliderImp->SetPos(position); }
    int32_t GetPos() { return sliderImp->GetPos(); }
    bool Create(Window* parent, const Rect& rect);

private:
    SliderImp* sliderImp;
};

} // namespace quilt
