#include "quilt/offscreen/offscreen_window_imp.h"

#include "quilt/application.h"
#include "quilt/dialog_template.h"
#include "quilt/offscreen/offscreen_controls.h"
#include "quilt/timer.h"
#include "quilt/window.h"

namespace quilt {

namespace {

constexpr Rect createdWindowRect{100, 100, 400, 400};
constexpr int32_t createdChildId = 1200;
constexpr int32_t firstFreeChildId = 1001;

} // namespace

const Offscreen_WindowImp::Route Offscreen_WindowImp::routes[] = {
    {OffscreenMessageKind::Move, &Offscreen_WindowImp::RouteMove},
    {OffscreenMessageKind::Size, &Offscreen_WindowImp::RouteSize},
    {OffscreenMessageKind::SetFocus, &Offscreen_WindowImp::RouteSetFocus},
    {OffscreenMessageKind::Activate, &Offscreen_WindowImp::RouteActivate},
    {OffscreenMessageKind::KillFocus, &Offscreen_WindowImp::RouteKillFocus},
    {OffscreenMessageKind::Paint, &Offscreen_WindowImp::RoutePaint},
    {OffscreenMessageKind::Close, &Offscreen_WindowImp::RouteClose},
    {OffscreenMessageKind::CancelMode, &Offscreen_WindowImp::RouteCancelMode},
    {OffscreenMessageKind::Timer, &Offscreen_WindowImp::RouteTimer},
    {OffscreenMessageKind::KeyDown, &Offscreen_WindowImp::RouteKeyDown},
    {OffscreenMessageKind::KeyUp, &Offscreen_WindowImp::RouteKeyUp},
    {OffscreenMessageKind::Char, &Offscreen_WindowImp::RouteChar},
    {OffscreenMessageKind::MouseDown, &Offscreen_WindowImp::RouteMouseDown},
    {OffscreenMessageKind::MouseUp, &Offscreen_WindowImp::RouteMouseUp},
    {OffscreenMessageKind::MouseDoubleClick, &Offscreen_WindowImp::RouteMouseDoubleClick},
    {OffscreenMessageKind::MouseMove, &Offscreen_WindowImp::RouteMouseMove},
    {OffscreenMessageKind::MouseWheel, &Offscreen_WindowImp::RouteMouseWheel},
    {OffscreenMessageKind::Notify, &Offscreen_WindowImp::RouteNotify},
};

Offscreen_WindowImp::~Offscreen_WindowImp() {
    Unbind();
}

OffscreenWindow* Offscreen_WindowImp::GetNativeOf(Window* window) {
    if (window == nullptr) {
        return nullptr;
    }
    auto handle = reinterpret_cast<uintptr_t>(window->GetNativeHandle());
    return GetOffscreenDesktop().Find(static_cast<OffscreenHandle>(handle));
}

bool Offscreen_WindowImp::Create(Window&, Window* parentWindow, int32_t kind,
                                 const loam::String* title) {
    OffscreenWindow* parentNative = GetNativeOf(parentWindow);
    bool isChild = kind == WindowKindChild;
    if (native != nullptr || (kind != WindowKindTop && !isChild) ||
        (isChild && parentNative == nullptr)) {
        return false;
    }
    parent = parentWindow;
    auto created = std::make_unique<OffscreenWindow>(isChild ? parentNative : nullptr);
    created->rect = createdWindowRect;
    created->id = isChild ? createdChildId : 0;
    if (title != nullptr) {
        created->text = *title;
    }
    if (!Attach(GetOffscreenDesktop().AddWindow(std::move(created)))) {
        return false;
    }
    GetOwner()->OnCreate();
    ShowScrollBars(scrollBars);
    return true;
}

void Offscreen_WindowImp::Destroy() {
    if (native != nullptr) {
        GetOffscreenDesktop().DestroyWindow(native);
    }
}

void Offscreen_WindowImp::Center() {
    if (native == nullptr) {
        return;
    }
    Rect rect = native->rect;
    const Rect& area = OffscreenDesktop::WorkArea;
    int32_t left = area.GetWidth() / 2 - rect.GetWidth() / 2;
    int32_t top = area.GetHeight() / 2 - rect.GetHeight() / 2;
    rect.Offset(left - rect.left, top - rect.top);
    GetOffscreenDesktop().MoveWindow(native, rect);
}

void Offscreen_WindowImp::Enable(bool enable) {
    if (native != nullptr) {
        native->enabled = enable;
        native->needsPaint = true;
    }
}

bool Offscreen_WindowImp::GetRect(Rect& rect) {
    if (native == nullptr) {
        return false;
    }
    rect = native->rect;
    return true;
}

void Offscreen_WindowImp::SetRect(const Rect& rect, bool) {
    if (native != nullptr) {
        GetOffscreenDesktop().MoveWindow(native, rect);
    }
}

void Offscreen_WindowImp::BringToTop() {
    if (native != nullptr) {
        GetOffscreenDesktop().BringToTop(native);
    }
}

void Offscreen_WindowImp::SendToBottom() {
    if (native != nullptr) {
        GetOffscreenDesktop().SendToBottom(native);
    }
}

// Offscreen windows have no frame: the client area is the whole window.
void Offscreen_WindowImp::SetClientRect(const Rect& rect) {
    if (native == nullptr) {
        return;
    }
    Rect moved = rect;
    moved.Offset(native->rect.left, native->rect.top);
    GetOffscreenDesktop().MoveWindow(native, moved);
}

void Offscreen_WindowImp::SetSize(int32_t width, int32_t height) {
    if (native == nullptr) {
        return;
    }
    const Rect& rect = native->rect;
    GetOffscreenDesktop().MoveWindow(
        native, Rect{rect.left, rect.top, rect.left + width, rect.top + height});
}

void Offscreen_WindowImp::GetScrollArea(Rect& area) {
    if (scrollArea.IsAllZero()) {
        GetClientRect(area);
        return;
    }
    area = scrollArea;
}

void Offscreen_WindowImp::SetTopMost(bool topMost) {
    if (native != nullptr) {
        native->topMost = topMost;
    }
}

bool Offscreen_WindowImp::SetText(const loam::String& text) {
    if (native == nullptr) {
        return false;
    }
    native->SetNativeText(text);
    return true;
}

bool Offscreen_WindowImp::GetText(loam::String& text) {
    if (native == nullptr) {
        return false;
    }
    text = native->text;
    return true;
}

void Offscreen_WindowImp::SetFocus() {
    if (native != nullptr) {
        GetOffscreenDesktop().SetFocus(native);
    }
}

bool Offscreen_WindowImp::HasFocus() {
    return native != nullptr && GetOffscreenDesktop().GetFocus() == native;
}

bool Offscreen_WindowImp::CaptureMouse() {
    if (native == nullptr) {
        return false;
    }
    GetOffscreenDesktop().SetCapture(native);
    return true;
}

void Offscreen_WindowImp::ReleaseMouse() {
    if (native != nullptr && GetOffscreenDesktop().GetCapture() == native) {
        GetOffscreenDesktop().SetCapture(nullptr);
    }
}

NativeHandle Offscreen_WindowImp::GetNativeHandle() {
    if (native == nullptr) {
        return nullptr;
    }
    return reinterpret_cast<NativeHandle>(static_cast<uintptr_t>(native->handle));
}

bool Offscreen_WindowImp::ShowScrollBars(uint32_t mask) {
    scrollBars |= mask;
    if (native != nullptr) {
        native->scrollBars |= mask;
    }
    return true;
}

void Offscreen_WindowImp::HideScrollBars(uint32_t mask) {
    scrollBars &= ~mask;
    if (native != nullptr) {
        native->scrollBars &= ~mask;
    }
}

void Offscreen_WindowImp::EnableScrollBars(uint32_t mask, bool enable) {
    if (native == nullptr) {
        return;
    }
    if (enable) {
        native->disabledScrollBars &= ~mask;
    } else {
        native->disabledScrollBars |= mask;
    }
}

bool Offscreen_WindowImp::HasScrollBar(uint32_t which) {
    if (native == nullptr || (which != ScrollBarHorizontal && which != ScrollBarVertical)) {
        return false;
    }
    return (native->scrollBars & which) != 0;
}

int32_t Offscreen_WindowImp::GetScrollPos(uint32_t bar) {
    return native != nullptr ? native->scrollPos[bar == ScrollBarVertical ? 1 : 0] : 0;
}

void Offscreen_WindowImp::SetScrollPos(uint32_t bar, int32_t position) {
    if (native != nullptr) {
        native->scrollPos[bar == ScrollBarVertical ? 1 : 0] = position;
        native->needsPaint = true;
    }
}

int32_t Offscreen_WindowImp::GetShowState() {
    return native != nullptr ? native->showState : ShowStateNormal;
}

void Offscreen_WindowImp::SetShowState(int32_t state) {
    if (native != nullptr) {
        native->showState =
            (state == ShowStateMinimised || state == ShowStateMaximised) ? state : ShowStateNormal;
    }
}

void Offscreen_WindowImp::Show(int32_t mode) {
    if (native != nullptr) {
        native->visible = mode != ShowModeHide;
        native->needsPaint = true;
    }
}

void Offscreen_WindowImp::Update() {
    if (native != nullptr && native->needsPaint && native->IsShowing()) {
        native->needsPaint = false;
        GetOffscreenDesktop().Send(native, OffscreenMessage{OffscreenMessageKind::Paint});
    }
}

bool Offscreen_WindowImp::GetScreenRect(Rect& rect) {
    if (native == nullptr) {
        return false;
    }
    Point origin = GetOffscreenDesktop().GetScreenOrigin(native->parent);
    rect = native->rect;
    rect.Offset(origin.x, origin.y);
    return true;
}

bool Offscreen_WindowImp::GetClientRect(Rect& rect) {
    if (native == nullptr) {
        return false;
    }
    rect = Rect{0, 0, native->rect.GetWidth(), native->rect.GetHeight()};
    return true;
}

int32_t Offscreen_WindowImp::GetId() {
    return native != nullptr ? native->id : -1;
}

int32_t Offscreen_WindowImp::GetFreeChildId() {
    if (native == nullptr) {
        return -1;
    }
    int32_t id = firstFreeChildId;
    while (native->FindChild(id) != nullptr) {
        ++id;
    }
    return id;
}

bool Offscreen_WindowImp::BindToControl(Window* parentWindow, int32_t id) {
    parent = parentWindow;
    OffscreenWindow* parentNative = GetNativeOf(parentWindow);
    return parentNative != nullptr && Attach(parentNative->FindControl(id));
}

bool Offscreen_WindowImp::BindToHandle(Window* parentWindow, NativeHandle handle) {
    parent = parentWindow;
    auto value = static_cast<OffscreenHandle>(reinterpret_cast<uintptr_t>(handle));
    return Attach(GetOffscreenDesktop().Find(value));
}

void Offscreen_WindowImp::Unbind() {
    if (native == nullptr) {
        return;
    }
    if (native->imp == this) {
        native->imp = nullptr;
    }
    native = nullptr;
}

void Offscreen_WindowImp::MapPoints(Window* target, Point* points, int32_t count) {
    OffscreenWindow* targetNative = GetNativeOf(target);
    if (native == nullptr || (target != nullptr && targetNative == nullptr)) {
        return;
    }
    OffscreenDesktop& desktop = GetOffscreenDesktop();
    Point from = desktop.GetScreenOrigin(native);
    Point to = desktop.GetScreenOrigin(targetNative);
    for (int32_t i = 0; i < count; ++i) {
        points[i].x += from.x - to.x;
        points[i].y += from.y - to.y;
    }
}

void Offscreen_WindowImp::Invalidate(const Rect*) {
    if (native != nullptr) {
        native->needsPaint = true;
    }
}

bool Offscreen_WindowImp::StartTimer(uint32_t id, uint32_t interval) {
    return native != nullptr && GetOffscreenDesktop().SetTimer(native, id, interval);
}

void Offscreen_WindowImp::StopTimer(uint32_t id) {
    if (native != nullptr) {
        GetOffscreenDesktop().KillTimer(native, id);
    }
}

bool Offscreen_WindowImp::Attach(OffscreenWindow* window) {
    if (native != nullptr || window == nullptr || window->imp != nullptr) {
        return false;
    }
    native = window;
    window->imp = this;
    return true;
}

bool Offscreen_WindowImp::WindowProc(const OffscreenMessage& message) {
    if (native == nullptr) {
        return false;
    }
    for (const Route& route : routes) {
        if (route.kind == message.kind) {
            return (this->*route.handler)(message);
        }
    }
    return false;
}

void Offscreen_WindowImp::OnNativeWindowGone() {
    native = nullptr;
    NotifyNativeDestroyed();
}

bool Offscreen_WindowImp::CreateNativeChild(Window& control, const ChildControl& childSpec,
                                            int32_t id) {
    auto* controlImp = dynamic_cast<Offscreen_WindowImp*>(control.GetImp());
    if (native == nullptr || controlImp == nullptr) {
        return false;
    }
    uint32_t style = childSpec.style | (childSpec.tabStop ? uint32_t{StyleTabStop} : 0u);
    auto created = MakeOffscreenWindow(childSpec.kind, style, native);
    created->id = id;
    created->text = childSpec.title;
    created->rect = childSpec.rect;
    created->visible = true;
    created->scrollBars = controlImp->scrollBars;
    controlImp->parent = GetOwner();
    return controlImp->Attach(GetOffscreenDesktop().AddWindow(std::move(created)));
}

bool Offscreen_WindowImp::RouteMove(const OffscreenMessage& message) {
    return GetOwner()->OnMove(message.point.x, message.point.y);
}

bool Offscreen_WindowImp::RouteSize(const OffscreenMessage& message) {
    return OnNativeSize(message.size.width, message.size.height);
}

bool Offscreen_WindowImp::RouteSetFocus(const OffscreenMessage&) {
    return GetOwner()->OnSetFocus();
}

bool Offscreen_WindowImp::RouteActivate(const OffscreenMessage&) {
    GetOffscreenDesktop().SetFocus(native);
    return true;
}

bool Offscreen_WindowImp::RouteKillFocus(const OffscreenMessage&) {
    return GetOwner()->OnKillFocus();
}

bool Offscreen_WindowImp::RoutePaint(const OffscreenMessage&) {
    return GetOwner()->OnPaint();
}

bool Offscreen_WindowImp::RouteClose(const OffscreenMessage&) {
    return GetOwner()->OnClose();
}

bool Offscreen_WindowImp::RouteCancelMode(const OffscreenMessage&) {
    return GetOwner()->OnCancelMode();
}

bool Offscreen_WindowImp::RouteTimer(const OffscreenMessage& message) {
    return Timer::OnNativeTimer(static_cast<uint32_t>(message.value));
}

bool Offscreen_WindowImp::RouteKeyDown(const OffscreenMessage& message) {
    return GetOwner()->OnKeyDown(message.value, message.flags);
}

bool Offscreen_WindowImp::RouteKeyUp(const OffscreenMessage& message) {
    return GetOwner()->OnKeyUp(message.value, message.flags);
}

bool Offscreen_WindowImp::RouteChar(const OffscreenMessage& message) {
    return GetOwner()->OnChar(static_cast<uint16_t>(message.value));
}

bool Offscreen_WindowImp::RouteMouseDown(const OffscreenMessage& message) {
    return GetOwner()->OnMouseDown(message.flags, &message.point);
}

bool Offscreen_WindowImp::RouteMouseUp(const OffscreenMessage& message) {
    return GetOwner()->OnMouseUp(message.flags, &message.point);
}

bool Offscreen_WindowImp::RouteMouseDoubleClick(const OffscreenMessage& message) {
    return GetOwner()->OnMouseDoubleClick(message.flags, &message.point);
}

bool Offscreen_WindowImp::RouteMouseMove(const OffscreenMessage& message) {
    return GetOwner()->OnMouseMove(message.flags, &message.point);
}

bool Offscreen_WindowImp::RouteMouseWheel(const OffscreenMessage& message) {
    return GetOwner()->OnMouseWheel(message.value);
}

bool Offscreen_WindowImp::RouteNotify(const OffscreenMessage& message) {
    return OnControlEvent(NativeNotification{message.event, message.value, message.flags});
}

} // namespace quilt
