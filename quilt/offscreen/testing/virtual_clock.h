#pragma once

#include "quilt/clock.h"

#include <cstdint>

namespace quilt {

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

} // namespace quilt
