#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/geometry.h"
#include "quilt/window_imp.h"

#include <cstdint>
#include <vector>

namespace quilt {

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

// The platform side of a dialog. `id` is always the control id of a child of the dialog, found
// one level down inside a group too. Operations on an id that no control has do nothing.
class DialogImp : public virtual WindowImp {
public:
    // Builds the native dialog from its template and runs it until EndDialog; the result code,
    // or -1 when the template can't be used.
    virtual int32_t RunModal(const loam::ResourceId& resource, Window* parent, bool centre) = 0;
    // Builds the native dialog and returns at once; its native handle, null on failure.
    virtual NativeHandle RunModeless(const loam::ResourceId& resource, Window* parent,
                                     bool centre) = 0;
    // A modal dialog's run ends with `code`; a modeless dialog's native window goes.
    virtual void EndDialog(int32_t code) = 0;
    // The dialog as a page inside the parent's native window.
    virtual bool CreateChildDialog(const loam::ResourceId& resource, Window* parent) = 0;
    // Has an effect only before OnInitDialog has ended.
    virtual void DisableSizeGrip() = 0;
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
    // 1 checked, 2 indeterminate, any other unchecked.
    virtual void SetCheck(int32_t id, int32_t state) = 0;
    // 0 or 1, 2 for any other state; 2 when the dialog has no native window.
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
    // The portable dialog is going away: the end of its native window must not delete it.
    virtual void OnOwnerDestroyed() = 0;
    // False in a headless run: nobody is at the screen to answer a modal dialog.
    virtual bool IsUserPresent() { return true; }
};

// How much taller a dialog must get so that none of its controls covers the size grip: the
// client bottom must reach one pixel below the lowest control plus the grip's height.
int32_t GetSizeGripGrowth(const Rect& client, const std::vector<Rect>& controls);

} // namespace quilt
