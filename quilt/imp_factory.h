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
class DateTimeBoxImp;
class DialogControlImp;
class IconImp;
class ImageButtonImp;
class ListBoxImp;
class PopupMenuButtonImp;
class PopupMenuImp;
class ProgressBarImp;
class RadioButtonImp;
class RedrawGCImp;
class SliderImp;
class TabControlImp;
class URLButtonImp;
class WindowImp;

enum class Backend {
    Headless, // "offscreen": no display, windows live in memory, for headless runs and tests
    Gtk,      // "gtk": the desktop
};

// `requested` is the value of QUILT_PLATFORM, null when unset; `desktopAvailable` says whether
// the desktop backend is built and can open a display.
Backend ChooseBackend(const char* requested, bool desktopAvailable);

struct BackendImps;

// The one place that names a platform's Imp classes. Each operation gives up the new object to
// the caller.
class ImpFactory {
public:
    // Chosen on first use, for the life of the process.
    Backend GetBackend();
    // False, with one line on standard error, when QUILT_PLATFORM asks for a backend that this
    // build does not have; the process then has nothing to show its windows on.
    bool CanRun();

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
    std::unique_ptr<PopupMenuImp> CreatePopupMenuImp();
    std::unique_ptr<GCImp> CreateGCImp();
    std::unique_ptr<RedrawGCImp> CreateRedrawGCImp();
    std::unique_ptr<FontImp> CreateFontImp();
    std::unique_ptr<IconImp> CreateIconImp();
    std::unique_ptr<RadioButtonImp> CreateRadioButtonImp();
    std::unique_ptr<DateTimeBoxImp> CreateDateTimeBoxImp();
    std::unique_ptr<URLButtonImp> CreateURLButtonImp();
    std::unique_ptr<TabControlImp> CreateTabControlImp();
    std::unique_ptr<DialogControlImp> CreateDialogControlImp();
    std::unique_ptr<ImageButtonImp> CreateImageButtonImp();
    std::unique_ptr<PopupMenuButtonImp> CreatePopupMenuButtonImp();

private:
    const BackendImps& GetImps();

    const BackendImps* imps = nullptr;
};

ImpFactory& GetImpFactory();

} // namespace quilt
