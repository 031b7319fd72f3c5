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

// The background of opaque text: the native context's own, which the state never changes.
constexpr Colour opaqueTextBackground = White;

struct ThemedNode {
    ThemedPart part;
    const char* object; // the CSS node of the widget
    const char* inner;  // the node inside it that shows the part, if any
};

constexpr ThemedNode themedNodes[] = {
    {ThemedPart::ButtonFrame, "button", nullptr},
    {ThemedPart::CheckBox, "checkbutton", "check"},
    {ThemedPart::RightArrow, "scrollbar", "button"},
};

struct ThemedFlag {
    uint32_t state;
    GtkStateFlags flag;
};

constexpr ThemedFlag themedFlags[] = {
    {ThemedHot, GTK_STATE_FLAG_PRELIGHT},
    {ThemedPressed, GTK_STATE_FLAG_ACTIVE},
    {ThemedChecked, GTK_STATE_FLAG_CHECKED},
    {ThemedMixed, GTK_STATE_FLAG_INCONSISTENT},
};

// GTK's own check box and arrow sizes, where the theme gives none.
constexpr int32_t checkSize = 14;
constexpr int32_t arrowSize = 8;

// A style context of the theme's node for the part, or null when the part has none.
GtkStyleContext* NewPartContext(ThemedPart part, uint32_t state) {
    const ThemedNode* node = nullptr;
    for (const ThemedNode& candidate : themedNodes) {
        if (candidate.part == part) {
            node = &candidate;
        }
    }
    if (node == nullptr || gdk_screen_get_default() == nullptr) {
        return nullptr;
    }
    GtkWidgetPath* path = gtk_widget_path_new();
    for (const char* name : {node->object, node->inner}) {
        if (name != nullptr) {
            gtk_widget_path_append_type(path, G_TYPE_NONE);
            gtk_widget_path_iter_set_object_name(path, -1, name);
        }
    }
    GtkStyleContext* context = gtk_style_context_new();
    gtk_style_context_set_path(context, path);
    gtk_widget_path_unref(path);
    int flags = GTK_STATE_FLAG_NORMAL;
    for (const ThemedFlag& themed : themedFlags) {
        if ((state & themed.state) != 0) {
            flags |= themed.flag;
        }
    }
    gtk_style_context_set_state(context, GtkStateFlags(flags));
    return context;
}

// The square of `size` centred in `rect`.
GdkRectangle CentredSquare(const Rect& rect, int32_t size) {
    return GdkRectangle{rect.left + (rect.GetWidth() - size) / 2,
                        rect.top + (rect.GetHeight() - size) / 2, size, size};
}

