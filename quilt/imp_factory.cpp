#include "quilt/imp_factory.h"

#include "quilt/gtk/gtk_application_imp.h"
#include "quilt/gtk/gtk_control_imps.h"
#include "quilt/gtk/gtk_dialog_imp.h"
#include "quilt/gtk/gtk_gc_imp.h"
#include "quilt/gtk/gtk_list_imps.h"
#include "quilt/gtk/gtk_popup_menu_imp.h"
#include "quilt/gtk/gtk_support.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/offscreen/offscreen_application_imp.h"
#include "quilt/offscreen/offscreen_browse_dialog_imp.h"
#include "quilt/offscreen/offscreen_control_imps.h"
#include "quilt/offscreen/offscreen_dialog_imp.h"
#include "quilt/offscreen/offscreen_gc_imp.h"
#include "quilt/offscreen/offscreen_list_imps.h"
#include "quilt/offscreen/offscreen_popup_menu_imp.h"
#include "quilt/offscreen/offscreen_window_imp.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace quilt {

// What one backend makes, and whether it can run here.
struct BackendImps {
    Backend backend;
    const char* name; // its value of QUILT_PLATFORM
    bool (*canOpenDisplay)();
    std::unique_ptr<ApplicationImp> (*application)();
    std::unique_ptr<WindowImp> (*window)();
    std::unique_ptr<DialogImp> (*dialog)();
    std::unique_ptr<EditBoxImp> (*editBox)();
    std::unique_ptr<CheckBoxImp> (*checkBox)();
    std::unique_ptr<ButtonImp> (*button)();
    std::unique_ptr<SliderImp> (*slider)();
    std::unique_ptr<ProgressBarImp> (*progressBar)();
    std::unique_ptr<ListBoxImp> (*listBox)();
    std::unique_ptr<DropDownListImp> (*dropDownList)();
    std::unique_ptr<BrowseDialogImp> (*browseDialog)();
    std::unique_ptr<PopupMenuImp> (*popupMenu)();
    std::unique_ptr<GCImp> (*gc)();
    std::unique_ptr<RedrawGCImp> (*redrawGC)();
    std::unique_ptr<FontImp> (*font)();
    std::unique_ptr<IconImp> (*icon)();
    std::unique_ptr<RadioButtonImp> (*radioButton)();
    std::unique_ptr<DateTimeBoxImp> (*dateTimeBox)();
    std::unique_ptr<URLButtonImp> (*urlButton)();
    std::unique_ptr<TabControlImp> (*tabControl)();
    std::unique_ptr<DialogControlImp> (*dialogControl)();
    std::unique_ptr<ImageButtonImp> (*imageButton)();
    std::unique_ptr<PopupMenuButtonImp> (*popupMenuButton)();
};

namespace {

template <class Abstract, class Platform> std::unique_ptr<Abstract> Make() {
    return std::make_unique<Platform>();
}

bool NeedsNoDisplay() {
    return true;
}

constexpr BackendImps headlessImps{
    Backend::Headless,
    "offscreen",
    NeedsNoDisplay,
    Make<ApplicationImp, Offscreen_ApplicationImp>,
    Make<WindowImp, Offscreen_WindowImp>,
    Make<DialogImp, Offscreen_DialogImp>,
    Make<EditBoxImp, Offscreen_EditBoxImp>,
    Make<CheckBoxImp, Offscreen_CheckBoxImp>,
    Make<ButtonImp, Offscreen_ButtonImp>,
    Make<SliderImp, Offscreen_SliderImp>,
    Make<ProgressBarImp, Offscreen_ProgressBarImp>,
    Make<ListBoxImp, Offscreen_ListBoxImp>,
    Make<DropDownListImp, Offscreen_DropDownListImp>,
    Make<BrowseDialogImp, Offscreen_BrowseDialogImp>,
    Make<PopupMenuImp, Offscreen_PopupMenuImp>,
    Make<GCImp, Offscreen_GCImp>,
    Make<RedrawGCImp, Offscreen_RedrawGCImp>,
    Make<FontImp, Offscreen_FontImp>,
    Make<IconImp, Offscreen_IconImp>,
    Make<RadioButtonImp, Offscreen_RadioButtonImp>,
    Make<DateTimeBoxImp, Offscreen_DateTimeBoxImp>,
    Make<URLButtonImp, Offscreen_URLButtonImp>,
    Make<TabControlImp, Offscreen_TabControlImp>,
    Make<DialogControlImp, Offscreen_DialogControlImp>,
    Make<ImageButtonImp, Offscreen_ImageButtonImp>,
    Make<PopupMenuButtonImp, Offscreen_PopupMenuButtonImp>,
};

constexpr BackendImps desktopImps{
    Backend::Gtk,
    "gtk",
    OpenGtkDisplay,
    Make<ApplicationImp, Gtk_ApplicationImp>,
    Make<WindowImp, Gtk_WindowImp>,
    Make<DialogImp, Gtk_DialogImp>,
    Make<EditBoxImp, Gtk_EditBoxImp>,
    Make<CheckBoxImp, Gtk_CheckBoxImp>,
    Make<ButtonImp, Gtk_ButtonImp>,
    Make<SliderImp, Gtk_SliderImp>,
    Make<ProgressBarImp, Gtk_ProgressBarImp>,
    Make<ListBoxImp, Gtk_ListBoxImp>,
    Make<DropDownListImp, Gtk_DropDownListImp>,
    Make<BrowseDialogImp, Gtk_BrowseDialogImp>,
    Make<PopupMenuImp, Gtk_PopupMenuImp>,
    Make<GCImp, Gtk_GCImp>,
    Make<RedrawGCImp, Gtk_RedrawGCImp>,
    Make<FontImp, Gtk_FontImp>,
    Make<IconImp, Gtk_IconImp>,
    Make<RadioButtonImp, Gtk_RadioButtonImp>,
    Make<DateTimeBoxImp, Gtk_DateTimeBoxImp>,
    Make<URLButtonImp, Gtk_URLButtonImp>,
    Make<TabControlImp, Gtk_TabControlImp>,
    Make<DialogControlImp, Gtk_DialogControlImp>,
    Make<ImageButtonImp, Gtk_ImageButtonImp>,
    Make<PopupMenuButtonImp, Gtk_PopupMenuButtonImp>,
};

// The backends of this build.
const BackendImps* const builtBackends[] = {&headlessImps, &desktopImps};

const BackendImps* FindBuilt(Backend backend) {
    for (const BackendImps* imps : builtBackends) {
        if (imps->backend == backend) {
            return imps;
        }
    }
    return nullptr;
}

const BackendImps* FindBuilt(const char* name) {
    for (const BackendImps* imps : builtBackends) {
        if (std::strcmp(imps->name, name) == 0) {
            return imps;
        }
    }
    return nullptr;
}

bool IsHeadlessRequested(const char* requested) {
    return requested != nullptr && std::strcmp(requested, "offscreen") == 0;
}

// Asks the desktop only when it may be chosen, so that a run asked to be headless never
// touches a display.
bool IsDesktopAvailable(const char* requested) {
    const BackendImps* desktop = FindBuilt(Backend::Gtk);
    return !IsHeadlessRequested(requested) && desktop != nullptr && desktop->canOpenDisplay();
}

} // namespace

