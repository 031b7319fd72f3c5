#include "quilt/gc.h"

#include "quilt/dialog_units.h"
#include "quilt/font.h"
#include "quilt/offscreen/testing/drawing_recorder.h"
#include "quilt/size_grip.h"
#include "test_application.h"

#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using quilt::Colour;
using quilt::GC;
using quilt::OffscreenDrawing;
using quilt::Window;

std::string Describe(const Rect& rect) {
    return std::to_string(rect.left) + "," + std::to_string(rect.top) + "," +
           std::to_string(rect.right) + "," + std::to_string(rect.bottom);
}

TEST(ColourTest, NativeWordHoldsRedInTheLowByte) {
    const std::pair<Colour, uint32_t> cases[] = {
        {Colour(255, 0, 0), 0x0000FF}, {Colour(1, 2, 3), 0x030201}, {quilt::White, 0xFFFFFF}};
    for (const auto& [colour, native] : cases) {
        EXPECT_EQ(colour.ToNative(), native);
        EXPECT_EQ(Colour::FromNative(native), colour);
    }
    EXPECT_EQ(Colour::FromNative(0xAA030201), Colour(1, 2, 3));
}

// The selected font sets what text measures.
TEST(FontTest, OffscreenFontsAreTwicePointsHighAndPointsWide) {
    const std::tuple<int32_t, bool, int32_t, int32_t> cases[] = {
        {12, true, 24, 12}, {1, true, 2, 1},      {1000, true, 2000, 1000},
        {0, false, 16, 8},  {1001, false, 16, 8},
    };
    for (const auto& [points, created, height, width] : cases) {
        quilt::Font font;
        EXPECT_EQ(font.Create(loam::String("Any Face"), points, quilt::FontWeightBold), created)
            << points;
        EXPECT_EQ(font.GetHeight(), height) << points;
        EXPECT_EQ(font.GetAverageWidth(), width) << points;
        EXPECT_EQ(font.GetPointSize(), height / 2) << points;
        GC gc;
        gc.SetFont(&font);
        Rect rect;
        gc.MeasureText(loam::String("ab"), 0, rect);
        EXPECT_EQ(Describe(rect), Describe(Rect{0, 0, 2 * width, height})) << points;
    }
}

TEST(DialogUnitsTest, PixelsRoundHalvesAwayFromZero) {
    quilt::DialogUnits classic(6, 13);
    const std::tuple<int32_t, int32_t, int32_t> cases[] = {
        {50, 75, 81}, {14, 21, 23}, {1, 2, 2}, {-1, -2, -2}, {4, 6, 7}, {0, 0, 0},
    };
    for (const auto& [units, x, y] : cases) {
        EXPECT_EQ(classic.ToPixelsX(units), x) << units;
        EXPECT_EQ(classic.ToPixelsY(units), y) << units;
    }
}

TEST(DialogUnitsTest, WideningKeepsTheWidestSpanAndLeavesHeightsAlone) {
    // Spans asked for in turn, then the pixels that 86 and 4 units come to.
    const std::tuple<const char*, std::vector<std::pair<int32_t, int32_t>>, int32_t, int32_t>
        cases[] = {
            {"none asked", {}, 172, 8},
            {"a span that fits already", {{100, 86}}, 172, 8},
            {"a wider span", {{185, 86}}, 185, 9},
            {"the widest of several", {{60, 31}, {185, 86}, {130, 76}}, 185, 9},
            {"a narrower span after a wider one", {{185, 86}, {100, 86}}, 185, 9},
            {"no units to span", {{50, 0}, {-5, 3}}, 172, 8},
        };
    for (const auto& [name, spans, eightySix, four] : cases) {
        quilt::DialogUnits units(8, 16);
        for (const auto& [pixels, width] : spans) {
            units = units.WidenedToSpan(pixels, width);
        }
        EXPECT_EQ(units.ToPixelsX(86), eightySix) << name;
        EXPECT_EQ(units.ToPixelsX(4), four) << name;
        EXPECT_EQ(units.ToPixelsY(8), 16) << name;
    }
}

TEST(MeasureTextTest, TextIsMeasuredByTheOffscreenModel) {
    const uint32_t wrap = quilt::TextWordBreak;
    const std::tuple<const char*, const char*, uint32_t, int32_t, int32_t, int32_t> cases[] = {
        {"one line", "Hello", 0, 1000, 40, 16},
        {"empty single line", "", quilt::TextSingleLine, 1000, 0, 16},
        {"line ends of each kind", "a\nbcd\r\nef\rg", 0, 1000, 24, 64},
        {"empty last line", "abc\n\n", 0, 1000, 24, 32},
        {"wraps at blanks", "The quick brown fox jumps", wrap, 80, 80, 48},
        {"word fills a line", "abcde fghij", wrap, 40, 40, 32},
        {"blanks at a break vanish", "abc      def", wrap, 40, 40, 32},
        {"long word breaks", "abcdefghijkl", wrap, 40, 40, 48},
        {"narrower than a byte", "abc", wrap, 3, 3, 48},
        {"trailing blanks", "abc   ", wrap, 40, 40, 16},
    };
    GC gc;
    for (const auto& [name, text, flags, width, measuredWidth, measuredHeight] : cases) {
        Rect rect{10, 20, 10 + width, 500};
        gc.MeasureText(loam::String(text), flags, rect);
        EXPECT_EQ(Describe(rect), Describe(Rect{10, 20, 10 + measuredWidth, 20 + measuredHeight}))
            << name;
    }
}

