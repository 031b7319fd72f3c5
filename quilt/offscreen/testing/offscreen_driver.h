#pragma once

#include "loam/string.h"
#include "quilt/geometry.h"
#include "quilt/list_control.h"
#include "quilt/offscreen/offscreen_desktop.h"
#include "quilt/offscreen/testing/virtual_clock.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace quilt {

class Dialog;
class Offscreen_BrowseDialogImp;
class Offscreen_PopupMenuImp;
class Window;

// Drives the offscreen backend in a test, on a virtual clock: posts what a user does, runs the
// application's main loop, and reads what the user would see. One per test, made before the
// test's windows and application; it starts and leaves an empty desktop.
class OffscreenDriver {
public:
    // Far enough from 0 that the loop's first idle round comes at once.
    static constexpr uint32_t DefaultStartTime = 1000000;
    // How much clock time a run may take before it gives up.
    static constexpr uint32_t DefaultRunLimit = 600000;
    // How many passes of the loop a run may take: idle rounds that always want more take no
    // clock time.
    static constexpr uint32_t MaximumPasses = 100000;

    explicit OffscreenDriver(uint32_t startTime = DefaultStartTime);
    OffscreenDriver(const OffscreenDriver&) = delete;
    OffscreenDriver& operator=(const OffscreenDriver&) = delete;
    ~OffscreenDriver();

    uint32_t Now() const { return clock.GetNow(); }
    // Moves the clock alone; nothing is served.
    void AdvanceClock(uint32_t milliseconds) { clock.Sleep(milliseconds); }

    // Input is served when the loop's clock reaches `at`, now when it is not given. A window
    // without a native window, or a disabled or hidden one, gets nothing.
    void PostKeyDown(Window& window, int32_t key, uint32_t modifiers = 0,
                     std::optional<uint32_t> at = {});
    void PostKeyUp(Window& window, int32_t key, uint32_t modifiers = 0,
                   std::optional<uint32_t> at = {});
    void PostChar(Window& window, uint16_t character, std::optional<uint32_t> at = {});
    void PostMouseDown(Window& window, uint32_t flags, Point point,
                       std::optional<uint32_t> at = {});
    void PostMouseUp(Window& window, uint32_t flags, Point point, std::optional<uint32_t> at = {});
    void PostMouseDoubleClick(Window& window, uint32_t flags, Point point,
                              std::optional<uint32_t> at = {});
    void PostMouseMove(Window& window, uint32_t flags, Point point,
                       std::optional<uint32_t> at = {});
    void PostMouseWheel(Window& window, int32_t delta, std::optional<uint32_t> at = {});
    // The close box of the window's frame.
    void PostClose(Window& window, std::optional<uint32_t> at = {});
    // The user switches to the window, which takes the focus.
    void PostActivate(Window& window, std::optional<uint32_t> at = {});
    // The user presses the key combination of the hot key `id`.
    void PostHotKey(uint32_t id, std::optional<uint32_t> at = {});

    // Runs the current application's main loop until it comes to rest: it quit, or it waits and
    // no event can come. False when `limit` ms of clock time passed first.
    bool RunUntilIdle(uint32_t limit = DefaultRunLimit);
    // Runs the loop until `condition` holds at the start of a pass; false at the limit.
    bool RunUntil(const std::function<bool()>& condition, uint32_t limit = DefaultRunLimit);
    // Lets `milliseconds` of clock time pass with the loop running.
    void RunFor(uint32_t milliseconds);
    // Serves what waits now, as a modal loop or a progress dialog does.
    void PumpMessages();
    bool HasQuit() const;

    // What the user would see.
    OffscreenWindow* GetNative(Window& window) const;
    bool IsShowing(Window& window) const;
    bool IsEnabled(Window& window) const;
    bool HasFocus(Window& window) const;
    loam::String GetText(Window& window) const;
    Rect GetScreenRect(Window& window) const;
    // The top-level window on top whose title is `title`, or null.
    OffscreenWindow* FindTopWindow(const char* title) const;
    bool IsWaitCursorShowing() const;

