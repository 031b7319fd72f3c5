#pragma once

#include <cstdint>

namespace quilt {

struct Point {
    int32_t x = 0;
    int32_t y = 0;
};

// A point in one notification word: x in the low 16 bits, y in the high 16 bits, each signed.
constexpr int32_t PackPoint(const Point& point) {
    return static_cast<int32_t>((static_cast<uint32_t>(point.y) << 16) |
                                (static_cast<uint32_t>(point.x) & 0xFFFFu));
}
constexpr Point UnpackPoint(int32_t word) {
    auto bits = static_cast<uint32_t>(word);
    return Point{static_cast<int16_t>(bits & 0xFFFFu), static_cast<int16_t>(bits >> 16)};
}

// A client size, as a size change proposes it and a window may correct it.
struct Size {
    int32_t width = 0;
    int32_t height = 0;
};

// Right and bottom are exclusive.
struct Rect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    int32_t GetWidth() const { return right - left; }
    int32_t GetHeight() const { return bottom - top; }
    bool IsAllZero() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    bool Contains(const Point& point) const;

    void Offset(int32_t dx, int32_t dy);
    bool Equals(const Rect& other) const;
    // An all-zero rectangle counts as empty: the union with it is the other rectangle.
    void Union(const Rect& a, const Rect& b);
    // Stores the overlap, or all zeros when the overlap has no area.
    bool Intersect(const Rect& a, const Rect& b);
    bool Intersects(const Rect& other) const;
};

} // namespace quilt
