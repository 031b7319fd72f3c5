#pragma once

#include "loam/string.h"
#include "quilt/dialog_units.h"
#include "quilt/font_imp.h"
#include "quilt/gc_imp.h"
#include "quilt/icon.h"

#include <cstdint>
#include <vector>

namespace quilt {

// Drawing on the offscreen backend paints nothing, and text is measured by a fixed model that
// tests can count on to the pixel.
//
// Fonts. The offscreen screen has 144 pixels per inch, so a font of p points is 2p pixels high
// and p pixels wide per byte: every byte of text, a blank or an ampersand alike, has the same
// width. Face, weight and style change nothing. A font that was never created, and a context
// with no font selected, measure as the dialog font of 8 points: 8 by 16 pixels, so that a
// dialog unit is exactly 2 by 2 pixels. A size outside 1 to 1000 points makes no font.
//
// Measuring text. The measured rectangle keeps its left and top; its height is the number of
// lines times the line height, and its width that of the widest line.
// - With TextSingleLine the text is one line, line end bytes included.
// - Otherwise "\r\n", "\n" and "\r" each end a line, and a line end at the very end of the text
//   opens no further line.
// - With TextWordBreak, and without TextSingleLine, each of those lines wraps in the width of
//   the rectangle, holding as many bytes as fit but at least one. A wrapped line takes as many
//   blank-separated words as fit whole; the blanks where it breaks belong to no line. A word
//   that does not fit on a line of its own is broken after the last byte that fits. Blanks
//   are spaces; those at the start of a line of the text stay, and trailing ones that fit
//   count in the width.
// - Empty text measures 0 by 0, or 0 wide and one line high with TextSingleLine.

// What a drawing operation of an offscreen context was, as a test reads it.
enum class OffscreenDrawingKind {
    Line,
    Rect,
    Circle,
    Text,
    TextAt,
    Edge,
    FocusRect,
    Icon,
};

// One drawing operation, in the window's coordinates (the origin taken off).
struct OffscreenDrawing {
    OffscreenDrawingKind kind = OffscreenDrawingKind::Line;
    const Window* window = nullptr;
    // A line runs from (left, top) to (right, bottom); a circle is given by its square; text
    // by the rectangle it was drawn in, and text drawn at a point by the rectangle it covers;
    // an icon by the rectangle it covers, its image in `text`.
    Rect rect;
    // A rectangle's or a circle's DrawMode, the text flags as the platform got them, the
    // EdgeFlags of an edge.
    uint32_t flags = 0;
    loam::String text;
    GCState state;
};

// Where the offscreen contexts hand each drawing operation: nowhere unless a sink is installed,
// as a test installs one to read what was drawn.
class OffscreenDrawingSink {
public:
    virtual void Draw(const OffscreenDrawing& drawing) = 0;

protected:
    ~OffscreenDrawingSink() = default;
};

OffscreenDrawingSink* GetDrawingSink();
// Null: drawings go nowhere. The sink is not owned.
void SetDrawingSink(OffscreenDrawingSink* sink);

class Offscreen_FontImp : public FontImp {
public:
    static constexpr int32_t PixelsPerInch = 144;
    static constexpr int32_t MaximumPoints = 1000;

    bool Create(const loam::String& face, int32_t points, FontWeight weight, uint32_t style,
                FontFamily family, FontPitch pitch) override;
    int32_t GetHeight() override { return height; }
    int32_t GetAverageWidth() override { return height / 2; }
    int32_t GetPointSize() override { return height * 72 / PixelsPerInch; }

private:
    int32_t height = DialogFontPoints * PixelsPerInch / 72;
};

// An icon of the offscreen desktop is its image's name, IconNaturalSize square.
class Offscreen_IconImp : public IconImp {
public:
    bool Load(const loam::ResourceId& resource) override;
    int32_t GetWidth() const override { return IconNaturalSize; }
    int32_t GetHeight() const override { return IconNaturalSize; }
    const loam::String& GetImage() const { return image; }

private:
    loam::String image;
};

class Offscreen_GCImp : public virtual GCImp {
public:
    ~Offscreen_GCImp() override;

    bool Attach(Window& window) override;
    void Detach() override;

protected:
    bool GetNativeClipRect(Rect& rect) override;
    void PaintLine(const Point& from, const Point& to) override;
    void PaintRect(const Rect& rect, uint32_t mode) override;
    void PaintCircle(const Point& centre, int32_t radius, uint32_t mode) override;
    void PaintText(const loam::String& text, const Rect& rect, uint32_t flags) override;
    void PaintTextAt(const loam::String& text, const Point& at) override;
    void CalculateTextRect(const loam::String& text, Rect& rect, uint32_t flags) override;
    void PaintEdge(const Rect& rect, uint32_t flags) override;
    void PaintFocusRect(const Rect& rect) override;
    void PaintIcon(IconImp& icon, const Point& at) override;
    // The offscreen desktop has no theme.
    bool PaintThemedPart(ThemedPart, const Rect&, const Rect&, uint32_t) override { return false; }

private:
    void Record(OffscreenDrawingKind kind, const Rect& rect, uint32_t flags,
                const loam::String& text = loam::String());
};

// A repaint offscreen is the whole client area, and nothing is there to validate.
class Offscreen_RedrawGCImp : public RedrawGCImp, public Offscreen_GCImp {
public:
    bool BeginRedraw(Window& window) override { return Attach(window); }
    void EndRedraw() override { Detach(); }
};

} // namespace quilt
