#pragma once

#include "quilt/gc_imp.h"

#include <memory>

namespace quilt {

// A drawing context for one drawing job on a window. Coordinates are in the window's scrolled
// space; see GCImp for what each operation does.
class GC {
public:
    // Attached to the window; a window without a native window leaves it unattached.
    explicit GC(Window& window);
    // Unattached: it measures text, and draws nothing.
    GC();
    explicit GC(std::unique_ptr<GCImp> imp);
    GC(const GC&) = delete;
    GC& operator=(const GC&) = delete;
    virtual ~GC();

    GCImp* GetImp() const { return imp.get(); }
    bool IsAttached() const { return imp->IsAttached(); }
    const GCState& GetState() const { return imp->GetState(); }

    bool GetClipRect(Rect& rect) { return imp->GetClipRect(rect); }
    void UpdateOrigin() { imp->UpdateOrigin(); }
    void PushState() { imp->PushState(); }
    void PopState() { imp->PopState(); }
    void SetPenStyle(uint32_t style) { imp->SetPenStyle(style); }
    void SetBrushStyle(uint32_t style) { imp->SetBrushStyle(style); }
    void SetBrushColour(const Colour& colour) { imp->SetBrushColour(colour); }
    void SetPenColour(const Colour& colour) { imp->SetPenColour(colour); }
    void SetBackColour(const Colour& colour) { imp->SetBackColour(colour); }
    void SetBackMode(uint32_t mode) { imp->SetBackMode(mode); }
    Colour SetTextColour(const Colour& colour) { return imp->SetTextColour(colour); }
    void SetPenWidth(int32_t width) { imp->SetPenWidth(width); }
    void SetFont(Font* font) { imp->SetFont(font); }
    void ClearFont() { imp->ClearFont(); }
    void MoveTo(int32_t x, int32_t y) { imp->MoveTo(x, y); }
    void LineTo(int32_t x, int32_t y) { imp->LineTo(x, y); }
    void DrawRect(const Rect& rect, uint32_t mode) { imp->DrawRect(rect, mode); }
    void DrawCircle(int32_t x, int32_t y, int32_t radius, uint32_t mode) {
        imp->DrawCircle(x, y, radius, mode);
    }
    void DrawTextInRect(const loam::String& text, const Rect& rect, uint32_t flags) {
        imp->DrawTextInRect(text, rect, flags);
    }
    void DrawTextAt(const loam::String& text, int32_t x, int32_t y) { imp->DrawTextAt(text, x, y); }
    void MeasureText(const loam::String& text, uint32_t flags, Rect& rect) {
        imp->MeasureText(text, flags, rect);
    }
    void DrawEdge(const Rect& rect, uint32_t flags) { imp->DrawEdge(rect, flags); }
    void DrawFocusRect(const Rect& rect) { imp->DrawFocusRect(rect); }
    void DrawIcon(const Icon& icon, int32_t x, int32_t y) { imp->DrawIcon(icon, x, y); }
    bool DrawThemedPart(ThemedPart part, const Rect& rect, const Rect& clip, uint32_t state = 0) {
        return imp->DrawThemedPart(part, rect, clip, state);
    }

private:
    std::unique_ptr<GCImp> imp;
};

// The context of one repaint, made on the stack in an OnPaint.
class RedrawGC : public GC {
public:
    explicit RedrawGC(Window& window);
    RedrawGC(std::unique_ptr<RedrawGCImp> imp, Window& window);
    ~RedrawGC() override;

private:
    RedrawGC(RedrawGCImp* imp, Window& window);

    RedrawGCImp* redrawImp;
};

} // namespace quilt
