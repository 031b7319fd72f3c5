#pragma once

#include "quilt/geometry.h"

#include <cstdint>

namespace quilt {

class Font;

// The font of every dialog template of the program.
inline constexpr const char* DialogFontFace = "MS Sans Serif";
inline constexpr int32_t DialogFontPoints = 8;

bool CreateDialogFont(Font& font);

// Dialog units measured on a font: a horizontal unit is a quarter of the font's average
// character width, a vertical unit an eighth of its height. Pixels are rounded to the nearest,
// halves away from zero.
class DialogUnits {
public:
    DialogUnits(int32_t characterWidth, int32_t lineHeight)
        : widthPixels(characterWidth), height(lineHeight) {}
    explicit DialogUnits(Font& font);
    static DialogUnits OfDialogFont();

    int32_t ToPixelsX(int32_t units) const;
    int32_t ToPixelsY(int32_t units) const;
    Rect ToPixels(const Rect& units) const;

    // These units, with the horizontal unit widened where needed so that `units` of them span
    // at least `pixels`: a font whose words run wider than its average character says still
    // fits the texts of a layout made for another font.
    DialogUnits WidenedToSpan(int32_t pixels, int32_t units) const;

private:
    // A horizontal unit is widthPixels / widthUnits pixels.
    int32_t widthPixels;
    int32_t widthUnits = 4;
    int32_t height;
};

} // namespace quilt