    // Dialogs. A dialog is found by the id of its template (0 for one built without a template);
    // the topmost such dialog that is up, or null.
    Dialog* FindDialog(uint16_t templateId) const;
    // The newest modal dialog whose run is under way, or null.
    Dialog* GetModalDialog() const;
    // Runs `action` when the next modal dialog has come up, before its run serves anything: the
    // action acts in it by posting, and the dialog's own loop serves what it posted. Actions
    // wait in a queue, one for each modal dialog to come. A modal dialog that nothing can reach
    // any more is closed, so a run never hangs; a test's time limit closes it too.
    void OnNextModal(std::function<void(Dialog&)> action);
    size_t GetWaitingModalActions() const { return modalActions.size(); }

    // What a user does in a dialog; the input waits for the loop that runs next. A disabled or
    // hidden control gets none of it.
    void Click(Dialog& dialog, int32_t id, std::optional<uint32_t> at = {});
    // Clicks into the box, which puts the caret at the end of its text, and types each byte.
    void TypeText(Dialog& dialog, int32_t id, const char* text, std::optional<uint32_t> at = {});
    // Down, the character where the key has one, and up, to whichever control of the dialog
    // has the focus when the key is served.
    void PressKey(Dialog& dialog, int32_t key, uint32_t modifiers = 0,
                  std::optional<uint32_t> at = {});
    void PressReturn(Dialog& dialog, std::optional<uint32_t> at = {});
    void PressEscape(Dialog& dialog, std::optional<uint32_t> at = {});
    void PressTab(Dialog& dialog, bool backwards = false, std::optional<uint32_t> at = {});
    // Drags the slider's thumb to `position`.
    void MoveSlider(Dialog& dialog, int32_t id, int32_t position, std::optional<uint32_t> at = {});
    // Drags the size grip until the dialog's client area is this size, at once; the dialog may
    // refuse to get smaller.
    void ResizeDialog(Dialog& dialog, int32_t width, int32_t height);

    // What the user sees of a dialog's controls. A control that isn't there reads as empty,
    // 0, false or an empty rectangle.
    OffscreenWindow* FindControl(Dialog& dialog, int32_t id) const;
    loam::String GetControlText(Dialog& dialog, int32_t id) const;
    int32_t GetCheckState(Dialog& dialog, int32_t id) const;
    int32_t GetSliderPosition(Dialog& dialog, int32_t id) const;
    // On the native scale, 0 to 65535.
    int32_t GetProgressPosition(Dialog& dialog, int32_t id) const;
    bool IsControlEnabled(Dialog& dialog, int32_t id) const;
    bool IsControlVisible(Dialog& dialog, int32_t id) const;
    // In the client coordinates of the control's parent.
    Rect GetControlRect(Dialog& dialog, int32_t id) const;
    // The id of the control that has the focus, -1 when none in the dialog has.
    int32_t GetFocusId(Dialog& dialog) const;

    // A list view: what the user clicks, scrolling a row into view first, and what it shows.
    void ClickColumnHeader(Dialog& dialog, int32_t id, int32_t column,
                           std::optional<uint32_t> at = {});
    void ClickRow(Dialog& dialog, int32_t id, int32_t row, std::optional<uint32_t> at = {});
    void DoubleClickRow(Dialog& dialog, int32_t id, int32_t row, std::optional<uint32_t> at = {});
    void ClickCheckBox(Dialog& dialog, int32_t id, int32_t row, std::optional<uint32_t> at = {});
    int32_t GetRowCount(Dialog& dialog, int32_t id) const;
    loam::String GetCellText(Dialog& dialog, int32_t id, int32_t row, int32_t column) const;
    // -1 when no row is selected.
    int32_t GetSelectedRow(Dialog& dialog, int32_t id) const;
    loam::String GetColumnName(Dialog& dialog, int32_t id, int32_t column) const;
    int32_t GetColumnWidth(Dialog& dialog, int32_t id, int32_t column) const;
    // The column whose heading shows a sort, -1 for none, and that sort's direction.
    int32_t GetSortColumn(Dialog& dialog, int32_t id, SortDirection& direction) const;

