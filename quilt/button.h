#pragma once

#include "quilt/geometry.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>

namespace quilt {

class ButtonImp : public virtual WindowImp {
public:
    using WindowImp::Create;
    // A push button made by code in the parent's native window.
    virtual bool Create(Window* parent, const Rect& rect, int32_t id) = 0;
    virtual bool IsPushed() = 0;
};

// A push button. Its click reaches the dialog as MsgClicked with its id.
class Button : public Window {
public:
    Button();

    bool Create(Window* parent, const Rect& rect, int32_t id);
    bool IsPushed() { return buttonImp->IsPushed(); }

private:
    ButtonImp* buttonImp;
};

} // namespace quilt
