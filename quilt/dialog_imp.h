#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/dialog_units.h"
#include "quilt/geometry.h"
#include "quilt/window_imp.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace quilt {

class Dialog;
class SizeGrip;

// Control ids that the toolkit itself knows.
enum DialogControlId : int32_t {
    IdOK = 1,
    IdCancel = 2,
};

// Check states of a check box.
enum CheckState : int32_t {
    CheckStateUnchecked = 0,
    CheckStateChecked = 1,
    CheckStateIndeterminate = 2,
};

// The state that a request for `requested` sets: 1 checked, 2 indeterminate, any other unchecked.
int32_t ToCheckState(int32_t requested);
// A platform's check state as the toolkit reads it: 0 or 1 as they are, 2 for any other.
int32_t ReadCheckState(int32_t native);

// A control of a dialog as the dialog keys see it. A backend lists a dialog's controls in tab
// order; a page, a dialog inside the dialog, holds controls that count as the dialog's own.
struct DialogControl {
    NativeHandle handle = nullptr;
    int32_t id = 0;
    uint32_t style = 0;  // ControlStyle bits
    bool usable = false; // enabled and visible
    bool page = false;
    bool pushButton = false;
    bool checkable = false; // a check box or a radio button: a mnemonic clicks it
    // The upper-case key of the mnemonic in its text, 0 for none.
    int32_t mnemonic = 0;
};

// The key of the mnemonic that a toolkit text marks with '&': upper case, 0 for none; "&&" is
// an ampersand.
int32_t GetMnemonicKey(const char* text);

// The platform side of a dialog. `id` is always the control id of a child of the dialog, found
// one level down inside a group too. Operations on an id that no control has do nothing.
//
// What a dialog does as it starts, how its commands are routed, who deletes a modeless one, the
// dialog keys and the deferred layout are the toolkit's and live here; a platform builds the
// native dialog, runs its modal loop, reports keys and focus and answers the operations below.
//
// The dialog keys: Return presses the focused push button or else the default button (a
// disabled one does nothing), Escape and the close box give id 2, Tab and Shift+Tab move the
// focus through the tab stops, pages included, and Alt with a mnemonic's key clicks a button or
// check box, or focuses the control that a label names: the next tab stop. A control takes
// Return, Escape or Tab itself when its dialog code says so.
class DialogImp : public virtual WindowImp {
public:
    DialogImp();
    ~DialogImp() override;

    // Builds the native dialog from its template and runs it until EndDialog; the result code,
    // or -1 when the template can't be used. Then the window that was in front before it comes
    // to the front again: the modal dialog it ran over, else its owner.
    int32_t RunModal(const loam::ResourceId& resource, Window* parent, bool centre);
    // Builds the native dialog and returns at once; its native handle, null on failure. A
    // modeless dialog that isn't the main window deletes its own object when its window goes.
    NativeHandle RunModeless(const loam::ResourceId& resource, Window* parent, bool centre);
    // A modal dialog's run ends with `code`; a modeless dialog's native window goes.
    void EndDialog(int32_t code);
    // The dialog as a page inside the parent's native window.
    bool CreateChildDialog(const loam::ResourceId& resource, Window* parent);
    // Has an effect only before OnInitDialog has ended.
    void DisableSizeGrip() { useSizeGrip = false; }
    // The portable dialog is going away: the end of its native window must not delete it.
    void OnOwnerDestroyed() { ownerGone = true; }

    virtual void EnableControl(int32_t id, bool enable) = 0;
    void EnableControlById(int32_t id) { EnableControl(id, true); }
    void DisableControlById(int32_t id) { EnableControl(id, false); }
    // Keeps the control's size.
    void MoveControl(int32_t id, int32_t x, int32_t y);
    void OffsetControl(int32_t id, int32_t dx, int32_t dy);
    // Keeps the control's left and top.
    void SetControlSize(int32_t id, int32_t width, int32_t height);
    void ShowControl(int32_t id) { SetControlVisible(id, true); }
    void HideControl(int32_t id) { SetControlVisible(id, false); }
    // In the client coordinates of the control's own parent; `rect` stays as it was when there
    // is no such control.
    virtual bool GetControlRect(int32_t id, Rect& rect) = 0;
    // Waits for EndLayout when a layout pass is open.
    void SetControlRect(int32_t id, const Rect& rect);
    // `state` is one of the CheckState values.
    virtual void SetCheck(int32_t id, int32_t state) = 0;
    // The native state, 0 for an id that no control has, 2 when the dialog has no native window.
    int32_t GetCheck(int32_t id);
    // True when the control exists and a Window is bound to it.
    virtual bool GetControlWindow(int32_t id, Window** window) = 0;
    virtual bool GetControlText(int32_t id, loam::String& text) = 0;
    virtual bool SetControlText(int32_t id, const loam::String& text) = 0;
    virtual bool SetControlId(int32_t id, int32_t newId) = 0;
    // Moves between the two take effect together, in order, at the EndLayout that closes the
    // outermost pair.
    void BeginLayout() { ++deferDepth; }
    void EndLayout();
    // Converts a rectangle in dialog units to pixels with the dialog's font.
    void MapDialogRect(Rect& rect) { rect = GetDialogUnits().ToPixels(rect); }
    // False in a headless run: nobody is at the screen to answer a modal dialog.
    virtual bool IsUserPresent() { return true; }

