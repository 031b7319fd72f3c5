#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace quilt {

class Application;

// What the main loop needs of a platform's events.
class EventSource {
public:
    virtual ~EventSource() = default;
    // Serves every event that waits, and returns.
    virtual void PumpMessages() = 0;
    // Blocks until an event waits, or for at most `timeout` ms when one is given. False when the
    // wait ended without an event: its time was up, no event can come, or whoever runs the loop
    // asked for a pause.
    virtual bool WaitMessage(std::optional<uint32_t> timeout) = 0;
    // False when no event can come any more, so a loop that polls would poll forever.
    virtual bool CanReceiveEvents() = 0;
};

// The main loop's rule: idle rounds only once more than 2,000 ms have passed without user input,
// back to back while a handler wants more, then a wait for the next event; otherwise a poll every
// 50 ms, which blocks on the event source for those 50 ms and ends early when an event comes. Modal
// loops pump events without this loop, so no idle round ever runs inside one.
class MessageLoop {
public:
    static constexpr uint32_t QuietPeriod = 2000;
    static constexpr uint32_t PollInterval = 50;

    enum class Outcome { Quit, Paused };
    using StopCondition = std::function<bool()>;

    // Runs until Quit. Pauses when `stop` answers true at the start of a pass, or when no event
    // can come; a paused loop resumes where it stood.
    Outcome Run(EventSource& source, Application& application, const StopCondition& stop = {});

    // User input at `time`, or now for 0: every key event, every mouse button event and the
    // wheel, scrolling, focus gain; never pointer motion or a timer tick.
    void NoteUserInput(uint32_t time);
    void WakeIdle();
    void Quit() { quit = true; }
    bool IsQuitting() const { return quit; }
    uint32_t GetLastInputTime() const { return lastInputTime; }

private:
    bool IsIdleDue() const;

    uint32_t lastInputTime = 0;
    bool inputSeen = false;
    // The first round comes at once: no input yet, and a round is pending.
    bool idlePending = true;
    bool waiting = false;
    bool quit = false;
};

} // namespace quilt
