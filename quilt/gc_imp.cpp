#include "quilt/gc_imp.h"

#include "quilt/icon.h"
#include "quilt/window.h"

namespace quilt {

bool GCImp::GetClipRect(Rect& rect) {
    if (!IsAttached() || !GetNativeClipRect(rect)) {
        return false;
    }
    rect.Offset(originX, originY);
    return true;
}

void GCImp::UpdateOrigin() {
    if (!IsAttached()) {
        return;
    }
    originX = window->GetScrollPos(ScrollBarHorizontal);
    originY = window->GetScrollPos(ScrollBarVertical);
}

void GCImp::PushState() {
    savedStates.push_back(state);
}

void GCImp::PopState() {
    if (savedStates.empty()) {
        return;
    }
    state = savedStates.back();
    savedStates.pop_back();
}

Colour GCImp::SetTextColour(const Colour& colour) {
    Colour old = state.textColour;
    state.textColour = colour;
    return old;
}

void GCImp::MoveTo(int32_t x, int32_t y) {
    penPosition = ToWindow(x, y);
}

void GCImp::LineTo(int32_t x, int32_t y) {
    Point to = ToWindow(x, y);
    if (IsAttached()) {
        PaintLine(penPosition, to);
    }
    penPosition = to;
}

void GCImp::DrawRect(const Rect& rect, uint32_t mode) {
    if (IsAttached()) {
        PaintRect(ToWindow(rect), mode);
    }
}

void GCImp::DrawCircle(int32_t x, int32_t y, int32_t radius, uint32_t mode) {
    if (IsAttached()) {
        PaintCircle(ToWindow(x, y), radius, mode);
    }
}

void GCImp::DrawTextInRect(const loam::String& text, const Rect& rect, uint32_t flags) {
    if (!IsAttached()) {
        return;
    }
    Rect target = ToWindow(rect);
    flags |= TextNoPrefix;
    if ((flags & TextVCenter) != 0) {
        if ((flags & TextWordBreak) == 0) {
            flags |= TextSingleLine;
        } else {
            CentreWrappedText(text, target, flags);
        }
    }
    PaintText(text, target, flags);
}

// The platform centres a single line only, so wrapped text is measured and its rectangle moved
// down by hand. Text taller than the rectangle is not moved up: it starts at the top.
void GCImp::CentreWrappedText(const loam::String& text, Rect& rect, uint32_t flags) {
    Rect measured = rect;
    CalculateTextRect(text, measured, flags | TextCalcRect);
    int32_t spare = rect.GetHeight() - measured.GetHeight();
    if (spare > 0) {
        measured.Offset(0, spare / 2);
    }
    rect.top = measured.top;
    rect.bottom = measured.bottom;
}

void GCImp::DrawTextAt(const loam::String& text, int32_t x, int32_t y) {
    if (IsAttached()) {
        PaintTextAt(text, ToWindow(x, y));
    }
}

void GCImp::MeasureText(const loam::String& text, uint32_t flags, Rect& rect) {
    Rect measured = rect;
    CalculateTextRect(text, measured, flags | TextNoPrefix | TextCalcRect);
    if ((flags & TextWordBreak) != 0) {
        rect.top = measured.top;
        rect.bottom = measured.bottom;
        return;
    }
    rect = measured;
}

void GCImp::DrawEdge(const Rect& rect, uint32_t flags) {
    if (IsAttached()) {
        PaintEdge(ToWindow(rect), flags);
    }
}

void GCImp::DrawFocusRect(const Rect& rect) {
    if (IsAttached()) {
        PaintFocusRect(ToWindow(rect));
    }
}

void GCImp::DrawIcon(const Icon& icon, int32_t x, int32_t y) {
    if (IsAttached() && icon.IsLoaded()) {
        PaintIcon(*icon.GetImp(), ToWindow(x, y));
    }
}

bool GCImp::DrawThemedPart(ThemedPart part, const Rect& rect, const Rect& clip, uint32_t state) {
    return IsAttached() && PaintThemedPart(part, ToWindow(rect), ToWindow(clip), state);
}

Rect GCImp::ToWindow(const Rect& rect) const {
    Rect moved = rect;
    moved.Offset(-originX, -originY);
    return moved;
}

Point GCImp::ToWindow(int32_t x, int32_t y) const {
    return Point{x - originX, y - originY};
}

} // namespace quilt