    // A command goes to the command target, or to the dialog unless it is the main window, then
    // to the application; every event, a click included, is then translated and dispatched.
    bool OnControlEvent(const NativeNotification& notification) override;
    // A control bound to a window translates its own events.
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;
    // The size grip follows the corner before the dialog lays itself out.
    bool OnNativeSize(int32_t width, int32_t height) override;

    // A backend reports here a key event on its way to the focused control, whose Imp (bound at
    // or above it) is `focusImp` and whose platform dialog code is `nativeCode`. True when the
    // dialog took the key; the character that follows a taken key is taken with it.
    bool OnDialogKey(KeyEventKind kind, int32_t key, uint32_t modifiers, WindowImp* focusImp,
                     int32_t nativeCode);
    // The user asked to close the dialog: unless the dialog's OnClose takes it, a click on id 2.
    void CloseByUser();

protected:
    // The platform's part of a modal run: builds the native dialog, serves its events until the
    // run has ended (HasRunEnded) or the dialog has gone, then destroys it. False when the
    // dialog could not be made.
    virtual bool RunNativeModal(const loam::ResourceId& resource, Window* parent) = 0;
    // Builds the native dialog, top-level or as a page inside the parent's native window.
    virtual bool CreateNativeDialog(const loam::ResourceId& resource, Window* parent,
                                    bool asChild) = 0;
    // A modal run has ended: the dialog goes out of sight until its run is left.
    virtual void EndNativeModal() = 0;
    // The rectangles of the dialog's own controls, in its client coordinates.
    virtual void GetChildRects(std::vector<Rect>& rects) = 0;
    // Whether the focus is on the dialog or on a control inside it.
    virtual bool HasFocusWithin() = 0;
    // The controls directly in the dialog, or in the page `page`, in tab order.
    virtual void GetControls(NativeHandle page, std::vector<DialogControl>& controls) = 0;
    // The control of the dialog, or of a page in it, that holds the focus; null for none.
    virtual NativeHandle GetFocusControl() = 0;
    // Gives the control the focus; an edit box that gets it so has all its text selected.
    virtual void FocusControl(NativeHandle control) = 0;
    // Clicks the control as the user's click would.
    virtual void ClickControl(NativeHandle control) = 0;
    // Moves and sizes the control now.
    virtual void PlaceControlNow(int32_t id, const Rect& rect) = 0;
    virtual void SetControlVisible(int32_t id, bool visible) = 0;
    // The state of the control's check mark, 0 when there is no such control.
    virtual int32_t GetNativeCheck(int32_t id) = 0;
    // The units of the dialog's template, or of the dialog font without one.
    virtual DialogUnits GetDialogUnits() const = 0;
    // Brings the top-level window that holds `window` to the front.
    virtual void RaiseTopLevel(Window* window) = 0;

    // Called by the platform once the native dialog has its controls: the dialog takes its
    // initial size and runs OnInitDialog; unless that ended it, a resizable dialog gets its size
    // grip, the dialog is centred when asked, shown, and the focus goes to its first tab stop
    // unless OnInitDialog put it inside the dialog.
    void StartDialog(bool resizable);
    bool HasRunEnded() const { return ended; }
    // A dialog placed by its own OnInitDialog is not centred afterwards.
    void KeepPlacement() { centreOnInit = false; }
    void NotifyNativeDestroyed() override;

private:
    // The controls of the dialog and of its usable pages, the pages themselves left out; only
    // the enabled and visible ones when `usableOnly`.
    std::vector<DialogControl> GetAllControls(bool usableOnly);
    void CreateSizeGrip(Dialog& dialog);
    void CollectControls(NativeHandle page, bool usableOnly, std::vector<DialogControl>& controls);
    std::vector<DialogControl> GetTabStops();
    void SendCommand(int32_t id);
    void PressDefault(int32_t key, uint32_t modifiers);
    void PressCancel(int32_t key, uint32_t modifiers);
    void MoveFocus(int32_t key, uint32_t modifiers);
    bool TakeMnemonic(int32_t key);
    void PressMnemonic(const std::vector<DialogControl>& controls, size_t index);
    void FocusFirstTabStop();

    struct DialogKey {
        int32_t key;
        void (DialogImp::*press)(int32_t key, uint32_t modifiers);
    };
    static const DialogKey dialogKeys[];
    static const DialogKey* FindDialogKey(int32_t key);

    bool centreOnInit = false;
    bool modal = true;
    bool running = false;
    bool ended = false;
    int32_t result = -1;
    bool useSizeGrip = true;
    std::unique_ptr<SizeGrip> sizeGrip;
    // A modeless dialog deletes its own object when its window goes, unless the object is
    // already going, or is still being created: then the deletion waits for the creation's end.
    bool ownerGone = false;
    bool creating = false;
    bool deletionPending = false;
    int32_t deferDepth = 0;
    std::vector<std::pair<int32_t, Rect>> deferredMoves;
    // The key of the mnemonic last taken, whose character follows.
    int32_t takenMnemonic = 0;
    // The modal runs under way, the innermost last.
    static std::vector<DialogImp*> modalRuns;
};

// How much taller a dialog must get so that none of its controls covers the size grip: the
// client bottom must reach one pixel below the lowest control plus the grip's height.
int32_t GetSizeGripGrowth(const Rect& client, const std::vector<Rect>& controls);

} // namespace quilt
