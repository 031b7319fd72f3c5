#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/geometry.h"
#include "quilt/message_target.h"
#include "quilt/window_imp.h"

#include <cstdint>
#include <memory>

namespace quilt {

class Dialog;

// The portable half of every visible thing. It forwards each request to its Imp and learns of
// events through its On... operations, which the Imp calls; an On... answering true means the
// event is finished and the platform's default handling must not run.
class Window : public MessageTarget {
public:
    Window();
    // For a derived class that brings its own kind of Imp.
    explicit Window(std::unique_ptr<WindowImp> imp);
    // Takes the native window with it, a bound control's too.
    ~Window() override;

    // Unhandled commands go on to the parent window.
    bool OnCommand(int32_t id) override;
    virtual bool AsDialog(Dialog** dialog);
    virtual bool BindToControl(Window* parent, int32_t id);
    virtual bool BindToHandle(Window* parent, NativeHandle handle);
    virtual void BeginResize();
    virtual void EndResize();

    virtual bool OnCreate() { return false; }
    // Runs when the native window has gone: operations on it fail quietly by now.
    virtual bool OnDestroy() { return false; }
    virtual bool OnPaint() { return false; }
    virtual bool OnMove(int32_t, int32_t) { return false; }
    virtual bool OnConstrainSize(Size&) { return false; }
    virtual bool OnSize(int32_t, int32_t) { return false; }
    virtual bool OnSetFocus() { return false; }
    virtual bool OnKillFocus() { return false; }
    virtual bool OnCancelMode() { return false; }
    virtual bool OnTimer(uint32_t) { return false; }
    virtual bool OnClose() { return false; }
    virtual bool OnChar(uint16_t) { return false; }
    virtual bool OnKeyDown(int32_t, uint32_t) { return false; }
    virtual bool OnKeyUp(int32_t, uint32_t) { return false; }
    virtual bool OnWantChar(uint16_t) { return false; }
    virtual bool OnWantKey(int32_t) { return false; }
    virtual bool OnMouseDown(uint32_t, const Point*) { return false; }
    virtual bool OnMouseDoubleClick(uint32_t, const Point*) { return false; }
    virtual bool OnMouseUp(uint32_t, const Point*) { return false; }
    virtual bool OnMouseMove(uint32_t, const Point*) { return false; }
    virtual bool OnMouseWheel(int32_t) { return false; }

    WindowImp* GetImp() const { return imp.get(); }
    Window* GetParent() const { return parent; }

    bool Create(Window* parentWindow, int32_t kind, const loam::String* title);
    bool CreateFromResource(Window* parentWindow, int32_t kind, const loam::ResourceId* title);
    // Makes this window a control, made by code, of the parent's native window.
    bool CreateControl(Window* parentWindow, const ChildControl& childSpec);
    void Unbind();
    void Destroy() { imp->Destroy(); }
    void Center() { imp->Center(); }
    void Enable(bool enable) { imp->Enable(enable); }
    bool GetRect(Rect& rect) { return imp->GetRect(rect); }
    void SetRect(const Rect& rect, bool repaint) { imp->SetRect(rect, repaint); }
    void Reposition(const Rect& rect, bool repaint) { imp->Reposition(rect, repaint); }
    void MoveBy(int32_t dx, int32_t dy, bool repaint);
    void BringToTop() { imp->BringToTop(); }
    void SetClientRect(const Rect& rect) { imp->SetClientRect(rect); }
    void SetSize(int32_t width, int32_t height) { imp->SetSize(width, height); }
    void SetScrollArea(const Rect& area) { imp->SetScrollArea(area); }
    void GetScrollArea(Rect& area) { imp->GetScrollArea(area); }
    void SetTopMost(bool topMost) { imp->SetTopMost(topMost); }
    bool SetText(const loam::String& text) { return imp->SetText(text); }
    bool SetText(const loam::ResourceId& text);
    bool SetText(uint16_t stringId);
    bool SetTextFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // The format is the text of string `formatId`; false when the string is missing.
    template <typename... Args> bool SetTextFormat(uint16_t formatId, Args... args) {
        loam::String text;
        if (!loam::FormatResource(loam::StringResource(formatId), text, args...)) {
            return false;
        }
        return SetText(text);
    }
    bool GetText(loam::String& text) { return imp->GetText(text); }
    bool IsTextEmpty();
    void SetFocus() { imp->SetFocus(); }
    bool HasFocus() { return imp->HasFocus(); }
    bool CaptureMouse() { return imp->CaptureMouse(); }
    void ReleaseMouse() { imp->ReleaseMouse(); }
    NativeHandle GetNativeHandle() { return imp->GetNativeHandle(); }
    bool HasNativeWindow() { return GetNativeHandle() != nullptr; }
    bool ShowScrollBars(uint32_t mask) { return imp->ShowScrollBars(mask); }
    void HideScrollBars(uint32_t mask) { imp->HideScrollBars(mask); }
    void EnableScrollBars(uint32_t mask, bool enable) { imp->EnableScrollBars(mask, enable); }
    bool HasScrollBar(uint32_t which) { return imp->HasScrollBar(which); }
    int32_t GetScrollPos(uint32_t bar) { return imp->GetScrollPos(bar); }
    void SetScrollPos(uint32_t bar, int32_t position) { imp->SetScrollPos(bar, position); }
    void SetScrollStep(uint32_t mask, int32_t step);
    int32_t GetScrollStep(uint32_t mask) const;
    int32_t GetShowState() { return imp->GetShowState(); }
    void SetShowState(int32_t state) { imp->SetShowState(state); }
    void Show(int32_t mode) { imp->Show(mode); }
    void Update() { imp->Update(); }
    void LockUpdates() { imp->LockUpdates(); }
    void UnlockUpdates() { imp->UnlockUpdates(); }
    bool GetScreenRect(Rect& rect) { return imp->GetScreenRect(rect); }
    bool GetClientRect(Rect& rect) { return imp->GetClientRect(rect); }
    int32_t GetId() { return imp->GetId(); }
    int32_t GetFreeChildId() { return imp->GetFreeChildId(); }
    void MapPoints(Window* target, Point* points, int32_t count);
    void MapPoint(Window* target, Point& point) { MapPoints(target, &point, 1); }
    void MapRect(Window* target, Rect& rect);
    void Invalidate(const Rect* rect) { imp->Invalidate(rect); }
    void InvalidateAll() { imp->Invalidate(nullptr); }
    void SetFullScreen(bool fullScreen) { imp->SetFullScreen(fullScreen); }

protected:
    // For a window that gets its parent other than by creation or binding: a dialog, from its
    // constructor.
    void SetParent(Window* parentWindow) { parent = parentWindow; }

private:
    std::unique_ptr<WindowImp> imp;
    Window* parent = nullptr;
    int32_t scrollStepH = 1;
    int32_t scrollStepV = 1;
};

} // namespace quilt
