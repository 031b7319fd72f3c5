#include "quilt/gc.h"

#include "quilt/imp_factory.h"

namespace quilt {

GC::GC(Window& window) : GC() {
    imp->Attach(window);
}

GC::GC() : GC(GetImpFactory().CreateGCImp()) {}

GC::GC(std::unique_ptr<GCImp> gcImp) : imp(std::move(gcImp)) {}

GC::~GC() = default;

RedrawGC::RedrawGC(Window& window)
    : RedrawGC(GetImpFactory().CreateRedrawGCImp().release(), window) {}

RedrawGC::RedrawGC(std::unique_ptr<RedrawGCImp> imp, Window& window)
    : RedrawGC(imp.release(), window) {}

RedrawGC::RedrawGC(RedrawGCImp* imp, Window& window)
    : GC(std::unique_ptr<GCImp>(imp)), redrawImp(imp) {
    redrawImp->BeginRedraw(window);
}

RedrawGC::~RedrawGC() {
    redrawImp->EndRedraw();
}

} // namespace quilt