Backend ChooseBackend(const char* requested, bool desktopAvailable) {
    if (IsHeadlessRequested(requested)) {
        return Backend::Headless;
    }
    return desktopAvailable ? Backend::Gtk : Backend::Headless;
}

const BackendImps& ImpFactory::GetImps() {
    if (imps == nullptr) {
        const char* requested = std::getenv("QUILT_PLATFORM");
        imps = FindBuilt(ChooseBackend(requested, IsDesktopAvailable(requested)));
    }
    return *imps;
}

Backend ImpFactory::GetBackend() {
    return GetImps().backend;
}

bool ImpFactory::CanRun() {
    const char* requested = std::getenv("QUILT_PLATFORM");
    if (requested == nullptr || std::strcmp(requested, "gtk") != 0 || FindBuilt(requested)) {
        return true;
    }
    std::fputs("quilt: QUILT_PLATFORM=gtk asks for the desktop backend, which this build does not "
               "have; unset it, or set QUILT_PLATFORM=offscreen\n",
               stderr);
    return false;
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

std::unique_ptr<ListBoxImp> ImpFactory::CreateListBoxImp() {
    return GetImps().listBox();
}

std::unique_ptr<DropDownListImp> ImpFactory::CreateDropDownListImp() {
    return GetImps().dropDownList();
}

std::unique_ptr<BrowseDialogImp> ImpFactory::CreateBrowseDialogImp() {
    return GetImps().browseDialog();
}

std::unique_ptr<PopupMenuImp> ImpFactory::CreatePopupMenuImp() {
    return GetImps().popupMenu();
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

std::unique_ptr<IconImp> ImpFactory::CreateIconImp() {
    return GetImps().icon();
}

std::unique_ptr<RadioButtonImp> ImpFactory::CreateRadioButtonImp() {
    return GetImps().radioButton();
}

std::unique_ptr<DateTimeBoxImp> ImpFactory::CreateDateTimeBoxImp() {
    return GetImps().dateTimeBox();
}

std::unique_ptr<URLButtonImp> ImpFactory::CreateURLButtonImp() {
    return GetImps().urlButton();
}

std::unique_ptr<TabControlImp> ImpFactory::CreateTabControlImp() {
    return GetImps().tabControl();
}

std::unique_ptr<DialogControlImp> ImpFactory::CreateDialogControlImp() {
    return GetImps().dialogControl();
}

std::unique_ptr<ImageButtonImp> ImpFactory::CreateImageButtonImp() {
    return GetImps().imageButton();
}

std::unique_ptr<PopupMenuButtonImp> ImpFactory::CreatePopupMenuButtonImp() {
    return GetImps().popupMenuButton();
}

ImpFactory& GetImpFactory() {
    static ImpFactory factory;
    return factory;
}

} // namespace quilt
