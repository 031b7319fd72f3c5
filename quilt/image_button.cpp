#include "quilt/image_button.h"

#include "quilt/dialog_imp.h"
#include "quilt/gc.h"
#include "quilt/imp_factory.h"

namespace quilt {

namespace {

constexpr Colour buttonFace{212, 208, 200};
constexpr Colour arrowColour{0, 0, 0};
constexpr int32_t checkBoxSize = 13;
constexpr int32_t arrowHeight = 7; // the arrow's longest column; it points right

uint32_t ThemedStateOf(bool pressed, bool hot) {
    return (pressed ? ThemedPressed : 0u) | (hot ? ThemedHot : 0u);
}

Rect CentredSquare(const Rect& rect, int32_t size) {
    int32_t left = rect.left + (rect.GetWidth() - size) / 2;
    int32_t top = rect.top + (rect.GetHeight() - size) / 2;
    return Rect{left, top, left + size, top + size};
}

// The tick of a checked box, three pixels thick, from the left down to the bottom and up right.
void DrawTick(GC& gc, const Rect& box) {
    for (int32_t thickness = 0; thickness < 3; ++thickness) {
        gc.MoveTo(box.left + 3, box.top + 5 + thickness);
        gc.LineTo(box.left + 5, box.top + 7 + thickness);
        gc.LineTo(box.left + 10, box.top + 2 + thickness);
    }
}

} // namespace

void DrawButtonFrame(GC& gc, const Rect& rect, bool pressed, bool hot) {
    if (gc.DrawThemedPart(ThemedPart::ButtonFrame, rect, rect, ThemedStateOf(pressed, hot))) {
        return;
    }
    gc.PushState();
    gc.SetBrushColour(buttonFace);
    gc.DrawRect(rect, DrawFill);
    gc.DrawEdge(rect,
                pressed ? EdgeSunkenOuter | EdgeSunkenInner : EdgeRaisedOuter | EdgeRaisedInner);
    gc.PopState();
}

void DrawCheckBox(GC& gc, const Rect& rect, int32_t checkState, bool hot) {
    uint32_t state = hot ? uint32_t{ThemedHot} : 0u;
    if (checkState == CheckStateChecked) {
        state |= ThemedChecked;
    } else if (checkState == CheckStateIndeterminate) {
        state |= ThemedMixed;
    }
    Rect box = CentredSquare(rect, checkBoxSize);
    if (gc.DrawThemedPart(ThemedPart::CheckBox, box, rect, state)) {
        return;
    }
    gc.PushState();
    gc.SetBrushColour(White);
    gc.DrawRect(box, DrawFill);
    gc.DrawEdge(box, EdgeSunkenOuter | EdgeSunkenInner);
    if (checkState == CheckStateChecked) {
        gc.SetPenColour(Black);
        DrawTick(gc, box);
    }
    gc.PopState();
}

void DrawRightArrow(GC& gc, const Rect& rect, bool pressed, bool hot) {
    if (gc.DrawThemedPart(ThemedPart::RightArrow, rect, rect, ThemedStateOf(pressed, hot))) {
        return;
    }
    DrawButtonFrame(gc, rect, pressed, false);
    gc.PushState();
    gc.SetPenColour(arrowColour);
    int32_t shift = pressed ? 1 : 0;
    int32_t left = rect.left + (rect.GetWidth() - (arrowHeight + 1) / 2) / 2 + shift;
    int32_t top = rect.top + (rect.GetHeight() - arrowHeight) / 2 + shift;
    for (int32_t column = 0; column <= arrowHeight / 2; ++column) {
        gc.MoveTo(left + column, top + column);
        gc.LineTo(left + column, top + arrowHeight - column);
    }
    gc.PopState();
}

bool ImageButtonImp::SetIcon(const loam::ResourceId& resource) {
    if (!icon.Load(resource)) {
        return false;
    }
    SetMode(ImageButtonIcon);
    return true;
}

void ImageButtonImp::SetMode(int32_t newMode) {
    mode = newMode;
    Invalidate(nullptr);
}

void ImageButtonImp::SetHot(bool isHot) {
    if (hot != isHot) {
        hot = isHot;
        Invalidate(nullptr);
    }
}

void ImageButtonImp::PaintFace(GC& gc, const Rect& rect, bool pressed) {
    if (mode == ImageButtonArrow) {
        DrawRightArrow(gc, rect, pressed, hot);
        return;
    }
    if (mode < ImageButtonUnchecked || mode > ImageButtonIcon) {
        return;
    }
    DrawButtonFrame(gc, rect, pressed, hot);
    if (mode == ImageButtonIcon) {
        gc.DrawIcon(icon, rect.left + (rect.GetWidth() - icon.GetWidth()) / 2,
                    rect.top + (rect.GetHeight() - icon.GetHeight()) / 2);
        return;
    }
    DrawCheckBox(gc, rect, mode == ImageButtonChecked ? CheckStateChecked : CheckStateUnchecked,
                 false);
}

ImageButton::ImageButton() : ImageButton(GetImpFactory().CreateImageButtonImp()) {}

ImageButton::ImageButton(std::unique_ptr<WindowImp> imp) : Window(std::move(imp)) {
    buttonImp = dynamic_cast<ImageButtonImp*>(GetImp());
}

bool ImageButton::Create(Window* parent, const Rect& rect, int32_t id) {
    SetParent(parent);
    return buttonImp->Create(parent, rect, id);
}

} // namespace quilt
