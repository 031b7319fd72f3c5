#include "quilt/offscreen/offscreen_driver.h"

#include "quilt/application.h"
#include "quilt/offscreen/offscreen_window_imp.h"
#include "quilt/wait_cursor.h"
#include "quilt/window.h"

namespace quilt {

OffscreenDriver::OffscreenDriver(uint32_t startTime)
    : clock(startTime), desktop(GetOffscreenDesktop()) {
    desktop.Reset();
    SetClock(&clock);
}

OffscreenDriver::~OffscreenDriver() {
    desktop.Reset();
    SetClock(nullptr);
}

void OffscreenDriver::Post(Window& window, OffscreenMessage message, std::optional<uint32_t> at) {
    OffscreenWindow* native = GetNative(window);
    if (native == nullptr) {
        return;
    }
    message.time = at.value_or(Now());
    desktop.Post(native, message);
}

void OffscreenDriver::PostKey(Window& window, OffscreenMessageKind kind, int32_t value,
                              uint32_t flags, std::optional<uint32_t> at) {
    OffscreenMessage message{kind};
    message.value = value;
    message.flags = flags;
    Post(window, message, at);
}

void OffscreenDriver::PostMouse(Window& window, OffscreenMessageKind kind, uint32_t flags,
                                Point point, std::optional<uint32_t> at) {
    OffscreenMessage message{kind};
    message.flags = flags;
    message.point = point;
    Post(window, message, at);
}

void OffscreenDriver::PostKeyDown(Window& window, int32_t key, uint32_t modifiers,
                                  std::optional<uint32_t> at) {
    PostKey(window, OffscreenMessageKind::KeyDown, key, modifiers, at);
}

void OffscreenDriver::PostKeyUp(Window& window, int32_t key, uint32_t modifiers,
                                std::optional<uint32_t> at) {
    PostKey(window, OffscreenMessageKind::KeyUp, key, modifiers, at);
}

void OffscreenDriver::PostChar(Window& window, uint16_t character, std::optional<uint32_t> at) {
    PostKey(window, OffscreenMessageKind::Char, character, 0, at);
}

void OffscreenDriver::PostMouseDown(Window& window, uint32_t flags, Point point,
                                    std::optional<uint32_t> at) {
    PostMouse(window, OffscreenMessageKind::MouseDown, flags, point, at);
}

void OffscreenDriver::PostMouseUp(Window& window, uint32_t flags, Point point,
                                  std::optional<uint32_t> at) {
    PostMouse(window, OffscreenMessageKind::MouseUp, flags, point, at);
}

void OffscreenDriver::PostMouseDoubleClick(Window& window, uint32_t flags, Point point,
                                           std::optional<uint32_t> at) {
    PostMouse(window, OffscreenMessageKind::MouseDoubleClick, flags, point, at);
}

void OffscreenDriver::PostMouseMove(Window& window, uint32_t flags, Point point,
                                    std::optional<uint32_t> at) {
    PostMouse(window, OffscreenMessageKind::MouseMove, flags, point, at);
}

void OffscreenDriver::PostMouseWheel(Window& window, int32_t delta, std::optional<uint32_t> at) {
    PostKey(window, OffscreenMessageKind::MouseWheel, delta, 0, at);
}

void OffscreenDriver::PostClose(Window& window, std::optional<uint32_t> at) {
    Post(window, OffscreenMessage{OffscreenMessageKind::Close}, at);
}

OffscreenDriver::RunEnd OffscreenDriver::Run(const std::function<bool()>& condition,
                                             uint32_t limit) {
    Application* application = Application::GetCurrent();
    if (application == nullptr || application->GetImp() == nullptr) {
        return RunEnd::Rest;
    }
    uint32_t deadline = Now() + limit;
    uint32_t passes = 0;
    RunEnd stopped = RunEnd::Rest;
    auto stop = [&] {
        if (condition && condition()) {
            stopped = RunEnd::Condition;
            return true;
        }
        if (IsTickReached(Now(), deadline) || ++passes > MaximumPasses) {
            stopped = RunEnd::Limit;
            return true;
        }
        return false;
    };
    ApplicationImp& imp = *application->GetImp();
    desktop.SetWaitDeadline(deadline);
    MessageLoop::Outcome outcome = imp.GetLoop().Run(imp, *application, stop);
    desktop.SetWaitDeadline(std::nullopt);
    if (outcome == MessageLoop::Outcome::Quit || stopped != RunEnd::Rest) {
        return stopped;
    }
    // Paused without a stop: either nothing can come, or the wait reached the deadline.
    return desktop.CanReceiveEvents() ? RunEnd::Limit : RunEnd::Rest;
}

bool OffscreenDriver::RunUntilIdle(uint32_t limit) {
    return Run({}, limit) == RunEnd::Rest;
}

bool OffscreenDriver::RunUntil(const std::function<bool()>& condition, uint32_t limit) {
    return Run(condition, limit) == RunEnd::Condition;
}

void OffscreenDriver::RunFor(uint32_t milliseconds) {
    uint32_t end = Now() + milliseconds;
    Run({}, milliseconds);
    // A loop at rest would only have waited for the rest of the time.
    if (!IsTickReached(Now(), end)) {
        clock.Set(end);
    }
}

void OffscreenDriver::PumpMessages() {
    desktop.PumpMessages();
}

bool OffscreenDriver::HasQuit() const {
    Application* application = Application::GetCurrent();
    return application != nullptr && application->GetImp() != nullptr &&
           application->GetImp()->GetLoop().IsQuitting();
}

OffscreenWindow* OffscreenDriver::GetNative(Window& window) const {
    return Offscreen_WindowImp::GetNativeOf(&window);
}

bool OffscreenDriver::IsShowing(Window& window) const {
    OffscreenWindow* native = GetNative(window);
    return native != nullptr && native->IsShowing();
}

bool OffscreenDriver::IsEnabled(Window& window) const {
    OffscreenWindow* native = GetNative(window);
    return native != nullptr && native->enabled;
}

bool OffscreenDriver::HasFocus(Window& window) const {
    OffscreenWindow* native = GetNative(window);
    return native != nullptr && desktop.GetFocus() == native;
}

loam::String OffscreenDriver::GetText(Window& window) const {
    OffscreenWindow* native = GetNative(window);
    return native != nullptr ? native->text : loam::String();
}

Rect OffscreenDriver::GetScreenRect(Window& window) const {
    Rect rect;
    window.GetScreenRect(rect);
    return rect;
}

OffscreenWindow* OffscreenDriver::FindTopWindow(const char* title) const {
    const auto& windows = desktop.GetTopWindows();
    for (auto entry = windows.rbegin(); entry != windows.rend(); ++entry) {
        if ((*entry)->text == title) {
            return entry->get();
        }
    }
    return nullptr;
}

bool OffscreenDriver::IsWaitCursorShowing() const {
    return WaitCursor::IsShowing();
}

} // namespace quilt
