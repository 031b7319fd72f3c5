#include "quilt/offscreen/offscreen_gc_imp.h"

#include "quilt/font.h"
#include "quilt/window.h"

#include <algorithm>
#include <limits>

namespace quilt {

namespace {

OffscreenDrawingSink* drawingSink = nullptr;

// What a text takes: its widest line in bytes and its number of lines.
struct TextExtent {
    int64_t widestLine = 0;
    int64_t lines = 0;

    void AddLine(int64_t bytes) {
        widestLine = std::max(widestLine, bytes);
        ++lines;
    }
};

bool IsLineEnd(char byte) {
    return byte == '\r' || byte == '\n';
}

int32_t SkipBlanks(const char* text, int32_t from, int32_t end) {
    while (from < end && text[from] == ' ') {
        ++from;
    }
    return from;
}

// The end of the wrapped line that starts at `start`: the rest if it fits, else after the last
// whole word that fits in `capacity` bytes, else after `capacity` bytes. Scans no further than
// one byte past the line, so that a long word costs no more than its length over all lines.
int32_t FindWrappedLineEnd(const char* text, int32_t start, int32_t end, int32_t capacity) {
    int64_t limit = static_cast<int64_t>(start) + capacity; // the first byte that does not fit
    if (end <= limit) {
        return end;
    }
    int32_t lineEnd = start;
    int32_t index = start;
    while (true) {
        int32_t wordEnd = SkipBlanks(text, index, static_cast<int32_t>(limit) + 1);
        while (wordEnd <= limit && text[wordEnd] != ' ') {
            ++wordEnd;
        }
        if (wordEnd > limit) {
            break;
        }
        lineEnd = wordEnd;
        index = wordEnd;
    }
    return lineEnd > start ? lineEnd : static_cast<int32_t>(limit);
}

void WrapLine(const char* text, int32_t start, int32_t end, int32_t capacity, TextExtent& extent) {
    if (start == end) {
        extent.AddLine(0);
        return;
    }
    while (start < end) {
        int32_t lineEnd = FindWrappedLineEnd(text, start, end, capacity);
        extent.AddLine(lineEnd - start);
        start = SkipBlanks(text, lineEnd, end);
    }
}

// `capacity` is how many bytes a wrapped line holds; 0 when the text does not wrap.
TextExtent MeasureLines(const loam::String& text, int32_t capacity) {
    const char* bytes = text.GetCString();
    int32_t length = text.GetLength();
    TextExtent extent;
    int32_t start = 0;
    while (true) {
        int32_t end = start;
        while (end < length && !IsLineEnd(bytes[end])) {
            ++end;
        }
        if (capacity > 0) {
            WrapLine(bytes, start, end, capacity, extent);
        } else {
            extent.AddLine(end - start);
        }
        if (end == length) {
            return extent;
        }
        bool crLf = bytes[end] == '\r' && end + 1 < length && bytes[end + 1] == '\n';
        start = end + (crLf ? 2 : 1);
        if (start == length) {
            return extent;
        }
    }
}

TextExtent MeasureExtent(const loam::String& text, uint32_t flags, int32_t capacity) {
    TextExtent extent;
    if ((flags & TextSingleLine) != 0) {
        extent.AddLine(text.GetLength());
        return extent;
    }
    if (text.IsEmpty()) {
        return extent;
    }
    return MeasureLines(text, (flags & TextWordBreak) != 0 ? capacity : 0);
}

int32_t AddClamped(int32_t base, int64_t pixels) {
    int64_t sum = base + pixels;
    return static_cast<int32_t>(std::min<int64_t>(sum, std::numeric_limits<int32_t>::max()));
}

} // namespace

OffscreenDrawingSink* GetDrawingSink() {
    return drawingSink;
}

void SetDrawingSink(OffscreenDrawingSink* sink) {
    drawingSink = sink;
}

bool Offscreen_FontImp::Create(const loam::String&, int32_t points, FontWeight, uint32_t,
                               FontFamily, FontPitch) {
    if (points < 1 || points > MaximumPoints) {
        return false;
    }
    height = points * PixelsPerInch / 72;
    return true;
}

bool Offscreen_IconImp::Load(const loam::ResourceId& resource) {
    const char* found = FindIconImage(resource);
    image = found != nullptr ? found : "";
    return found != nullptr;
}

Offscreen_GCImp::~Offscreen_GCImp() {
    Detach();
}

bool Offscreen_GCImp::Attach(Window& window) {
    SetWindow(window.HasNativeWindow() ? &window : nullptr);
    return IsAttached();
}

void Offscreen_GCImp::Detach() {
    SetWindow(nullptr);
}

bool Offscreen_GCImp::GetNativeClipRect(Rect& rect) {
    return GetWindow()->GetClientRect(rect);
}

void Offscreen_GCImp::PaintLine(const Point& from, const Point& to) {
    Record(OffscreenDrawingKind::Line, Rect{from.x, from.y, to.x, to.y}, 0);
}

void Offscreen_GCImp::PaintRect(const Rect& rect, uint32_t mode) {
    Record(OffscreenDrawingKind::Rect, rect, mode);
}

void Offscreen_GCImp::PaintCircle(const Point& centre, int32_t radius, uint32_t mode) {
    Record(OffscreenDrawingKind::Circle,
           Rect{centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius}, mode);
}

void Offscreen_GCImp::PaintText(const loam::String& text, const Rect& rect, uint32_t flags) {
    Record(OffscreenDrawingKind::Text, rect, flags, text);
}

void Offscreen_GCImp::PaintTextAt(const loam::String& text, const Point& at) {
    Rect covered{at.x, at.y, at.x, at.y};
    CalculateTextRect(text, covered, TextSingleLine | TextNoPrefix);
    Record(OffscreenDrawingKind::TextAt, covered, 0, text);
}

void Offscreen_GCImp::CalculateTextRect(const loam::String& text, Rect& rect, uint32_t flags) {
    Font* font = GetState().font;
    Offscreen_FontImp dialogFont;
    FontImp& metrics = font != nullptr ? *font->GetImp() : dialogFont;
    int32_t byteWidth = std::max(1, metrics.GetAverageWidth());
    int32_t lineHeight = std::max(0, metrics.GetHeight());
    int32_t capacity = std::max(1, rect.GetWidth() / byteWidth);
    TextExtent extent = MeasureExtent(text, flags, capacity);
    rect.right = AddClamped(rect.left, extent.widestLine * byteWidth);
    rect.bottom = AddClamped(rect.top, extent.lines * lineHeight);
}

void Offscreen_GCImp::PaintEdge(const Rect& rect, uint32_t flags) {
    Record(OffscreenDrawingKind::Edge, rect, flags);
}

void Offscreen_GCImp::PaintFocusRect(const Rect& rect) {
    Record(OffscreenDrawingKind::FocusRect, rect, 0);
}

void Offscreen_GCImp::PaintIcon(IconImp& icon, const Point& at) {
    auto* offscreenIcon = dynamic_cast<Offscreen_IconImp*>(&icon);
    Rect covered{at.x, at.y, at.x + icon.GetWidth(), at.y + icon.GetHeight()};
    Record(OffscreenDrawingKind::Icon, covered, 0,
           offscreenIcon != nullptr ? offscreenIcon->GetImage() : loam::String());
}

void Offscreen_GCImp::Record(OffscreenDrawingKind kind, const Rect& rect, uint32_t flags,
                             const loam::String& text) {
    if (drawingSink != nullptr) {
        drawingSink->Draw(OffscreenDrawing{kind, GetWindow(), rect, flags, text, GetState()});
    }
}

} // namespace quilt
