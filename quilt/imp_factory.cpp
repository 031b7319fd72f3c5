#include "quilt/imp_factory.h"

#include "quilt/offscreen/offscreen_application_imp.h"
#include "quilt/offscreen/offscreen_browse_dialog_imp.h"
#include "quilt/offscreen/offscreen_control_imps.h"
#include "quilt/offscreen/offscreen_dialog_imp.h"
#include "quilt/offscreen/offscreen_gc_imp.h"
#include "quilt/offscreen/offscreen_list_imps.h"
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

std::unique_ptr<DialogImp> ImpFactory::CreateDialogImp() {
    return std::make_unique<Offscreen_DialogImp>();
}

std::unique_ptr<EditBoxImp> ImpFactory::CreateEditBoxImp() {
    return std::make_unique<Offscreen_EditBoxImp>();
}

std::unique_ptr<CheckBoxImp> ImpFactory::CreateCheckBoxImp() {
    return std::make_unique<Offscreen_CheckBoxImp>();
}

std::unique_ptr<ButtonImp> ImpFactory::CreateButtonImp() {
    return std::make_unique<Offscreen_ButtonImp>();
}

std::unique_ptr<SliderImp> ImpFactory::CreateSliderImp() {
    return std::make_unique<Offscreen_SliderImp>();
}

std::unique_ptr<ProgressBarImp> ImpFactory::CreateProgressBarImp() {
    return std::make_unique<Offscreen_ProgressBarImp>();
}

std::unique_ptr<ListBoxImp> ImpFactory::CreateListBoxImp() {
    return std::make_unique<Offscreen_ListBoxImp>();
}

std::unique_ptr<DropDownListImp> ImpFactory::CreateDropDownListImp() {
    return std::make_unique<Offscreen_DropDownListImp>();
}

std::unique_ptr<BrowseDialogImp> ImpFactory::CreateBrowseDialogImp() {
    return std::make_unique<Offscreen_BrowseDialogImp>();
}

std::unique_ptr<GCImp> ImpFactory::CreateGCImp() {
    return std::make_unique<Offscreen_GCImp>();
}

std::unique_ptr<RedrawGCImp> ImpFactory::CreateRedrawGCImp() {
    return std::make_unique<Offscreen_RedrawGCImp>();
}

std::unique_ptr<FontImp> ImpFactory::CreateFontImp() {
    return std::make_unique<Offscreen_FontImp>();
}

ImpFactory& GetImpFactory() {
    static ImpFactory factory;
    return factory;
}

} // namespace quilt
