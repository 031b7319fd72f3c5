#pragma once

#include "loam/string.h"
#include "quilt/geometry.h"
#include "quilt/window_imp.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace quilt {

class Offscreen_WindowImp;

// A native window is known by a handle that is never given twice, so a stale handle finds
// nothing instead of a newer window.
using OffscreenHandle = uint32_t;

enum class OffscreenMessageKind {
    Move,
    Size,
    SetFocus,
    KillFocus,
    Paint,
    Close,
    CancelMode,
    Timer,
    KeyDown,
    KeyUp,
    Char,
    MouseDown,
    MouseUp,
    MouseDoubleClick,
    MouseMove,
    MouseWheel,
    // A control tells its parent what happened to it.
    Notify,
    // The user drags a slider's thumb to the position in `value`.
    ThumbDrag,
    // The user switches to the window, which takes the focus. A focus the program moves itself
    // is no user input; this is.
    Activate,
    // A registered hot key was pressed; `value` is its id. It goes to no window.
    HotKey,
};

struct OffscreenMessage {
    explicit OffscreenMessage(OffscreenMessageKind messageKind) : kind(messageKind) {}

    OffscreenMessageKind kind;
    uint32_t time = 0;
    int32_t value = 0;  // key code, character, timer id or wheel delta
    uint32_t flags = 0; // key modifiers or mouse flags
    Point point;        // mouse position in client coordinates; position after a move
    Size size;          // client size after a size change
    // Notify: `value` is the control's id, `event` what happened, `flags` its detail.
    ControlEvent event = ControlEvent::Clicked;
};

// A native window of the offscreen desktop, its state in memory. The backend's control classes
// derive from it.
struct OffscreenWindow {
    explicit OffscreenWindow(OffscreenWindow* parentWindow) : parent(parentWindow) {}
    OffscreenWindow(const OffscreenWindow&) = delete;
    OffscreenWindow& operator=(const OffscreenWindow&) = delete;
    virtual ~OffscreenWindow() = default;

    // What the native class does with a message that no bound Imp finished.
    virtual void DefaultHandling(const OffscreenMessage& message);
    virtual void SetNativeText(const loam::String& newText);
    // The dialog code of the class itself, before the bound Imp adds to it.
    virtual int32_t GetNativeDialogCode(KeyEventKind, int32_t) const { return 0; }
    // Asked on a top-level window for each key event that goes to `target`, itself or a window
    // inside it; true when it took the key, as a dialog takes Return, Escape and Tab.
    virtual bool TranslateDialogKey(OffscreenWindow&, const OffscreenMessage&) { return false; }

    // Shown, and so are all its ancestors.
    bool IsShowing() const;
    bool IsEnabledAndVisible() const;
    OffscreenWindow* FindChild(int32_t childId) const;
    // A child, or a control one level down inside a group.
    OffscreenWindow* FindControl(int32_t controlId) const;
    OffscreenWindow* GetTopLevel();
    bool IsInside(const OffscreenWindow* ancestor) const;
    // The dialog code of a key event for this window, its bound Imp's wishes included.
    int32_t GetDialogCode(KeyEventKind kind, int32_t value) const;

    OffscreenHandle handle = 0;
    int32_t id = 0;
    uint32_t style = 0; // ControlStyle bits for a control
    loam::String text;
    Rect rect; // in the parent's client coordinates; on the screen for a top-level window
    bool visible = false;
    bool enabled = true;
    bool topMost = false;
    int32_t showState = ShowStateNormal;
    uint32_t scrollBars = 0;
    uint32_t disabledScrollBars = 0;
    int32_t scrollPos[2] = {0, 0};
    bool needsPaint = true;
    bool destroying = false;
    OffscreenWindow* parent;
    std::vector<std::unique_ptr<OffscreenWindow>> children;
    Offscreen_WindowImp* imp = nullptr; // the Imp bound to this window, if any
};

// The screen of the offscreen backend: its windows, focus, queue of input and timers, all run
// on the toolkit's clock. Events wait in the queue until the clock reaches their time.
class OffscreenDesktop {
public:
    static constexpr Rect WorkArea{0, 0, 1024, 768};
    // A native timer is never faster than this.
    static constexpr uint32_t MinimumTimerInterval = 10;

    OffscreenDesktop() = default;
    OffscreenDesktop(const OffscreenDesktop&) = delete;
    OffscreenDesktop& operator=(const OffscreenDesktop&) = delete;

