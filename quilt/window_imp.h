#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/dialog_template.h"
#include "quilt/geometry.h"

#include <cstdint>
#include <optional>

namespace quilt {

class MessageTarget;
class Window;

// A native window as the portable side sees it: opaque, null when there is none.
using NativeHandle = void*;

enum WindowKind : int32_t {
    WindowKindTop = 0,
    WindowKindChild = 2,
};

enum ShowMode : int32_t {
    ShowModeShow = 0,
    ShowModeHide = 1,
};

enum ShowState : int32_t {
    ShowStateNormal = 0,
    ShowStateMinimised = 1,
    ShowStateMaximised = 2,
};

enum ScrollBarMask : uint32_t {
    ScrollBarHorizontal = 1,
    ScrollBarVertical = 2,
};

// What a control's Imp makes of a native notification.
enum NotificationAnswer : int32_t {
    AnswerDispatch = 0, // dispatch the kind on the command target or the owner
    AnswerDefault = 1,  // leave it to the platform
    AnswerHandled = 2,  // handled, nothing to dispatch
};

// What a native control tells its parent, in the toolkit's terms. A backend maps its platform's
// signals to these; the portable side routes and translates them.
enum class ControlEvent : int32_t {
    Clicked,     // a button was pressed: a command, then a click
    Accelerator, // a key of the accelerator table gave the command
    FocusGained,
    FocusLost,
    TextUpdated, // an edit box's text changed, before it is shown
    TextChanged, // an edit box's (or a drop-down list's field's) text changed, after it is shown
    Scrolled,    // a slider moved; the detail is a ScrollAction
    // A list's selected row changed, by the user or by the program.
    SelectionChanged,
    // A row of a list was activated (double-clicked); the detail is the row, or ~0 for none.
    ItemActivated,
    // A list's column heading was clicked; the detail is the column.
    ColumnClicked,
    // A row's check mark changed, by the user or by the program; the detail is the row.
    ItemCheckChanged,
    // A drop-down list's list opened or closed.
    ListOpened,
    ListClosed,
    // The user chose a row of an open drop-down list, after its SelectionChanged.
    SelectionEnded,
};

// How a slider moved.
enum ScrollAction : uint32_t {
    ScrollLineUp,
    ScrollLineDown,
    ScrollPageUp,
    ScrollPageDown,
    ScrollThumbPosition,
    ScrollThumbTrack,
    ScrollTop,
    ScrollBottom,
    ScrollEndTrack,
};

struct NativeNotification {
    ControlEvent event = ControlEvent::Clicked;
    int32_t id = 0;      // the control's id
    uint32_t detail = 0; // what the event says more, as its comment above tells
};

// A click and an accelerator are commands before they are notifications.
inline bool IsCommandEvent(ControlEvent event) {
    return event == ControlEvent::Clicked || event == ControlEvent::Accelerator;
}

struct NotificationTranslation {
    int32_t kind = 0;
    std::optional<int32_t> parameter; // none: the handler's word is 0
};

enum KeyEventKind : int32_t {
    KeyEventDown,
    KeyEventUp,
    KeyEventChar,
};

// A control's dialog code: which keys it takes itself before its dialog treats Return, Escape,
// Tab or the arrows as dialog keys.
enum DialogCode : int32_t {
    DialogCodeWantArrows = 1 << 0,
    DialogCodeWantTab = 1 << 1,
    DialogCodeWantAllKeys = 1 << 2, // added when the owner takes the key or character itself
    DialogCodeHasSetSel = 1 << 3,   // an edit box: focus by Tab selects all its text
};

// A control made by code rather than by a dialog template. Each backend makes its own widget for
// the kind; `style` holds ControlStyle bits, those that the kind implies included. Id -1 asks for
// the parent's first free id.
struct ChildControl {
    ControlKind kind = ControlKind::StaticLeft;
    loam::String title;
    uint32_t style = 0;
    Rect rect;
    int32_t id = -1;
    bool tabStop = false;
};

// The platform side of a Window: the whole contract between the portable toolkit and a backend.
// An operation that needs a native window does nothing on a window without one and answers
// false, 0 or -1. A platform's control Imps derive from their abstract control Imp and from the
// platform's window Imp, both of which derive virtually from this class.
class WindowImp {
public:
    WindowImp() = default;
    WindowImp(const WindowImp&) = delete;
    WindowImp& operator=(const WindowImp&) = delete;
    virtual ~WindowImp() = default;

    void SetOwner(Window* window) { owner = window; }
    Window* GetOwner() const { return owner; }
    // A target that takes this window's notifications instead of the owner.
    void SetCommandTarget(MessageTarget* target) { commandTarget = target; }
    MessageTarget* GetCommandTarget() const { return commandTarget; }

