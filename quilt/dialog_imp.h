#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/geometry.h"
#include "quilt/window_imp.h"

#include <cstdint>
#include <memory>
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

// The platform side of a dialog. `id` is always the control id of a child of the dialog, found
// one level down inside a group too. Operations on an id that no control has do nothing.
//
// What a dialog does as it starts, how its commands are routed and who deletes a modeless one is
// the toolkit's and lives here; a platform builds the native dialog, runs its modal loop and
// answers the operations below.
class DialogImp : public virtual WindowImp {
public:
    DialogImp();
    ~DialogImp() override;

    // Builds the native dialog from its template and runs it until EndDialog; the result code,
    // or -1 when the template can't be used.
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
    // Keeps the control's size.
    virtual void MoveControl(int32_t id, int32_t x, int32_t y) = 0;
    virtual void OffsetControl(int32_t id, int32_t dx, int32_t dy) = 0;
    // Keeps the control's left and top.
    virtual void SetControlSize(int32_t id, int32_t width, int32_t height) = 0;
    virtual void EnableControlById(int32_t id) = 0;
    virtual void DisableControlById(int32_t id) = 0;
    virtual void ShowControl(int32_t id) = 0;
    virtual void HideControl(int32_t id) = 0;
    // In the client coordinates of the control's own parent; `rect` stays as it was when there
    // is no such control.
    virtual bool GetControlRect(int32_t id, Rect& rect) = 0;
    // Waits for EndLayout when a layout pass is open.
    virtual void SetControlRect(int32_t id, const Rect& rect) = 0;
    // `state` is one of the CheckState values.
    virtual void SetCheck(int32_t id, int32_t state) = 0;
    // The native state, 0 for an id that no control has, 2 when the dialog has no native window.
    virtual int32_t GetCheck(int32_t id) = 0;
    // True when the control exists and a Window is bound to it.
    virtual bool GetControlWindow(int32_t id, Window** window) = 0;
    virtual bool GetControlText(int32_t id, loam::String& text) = 0;
    virtual bool SetControlText(int32_t id, const loam::String& text) = 0;
    virtual bool SetControlId(int32_t id, int32_t newId) = 0;
    // Moves between the two take effect together at the EndLayout that closes the outermost
    // pair.
    virtual void BeginLayout() = 0;
    virtual void EndLayout() = 0;
    // Converts a rectangle in dialog units to pixels with the dialog's font.
    virtual void MapDialogRect(Rect& rect) = 0;
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
    // The focus goes to the first control in tab order that takes it, as Tab would move it.
    virtual void FocusFirstTabStop() = 0;

    // Called by the platform once the native dialog has its controls: the dialog takes its
    // initial size and runs OnInitDialog; unless that ended it, a resizable dialog gets its size
    // grip, the dialog is centred when asked, shown, and the focus goes to its first tab stop
    // unless OnInitDialog put it inside the dialog.
    void StartDialog(bool resizable);
    bool IsModal() const { return modal; }
    bool HasRunEnded() const { return ended; }
    // A dialog placed by its own OnInitDialog is not centred afterwards.
    void KeepPlacement() { centreOnInit = false; }
    void NotifyNativeDestroyed() override;

private:
    void CreateSizeGrip(Dialog& dialog);

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
};

// How much taller a dialog must get so that none of its controls covers the size grip: the
// client bottom must reach one pixel below the lowest control plus the grip's height.
int32_t GetSizeGripGrowth(const Rect& client, const std::vector<Rect>& controls);

} // namespace quilt
