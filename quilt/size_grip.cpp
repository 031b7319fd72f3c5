#include "quilt/size_grip.h"

#include "quilt/gc.h"

#include <algorithm>

namespace quilt {

namespace {

constexpr Colour RidgeShadow{128, 128, 128};
constexpr Colour RidgeHighlight = White;

// One diagonal line from the bottom edge to the right edge, `distance` pixels from the corner.
void DrawDiagonal(GC& gc, const Rect& rect, int32_t distance) {
    gc.MoveTo(rect.right - distance, rect.bottom - 1);
    gc.LineTo(rect.right, rect.bottom - 1 - distance);
}

// Three ridges from the corner outward, each two shadow lines under a highlight, as far as
// the rectangle holds them.
void DrawClassicSizeGrip(GC& gc, const Rect& rect) {
    struct RidgeLine {
        int32_t distance;
        Colour colour;
    };
    static const RidgeLine lines[] = {
        {2, RidgeShadow},  {3, RidgeShadow},  {4, RidgeHighlight},
        {6, RidgeShadow},  {7, RidgeShadow},  {8, RidgeHighlight},
        {10, RidgeShadow}, {11, RidgeShadow}, {12, RidgeHighlight},
    };
    int32_t room = std::min(rect.GetWidth(), rect.GetHeight());
    gc.PushState();
    gc.SetPenStyle(PenSolid);
    gc.SetPenWidth(1);
    for (const RidgeLine& line : lines) {
        if (line.distance > room) {
            break;
        }
        gc.SetPenColour(line.colour);
        DrawDiagonal(gc, rect, line.distance);
    }
    gc.PopState();
}

} // namespace

Rect SizeGrip::GetGripRect(const Rect& client) {
    return Rect{client.right - Width, client.bottom - Height, client.right, client.bottom};
}

bool SizeGrip::CreateInCorner(Window& dialog) {
    Rect client;
    if (!dialog.GetClientRect(client)) {
        return false;
    }
    ChildControl childSpec{ControlKind::StaticLeft, loam::String(), 0,
                           GetGripRect(client),     ControlId,      false};
    if (!CreateControl(&dialog, childSpec)) {
        return false;
    }
    Enable(false);
    return true;
}

void SizeGrip::MoveToCorner(int32_t clientWidth, int32_t clientHeight) {
    SetRect(GetGripRect(Rect{0, 0, clientWidth, clientHeight}), true);
}

bool SizeGrip::OnPaint() {
    RedrawGC gc(*this);
    Rect client;
    Rect clip;
    if (GetClientRect(client) && gc.GetClipRect(clip)) {
        PaintSizeGrip(gc, client, clip);
    }
    return true;
}

void PaintSizeGrip(GC& gc, const Rect& rect, const Rect& clip) {
    if (!gc.DrawThemedPart(ThemedPart::SizeGrip, rect, clip)) {
        DrawClassicSizeGrip(gc, rect);
    }
}

} // namespace quilt
