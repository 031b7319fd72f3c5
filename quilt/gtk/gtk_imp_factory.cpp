// The desktop half of the factory: the one place besides it that names the GTK Imp classes.
#include "quilt/gtk/gtk_application_imp.h"
#include "quilt/gtk/gtk_control_imps.h"
#include "quilt/gtk/gtk_dialog_imp.h"
#include "quilt/gtk/gtk_gc_imp.h"
#include "quilt/gtk/gtk_support.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/imp_factory.h"

namespace quilt {

namespace {

constexpr BackendImps gtkImps{
    MakeImp<ApplicationImp, Gtk_ApplicationImp>,
    MakeImp<WindowImp, Gtk_WindowImp>,
    MakeImp<DialogImp, Gtk_DialogImp>,
    MakeImp<EditBoxImp, Gtk_EditBoxImp>,
    MakeImp<CheckBoxImp, Gtk_CheckBoxImp>,
    MakeImp<ButtonImp, Gtk_ButtonImp>,
    MakeImp<SliderImp, Gtk_SliderImp>,
    MakeImp<ProgressBarImp, Gtk_ProgressBarImp>,
    MakeImp<GCImp, Gtk_GCImp>,
    MakeImp<RedrawGCImp, Gtk_RedrawGCImp>,
    MakeImp<FontImp, Gtk_FontImp>,
};

} // namespace

void InstallGtkBackend() {
    InstallDesktopBackend(gtkImps, OpenGtkDisplay);
}

} // namespace quilt