PangoFontDescription* DesktopFont() {
    gchar* name = nullptr;
    if (GtkSettings* settings = gtk_settings_get_default()) {
        g_object_get(settings, "gtk-font-name", &name, nullptr);
    }
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
    underlined = (style & FontStyleUnderline) != 0;
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

Gtk_IconImp::~Gtk_IconImp() {
    if (pixbuf != nullptr) {
        g_object_unref(pixbuf);
    }
}

bool Gtk_IconImp::Load(const loam::ResourceId& resource) {
    if (pixbuf != nullptr) {
        g_object_unref(pixbuf);
        pixbuf = nullptr;
    }
    const char* image = FindIconImage(resource);
    if (image != nullptr && image[0] == '/') {
        pixbuf = gdk_pixbuf_new_from_file(image, nullptr);
    } else if (image != nullptr && gdk_screen_get_default() != nullptr) {
        pixbuf = gtk_icon_theme_load_icon(gtk_icon_theme_get_default(), image, IconNaturalSize,
                                          GTK_ICON_LOOKUP_FORCE_SIZE, nullptr);
    }
    return pixbuf != nullptr;
}

int32_t Gtk_IconImp::GetWidth() const {
    return pixbuf != nullptr ? gdk_pixbuf_get_width(pixbuf) : 0;
}

int32_t Gtk_IconImp::GetHeight() const {
    return pixbuf != nullptr ? gdk_pixbuf_get_height(pixbuf) : 0;
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

void Gtk_GCImp::UseContext(cairo_t* context, Window& window) {
    Detach();
    cairo = context;
    SetWindow(&window);
    UpdateOrigin();
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
    if (fontImp != nullptr && fontImp->IsUnderlined()) {
        PangoAttrList* attributes = pango_attr_list_new();
        pango_attr_list_insert(attributes, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        pango_layout_set_attributes(layout, attributes);
        pango_attr_list_unref(attributes);
    }
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
    PaintTextBackground(layout, Point{rect.left, top}, &rect);
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
    PaintTextBackground(layout, at, nullptr);
    SetColour(GetState().textColour);
    cairo_move_to(cairo, at.x, at.y);
    pango_cairo_show_layout(cairo, layout);
    g_object_unref(layout);
}

// Each line's own extent, so that centred and right-aligned lines are backed where they stand.
void Gtk_GCImp::PaintTextBackground(PangoLayout* layout, const Point& at, const Rect* clip) {
    if (GetState().backMode == BackModeTransparent) {
        return;
    }
    cairo_save(cairo);
    if (clip != nullptr) {
        cairo_rectangle(cairo, clip->left, clip->top, clip->GetWidth(), clip->GetHeight());
        cairo_clip(cairo);
    }
    SetColour(opaqueTextBackground);
    PangoLayoutIter* line = pango_layout_get_iter(layout);
    do {
        PangoRectangle extent;
        pango_layout_iter_get_line_extents(line, nullptr, &extent);
        pango_extents_to_pixels(&extent, nullptr);
        cairo_rectangle(cairo, at.x + extent.x, at.y + extent.y, extent.width, extent.height);
    } while (pango_layout_iter_next_line(line));
    pango_layout_iter_free(line);
    cairo_fill(cairo);
    cairo_restore(cairo);
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

void Gtk_GCImp::PaintIcon(IconImp& icon, const Point& at) {
    auto* gtkIcon = dynamic_cast<Gtk_IconImp*>(&icon);
    if (cairo == nullptr || gtkIcon == nullptr || gtkIcon->GetPixbuf() == nullptr) {
        return;
    }
    cairo_save(cairo);
    gdk_cairo_set_source_pixbuf(cairo, gtkIcon->GetPixbuf(), at.x, at.y);
    cairo_rectangle(cairo, at.x, at.y, icon.GetWidth(), icon.GetHeight());
    cairo_fill(cairo);
    cairo_restore(cairo);
}

// The theme's own grip has no part in GTK 3: the grip is drawn the classic way. The other parts
// are the theme's nodes of the widgets that show them.
bool Gtk_GCImp::PaintThemedPart(ThemedPart part, const Rect& rect, const Rect& clip,
                                uint32_t state) {
    GtkStyleContext* context = cairo != nullptr ? NewPartContext(part, state) : nullptr;
    if (context == nullptr) {
        return false;
    }
    cairo_save(cairo);
    cairo_rectangle(cairo, clip.left, clip.top, clip.GetWidth(), clip.GetHeight());
    cairo_clip(cairo);
    if (part == ThemedPart::CheckBox) {
        GdkRectangle box = CentredSquare(rect, checkSize);
        gtk_render_background(context, cairo, box.x, box.y, box.width, box.height);
        gtk_render_frame(context, cairo, box.x, box.y, box.width, box.height);
        gtk_render_check(context, cairo, box.x, box.y, box.width, box.height);
    } else {
        gtk_render_background(context, cairo, rect.left, rect.top, rect.GetWidth(),
                              rect.GetHeight());
        gtk_render_frame(context, cairo, rect.left, rect.top, rect.GetWidth(), rect.GetHeight());
    }
    if (part == ThemedPart::RightArrow) {
        GdkRectangle arrow = CentredSquare(rect, arrowSize);
        gtk_render_arrow(context, cairo, G_PI / 2, arrow.x, arrow.y, arrow.width);
    }
    cairo_restore(cairo);
    g_object_unref(context);
    return true;
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
