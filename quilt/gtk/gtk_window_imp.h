#pragma once

#include "quilt/window_imp.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <map>

namespace quilt {

struct GtkNative;

// A window of the desktop backend: its native window is a GTK widget, a GtkWindow for a
// top-level window, a widget in its parent's client area for a control. The backend's control
// and dialog Imps derive from this and from their abstract Imp.
class Gtk_WindowImp : public virtual WindowImp {
public:
    ~Gtk_WindowImp() override;

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
    NativeHandle GetNativeHandle() override { return widget; }
    bool ShowScrollBars(uint32_t mask) override;
    void HideScrollBars(uint32_t mask) override { scrollBars &= ~mask; }
    void EnableScrollBars(uint32_t, bool) override {}
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
    void SetFullScreen(bool flag) override;
    bool StartTimer(uint32_t id, uint32_t interval) override;
    void StopTimer(uint32_t id) override;

    // Adopts a native window that no other Imp has. A control Imp first checks the native
    // class and refuses any other without a word.
    virtual bool Attach(GtkWidget* native);
    // A key event that GTK gives the top-level window, before the focused widget sees it; true
    // when it is finished.
    virtual bool OnKeyEvent(const GdkEventKey& event);
    // The user asked to close this top-level window.
    virtual void OnCloseRequest();
    // The native window is going away.
    virtual void OnNativeGone();
    // A top-level window's new client size and position.
    virtual void OnConfigure(int32_t width, int32_t height);

    GtkWidget* GetWidget() const { return widget; }
    GtkNative* GetNative() const;
    Window* GetParentWindow() const { return parent; }
    // The client area of this window, where its children sit.
    GtkWidget* GetClientArea() const;

    static GtkWidget* GetWidgetOf(Window* window);
    // The control with `id` in the client area of `window`, or one level down inside a page.
    static GtkWidget* FindControlIn(GtkWidget* window, int32_t id);

protected:
    bool CreateNativeChild(Window& control, const ChildControl& childSpec, int32_t id) override;
    void SetParentWindow(Window* window) { parent = window; }
    // Tells the owner of a new client size, once for each size.
    void ReportSize(int32_t width, int32_t height);
    // Connects what a top-level window hears: closing, moving and sizing, keys.
    static void ConnectTopLevel(GtkWidget* window);
    // The Imp that key events for a widget go to: the one bound to it or above it.
    static Gtk_WindowImp* FindImpAbove(GtkWidget* widget);
    bool IsTopLevel() const { return widget != nullptr && GTK_IS_WINDOW(widget); }

private:
    void Connect();
    Point ToClient(GtkWidget* eventWidget, double rootX, double rootY) const;
    bool GetClientOrigin(Point& origin) const;

    static gboolean OnDraw(GtkWidget* widget, cairo_t* cairo, gpointer imp);
    static gboolean OnButtonPress(GtkWidget* widget, GdkEventButton* event, gpointer imp);
    static gboolean OnButtonRelease(GtkWidget* widget, GdkEventButton* event, gpointer imp);
    static gboolean OnMotion(GtkWidget* widget, GdkEventMotion* event, gpointer imp);
    static gboolean OnScroll(GtkWidget* widget, GdkEventScroll* event, gpointer imp);
    static gboolean OnFocusIn(GtkWidget* widget, GdkEvent* event, gpointer imp);
    static gboolean OnFocusOut(GtkWidget* widget, GdkEvent* event, gpointer imp);
    static void OnDestroyed(GtkWidget* widget, gpointer imp);
    static gboolean OnTimer(gpointer id);

    GtkWidget* widget = nullptr;
    Window* parent = nullptr;
    uint32_t scrollBars = 0;
    int32_t scrollPos[2] = {0, 0};
    Rect scrollArea;
    std::map<uint32_t, guint> timers;
    Size reportedSize;
    Point reportedPosition;
};

// Hands a control's event to the Imp of the window it sits in.
void DeliverNotification(GtkWidget* control, ControlEvent event, uint32_t detail);

} // namespace quilt
