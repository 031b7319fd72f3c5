#pragma once

#include <cstdint>

namespace quilt {

class Window;

// The process's window timers. Ids start at 1000 and are never given twice in a run. A timer
// arrives as the window's OnTimer; a one-shot timer is out of the table before that runs, so it
// never fires twice and its handler may start a new one.
namespace Timer {

// 0 when the window has no native window or the platform refuses the timer.
uint32_t StartWindowTimer(bool repeating, uint32_t interval, Window& window);
// An unknown id does nothing.
void Stop(uint32_t id);
// A native timer tick; false for an id that is not a window timer of the toolkit.
bool OnNativeTimer(uint32_t id);
// The window's native window has gone, and its timers with it: none may fire into the window.
void ForgetWindow(const Window* window);

} // namespace Timer

} // namespace quilt
