#pragma once

#include <cstdint>

namespace quilt {

// A colour of three bytes. As a native colour word it reads red | green << 8 | blue << 16, the
// order in which colours are stored wherever the toolkit keeps one as a number.
struct Colour {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;

    constexpr Colour() = default;
    constexpr Colour(uint8_t redValue, uint8_t greenValue, uint8_t blueValue)
        : red(redValue), green(greenValue), blue(blueValue) {}

    static constexpr Colour FromNative(uint32_t native) {
        return Colour(static_cast<uint8_t>(native), static_cast<uint8_t>(native >> 8),
                      static_cast<uint8_t>(native >> 16));
    }
    constexpr uint32_t ToNative() const {
        return static_cast<uint32_t>(red) | static_cast<uint32_t>(green) << 8 |
               static_cast<uint32_t>(blue) << 16;
    }
    constexpr bool operator==(const Colour& other) const = default;
};

inline constexpr Colour Black{0, 0, 0};
inline constexpr Colour White{255, 255, 255};

} // namespace quilt
