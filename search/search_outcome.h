#pragma once

#include "loam/string.h"

#include <cstdint>

// What the list shows after a search: the results, or nothing.
enum class OutcomeRows { Clear, Fill };

// The facts of a finished search that its outcome line tells.
struct SearchFacts {
    loam::String pattern; // as typed
    int32_t count = 0;
    int32_t limit = 0;
    float seconds = 0;
    uint64_t totalSize = 0; // the sum of the results' sizes, wider than any one of them
};

// Whether the list shows the results: all of them or none, never a part.
OutcomeRows GetOutcomeRows(int32_t count, int32_t limit);
// The one line that tells the outcome: none found, too many to show, or one or more shown with
// the time and their total size.
void FormatSearchOutcome(const SearchFacts& facts, loam::String& line);

// The time between two ticks of the clock, as the outcome line prints it.
float GetElapsedSeconds(uint32_t startTick, uint32_t endTick);

// Asks whether the limit should rise to show all the results; true on Yes.
bool AskToRaiseLimit();
