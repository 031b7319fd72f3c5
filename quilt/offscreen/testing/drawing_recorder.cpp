#include "quilt/offscreen/testing/drawing_recorder.h"

#include <algorithm>
#include <iterator>

namespace quilt {

std::vector<OffscreenDrawing>
OffscreenDrawingRecorder::GetDrawings(OffscreenDrawingKind kind) const {
    std::vector<OffscreenDrawing> found;
    std::copy_if(drawings.begin(), drawings.end(), std::back_inserter(found),
                 [kind](const OffscreenDrawing& drawing) { return drawing.kind == kind; });
    return found;
}

} // namespace quilt
