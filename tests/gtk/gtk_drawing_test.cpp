#include "quilt/font.h"
#include "quilt/gc.h"
#include "quilt/gtk/gtk_gc_imp.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/icon.h"
#include "quilt/window.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

// Fontconfig keeps what it read of the fonts for the life of the process.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}

namespace {

using quilt::Colour;

constexpr int Width = 120;
constexpr int Height = 40;
constexpr Colour Red{255, 0, 0};
constexpr Colour Blue{0, 0, 255};

// A context of the desktop backend that draws into an image instead of a window.
class ImageDrawing {
public:
    explicit ImageDrawing(Colour background)
        : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, Width, Height)),
          cairo(cairo_create(surface)), window(std::make_unique<quilt::Gtk_WindowImp>()) {
        cairo_set_source_rgb(cairo, background.red / 255.0, background.green / 255.0,
                             background.blue / 255.0);
        cairo_paint(cairo);
        auto imp = std::make_unique<quilt::Gtk_GCImp>();
        imp->UseContext(cairo, window);
        gc = std::make_unique<quilt::GC>(std::move(imp));
    }
    ~ImageDrawing() {
        gc.reset();
        cairo_destroy(cairo);
        cairo_surface_destroy(surface);
    }

    quilt::GC& GetGC() { return *gc; }
    Colour GetPixel(int x, int y) {
        cairo_surface_flush(surface);
        const unsigned char* row =
            cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
        uint32_t pixel = reinterpret_cast<const uint32_t*>(row)[x];
        return Colour(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF);
    }
    // Pixels of the rows from `top` down whose colour is not the background's.
    int CountInk(int top, Colour background) {
        int count = 0;
        for (int y = top; y < Height; ++y) {
            for (int x = 0; x < Width; ++x) {
                count += GetPixel(x, y) == background ? 0 : 1;
            }
        }
        return count;
    }

private:
    cairo_surface_t* surface;
    cairo_t* cairo;
    quilt::Window window;
    std::unique_ptr<quilt::GC> gc;
};

std::unique_ptr<quilt::Font> MakeFont(uint32_t style) {
    auto font = std::make_unique<quilt::Font>(std::make_unique<quilt::Gtk_FontImp>());
    EXPECT_TRUE(font->Create(loam::String("Sans"), 12, quilt::FontWeightNormal, style));
    return font;
}

// Blanks have no ink: what lies under them is the text's background alone.
TEST(GtkDrawing, OpaqueTextStandsOnWhiteAndTransparentTextOnWhatWasThere) {
    const std::tuple<uint32_t, bool, Colour> cases[] = {
        {quilt::BackModeOpaque, false, quilt::White},
        {quilt::BackModeOpaque, true, quilt::White},
        {quilt::BackModeTransparent, false, Red},
        {quilt::BackModeTransparent, true, Red},
    };
    for (const auto& [mode, inRect, under] : cases) {
        ImageDrawing drawing(Red);
        quilt::GC& gc = drawing.GetGC();
        gc.SetBackMode(mode);
        gc.SetBackColour(Blue);
        if (inRect) {
            gc.DrawTextInRect(loam::String("    "), quilt::Rect{10, 5, 110, 35}, 0);
        } else {
            gc.DrawTextAt(loam::String("    "), 10, 5);
        }
        EXPECT_EQ(drawing.GetPixel(14, 10), under) << mode << " " << inRect;
        EXPECT_EQ(drawing.GetPixel(5, 10), Red) << mode << " " << inRect;
        EXPECT_EQ(drawing.GetPixel(14, 38), Red) << mode << " " << inRect;
    }
}

TEST(GtkDrawing, AnUnderlinedFontDrawsALineBelowItsText) {
    int ink[2] = {0, 0};
    for (uint32_t style : {0u, uint32_t{quilt::FontStyleUnderline}}) {
        ImageDrawing drawing(quilt::White);
        auto font = MakeFont(style);
        drawing.GetGC().SetFont(font.get());
        drawing.GetGC().DrawTextAt(loam::String("aaaa"), 5, 2);
        ink[style != 0] = drawing.CountInk(0, quilt::White);
    }
    EXPECT_GT(ink[0], 0);
    // A line under four letters of 12 points is at least 20 pixels long.
    EXPECT_GE(ink[1], ink[0] + 20);
}

TEST(GtkDrawing, AnIconFromAFileDrawsAtItsNaturalSize) {
    std::string path = testing::TempDir() + "quilt-icon-test.png";
    cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 6, 4);
    cairo_t* painter = cairo_create(image);
    cairo_set_source_rgb(painter, 0, 0, 1);
    cairo_paint(painter);
    cairo_destroy(painter);
    ASSERT_EQ(cairo_surface_write_to_png(image, path.c_str()), CAIRO_STATUS_SUCCESS);
    cairo_surface_destroy(image);
    static std::string imagePath;
    imagePath = path;
    static const quilt::IconTableEntry entries[] = {{77, imagePath.c_str()}};
    quilt::RegisterIconTable(entries);

    quilt::Icon icon(std::make_unique<quilt::Gtk_IconImp>());
    ASSERT_TRUE(icon.Load({loam::ResourceKindIcon, 77}));
    EXPECT_EQ(icon.GetWidth(), 6);
    EXPECT_EQ(icon.GetHeight(), 4);
    ImageDrawing drawing(quilt::White);
    drawing.GetGC().DrawIcon(icon, 10, 20);
    const std::tuple<int, int, Colour> pixels[] = {
        {10, 20, Blue},         {15, 23, Blue},        {16, 23, quilt::White},
        {15, 24, quilt::White}, {9, 20, quilt::White},
    };
    for (const auto& [x, y, colour] : pixels) {
        EXPECT_EQ(drawing.GetPixel(x, y), colour) << x << "," << y;
    }
    quilt::Icon missing(std::make_unique<quilt::Gtk_IconImp>());
    EXPECT_FALSE(missing.Load({loam::ResourceKindIcon, 78}));
    std::remove(path.c_str());
}

} // namespace