    // A drop-down list: a press on its arrow opens or closes it; a row of the open list is
    // chosen by a press on it.
    void ToggleDropDown(Dialog& dialog, int32_t id, std::optional<uint32_t> at = {});
    void ChooseDropDownRow(Dialog& dialog, int32_t id, int32_t row,
                           std::optional<uint32_t> at = {});
    // The rows of the native list, as the user sees them when it is open.
    std::vector<loam::String> GetDropDownRows(Dialog& dialog, int32_t id) const;

    using FolderAnswer = std::function<std::optional<loam::String>(Offscreen_BrowseDialogImp&)>;
    // Answers the next folder chooser, in the order they come up: `answer` may select folders
    // and read the status line, and gives the folder chosen, or none to cancel. A chooser with
    // no answer waiting is cancelled.
    void OnNextFolderChoice(FolderAnswer answer);

    // The place from the top of the item picked in a popup menu, or none to dismiss it.
    using MenuAnswer = std::function<std::optional<size_t>(const Offscreen_PopupMenuImp&)>;
    // Answers the next popup menu, in the order they come up: `answer` may read the items, the
    // window and the place, and picks an item or dismisses the menu. A menu with no answer
    // waiting is dismissed.
    void OnNextMenu(MenuAnswer answer);
    // An answer that picks the item whose text, with its '&', is `text`; none is picked when no
    // item has it.
    static MenuAnswer PickMenuItem(const char* text);
    // A list view's context menu: a press of the right button on the row, scrolled into view, or
    // the Menu key (else Shift+F10) on the list, which asks for the selected row's menu.
    void RightClickRow(Dialog& dialog, int32_t id, int32_t row, std::optional<uint32_t> at = {});
    void PressMenuKey(Dialog& dialog, int32_t id, bool shiftF10 = false,
                      std::optional<uint32_t> at = {});
    // What the desktop's clipboard holds.
    loam::String GetClipboardText() const;
    // The user drags the row out of a list view to another program: the path that the drop
    // gets as "text/plain", or none when no drag can start there.
    std::optional<loam::String> DragRowOut(Dialog& dialog, int32_t id, int32_t row);
    // How many popup menus have come up since the driver was made.
    int32_t GetMenusShown() const { return menusShown; }
    size_t GetWaitingMenuAnswers() const { return menuAnswers.size(); }

private:
    enum class RunEnd { Rest, Condition, Limit };

    RunEnd Run(const std::function<bool()>& condition, uint32_t limit);
    void Post(Window& window, OffscreenMessage message, std::optional<uint32_t> at);
    void PostKey(Window& window, OffscreenMessageKind kind, int32_t value, uint32_t flags,
                 std::optional<uint32_t> at);
    void PostMouse(Window& window, OffscreenMessageKind kind, uint32_t flags, Point point,
                   std::optional<uint32_t> at);
    void PostMouseToControl(Dialog& dialog, int32_t id, OffscreenMessageKind kind, Point point,
                            std::optional<uint32_t> at);
    // A left click at `point` of the control: the press, then the release.
    void PressAndRelease(Dialog& dialog, int32_t id, Point point, std::optional<uint32_t> at);

    void PostToControl(Dialog& dialog, int32_t id, OffscreenMessage message,
                       std::optional<uint32_t> at);
    void OnModal(OffscreenWindow& window);
    std::optional<loam::String> AnswerFolderChoice(Offscreen_BrowseDialogImp& chooser);
    std::optional<size_t> AnswerMenu(const Offscreen_PopupMenuImp& menu);

    VirtualClock clock;
    OffscreenDesktop& desktop;
    std::deque<std::function<void(Dialog&)>> modalActions;
    std::deque<FolderAnswer> folderAnswers;
    std::deque<MenuAnswer> menuAnswers;
    int32_t menusShown = 0;
};

} // namespace quilt
