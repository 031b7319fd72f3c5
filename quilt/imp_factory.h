#pragma once

#include <memory>

namespace quilt {

class ApplicationImp;
class BrowseDialogImp;
class ButtonImp;
class CheckBoxImp;
class DialogImp;
class DropDownListImp;
class EditBoxImp;
class FontImp;
class GCImp;
class ListBoxImp;
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
    std::unique_ptr<ListBoxImp> CreateListBoxImp();
    std::unique_ptr<DropDownListImp> CreateDropDownListImp();
    std::unique_ptr<BrowseDialogImp> CreateBrowseDialogImp();
    std::unique_ptr<GCImp> CreateGCImp();
    std::unique_ptr<RedrawGCImp> CreateRedrawGCImp();
    std::unique_ptr<FontImp> CreateFontImp();

private:
    bool chosen = false;
    Backend backend = Backend::Offscreen;
};

ImpFactory& GetImpFactory();

} // namespace quilt
