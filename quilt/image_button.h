#pragma once

#include "loam/resource.h"
#include "quilt/geometry.h"
#include "quilt/icon.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>

namespace quilt {

class GC;

// What an image button shows.
enum ImageButtonMode : int32_t {
    ImageButtonNothing = 0,
    ImageButtonUnchecked = 1, // an unchecked check box on a button
    ImageButtonChecked = 2,   // a checked check box on a button
    ImageButtonArrow = 3,     // a right arrow, as at the end of a scroll bar
    ImageButtonIcon = 4,      // the icon of SetIcon, centred on a button
};

// A push button that paints its own face: the theme's parts where the desktop has a theme, the
// classic drawing otherwise. Its click reaches the dialog as MsgClicked with its id.
class ImageButtonImp : public virtual WindowImp {
public:
    using WindowImp::Create;
    virtual bool Create(Window* parent, const Rect& rect, int32_t id) = 0;
    // Loads the icon and shows it; false when it can't be loaded, and the button then has none.
    bool SetIcon(const loam::ResourceId& resource);
    // Repaints at once in the new mode.
    void SetMode(int32_t newMode);
    int32_t GetMode() const { return mode; }
    virtual bool IsPushed() = 0;

    // Paints the face in `rect` of the context as the mode says.
    void PaintFace(GC& gc, const Rect& rect, bool pressed);
    // The mouse came over the button or left it.
    void SetHot(bool isHot);
    bool IsHot() const { return hot; }

private:
    int32_t mode = ImageButtonNothing;
    bool hot = false;
    Icon icon;
};

class ImageButton : public Window {
public:
    ImageButton();

    bool Create(Window* parent, const Rect& rect, int32_t id);
    bool SetIcon(const loam::ResourceId& resource) { return buttonImp->SetIcon(resource); }
    void SetMode(int32_t mode) { buttonImp->SetMode(mode); }
    int32_t GetMode() const { return buttonImp->GetMode(); }
    bool IsPushed() { return buttonImp->IsPushed(); }

protected:
    // For a derived button that brings its own kind of Imp.
    explicit ImageButton(std::unique_ptr<WindowImp> imp);

private:
    ImageButtonImp* buttonImp;
};

// The classic look of the themed parts, where the desktop has no theme. Each first offers the
// part to the theme.
void DrawButtonFrame(GC& gc, const Rect& rect, bool pressed, bool hot);
// `checkState` is 0, 1 or 2; the box is 13 by 13 pixels, centred in `rect`.
void DrawCheckBox(GC& gc, const Rect& rect, int32_t checkState, bool hot);
void DrawRightArrow(GC& gc, const Rect& rect, bool pressed, bool hot);

} // namespace quilt
