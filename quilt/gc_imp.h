#pragma once

#include "loam/string.h"
#include "quilt/colour.h"
#include "quilt/geometry.h"

#include <cstdint>
#include <vector>

namespace quilt {

class Font;
class Icon;
class IconImp;
class Window;

enum PenStyle : uint32_t {
    PenSolid = 0,
    PenDashed = 1,
    PenDotted = 2,
    PenDashDot = 3, // any other value draws solid
};

enum BackMode : uint32_t {
    BackModeTransparent = 1,
    BackModeOpaque = 2, // as any value but 1
};

// How a rectangle or circle is drawn.
enum DrawMode : uint32_t {
    DrawOutline = 0,
    DrawFill = 1,
    DrawOutlineAndFill = 2,
    DrawOutlineThenFill = 3,
};

// Text drawing flags; left and top alignment are the absence of the others.
enum TextFlags : uint32_t {
    TextCenter = 0x1,
    TextRight = 0x2,
    TextVCenter = 0x4,
    TextWordBreak = 0x10,
    TextSingleLine = 0x20,
    TextCalcRect = 0x400,
    // Always given by the context: an ampersand stays an ampersand, as file names need.
    TextNoPrefix = 0x800,
};

// The edges of a frame, any combination, all four sides.
enum EdgeFlags : uint32_t {
    EdgeRaisedInner = 2,
    EdgeSunkenInner = 4,
    EdgeRaisedOuter = 8,
    EdgeSunkenOuter = 16,
};

// What the desktop's theme may draw for the toolkit's own controls.
enum class ThemedPart {
    SizeGrip,
    CheckBox,    // the box of a check box, 13 by 13 pixels in the classic look
    ButtonFrame, // the face and frame of a push button
    RightArrow,  // the arrow button of a scroll bar that points right
};

// How a themed part is drawn, any combination.
enum ThemedState : uint32_t {
    ThemedHot = 1,     // the mouse is over it
    ThemedPressed = 2, // held down; wins over hot where a part shows only one
    ThemedChecked = 4,
    ThemedMixed = 8, // a check box that is neither checked nor unchecked
};

// The part of a drawing context that PushState saves.
struct GCState {
    uint32_t penStyle = PenSolid;
    Colour penColour = Black;
    int32_t penWidth = 1;
    uint32_t brushStyle = 0; // kept and saved; every brush is solid
    Colour brushColour = White;
    Colour backColour = White; // kept and saved; nothing paints with it
    // Opaque text stands on the native context's own background colour, white, which the back
    // colour above never reaches.
    uint32_t backMode = BackModeTransparent;
    Colour textColour = Black;
    Font* font = nullptr; // not owned; none: the platform's default font
};

// The platform side of a drawing context. The state and the coordinates are portable and live
// here: setters only store, and each drawing operation hands its primitive the state to apply,
// with coordinates moved from the window's scrolled space into the window by the origin. A
// context that is not attached draws nothing, but measures.
class GCImp {
public:
    GCImp() = default;
    GCImp(const GCImp&) = delete;
    GCImp& operator=(const GCImp&) = delete;
    virtual ~GCImp() = default;

    // False when the window has no native window.
    virtual bool Attach(Window& window) = 0;
    virtual void Detach() = 0;
    bool IsAttached() const { return window != nullptr; }

    // The area that drawing reaches, in scrolled coordinates.
    bool GetClipRect(Rect& rect);
    // Reads the window's scroll position, which maps scrolled coordinates onto the window.
    void UpdateOrigin();

    void PushState();
    // Takes back the last pushed state; with none pushed nothing changes.
    void PopState();
    const GCState& GetState() const { return state; }
    void SetPenStyle(uint32_t style) { state.penStyle = style; }
    void SetBrushStyle(uint32_t style) { state.brushStyle = style; }
    void SetBrushColour(const Colour& colour) { state.brushColour = colour; }
    void SetPenColour(const Colour& colour) { state.penColour = colour; }
    void SetBackColour(const Colour& colour) { state.backColour = colour; }
    void SetBackMode(uint32_t mode) { state.backMode = mode; }
    // Gives back the colour it replaces.
    Colour SetTextColour(const Colour& colour);
    void SetPenWidth(int32_t width) { state.penWidth = width; }
    void SetFont(Font* font) { state.font = font; }
    void ClearFont() { state.font = nullptr; }

    void MoveTo(int32_t x, int32_t y);
    void LineTo(int32_t x, int32_t y);
    void DrawRect(const Rect& rect, uint32_t mode);
    void DrawCircle(int32_t x, int32_t y, int32_t radius, uint32_t mode);
    // With TextVCenter a single line is centred, and so is wrapped text that fits; wrapped
    // text taller than the rectangle starts at its top.
    void DrawTextInRect(const loam::String& text, const Rect& rect, uint32_t flags);
    void DrawTextAt(const loam::String& text, int32_t x, int32_t y);
    // Measures in the selected font, regardless of the origin. With TextWordBreak the text
    // wraps in the width of `rect` and only top and bottom are changed; otherwise all four
    // sides are, left and top staying where they are.
    void MeasureText(const loam::String& text, uint32_t flags, Rect& rect);
    void DrawEdge(const Rect& rect, uint32_t flags);
    void DrawFocusRect(const Rect& rect);
    // At the icon's natural size, its top left corner at x, y. An empty icon draws nothing.
    void DrawIcon(const Icon& icon, int32_t x, int32_t y);
    // False when no theme runs: the caller then draws the classic way. `state` holds
    // ThemedState flags.
    bool DrawThemedPart(ThemedPart part, const Rect& rect, const Rect& clip, uint32_t state = 0);

protected:
    void SetWindow(Window* attached) { window = attached; }
    Window* GetWindow() const { return window; }

    // The primitives, in window coordinates, drawing with GetState().
    virtual bool GetNativeClipRect(Rect& rect) = 0;
    virtual void PaintLine(const Point& from, const Point& to) = 0;
    virtual void PaintRect(const Rect& rect, uint32_t mode) = 0;
    virtual void PaintCircle(const Point& centre, int32_t radius, uint32_t mode) = 0;
    virtual void PaintText(const loam::String& text, const Rect& rect, uint32_t flags) = 0;
    virtual void PaintTextAt(const loam::String& text, const Point& at) = 0;
    // The rectangle that `text` takes when drawn with `flags`: left and top stay, right and
    // bottom follow the text; with TextWordBreak it wraps in the width of `rect`.
    virtual void CalculateTextRect(const loam::String& text, Rect& rect, uint32_t flags) = 0;
    virtual void PaintEdge(const Rect& rect, uint32_t flags) = 0;
    virtual void PaintFocusRect(const Rect& rect) = 0;
    virtual void PaintIcon(IconImp& icon, const Point& at) = 0;
    virtual bool PaintThemedPart(ThemedPart part, const Rect& rect, const Rect& clip,
                                 uint32_t state) = 0;

private:
    Rect ToWindow(const Rect& rect) const;
    Point ToWindow(int32_t x, int32_t y) const;
    void CentreWrappedText(const loam::String& text, Rect& rect, uint32_t flags);

    Window* window = nullptr;
    GCState state;
    std::vector<GCState> savedStates;
    Point penPosition; // in window coordinates, as it was when set
    int32_t originX = 0;
    int32_t originY = 0;
};

// A context that is valid during one repaint of a window.
class RedrawGCImp : public virtual GCImp {
public:
    // False leaves the context unattached.
    virtual bool BeginRedraw(Window& window) = 0;
    virtual void EndRedraw() = 0;
};

} // namespace quilt
