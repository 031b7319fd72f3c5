#include "quilt/dialog_units.h"

#include "quilt/font.h"

#include <cstdlib>
#include <limits>

namespace quilt {

namespace {

// value * numerator / denominator, rounded to the nearest with halves away from zero, and held
// within 32 bits.
int32_t ScaleRounded(int32_t value, int32_t numerator, int32_t denominator) {
    int64_t product = static_cast<int64_t>(value) * numerator;
    int64_t magnitude = (std::llabs(product) + denominator / 2) / denominator;
    int64_t scaled = product < 0 ? -magnitude : magnitude;
    if (scaled > std::numeric_limits<int32_t>::max()) {
        return std::numeric_limits<int32_t>::max();
    }
    if (scaled < std::numeric_limits<int32_t>::min()) {
        return std::numeric_limits<int32_t>::min();
    }
    return static_cast<int32_t>(scaled);
}

} // namespace

bool CreateDialogFont(Font& font) {
    return font.Create(loam::String(DialogFontFace), DialogFontPoints);
}

DialogUnits::DialogUnits(Font& font)
    : widthPixels(font.GetAverageWidth()), height(font.GetHeight()) {}

DialogUnits DialogUnits::OfDialogFont() {
    Font font;
    CreateDialogFont(font);
    return DialogUnits(font);
}

int32_t DialogUnits::ToPixelsX(int32_t units) const {
    return ScaleRounded(units, widthPixels, widthUnits);
}

int32_t DialogUnits::ToPixelsY(int32_t units) const {
    return ScaleRounded(units, height, 8);
}

DialogUnits DialogUnits::WidenedToSpan(int32_t pixels, int32_t units) const {
    DialogUnits widened = *this;
    bool narrower =
        static_cast<int64_t>(pixels) * widthUnits > static_cast<int64_t>(widthPixels) * units;
    if (units > 0 && narrower) {
        widened.widthPixels = pixels;
        widened.widthUnits = units;
    }
    return widened;
}

Rect DialogUnits::ToPixels(const Rect& units) const {
    return Rect{ToPixelsX(units.left), ToPixelsY(units.top), ToPixelsX(units.right),
                ToPixelsY(units.bottom)};
}

} // namespace quilt
