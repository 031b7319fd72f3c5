#pragma once

#include "quilt/geometry.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>

namespace quilt {

// A window of the toolkit's own inside a dialog, where the dialog's template holds a
// placeholder: binding takes the placeholder's place, id and tab stop, and the placeholder
// goes. The window paints and takes input through its owner's On... operations.
class DialogControlImp : public virtual WindowImp {
public:
    using WindowImp::Create;
    // A child window of the toolkit's class in `parent`'s client area.
    virtual bool Create(Window* parent, const Rect& rect, int32_t id, bool tabStop) = 0;
    bool BindToControl(Window* parent, int32_t id) override;

protected:
    // Takes the placeholder `id` out of `parent`: the rectangle it covered, in the parent's
    // client coordinates and with its sunken edge, and whether it was a tab stop. False when
    // there is no such control.
    virtual bool RemovePlaceholder(Window* parent, int32_t id, Rect& rect, bool& tabStop) = 0;
};

class DialogControl : public Window {
public:
    DialogControl();

    bool Create(Window* parent, const Rect& rect, int32_t id, bool tabStop);

private:
    DialogControlImp* controlImp;
};

} // namespace quilt
