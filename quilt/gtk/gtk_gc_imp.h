#pragma once

#include "quilt/font_imp.h"
#include "quilt/gc_imp.h"
#include "quilt/icon.h"

#include <gtk/gtk.h>

#include <string>

namespace quilt {

// A font as Pango describes it. The dialog font of the templates is the desktop's own font for
// controls, so that dialog units follow what the controls really show.
class Gtk_FontImp : public FontImp {
public:
    ~Gtk_FontImp() override;

    bool Create(const loam::String& face, int32_t points, FontWeight weight, uint32_t style,
                FontFamily family, FontPitch pitch) override;
    int32_t GetHeight() override;
    int32_t GetAverageWidth() override;
    int32_t GetPointSize() override;

    // The description to draw with; the desktop's font before Create.
    const PangoFontDescription* GetDescription();
    // Pango keeps underlining out of a font's description: the layout carries it.
    bool IsUnderlined() const { return underlined; }

private:
    PangoFontDescription* description = nullptr;
    bool underlined = false;
};

// An image from the icon theme or a file, as GDK holds it.
class Gtk_IconImp : public IconImp {
public:
    ~Gtk_IconImp() override;

    bool Load(const loam::ResourceId& resource) override;
    int32_t GetWidth() const override;
    int32_t GetHeight() const override;
    GdkPixbuf* GetPixbuf() const { return pixbuf; }

private:
    GdkPixbuf* pixbuf = nullptr;
};

// Draws with cairo and Pango on the window's paint context, which exists while the window
// paints. Without one it measures but draws nothing.
class Gtk_GCImp : public virtual GCImp {
public:
    ~Gtk_GCImp() override;

    bool Attach(Window& window) override;
    void Detach() override;
    // Draws for `window` on a cairo context that belongs to someone else: a widget's own
    // drawing, or an image.
    void UseContext(cairo_t* context, Window& window);

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
    bool PaintThemedPart(ThemedPart part, const Rect& rect, const Rect& clip,
                         uint32_t state) override;

    bool IsPainting() const { return cairo != nullptr; }

private:
    PangoLayout* MakeLayout(const loam::String& text, const Rect& rect, uint32_t flags);
    // Opaque text first covers what its lines take, from `at`, within `clip`.
    void PaintTextBackground(PangoLayout* layout, const Point& at, const Rect* clip);
    void ApplyPen();
    // Keeps what the window paints for the accessibility layer.
    void NotePaintedText(const loam::String& text);
    void SetColour(const Colour& colour);

    cairo_t* cairo = nullptr;
    GtkWidget* widget = nullptr;
    std::string* paintedText = nullptr;
};

class Gtk_RedrawGCImp : public RedrawGCImp, public Gtk_GCImp {
public:
    bool BeginRedraw(Window& window) override;
    void EndRedraw() override;
};

} // namespace quilt
