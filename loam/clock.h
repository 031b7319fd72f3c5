#pragma once

#include <cstdint>

namespace loam {

// Milliseconds of a monotonic clock, truncated to 32 bits: compare two ticks only by their
// unsigned difference, which survives the wrap after 49.7 days.
uint32_t GetTickCount();
void Sleep(uint32_t milliseconds);

} // namespace loam
