#include "quilt/timer.h"

#include "quilt/window.h"

#include <map>

namespace quilt::Timer {

namespace {

struct WindowTimer {
    bool repeating;
    Window* window;
};

std::map<uint32_t, WindowTimer>& GetWindowTimers() {
    static std::map<uint32_t, WindowTimer> timers;
    return timers;
}

uint32_t nextId = 1000;

} // namespace

uint32_t StartWindowTimer(bool repeating, uint32_t interval, Window& window) {
    if (!window.HasNativeWindow()) {
        return 0;
    }
    uint32_t id = nextId++;
    if (!window.GetImp()->StartTimer(id, interval)) {
        return 0;
    }
    GetWindowTimers()[id] = WindowTimer{repeating, &window};
    return id;
}

void Stop(uint32_t id) {
    auto& timers = GetWindowTimers();
    auto found = timers.find(id);
    if (found == timers.end()) {
        return;
    }
    Window* window = found->second.window;
    timers.erase(found);
    window->GetImp()->StopTimer(id);
}

bool OnNativeTimer(uint32_t id) {
    auto& timers = GetWindowTimers();
    auto found = timers.find(id);
    if (found == timers.end()) {
        return false;
    }
    Window* window = found->second.window;
    if (!found->second.repeating) {
        Stop(id);
    }
    window->OnTimer(id);
    return true;
}

void ForgetWindow(const Window* window) {
    std::erase_if(GetWindowTimers(),
                  [window](const auto& entry) { return entry.second.window == window; });
}

} // namespace quilt::Timer
