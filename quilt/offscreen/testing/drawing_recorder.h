#pragma once

#include "quilt/offscreen/offscreen_gc_imp.h"

#include <vector>

namespace quilt {

// While one exists, the offscreen contexts keep every drawing operation in it. The newest of
// nested recorders records.
class OffscreenDrawingRecorder : public OffscreenDrawingSink {
public:
    OffscreenDrawingRecorder() : previous(GetDrawingSink()) { SetDrawingSink(this); }
    OffscreenDrawingRecorder(const OffscreenDrawingRecorder&) = delete;
    OffscreenDrawingRecorder& operator=(const OffscreenDrawingRecorder&) = delete;
    ~OffscreenDrawingRecorder() { SetDrawingSink(previous); }

    void Draw(const OffscreenDrawing& drawing) override { drawings.push_back(drawing); }

    const std::vector<OffscreenDrawing>& GetDrawings() const { return drawings; }
    std::vector<OffscreenDrawing> GetDrawings(OffscreenDrawingKind kind) const;
    void Clear() { drawings.clear(); }

private:
    OffscreenDrawingSink* previous;
    std::vector<OffscreenDrawing> drawings;
};

} // namespace quilt
