#include "quilt/offscreen/offscreen_desktop.h"

#include "quilt/application.h"
#include "quilt/clock.h"
#include "quilt/offscreen/offscreen_window_imp.h"

#include <algorithm>

namespace quilt {

namespace {

// What counts as user input for the main loop's quiet period: pointer motion does not.
constexpr OffscreenMessageKind userInputKinds[] = {
    OffscreenMessageKind::KeyDown,    OffscreenMessageKind::KeyUp,
    OffscreenMessageKind::Char,       OffscreenMessageKind::MouseDown,
    OffscreenMessageKind::MouseUp,    OffscreenMessageKind::MouseDoubleClick,
    OffscreenMessageKind::MouseWheel, OffscreenMessageKind::ThumbDrag,
    OffscreenMessageKind::Activate,
};

constexpr OffscreenMessageKind keyKinds[] = {
    OffscreenMessageKind::KeyDown,
    OffscreenMessageKind::KeyUp,
    OffscreenMessageKind::Char,
};

bool IsUserInput(OffscreenMessageKind kind) {
    return std::find(std::begin(userInputKinds), std::end(userInputKinds), kind) !=
           std::end(userInputKinds);
}

bool IsKey(OffscreenMessageKind kind) {
    return std::find(std::begin(keyKinds), std::end(keyKinds), kind) != std::end(keyKinds);
}

// How far `tick` lies ahead of `now`; 0 when it has been reached.
uint32_t GetDelay(uint32_t tick, uint32_t now) {
    return IsTickReached(now, tick) ? 0 : tick - now;
}

std::vector<std::unique_ptr<OffscreenWindow>>::iterator
FindIn(std::vector<std::unique_ptr<OffscreenWindow>>& list, const OffscreenWindow* window) {
    return std::find_if(list.begin(), list.end(),
                        [window](const auto& entry) { return entry.get() == window; });
}

} // namespace

void OffscreenWindow::DefaultHandling(const OffscreenMessage& message) {
    if (message.kind == OffscreenMessageKind::Close) {
        GetOffscreenDesktop().DestroyWindow(this);
    }
}

void OffscreenWindow::SetNativeText(const loam::String& newText) {
    text = newText;
    needsPaint = true;
}

OffscreenWindow* OffscreenWindow::FindChild(int32_t childId) const {
    for (const auto& child : children) {
        if (child->id == childId) {
            return child.get();
        }
    }
    return nullptr;
}

OffscreenWindow* OffscreenWindow::FindControl(int32_t controlId) const {
    if (OffscreenWindow* child = FindChild(controlId)) {
        return child;
    }
    for (const auto& child : children) {
        if (OffscreenWindow* grandChild = child->FindChild(controlId)) {
            return grandChild;
        }
    }
    return nullptr;
}

OffscreenWindow* OffscreenWindow::GetTopLevel() {
    OffscreenWindow* window = this;
    while (window->parent != nullptr) {
        window = window->parent;
    }
    return window;
}

bool OffscreenWindow::IsInside(const OffscreenWindow* ancestor) const {
    for (const OffscreenWindow* window = this; window != nullptr; window = window->parent) {
        if (window == ancestor) {
            return true;
        }
    }
    return false;
}

int32_t OffscreenWindow::GetDialogCode(KeyEventKind kind, int32_t value) const {
    int32_t code = GetNativeDialogCode(kind, value);
    return imp != nullptr ? imp->GetDialogCode(kind, value, code) : code;
}

bool OffscreenWindow::IsShowing() const {
    for (const OffscreenWindow* window = this; window != nullptr; window = window->parent) {
        if (!window->visible) {
            return false;
        }
    }
    return true;
}

bool OffscreenWindow::IsEnabledAndVisible() const {
    for (const OffscreenWindow* window = this; window != nullptr; window = window->parent) {
        if (!window->enabled || !window->visible) {
            return false;
        }
    }
    return true;
}

OffscreenWindow* OffscreenDesktop::AddWindow(std::unique_ptr<OffscreenWindow> window) {
    OffscreenWindow* added = window.get();
    added->handle = nextHandle++;
    windows[added->handle] = added;
    auto& list = added->parent != nullptr ? added->parent->children : topWindows;
    list.push_back(std::move(window));
    return added;
}

void OffscreenDesktop::DestroyWindow(OffscreenWindow* window) {
    if (window == nullptr || window->destroying) {
        return;
    }
    window->destroying = true;
    // Owned here from now on, so that nothing a handler destroys can free it under this call.
    auto& list = window->parent != nullptr ? window->parent->children : topWindows;
    auto position = FindIn(list, window);
    if (position == list.end()) {
        return;
    }
    std::unique_ptr<OffscreenWindow> owned = std::move(*position);
    list.erase(position);
    window->parent = nullptr;
    if (Offscreen_WindowImp* imp = window->imp) {
        window->imp = nullptr;
        imp->OnNativeWindowGone();
    }
    while (!window->children.empty()) {
        DestroyWindow(window->children.back().get());
    }
    Forget(window);
}

void OffscreenDesktop::Forget(OffscreenWindow* window) {
    OffscreenHandle handle = window->handle;
    windows.erase(handle);
    if (focus == handle) {
        focus = 0;
    }
    if (capture == handle) {
        capture = 0;
    }
    std::erase_if(events, [handle](const PostedEvent& event) { return event.target == handle; });
    std::erase_if(timers, [handle](const NativeTimer& timer) { return timer.window == handle; });
}

OffscreenWindow* OffscreenDesktop::Find(OffscreenHandle handle) const {
    auto found = windows.find(handle);
    return found != windows.end() ? found->second : nullptr;
}

void OffscreenDesktop::BringToTop(OffscreenWindow* window) {
    auto& list = window->parent != nullptr ? window->parent->children : topWindows;
    auto position = FindIn(list, window);
    if (position == list.end()) {
        return;
    }
    std::rotate(position, position + 1, list.end());
}

void OffscreenDesktop::SendToBottom(OffscreenWindow* window) {
    auto& list = window->parent != nullptr ? window->parent->children : topWindows;
    auto position = FindIn(list, window);
    if (position == list.end()) {
        return;
    }
    std::rotate(list.begin(), position, position + 1);
}

Point OffscreenDesktop::GetScreenOrigin(const OffscreenWindow* window) const {
    Point origin;
    for (; window != nullptr; window = window->parent) {
        origin.x += window->rect.left;
        origin.y += window->rect.top;
    }
    return origin;
}

void OffscreenDesktop::SetFocus(OffscreenWindow* window) {
    OffscreenWindow* previous = GetFocus();
    if (previous == window) {
        return;
    }
    OffscreenHandle handle = window != nullptr ? window->handle : 0;
    focus = handle;
    if (previous != nullptr) {
        Send(previous, OffscreenMessage{OffscreenMessageKind::KillFocus});
    }
    if (OffscreenWindow* gaining = Find(handle)) {
        Send(gaining, OffscreenMessage{OffscreenMessageKind::SetFocus});
    }
}

void OffscreenDesktop::SetCapture(OffscreenWindow* window) {
    capture = window != nullptr ? window->handle : 0;
}

void OffscreenDesktop::MoveWindow(OffscreenWindow* window, Rect rect) {
    OffscreenHandle handle = window->handle;
    Size size{rect.GetWidth(), rect.GetHeight()};
    if (window->imp != nullptr && window->imp->ConstrainSize(size)) {
        rect.right = rect.left + size.width;
        rect.bottom = rect.top + size.height;
    }
    window = Find(handle);
    if (window == nullptr) {
        return;
    }
    Rect previous = window->rect;
    window->rect = rect;
    window->needsPaint = true;
    if (previous.left != rect.left || previous.top != rect.top) {
        OffscreenMessage moved{OffscreenMessageKind::Move};
        moved.point = Point{rect.left, rect.top};
        Send(window, moved);
    }
    window = Find(handle);
    if (window == nullptr) {
        return;
    }
    if (previous.GetWidth() != rect.GetWidth() || previous.GetHeight() != rect.GetHeight()) {
        OffscreenMessage sized{OffscreenMessageKind::Size};
        sized.size = Size{rect.GetWidth(), rect.GetHeight()};
        Send(window, sized);
    }
}

void OffscreenDesktop::Send(OffscreenWindow* window, const OffscreenMessage& message) {
    OffscreenHandle handle = window->handle;
    if (window->imp != nullptr && window->imp->WindowProc(message)) {
        return;
    }
    if (OffscreenWindow* stillThere = Find(handle)) {
        stillThere->DefaultHandling(message);
    }
}

void OffscreenDesktop::Post(OffscreenWindow* window, const OffscreenMessage& message) {
    events.push_back(PostedEvent{window->handle, message, false});
}

void OffscreenDesktop::PostToFocus(OffscreenWindow* window, const OffscreenMessage& message) {
    events.push_back(PostedEvent{window->handle, message, true});
}

OffscreenWindow* OffscreenDesktop::GetEventTarget(const PostedEvent& event) const {
    OffscreenWindow* window = Find(event.target);
    if (window == nullptr || !event.toFocus) {
        return window;
    }
    OffscreenWindow* focused = GetFocus();
    return focused != nullptr && focused->IsInside(window->GetTopLevel()) ? focused : window;
}

bool OffscreenDesktop::RegisterHotKey(uint32_t id, int32_t key, uint32_t modifiers) {
    for (const auto& [registered, hotKey] : hotKeys) {
        if (hotKey.key == key && hotKey.modifiers == modifiers) {
            return false;
        }
    }
    hotKeys[id] = HotKey{key, modifiers};
    return true;
}

void OffscreenDesktop::PostHotKey(const OffscreenMessage& message) {
    events.push_back(PostedEvent{0, message, false});
}

bool OffscreenDesktop::SetTimer(OffscreenWindow* window, uint32_t id, uint32_t interval) {
    interval = std::max(interval, MinimumTimerInterval);
    KillTimer(window, id);
    timers.push_back(NativeTimer{window->handle, id, interval, GetTickCount() + interval, 0});
    return true;
}

void OffscreenDesktop::KillTimer(OffscreenWindow* window, uint32_t id) {
    OffscreenHandle handle = window->handle;
    std::erase_if(timers, [handle, id](const NativeTimer& timer) {
        return timer.window == handle && timer.id == id;
    });
}

void OffscreenDesktop::PumpMessages() {
    uint64_t pump = ++pumpCount;
    while (ServeOneEvent() || FireOneTimer(pump)) {
    }
    PaintWindows();
}

bool OffscreenDesktop::ServeOneEvent() {
    uint32_t now = GetTickCount();
    auto due = std::find_if(events.begin(), events.end(), [now](const PostedEvent& event) {
        return IsTickReached(now, event.message.time);
    });
    if (due == events.end()) {
        return false;
    }
    PostedEvent event = *due;
    events.erase(due);
    if (event.message.kind == OffscreenMessageKind::HotKey) {
        ServeHotKey(event.message);
        return true;
    }
    OffscreenWindow* window = GetEventTarget(event);
    // A disabled or hidden window gets no input, as under a modal dialog.
    if (window == nullptr || !window->IsEnabledAndVisible()) {
        return true;
    }
    const OffscreenMessage& message = event.message;
    if (!IsKey(message.kind) || !window->GetTopLevel()->TranslateDialogKey(*window, message)) {
        Send(window, message);
    }
    if (IsUserInput(message.kind)) {
        NoteUserInput(message.time);
    }
    return true;
}

// A key unregistered while its press waited is no hot key any more.
void OffscreenDesktop::ServeHotKey(const OffscreenMessage& message) {
    Application* application = Application::GetCurrent();
    uint32_t id = static_cast<uint32_t>(message.value);
    if (application != nullptr && hotKeys.count(id) != 0) {
        application->DeliverHotKey(id, message.time);
    }
}

// Each timer fires at most once per pump, however late the pump is.
bool OffscreenDesktop::FireOneTimer(uint64_t pump) {
    uint32_t now = GetTickCount();
    NativeTimer* next = nullptr;
    for (NativeTimer& timer : timers) {
        if (timer.firedInPump == pump || !IsTickReached(now, timer.due)) {
            continue;
        }
        if (next == nullptr || static_cast<int32_t>(timer.due - next->due) < 0) {
            next = &timer;
        }
    }
    if (next == nullptr) {
        return false;
    }
    next->firedInPump = pump;
    next->due = now + next->interval;
    OffscreenMessage tick{OffscreenMessageKind::Timer};
    tick.time = now;
    tick.value = static_cast<int32_t>(next->id);
    if (OffscreenWindow* window = Find(next->window)) {
        Send(window, tick);
    }
    return true;
}

void OffscreenDesktop::PaintWindows() {
    std::vector<OffscreenHandle> dirty;
    for (const auto& [handle, window] : windows) {
        if (window->needsPaint && window->IsShowing()) {
            dirty.push_back(handle);
        }
    }
    for (OffscreenHandle handle : dirty) {
        OffscreenWindow* window = Find(handle);
        if (window != nullptr && window->needsPaint) {
            window->needsPaint = false;
            Send(window, OffscreenMessage{OffscreenMessageKind::Paint});
        }
    }
}

std::optional<uint32_t> OffscreenDesktop::GetNextEventTime() const {
    uint32_t now = GetTickCount();
    std::optional<uint32_t> next;
    auto consider = [&next, now](uint32_t tick) {
        if (!next || GetDelay(tick, now) < GetDelay(*next, now)) {
            next = tick;
        }
    };
    for (const PostedEvent& event : events) {
        consider(event.message.time);
    }
    for (const NativeTimer& timer : timers) {
        consider(timer.due);
    }
    return next;
}

bool OffscreenDesktop::WaitMessage(std::optional<uint32_t> timeout) {
    std::optional<uint32_t> next = GetNextEventTime();
    uint32_t now = GetTickCount();
    if (timeout) {
        uint32_t delay = next ? std::min(GetDelay(*next, now), *timeout) : *timeout;
        if (delay > 0) {
            GetClock().Sleep(delay);
        }
        return next && IsTickReached(GetTickCount(), *next);
    }
    if (!next) {
        return false;
    }
    uint32_t delay = GetDelay(*next, now);
    if (waitDeadline) {
        uint32_t untilDeadline = GetDelay(*waitDeadline, now);
        if (untilDeadline < delay) {
            GetClock().Sleep(untilDeadline);
            return false;
        }
    }
    if (delay > 0) {
        GetClock().Sleep(delay);
    }
    return true;
}

void OffscreenDesktop::BeginModal(OffscreenWindow* window) {
    modalWindows.push_back(window->handle);
    if (modalHook) {
        modalHook(*window);
    }
}

void OffscreenDesktop::EndModal(OffscreenHandle handle) {
    std::erase(modalWindows, handle);
}

OffscreenWindow* OffscreenDesktop::GetModalWindow() const {
    for (auto handle = modalWindows.rbegin(); handle != modalWindows.rend(); ++handle) {
        if (OffscreenWindow* window = Find(*handle)) {
            return window;
        }
    }
    return nullptr;
}

void OffscreenDesktop::Reset() {
    while (!topWindows.empty()) {
        DestroyWindow(topWindows.back().get());
    }
    events.clear();
    timers.clear();
    hotKeys.clear();
    focus = 0;
    capture = 0;
    waitDeadline.reset();
    modalWindows.clear();
    hasUser = false;
}

OffscreenDesktop& GetOffscreenDesktop() {
    static OffscreenDesktop desktop;
    return desktop;
}

} // namespace quilt
