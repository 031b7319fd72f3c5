#include "quilt/gtk/gtk_gc_imp.h"

#include "quilt/dialog_units.h"
#include "quilt/font.h"
#include "quilt/gtk/gtk_support.h"
#include "quilt/window.h"

#include <cmath>
#include <cstring>

namespace quilt {

namespace {

// Every letter once, as average character widths are measured.
constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr int32_t alphabetLength = 52;

constexpr Colour edgeHighlight{255, 255, 255};
constexpr Colour edgeLight{227, 227, 227};
constexpr Colour edgeShadow{160, 160, 160};
constexpr Colour edgeDarkShadow{105, 105, 105};

// One line of an edge: its colour above and to the left, and below and to the right, and how
// far inside the rectangle it runs.
struct EdgeLine {
    uint32_t flag;
    Colour topLeft;
    Colour bottomRight;
    int32_t inset;
};

constexpr EdgeLine edgeLines[] = {
    {EdgeRaisedOuter, edgeLight, edgeDarkShadow, 0},
    {EdgeSunkenOuter, edgeShadow, edgeHighlight, 0},
    {EdgeRaisedInner, edgeHighlight, edgeShadow, 1},
    {EdgeSunkenInner, edgeDarkShadow, edgeLight, 1},
};

struct DashPattern {
    uint32_t style;
    double dashes[4];
    int count;
};

constexpr DashPattern dashPatterns[] = {
    {PenDashed, {6, 2}, 2},
    {PenDotted, {1, 1}, 2},
    {PenDashDot, {6, 2, 1, 2}, 4},
};

PangoFontDescription* DesktopFont() {
    gchar* name = nullptr;
    g_object_get(gtk_settings_get_default(), "gtk-font-name", &name, nullptr);
    PangoFontDescription* description = pango_font_description_from_string(name ? name : "Sans 10");
    g_free(name);
    return description;
}

PangoContext* MeasuringContext() {
    static PangoContext* context = gdk_pango_context_get();
    return context;
}

int32_t ToPixels(int units) {
    return static_cast<int32_t>(std::lround(static_cast<double>(units) / PANGO_SCALE));
}

} // namespace

Gtk_FontImp::~Gtk_FontImp() {
    if (description != nullptr) {
        pango_font_description_free(description);
    }
}

bool Gtk_FontImp::Create(const loam::String& face, int32_t points, FontWeight weight,
                         uint32_t style, FontFamily, FontPitch) {
    if (description != nullptr) {
        pango_font_description_free(description);
    }
    description = DesktopFont();
    if (std::strcmp(face.GetCString(), DialogFontFace) != 0) {
        pango_font_description_set_family(description, ToDisplayText(face).c_str());
        pango_font_description_set_size(description, points * PANGO_SCALE);
    }
    static const PangoWeight weights[] = {PANGO_WEIGHT_LIGHT, PANGO_WEIGHT_NORMAL,
                                          PANGO_WEIGHT_BOLD};
    if (weight >= FontWeightLight && weight <= FontWeightBold) {
        pango_font_description_set_weight(description, weights[weight]);
    }
    if ((style & FontStyleItalic) != 0) {
        pango_font_description_set_style(description, PANGO_STYLE_ITALIC);
    }
    return true;
}

const PangoFontDescription* Gtk_FontImp::GetDescription() {
    if (description == nullptr) {
        description = DesktopFont();
    }
    return description;
}

int32_t Gtk_FontImp::GetHeight() {
    PangoFontMetrics* metrics =
        pango_context_get_metrics(MeasuringContext(), GetDescription(), nullptr);
    int height = pango_font_metrics_get_height(metrics);
    if (height == 0) {
        height = pango_font_metrics_get_ascent(metrics) + pango_font_metrics_get_descent(metrics);
    }
    pango_font_metrics_unref(metrics);
    return ToPixels(height);
}

int32_t Gtk_FontImp::GetAverageWidth() {
    PangoLayout* layout = pango_layout_new(MeasuringContext());
    pango_layout_set_font_description(layout, GetDescription());
    pango_layout_set_text(layout, alphabet, -1);
    int width = 0;
    pango_layout_get_size(layout, &width, nullptr);
    g_object_unref(layout);
    return (ToPixels(width) + alphabetLength / 2) / alphabetLength;
}

int32_t Gtk_FontImp::GetPointSize() {
    return pango_font_description_get_size(GetDescription()) / PANGO_SCALE;
}

Gtk_GCImp::~Gtk_GCImp() {
    Detach();
}

bool Gtk_GCImp::Attach(Window& window) {
    auto* attached = static_cast<GtkWidget*>(window.GetNativeHandle());
    GtkNative* native = FindNative(attached);
    if (native == nullptr) {
        return false;
    }
    widget = native->inner;
    cairo = native->paintContext;
    paintedText = cairo != nullptr ? &native->paintedText : nullptr;
    SetWindow(&window);
    UpdateOrigin();
    return true;
}

void Gtk_GCImp::Detach() {
    widget = nullptr;
    cairo = nullptr;
    paintedText = nullptr;
    SetWindow(nullptr);
}

bool Gtk_GCImp::GetNativeClipRect(Rect& rect) {
    if (cairo == nullptr) {
        return false;
    }
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    cairo_clip_extents(cairo, &x1, &y1, &x2, &y2);
    rect = Rect{static_cast<int32_t>(std::floor(x1)), static_cast<int32_t>(std::floor(y1)),
                static_cast<int32_t>(std::ceil(x2)), static_cast<int32_t>(std::ceil(y2))};
    return true;
}

void Gtk_GCImp::SetColour(const Colour& colour) {
    cairo_set_source_rgb(cairo, colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0);
}

void Gtk_GCImp::ApplyPen() {
    const GCState& state = GetState();
    SetColour(state.penColour);
    cairo_set_line_width(cairo, state.penWidth < 1 ? 1 : state.penWidth);
    cairo_set_dash(cairo, nullptr, 0, 0);
    for (const DashPattern& pattern : dashPatterns) {
        if (pattern.style == state.penStyle) {
            cairo_set_dash(cairo, pattern.dashes, pattern.count, 0);
        }
    }
}

// Lines sit on pixel centres, so that a one-pixel line covers one row of pixels.
void Gtk_GCImp::PaintLine(const Point& from, const Point& to) {
    if (cairo == nullptr) {
        return;
    }
    ApplyPen();
    cairo_move_to(cairo, from.x + 0.5, from.y + 0.5);
    cairo_line_to(cairo, to.x + 0.5, to.y + 0.5);
    cairo_stroke(cairo);
}

void Gtk_GCImp::PaintRect(const Rect& rect, uint32_t mode) {
    if (cairo == nullptr) {
        return;
    }
    if (mode != DrawOutline) {
        SetColour(GetState().brushColour);
        cairo_rectangle(cairo, rect.left, rect.top, rect.GetWidth(), rect.GetHeight());
        cairo_fill(cairo);
    }
    if (mode != DrawFill) {
        ApplyPen();
        cairo_rectangle(cairo, rect.left + 0.5, rect.top + 0.5, rect.GetWidth() - 1,
                        rect.GetHeight() - 1);
        cairo_stroke(cairo);
    }
}

void Gtk_GCImp::PaintCircle(const Point& centre, int32_t radius, uint32_t mode) {
    if (cairo == nullptr) {
        return;
    }
    cairo_new_path(cairo);
    cairo_arc(cairo, centre.x, centre.y, radius, 0, 2 * G_PI);
    if (mode != DrawOutline) {
        SetColour(GetState().brushColour);
        cairo_fill_preserve(cairo);
    }
    if (mode != DrawFill) {
        ApplyPen();
        cairo_stroke(cairo);
    }
    cairo_new_path(cairo);
}

PangoLayout* Gtk_GCImp::MakeLayout(const loam::String& text, const Rect& rect, uint32_t flags) {
    PangoLayout* layout =
        cairo != nullptr ? pango_cairo_create_layout(cairo) : pango_layout_new(MeasuringContext());
    Font* font = GetState().font;
    auto* fontImp = font != nullptr ? dynamic_cast<Gtk_FontImp*>(font->GetImp()) : nullptr;
    Gtk_FontImp desktopFont;
    pango_layout_set_font_description(layout, fontImp != nullptr ? fontImp->GetDescription()
                                                                 : desktopFont.GetDescription());
    pango_layout_set_text(layout, ToDisplayText(text).c_str(), -1);
    bool aligned = (flags & (TextCenter | TextRight)) != 0;
    if ((flags & TextWordBreak) != 0 || aligned) {
        pango_layout_set_width(layout, rect.GetWidth() * PANGO_SCALE);
    }
    if ((flags & TextWordBreak) != 0) {
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    }
    if ((flags & TextSingleLine) != 0) {
        pango_layout_set_single_paragraph_mode(layout, TRUE);
    }
    if ((flags & TextCenter) != 0) {
        pango_layout_set_alignment(layout, PANGO_ALIGN_CENTER);
    } else if ((flags & TextRight) != 0) {
        pango_layout_set_alignment(layout, PANGO_ALIGN_RIGHT);
    }
    return layout;
}

void Gtk_GCImp::NotePaintedText(const loam::String& text) {
    if (paintedText == nullptr) {
        return;
    }
    if (!paintedText->empty()) {
        *paintedText += '\n';
    }
    *paintedText += ToDisplayText(text);
}

void Gtk_GCImp::PaintText(const loam::String& text, const Rect& rect, uint32_t flags) {
    if (cairo == nullptr) {
        return;
    }
    PangoLayout* layout = MakeLayout(text, rect, flags);
    NotePaintedText(text);
    int height = 0;
    pango_layout_get_pixel_size(layout, nullptr, &height);
    int32_t top = rect.top;
    if ((flags & (TextVCenter | TextSingleLine)) == (TextVCenter | TextSingleLine)) {
        top += (rect.GetHeight() - height) / 2;
    }
    cairo_save(cairo);
    cairo_rectangle(cairo, rect.left, rect.top, rect.GetWidth(), rect.GetHeight());
    cairo_clip(cairo);
    SetColour(GetState().textColour);
    cairo_move_to(cairo, rect.left, top);
    pango_cairo_show_layout(cairo, layout);
    cairo_restore(cairo);
    g_object_unref(layout);
}

void Gtk_GCImp::PaintTextAt(const loam::String& text, const Point& at) {
    if (cairo == nullptr) {
        return;
    }
    PangoLayout* layout = MakeLayout(text, Rect{}, TextSingleLine);
    NotePaintedText(text);
    SetColour(GetState().textColour);
    cairo_move_to(cairo, at.x, at.y);
    pango_cairo_show_layout(cairo, layout);
    g_object_unref(layout);
}

void Gtk_GCImp::CalculateTextRect(const loam::String& text, Rect& rect, uint32_t flags) {
    PangoLayout* layout = MakeLayout(text, rect, flags & ~(TextCenter | TextRight));
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    g_object_unref(layout);
    rect.right = rect.left + width;
    rect.bottom = rect.top + height;
}

void Gtk_GCImp::PaintEdge(const Rect& rect, uint32_t flags) {
    if (cairo == nullptr) {
        return;
    }
    cairo_save(cairo);
    cairo_set_line_width(cairo, 1);
    for (const EdgeLine& line : edgeLines) {
        if ((flags & line.flag) == 0) {
            continue;
        }
        double left = rect.left + line.inset + 0.5;
        double top = rect.top + line.inset + 0.5;
        double right = rect.right - line.inset - 0.5;
        double bottom = rect.bottom - line.inset - 0.5;
        SetColour(line.topLeft);
        cairo_move_to(cairo, left, bottom);
        cairo_line_to(cairo, left, top);
        cairo_line_to(cairo, right, top);
        cairo_stroke(cairo);
        SetColour(line.bottomRight);
        cairo_move_to(cairo, right, top);
        cairo_line_to(cairo, right, bottom);
        cairo_line_to(cairo, left, bottom);
        cairo_stroke(cairo);
    }
    cairo_restore(cairo);
}

void Gtk_GCImp::PaintFocusRect(const Rect& rect) {
    if (cairo == nullptr || widget == nullptr) {
        return;
    }
    gtk_render_focus(gtk_widget_get_style_context(widget), cairo, rect.left, rect.top,
                     rect.GetWidth(), rect.GetHeight());
}

// The theme's own grip has no part in GTK 3: the grip is drawn the classic way.
bool Gtk_GCImp::PaintThemedPart(ThemedPart, const Rect&, const Rect&) {
    return false;
}

bool Gtk_RedrawGCImp::BeginRedraw(Window& window) {
    if (!Attach(window)) {
        return false;
    }
    if (IsPainting()) {
        return true;
    }
    Detach();
    return false;
}

void Gtk_RedrawGCImp::EndRedraw() {
    Detach();
}

} // namespace quilt
