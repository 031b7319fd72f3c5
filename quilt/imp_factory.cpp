#include "quilt/imp_factory.h"

#include "quilt/offscreen/offscreen_application_imp.h"
#include "quilt/offscreen/offscreen_control_imps.h"
#include "quilt/offscreen/offscreen_dialog_imp.h"
#include "quilt/offscreen/offscreen_gc_imp.h"
#include "quilt/offscreen/offscreen_window_imp.h"

#include <cstdlib>
#include <cstring>

namespace quilt {

namespace {

constexpr BackendImps offscreenImps{
    MakeImp<ApplicationImp, Offscreen_ApplicationImp>,
    MakeImp<WindowImp, Offscreen_WindowImp>,
    MakeImp<DialogImp, Offscreen_DialogImp>,
    MakeImp<EditBoxImp, Offscreen_EditBoxImp>,
    MakeImp<CheckBoxImp, Offscreen_CheckBoxImp>,
    MakeImp<ButtonImp, Offscreen_ButtonImp>,
    MakeImp<SliderImp, Offscreen_SliderImp>,
    MakeImp<ProgressBarImp, Offscreen_ProgressBarImp>,
    MakeImp<GCImp, Offscreen_GCImp>,
    MakeImp<RedrawGCImp, Offscreen_RedrawGCImp>,
    MakeImp<FontImp, Offscreen_FontImp>,
};

const BackendImps* desktopImps = nullptr;
bool (*openDesktopDisplay)() = nullptr;

// Asks the desktop only when it may be chosen, so that a run asked to be headless never
// touches a display.
bool IsDesktopAvailable(const char* requested) {
    bool headless = requested != nullptr && std::strcmp(requested, "offscreen") == 0;
    return !headless && desktopImps != nullptr && openDesktopDisplay();
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
        const char* requested = std::getenv("QUILT_PLATFORM");
        backend = ChooseBackend(requested, IsDesktopAvailable(requested));
        chosen = true;
    }
    return backend;
}

std::unique_ptr<ApplicationImp> ImpFactory::CreateApplicationImp() {
    return GetImps().application();
}

std::unique_ptr<WindowImp> ImpFactory::CreateWindowImp() {
    return GetImps().window();
}

std::unique_ptr<DialogImp> ImpFactory::CreateDialogImp() {
    return GetImps().dialog();
}

std::unique_ptr<EditBoxImp> ImpFactory::CreateEditBoxImp() {
    return GetImps().editBox();
}

std::unique_ptr<CheckBoxImp> ImpFactory::CreateCheckBoxImp() {
    return GetImps().checkBox();
}

std::unique_ptr<ButtonImp> ImpFactory::CreateButtonImp() {
    return GetImps().button();
}

std::unique_ptr<SliderImp> ImpFactory::CreateSliderImp() {
    return GetImps().slider();
}

std::unique_ptr<ProgressBarImp> ImpFactory::CreateProgressBarImp() {
    return GetImps().progressBar();
}

std::unique_ptr<GCImp> ImpFactory::CreateGCImp() {
    return GetImps().gc();
}

std::unique_ptr<RedrawGCImp> ImpFactory::CreateRedrawGCImp() {
    return GetImps().redrawGC();
}

std::unique_ptr<FontImp> ImpFactory::CreateFontImp() {
    return GetImps().font();
}

const BackendImps& ImpFactory::GetImps() {
    return GetBackend() == Backend::Gtk ? *desktopImps : offscreenImps;
}

void InstallDesktopBackend(const BackendImps& imps, bool (*openDisplay)()) {
    desktopImps = &imps;
    openDesktopDisplay = openDisplay;
}

ImpFactory& GetImpFactory() {
    static ImpFactory factory;
    return factory;
}

} // namespace quilt
