#pragma once

#include "quilt/geometry.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace quilt {

// A radio button belongs to the group of radio buttons that stand next to it in its parent's
// tab order; a button with StyleGroup starts a new group. A click on an automatic one checks it
// and unchecks the other automatic ones of its group; the program sets the state of the others.
class RadioButtonImp : public virtual WindowImp {
public:
    using WindowImp::Create;
    // 0 or 1, and 2 without a native window.
    virtual int32_t GetState() = 0;
    // Sets the native state even when it is the present one, and tells nobody; without a native
    // window nothing happens.
    virtual void SetState(int32_t state) = 0;
    virtual bool Create(Window* parent, const Rect& rect, bool autoCheck, int32_t id) = 0;
};

// The group of the radio button at `index`, given the ControlStyle bits of all the controls of
// its parent in tab order: the first index of the group and the one past its last.
std::pair<size_t, size_t> FindRadioGroup(std::span<const uint32_t> styles, size_t index);

// Its click reaches the dialog as MsgClicked with its id.
class RadioButton : public Window {
public:
    RadioButton();

    int32_t GetState() { return radioImp->GetState(); }
    void SetState(int32_t state) { radioImp->SetState(state); }
    bool IsChecked() { return GetState() == 1; }
    void SetChecked(bool checked) { SetState(checked ? 1 : 0); }
    bool Create(Window* parent, const Rect& rect, bool autoCheck, int32_t id);

private:
    RadioButtonImp* radioImp;
};

} // namespace quilt
