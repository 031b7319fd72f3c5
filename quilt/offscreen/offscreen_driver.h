#pragma once

#include "loam/string.h"
#include "quilt/clock.h"
#include "quilt/geometry.h"
#include "quilt/offscreen/offscreen_desktop.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace quilt {

class Window;

// A clock that moves only when told to, or when the loop it drives would wait or sleep.
class VirtualClock : public Clock {
public:
    explicit VirtualClock(uint32_t start) : now(start) {}
    uint32_t GetTickCount() override { return now; }
    void Sleep(uint32_t milliseconds) override { now += milliseconds; }
    void Set(uint32_t tick) { now = tick; }
    uint32_t GetNow() const { return now; }

private:
    uint32_t now;
};

// Drives the offscreen backend in a test, on a virtual clock: posts what a user does, runs the
// application's main loop, and reads what the user would see. One per test, made before the
// test's windows and application; it starts and leaves an empty desktop.
class OffscreenDriver {
public:
    // Far enough from 0 that the loop's first idle round comes at once.
    static constexpr uint32_t DefaultStartTime = 1000000;
    // How much clock time a run may take before it gives up.
    static constexpr uint32_t DefaultRunLimit = 600000;
    // How many passes of the loop a run may take: idle rounds that always want more take no
    // clock time.
    static constexpr uint32_t MaximumPasses = 100000;

    explicit OffscreenDriver(uint32_t startTime = DefaultStartTime);
    OffscreenDriver(const OffscreenDriver&) = delete;
    OffscreenDriver& operator=(const OffscreenDriver&) = delete;
    ~OffscreenDriver();

    uint32_t Now() const { return clock.GetNow(); }
    // Moves the clock alone; nothing is served.
    void AdvanceClock(uint32_t milliseconds) { clock.Sleep(milliseconds); }

    // Input is served when the loop's clock reaches `at`, now when it is not given. A window
    // without a native window, or a disabled or hidden one, gets nothing.
    void PostKeyDown(Window& window, int32_t key, uint32_t modifiers = 0,
                     std::optional<uint32_t> at = {});
    void PostKeyUp(Window& window, int32_t key, uint32_t modifiers = 0,
                   std::optional<uint32_t> at = {});
    void PostChar(Window& window, uint16_t character, std::optional<uint32_t> at = {});
    void PostMouseDown(Window& window, uint32_t flags, Point point,
                       std::optional<uint32_t> at = {});
    void PostMouseUp(Window& window, uint32_t flags, Point point, std::optional<uint32_t> at = {});
    void PostMouseDoubleClick(Window& window, uint32_t flags, Point point,
                              std::optional<uint32_t> at = {});
    void PostMouseMove(Window& window, uint32_t flags, Point point,
                       std::optional<uint32_t> at = {});
    void PostMouseWheel(Window& window, int32_t delta, std::optional<uint32_t> at = {});
    // The close box of the window's frame.
    void PostClose(Window& window, std::optional<uint32_t> at = {});

    // Runs the current application's main loop until it comes to rest: it quit, or it waits and
    // no event can come. False when `limit` ms of clock time passed first.
    bool RunUntilIdle(uint32_t limit = DefaultRunLimit);
    // Runs the loop until `condition` holds at the start of a pass; false at the limit.
    bool RunUntil(const std::function<bool()>& condition, uint32_t limit = DefaultRunLimit);
    // Lets `milliseconds` of clock time pass with the loop running.
    void RunFor(uint32_t milliseconds);
    // Serves what waits now, as a modal loop or a progress dialog does.
    void PumpMessages();
    bool HasQuit() const;

    // What the user would see.
    OffscreenWindow* GetNative(Window& window) const;
    bool IsShowing(Window& window) const;
    bool IsEnabled(Window& window) const;
    bool HasFocus(Window& window) const;
    loam::String GetText(Window& window) const;
    Rect GetScreenRect(Window& window) const;
    // The top-level window on top whose title is `title`, or null.
    OffscreenWindow* FindTopWindow(const char* title) const;
    bool IsWaitCursorShowing() const;

private:
    enum class RunEnd { Rest, Condition, Limit };

    RunEnd Run(const std::function<bool()>& condition, uint32_t limit);
    void Post(Window& window, OffscreenMessage message, std::optional<uint32_t> at);
    void PostKey(Window& window, OffscreenMessageKind kind, int32_t value, uint32_t flags,
                 std::optional<uint32_t> at);
    void PostMouse(Window& window, OffscreenMessageKind kind, uint32_t flags, Point point,
                   std::optional<uint32_t> at);

    VirtualClock clock;
    OffscreenDesktop& desktop;
};

} // namespace quilt
