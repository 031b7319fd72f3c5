#include "quilt/dialog_imp.h"

#include "quilt/size_grip.h"

#include <algorithm>

namespace quilt {

int32_t GetSizeGripGrowth(const Rect& client, const std::vector<Rect>& controls) {
    Rect grip = SizeGrip::GetGripRect(client);
    bool covered = std::any_of(controls.begin(), controls.end(),
                               [&grip](const Rect& rect) { return rect.Intersects(grip); });
    if (!covered) {
        return 0;
    }
    Rect all;
    for (const Rect& rect : controls) {
        all.Union(all, rect);
    }
    int32_t bottom = all.bottom + SizeGrip::Height + 1;
    return std::max(bottom - client.bottom, 0);
}

} // namespace quilt
