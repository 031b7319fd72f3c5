#pragma once

#include "quilt/geometry.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>
#include <optional>

namespace quilt {

// Every native progress bar runs from 0 to this, whatever range its caller works in.
constexpr int32_t ProgressNativeMaximum = 65535;

// A value of the caller's range as a native position; none for a value outside the range or a
// range that isn't one.
std::optional<int32_t> ScaleProgress(int32_t value, int32_t minimum, int32_t maximum);

class ProgressBarImp : public virtual WindowImp {
public:
    using WindowImp::Create;
    virtual void SetRange(int32_t minimum, int32_t maximum) = 0;
    // A value outside the range is ignored.
    virtual void SetPos(int32_t value) = 0;
    // A progress bar with a border, made by code.
    virtual bool Create(Window* parent, const Rect& rect, int32_t id) = 0;
};

class ProgressBar : public Window {
public:
    ProgressBar();

    void SetRange(int32_t minimum, int32_t maximum) { barImp->SetRange(minimum, maximum); }
    void SetPos(int32_t value) { barImp->SetPos(value); }
    bool Create(Window* parent, const Rect& rect, int32_t id);

private:
    ProgressBarImp* barImp;
};

} // namespace quilt