    virtual bool Create(Window& window, Window* parent, int32_t kind,
                        const loam::String* title) = 0;
    bool CreateFromResource(Window& window, Window* parent, int32_t kind,
                            const loam::ResourceId* title);
    virtual void Destroy() = 0;
    virtual void Center() = 0;
    virtual void Enable(bool enable) = 0;
    virtual bool GetRect(Rect& rect) = 0; // in the parent's client coordinates
    virtual void SetRect(const Rect& rect, bool repaint) = 0;
    virtual void Reposition(const Rect& rect, bool repaint) { SetRect(rect, repaint); }
    virtual void BringToTop() = 0;
    virtual void SendToBottom() = 0;
    // Moves and sizes the window so that its client area is `rect`, relative to the present
    // client origin.
    virtual void SetClientRect(const Rect& rect) = 0;
    virtual void SetSize(int32_t width, int32_t height) = 0;
    virtual void SetScrollArea(const Rect& area) = 0;
    // The stored scroll area, or the client rectangle when none is stored.
    virtual void GetScrollArea(Rect& area) = 0;
    virtual void SetTopMost(bool topMost) = 0;
    virtual bool SetText(const loam::String& text) = 0;
    virtual bool GetText(loam::String& text) = 0;
    virtual void SetFocus() = 0;
    virtual bool HasFocus() = 0;
    virtual bool CaptureMouse() = 0;
    virtual void ReleaseMouse() = 0;
    virtual NativeHandle GetNativeHandle() = 0;
    // Without a native window the bits are recorded and applied at creation.
    virtual bool ShowScrollBars(uint32_t mask) = 0;
    virtual void HideScrollBars(uint32_t mask) = 0;
    virtual void EnableScrollBars(uint32_t mask, bool enable) = 0;
    virtual bool HasScrollBar(uint32_t which) = 0;
    virtual int32_t GetScrollPos(uint32_t bar) = 0;
    virtual void SetScrollPos(uint32_t bar, int32_t position) = 0;
    virtual int32_t GetShowState() = 0;
    virtual void SetShowState(int32_t state) = 0;
    virtual void Show(int32_t mode) = 0;
    virtual void Update() = 0;
    virtual void LockUpdates() = 0;
    virtual void UnlockUpdates() = 0;
    virtual bool GetScreenRect(Rect& rect) = 0;
    virtual bool GetClientRect(Rect& rect) = 0;
    virtual int32_t GetId() = 0;
    // From 1001 upward, the first id that no child has.
    virtual int32_t GetFreeChildId() = 0;
    // Adopts a control of the parent's native window, one level down inside a group too.
    virtual bool BindToControl(Window* parent, int32_t id) = 0;
    virtual bool BindToHandle(Window* parent, NativeHandle handle) = 0;
    // Forgets the native window without destroying it.
    virtual void Unbind() = 0;
    virtual void BeginResize() {}
    virtual void EndResize() {}
    // Null target: the screen.
    virtual void MapPoints(Window* target, Point* points, int32_t count) = 0;
    // Null: the whole window.
    virtual void Invalidate(const Rect* rect) = 0;
    virtual void SetFullScreen(bool fullScreen) = 0;
    virtual bool StartTimer(uint32_t id, uint32_t interval) = 0;
    virtual void StopTimer(uint32_t id) = 0;

    // Turns a control's event into a toolkit kind. The default takes a click as MsgClicked
    // that carries the control id.
    virtual NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                                     NotificationTranslation& out);
    // Translates and dispatches a notification; false when it is left to the platform.
    bool OnNativeNotification(const NativeNotification& notification);
    // A backend reports here what a control of this window did; true when the toolkit finished
    // it. A click or an accelerator is a command for the owner, an accelerator then for the
    // application; any other event is translated and dispatched.
    virtual bool OnControlEvent(const NativeNotification& notification);
    // A backend reports the new client size here.
    virtual bool OnNativeSize(int32_t width, int32_t height);

    // The dialog code of a key event: `previousCode` with DialogCodeWantAllKeys added when the
    // owner takes the key or character itself.
    int32_t GetDialogCode(KeyEventKind kind, int32_t value, int32_t previousCode);
    // Offers a proposed client size to the owner; true when the owner looked at it, and then
    // `size` is what the window must take.
    bool ConstrainSize(Size& size);
    // Makes a control as a child of this window's native window.
    bool CreateChildControl(Window& control, const ChildControl& childSpec);
    // Makes a control of `kind` by code, as a child of `parent`: what every backend's control
    // Imps do in their Create.
    static bool CreateControlOfKind(Window& control, Window* parent, ControlKind kind,
                                    uint32_t style, const Rect& rect, int32_t id);

protected:
    virtual bool CreateNativeChild(Window& control, const ChildControl& childSpec, int32_t id) = 0;
    // Called by a backend when its native window has gone, after it has forgotten the handle:
    // the window's timers end, the main window's end quits the application, then OnDestroy.
    virtual void NotifyNativeDestroyed();

private:
    Window* owner = nullptr;
    MessageTarget* commandTarget = nullptr;
};

} // namespace quilt
