#pragma once

#include "loam/string.h"

#include <cstdint>
#include <memory>

namespace quilt {

class FontImp;

enum FontWeight : int32_t {
    FontWeightLight = 0,
    FontWeightNormal = 1,
    FontWeightBold = 2,
};

enum FontStyle : uint32_t {
    FontStyleItalic = 2,
    FontStyleUnderline = 4,
};

enum FontFamily : int32_t {
    FontFamilyAny = 0,
    FontFamilyRoman = 1,
    FontFamilySwiss = 2,
};

enum FontPitch : int32_t {
    FontPitchDefault = 0,
    FontPitchFixed = 1,
    FontPitchVariable = 2,
};

// A font for drawing text. A font selected into a drawing context must outlive the context.
class Font {
public:
    Font();
    explicit Font(std::unique_ptr<FontImp> imp);
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font();

    // `style` is a set of FontStyle flags.
    bool Create(const loam::String& face, int32_t points, FontWeight weight = FontWeightNormal,
                uint32_t style = 0, FontFamily family = FontFamilyAny,
                FontPitch pitch = FontPitchDefault);
    // In pixels: the height of a line, and the average width of a character.
    int32_t GetHeight();
    int32_t GetAverageWidth();
    int32_t GetPointSize();

    FontImp* GetImp() const { return imp.get(); }

private:
    std::unique_ptr<FontImp> imp;
};

} // namespace quilt
