#pragma once

#include "quilt/geometry.h"
#include "quilt/window.h"

#include <cstdint>

namespace quilt {

class GC;

// The grip in the bottom right corner of a resizable dialog. It is disabled, so a click on it
// reaches the dialog, which treats the grip's corner as its own sizing corner.
class SizeGrip : public Window {
public:
    static constexpr int32_t ControlId = 13042;
    static constexpr int32_t Width = 16;
    static constexpr int32_t Height = 16;

    // Where the grip goes in a client rectangle: its bottom right corner.
    static Rect GetGripRect(const Rect& client);

    // Makes the grip as a child of the dialog, in the corner of its client area.
    bool CreateInCorner(Window& dialog);
    // Follows the dialog to its new client size.
    void MoveToCorner(int32_t clientWidth, int32_t clientHeight);

    bool OnPaint() override;
};

// Paints a size grip over `rect`: with the desktop's theme where one runs, otherwise as three
// classic ridges of shadow and highlight.
void PaintSizeGrip(GC& gc, const Rect& rect, const Rect& clip);

} // namespace quilt
