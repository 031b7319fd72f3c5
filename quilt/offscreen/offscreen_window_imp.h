#pragma once

#include "quilt/offscreen/offscreen_desktop.h"
#include "quilt/window_imp.h"

namespace quilt {

// A window of the offscreen backend: its native window is an OffscreenWindow of the desktop.
// The backend's control Imps derive from this and from their abstract control Imp.
class Offscreen_WindowImp : public virtual WindowImp {
public:
    ~Offscreen_WindowImp() override;

    bool Create(Window& window, Window* parent, int32_t kind, const loam::String* title) override;
    void Destroy() override;
    void Center() override;
    void Enable(bool enable) override;
    bool GetRect(Rect& rect) override;
    void SetRect(const Rect& rect, bool repaint) override;
    void BringToTop() override;
    void SendToBottom() override;
    void SetClientRect(const Rect& rect) override;
    void SetSize(int32_t width, int32_t height) override;
    void SetScrollArea(const Rect& area) override { scrollArea = area; }
    void GetScrollArea(Rect& area) override;
    void SetTopMost(bool topMost) override;
    bool SetText(const loam::String& text) override;
    bool GetText(loam::String& text) override;
    void SetFocus() override;
    bool HasFocus() override;
    bool CaptureMouse() override;
    void ReleaseMouse() override;
    NativeHandle GetNativeHandle() override;
    bool ShowScrollBars(uint32_t mask) override;
    void HideScrollBars(uint32_t mask) override;
    void EnableScrollBars(uint32_t mask, bool enable) override;
    bool HasScrollBar(uint32_t which) override;
    int32_t GetScrollPos(uint32_t bar) override;
    void SetScrollPos(uint32_t bar, int32_t position) override;
    int32_t GetShowState() override;
    void SetShowState(int32_t state) override;
    void Show(int32_t mode) override;
    void Update() override;
    void LockUpdates() override {}
    void UnlockUpdates() override {}
    bool GetScreenRect(Rect& rect) override;
    bool GetClientRect(Rect& rect) override;
    int32_t GetId() override;
    int32_t GetFreeChildId() override;
    bool BindToControl(Window* parent, int32_t id) override;
    bool BindToHandle(Window* parent, NativeHandle handle) override;
    void Unbind() override;
    void MapPoints(Window* target, Point* points, int32_t count) override;
    void Invalidate(const Rect* rect) override;
    void SetFullScreen(bool flag) override { fullScreen = flag; }
    bool StartTimer(uint32_t id, uint32_t interval) override;
    void StopTimer(uint32_t id) override;

    // Adopts a native window that no other Imp has. A control Imp first checks the native
    // class and refuses any other without a word.
    virtual bool Attach(OffscreenWindow* window);
    // Turns a native message into the owner's On... call; true when the owner finished it.
    virtual bool WindowProc(const OffscreenMessage& message);
    // The desktop destroyed the native window.
    virtual void OnNativeWindowGone();

    OffscreenWindow* GetNative() const { return native; }
    Window* GetParent() const { return parent; }
    bool IsFullScreen() const { return fullScreen; }

    static OffscreenWindow* GetNativeOf(Window* window);

protected:
    bool CreateNativeChild(Window& control, const ChildControl& childSpec, int32_t id) override;
    void SetParentWindow(Window* window) { parent = window; }

private:
    bool RouteMove(const OffscreenMessage& message);
    bool RouteSize(const OffscreenMessage& message);
    bool RouteSetFocus(const OffscreenMessage& message);
    bool RouteActivate(const OffscreenMessage& message);
    bool RouteKillFocus(const OffscreenMessage& message);
    bool RoutePaint(const OffscreenMessage& message);
    bool RouteClose(const OffscreenMessage& message);
    bool RouteCancelMode(const OffscreenMessage& message);
    bool RouteTimer(const OffscreenMessage& message);
    bool RouteKeyDown(const OffscreenMessage& message);
    bool RouteKeyUp(const OffscreenMessage& message);
    bool RouteChar(const OffscreenMessage& message);
    bool RouteMouseDown(const OffscreenMessage& message);
    bool RouteMouseUp(const OffscreenMessage& message);
    bool RouteMouseDoubleClick(const OffscreenMessage& message);
    bool RouteMouseMove(const OffscreenMessage& message);
    bool RouteMouseWheel(const OffscreenMessage& message);
    bool RouteNotify(const OffscreenMessage& message);

    struct Route {
        OffscreenMessageKind kind;
        bool (Offscreen_WindowImp::*handler)(const OffscreenMessage&);
    };
    static const Route routes[];

    OffscreenWindow* native = nullptr;
    Window* parent = nullptr;
    uint32_t scrollBars = 0;
    Rect scrollArea;
    bool fullScreen = false;
};

} // namespace quilt
