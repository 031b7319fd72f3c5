#include "quilt/message_loop.h"

#include "quilt/application.h"
#include "quilt/clock.h"

namespace quilt {

MessageLoop::Outcome MessageLoop::Run(EventSource& source, Application& application,
                                      const StopCondition& stop) {
    while (!quit) {
        if (stop && stop()) {
            return Outcome::Paused;
        }
        if (waiting) {
            if (!source.WaitMessage(std::nullopt)) {
                return Outcome::Paused;
            }
            waiting = false;
        }
        source.PumpMessages();
        if (quit) {
            break;
        }
        if (IsIdleDue()) {
            if (application.RunIdle()) {
                continue;
            }
            idlePending = false;
            waiting = true;
            continue;
        }
        if (!idlePending && !source.CanReceiveEvents()) {
            return Outcome::Paused;
        }
        source.WaitMessage(PollInterval);
    }
    return Outcome::Quit;
}

void MessageLoop::NoteUserInput(uint32_t time) {
    if (time == 0) {
        time = GetTickCount();
    }
    if (!inputSeen || static_cast<int32_t>(time - lastInputTime) > 0) {
        lastInputTime = time;
    }
    inputSeen = true;
    idlePending = true;
}

void MessageLoop::WakeIdle() {
    idlePending = true;
    waiting = false;
}

bool MessageLoop::IsIdleDue() const {
    return idlePending && GetTickCount() - lastInputTime > QuietPeriod;
}

} // namespace quilt
