#include "quilt/geometry.h"

#include <algorithm>

namespace quilt {

bool Rect::Contains(const Point& point) const {
    return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
}

void Rect::Offset(int32_t dx, int32_t dy) {
    left += dx;
    right += dx;
    top += dy;
    bottom += dy;
}

bool Rect::Equals(const Rect& other) const {
    return left == other.left && top == other.top && right == other.right && bottom == other.bottom;
}

void Rect::Union(const Rect& a, const Rect& b) {
    if (a.IsAllZero()) {
        *this = b;
        return;
    }
    if (b.IsAllZero()) {
        *this = a;
        return;
    }
    *this = Rect{std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                 std::max(a.bottom, b.bottom)};
}

bool Rect::Intersect(const Rect& a, const Rect& b) {
    Rect overlap{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                 std::min(a.bottom, b.bottom)};
    if (overlap.left >= overlap.right || overlap.top >= overlap.bottom) {
        *this = Rect{};
        return false;
    }
    *this = overlap;
    return true;
}

bool Rect::Intersects(const Rect& other) const {
    Rect overlap;
    return overlap.Intersect(*this, other);
}

} // namespace quilt