TEST(MeasureTextTest, AHugeWordWrapsInLinearTime) {
    loam::String word(std::string(1000000, 'x').c_str());
    GC gc;
    Rect rect{0, 0, 8, 0};
    gc.MeasureText(word, quilt::TextWordBreak, rect);
    EXPECT_EQ(rect.bottom, 16000000);
}

class DrawingTest : public testing::Test {
protected:
    DrawingTest() {
        window.Create(nullptr, quilt::WindowKindTop, nullptr);
        window.SetClientRect(Rect{0, 0, 300, 200});
    }

    quilt::OffscreenDriver driver;
    TestApplication application;
    Window window;
    quilt::OffscreenDrawingRecorder recorder;
};

TEST_F(DrawingTest, PoppedStatesComeBackAndAnUnmatchedPopChangesNothing) {
    GC gc(window);
    gc.PushState();
    gc.SetPenColour(Colour(1, 2, 3));
    gc.PopState();
    EXPECT_EQ(gc.GetState().penColour, quilt::Black);
    gc.SetPenWidth(3);
    gc.PopState();
    EXPECT_EQ(gc.GetState().penWidth, 3);
}

// Wrapped centred text is centred by hand and taller text starts at the top; a centred line is
// drawn as a single line. The prefix character is never interpreted.
TEST_F(DrawingTest, TextIsPlacedAsThePlatformDrawsIt) {
    const uint32_t centred = quilt::TextCenter | quilt::TextVCenter | quilt::TextWordBreak;
    const uint32_t line = quilt::TextVCenter | quilt::TextSingleLine;
    const std::tuple<const char*, Rect, uint32_t, Rect, uint32_t> cases[] = {
        {"one two", {0, 0, 80, 100}, centred, {0, 42, 80, 58}, centred},
        {"aaa bbb ccc", {0, 0, 40, 20}, centred, {0, 0, 40, 48}, centred},
        {"a&b", {5, 5, 100, 50}, quilt::TextVCenter, {5, 5, 100, 50}, line},
        {"a&b", {5, 5, 100, 50}, 0, {5, 5, 100, 50}, 0},
    };
    GC gc(window);
    for (const auto& [text, rect, flags, drawnIn, drawnFlags] : cases) {
        recorder.Clear();
        gc.DrawTextInRect(loam::String(text), rect, flags);
        ASSERT_EQ(recorder.GetDrawings().size(), 1u) << text;
        const OffscreenDrawing& drawn = recorder.GetDrawings()[0];
        EXPECT_EQ(Describe(drawn.rect), Describe(drawnIn)) << text;
        EXPECT_EQ(drawn.flags, drawnFlags | quilt::TextNoPrefix) << text;
        EXPECT_TRUE(drawn.text == text && drawn.window == &window) << text;
    }
}

TEST_F(DrawingTest, ScrolledCoordinatesAreMovedByTheOrigin) {
    window.ShowScrollBars(quilt::ScrollBarHorizontal | quilt::ScrollBarVertical);
    window.SetScrollPos(quilt::ScrollBarHorizontal, 30);
    window.SetScrollPos(quilt::ScrollBarVertical, 100);
    GC gc(window);
    gc.UpdateOrigin();
    gc.DrawRect(Rect{30, 100, 60, 150}, quilt::DrawFill);
    gc.DrawTextAt(loam::String("abc"), 40, 110);
    Rect clip;
    ASSERT_TRUE(gc.GetClipRect(clip));
    EXPECT_EQ(Describe(clip), "30,100,330,300");
    ASSERT_EQ(recorder.GetDrawings().size(), 2u);
    EXPECT_EQ(Describe(recorder.GetDrawings()[0].rect), "0,0,30,50");
    EXPECT_EQ(Describe(recorder.GetDrawings()[1].rect), "10,10,34,26");
}

TEST_F(DrawingTest, NothingIsDrawnForAWindowThatIsNotMade) {
    Window uncreated;
    EXPECT_FALSE(quilt::SizeGrip().CreateInCorner(uncreated));
    GC gc(uncreated);
    EXPECT_FALSE(gc.IsAttached());
    gc.DrawTextInRect(loam::String("text"), Rect{0, 0, 100, 100}, 0);
    gc.DrawEdge(Rect{0, 0, 10, 10}, quilt::EdgeSunkenOuter);
    Rect clip;
    EXPECT_FALSE(gc.GetClipRect(clip));
    EXPECT_TRUE(recorder.GetDrawings().empty());
}

} // namespace
