#include "quilt/clock.h"

#include "loam/clock.h"

namespace quilt {

namespace {

class SystemClock : public Clock {
public:
    uint32_t GetTickCount() override { return loam::GetTickCount(); }
    void Sleep(uint32_t milliseconds) override { loam::Sleep(milliseconds); }
};

SystemClock systemClock;
Clock* installedClock = nullptr;

} // namespace

Clock& GetClock() {
    return installedClock != nullptr ? *installedClock : systemClock;
}

void SetClock(Clock* clock) {
    installedClock = clock;
}

} // namespace quilt
