#include "quilt/imp_factory.h"

#include "quilt/offscreen/offscreen_application_imp.h"
#include "quilt/offscreen/offscreen_window_imp.h"

#include <cstdlib>
#include <cstring>

namespace quilt {

namespace {

// The desktop backend is not part of this build, so every request falls back to offscreen.
bool IsDesktopAvailable() {
    return false;
}

} // namespace

Backend ChooseBackend(const char* requested, bool desktopAvailable) {
    if (requested != nullptr && std::strcmp(requested, "offscreen") == 0) {
        return Backend::Offscreen;
    }
    return desktopAvailable ? Backend::Gtk : Backend::Offscreen;
}

Backend ImpFactory::GetBackend() {
    if (!chosen) {
        backend = ChooseBackend(std::getenv("QUILT_PLATFORM"), IsDesktopAvailable());
        chosen = true;
    }
    return backend;
}

std::unique_ptr<ApplicationImp> ImpFactory::CreateApplicationImp() {
    return std::make_unique<Offscreen_ApplicationImp>();
}

std::unique_ptr<WindowImp> ImpFactory::CreateWindowImp() {
    return std::make_unique<Offscreen_WindowImp>();
}

ImpFactory& GetImpFactory() {
    static ImpFactory factory;
    return factory;
}

} // namespace quilt
