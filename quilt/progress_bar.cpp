#include "quilt/progress_bar.h"

#include "quilt/imp_factory.h"

namespace quilt {

std::optional<int32_t> ScaleProgress(int32_t value, int32_t minimum, int32_t maximum) {
    if (maximum <= minimum || value < minimum || value > maximum) {
        return std::nullopt;
    }
    double share =
        (static_cast<double>(value) - minimum) / (static_cast<double>(maximum) - minimum);
    return static_cast<int32_t>(share * ProgressNativeMaximum);
}

ProgressBar::ProgressBar() : Window(GetImpFactory().CreateProgressBarImp()) {
    barImp = dynamic_cast<ProgressBarImp*>(GetImp());
}

bool ProgressBar::Create(Window* parent, const Rect& rect, int32_t id) {
    SetParent(parent);
    return barImp->Create(parent, rect, id);
}

} // namespace quilt