    // Takes the window; a window without parent is top-level and goes on top of the others.
    OffscreenWindow* AddWindow(std::unique_ptr<OffscreenWindow> window);
    // The bound Imps hear of it first, the window's own before its children's.
    void DestroyWindow(OffscreenWindow* window);
    OffscreenWindow* Find(OffscreenHandle handle) const;
    const std::vector<std::unique_ptr<OffscreenWindow>>& GetTopWindows() const {
        return topWindows;
    }
    void BringToTop(OffscreenWindow* window);
    void SendToBottom(OffscreenWindow* window);
    Point GetScreenOrigin(const OffscreenWindow* window) const;

    OffscreenWindow* GetFocus() const { return Find(focus); }
    // Focus gain counts as user input.
    void SetFocus(OffscreenWindow* window);
    OffscreenWindow* GetCapture() const { return Find(capture); }
    void SetCapture(OffscreenWindow* window);
    // Offers the new size to the bound Imp, then reports the move and the size change.
    void MoveWindow(OffscreenWindow* window, Rect rect);

    // Delivers at once: to the bound Imp, then to the native class if the Imp did not finish it.
    void Send(OffscreenWindow* window, const OffscreenMessage& message);
    // Queues for the time in the message.
    void Post(OffscreenWindow* window, const OffscreenMessage& message);
    // Queues input for whichever window inside `window`'s top-level window has the focus when
    // the input is served, or for `window` itself when none has.
    void PostToFocus(OffscreenWindow* window, const OffscreenMessage& message);

    bool SetTimer(OffscreenWindow* window, uint32_t id, uint32_t interval);
    void KillTimer(OffscreenWindow* window, uint32_t id);

    // A key combination belongs to one hot key at a time.
    bool RegisterHotKey(uint32_t id, int32_t key, uint32_t modifiers);
    void UnregisterHotKey(uint32_t id) { hotKeys.erase(id); }
    // Queues a press of the hot key `id` for the time in the message.
    void PostHotKey(const OffscreenMessage& message);

    // Serves every due event, then every due timer once, then paints.
    void PumpMessages();
    // Lets the clock run to the next event, or for `timeout` ms at most; false when no event is
    // due at its end. Only a wait without a timeout stops at the deadline.
    bool WaitMessage(std::optional<uint32_t> timeout = std::nullopt);
    bool CanReceiveEvents() const { return !events.empty() || !timers.empty(); }
    // A wait never runs the clock past this tick.
    void SetWaitDeadline(std::optional<uint32_t> tick) { waitDeadline = tick; }

    // A modal dialog's run: `window` is up, with its controls, and its run starts now.
    void BeginModal(OffscreenWindow* window);
    void EndModal(OffscreenHandle handle);
    // The newest modal dialog still running, or null.
    OffscreenWindow* GetModalWindow() const;
    // Called for each modal dialog as its run starts; a test acts in it from here.
    using ModalHook = std::function<void(OffscreenWindow&)>;
    void SetModalHook(ModalHook hook) { modalHook = std::move(hook); }
    // Whether someone gives the desktop input and so can answer its dialogs. A headless run is
    // unattended; a test's driver stands in for a person.
    void SetAttended(bool attended) { hasUser = attended; }
    bool IsAttended() const { return hasUser; }

    // Destroys every window and drops every event, timer and hot key; nobody is at the desktop.
    void Reset();

private:
    struct PostedEvent {
        OffscreenHandle target;
        OffscreenMessage message;
        bool toFocus = false;
    };
    struct NativeTimer {
        OffscreenHandle window;
        uint32_t id;
        uint32_t interval;
        uint32_t due;
        uint64_t firedInPump;
    };

    struct HotKey {
        int32_t key;
        uint32_t modifiers;
    };

    bool ServeOneEvent();
    void ServeHotKey(const OffscreenMessage& message);
    OffscreenWindow* GetEventTarget(const PostedEvent& event) const;
    bool FireOneTimer(uint64_t pump);
    void PaintWindows();
    void Forget(OffscreenWindow* window);
    std::optional<uint32_t> GetNextEventTime() const;

    std::vector<std::unique_ptr<OffscreenWindow>> topWindows;
    std::map<OffscreenHandle, OffscreenWindow*> windows;
    OffscreenHandle nextHandle = 1;
    OffscreenHandle focus = 0;
    OffscreenHandle capture = 0;
    std::vector<PostedEvent> events;
    std::vector<NativeTimer> timers;
    std::map<uint32_t, HotKey> hotKeys;
    uint64_t pumpCount = 0;
    std::optional<uint32_t> waitDeadline;
    std::vector<OffscreenHandle> modalWindows;
    ModalHook modalHook;
    bool hasUser = false;
};

OffscreenDesktop& GetOffscreenDesktop();

} // namespace quilt
