#pragma once

#include <cstdint>

namespace quilt {

// The milliseconds that the toolkit's timers and main loop run on. It is the system's monotonic
// clock unless another one is installed, as a test installs a virtual one. Ticks wrap after
// 49.7 days: compare two of them only by their unsigned difference.
class Clock {
public:
    virtual ~Clock() = default;
    virtual uint32_t GetTickCount() = 0;
    virtual void Sleep(uint32_t milliseconds) = 0;
};

Clock& GetClock();
// Null goes back to the system's clock. The installed clock is not owned.
void SetClock(Clock* clock);

inline uint32_t GetTickCount() {
    return GetClock().GetTickCount();
}

// True when `tick` is at or after `reference`, for two ticks less than 24.8 days apart.
inline bool IsTickReached(uint32_t tick, uint32_t reference) {
    return static_cast<int32_t>(tick - reference) >= 0;
}

} // namespace quilt
