#pragma once

#include <memory>

namespace quilt {

class ApplicationImp;
class ButtonImp;
class CheckBoxImp;
class DialogImp;
class EditBoxImp;
class FontImp;
class GCImp;
class ProgressBarImp;
class RedrawGCImp;
class SliderImp;
class WindowImp;

enum class Backend {
    Offscreen, // no display: windows live in memory, for headless runs and tests
    Gtk,       // the desktop
};

// `requested` is the value of QUILT_PLATFORM, null when unset; `desktopAvailable` says whether
// the desktop backend is built and can open a display.
Backend ChooseBackend(const char* requested, bool desktopAvailable);

// What one backend makes.
struct BackendImps {
    std::unique_ptr<ApplicationImp> (*application)();
    std::unique_ptr<WindowImp> (*window)();
    std::unique_ptr<DialogImp> (*dialog)();
    std::unique_ptr<EditBoxImp> (*editBox)();
    std::unique_ptr<CheckBoxImp> (*checkBox)();
    std::unique_ptr<ButtonImp> (*button)();
    std::unique_ptr<SliderImp> (*slider)();
    std::unique_ptr<ProgressBarImp> (*progressBar)();
    std::unique_ptr<GCImp> (*gc)();
    std::unique_ptr<RedrawGCImp> (*redrawGC)();
    std::unique_ptr<FontImp> (*font)();
};

template <class Abstract, class Platform> std::unique_ptr<Abstract> MakeImp() {
    return std::make_unique<Platform>();
}

// The one place that names a platform's Imp classes. Each operation gives up the new object to
// the caller.
class ImpFactory {
public:
    // Chosen on first use, for the life of the process.
    Backend GetBackend();

    std::unique_ptr<ApplicationImp> CreateApplicationImp();
    std::unique_ptr<WindowImp> CreateWindowImp();
    std::unique_ptr<DialogImp> CreateDialogImp();
    std::unique_ptr<EditBoxImp> CreateEditBoxImp();
    std::unique_ptr<CheckBoxImp> CreateCheckBoxImp();
    std::unique_ptr<ButtonImp> CreateButtonImp();
    std::unique_ptr<SliderImp> CreateSliderImp();
    std::unique_ptr<ProgressBarImp> CreateProgressBarImp();
    std::unique_ptr<GCImp> CreateGCImp();
    std::unique_ptr<RedrawGCImp> CreateRedrawGCImp();
    std::unique_ptr<FontImp> CreateFontImp();

private:
    const BackendImps& GetImps();

    bool chosen = false;
    Backend backend = Backend::Offscreen;
};

ImpFactory& GetImpFactory();

// The desktop backend, which the program's entry installs before anything is made; a process
// that doesn't (the test programs, the command-line finder) has the headless one alone.
// `openDisplay` answers whether a display opens.
void InstallDesktopBackend(const BackendImps& imps, bool (*openDisplay)());
// Defined by the desktop half of the factory, in quilt/gtk.
void InstallGtkBackend();

} // namespace quilt
