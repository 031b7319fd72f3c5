#include "search/search_outcome.h"

#include "loam/format.h"
#include "loam/resource.h"
#include "quilt/question_dialog.h"

namespace {

// The outcome's texts in the program's string table.
enum OutcomeString : uint16_t {
    TooManyToShowString = 110,
    ResultsFoundString = 111,
    YesString = 119,
    NoString = 120,
    NoResultsString = 126,
    OneResultString = 127,
    RaiseLimitString = 128,
    TooManyResultsTitleString = 129,
};

} // namespace

OutcomeRows GetOutcomeRows(int32_t count, int32_t limit) {
    return count == 0 || count > limit ? OutcomeRows::Clear : OutcomeRows::Fill;
}

void FormatSearchOutcome(const SearchFacts& facts, loam::String& line) {
    const char* pattern = facts.pattern.GetCString();
    if (facts.count == 0) {
        loam::FormatResource(loam::StringResource(NoResultsString), line, pattern);
        return;
    }
    if (facts.count > facts.limit) {
        loam::FormatResource(loam::StringResource(TooManyToShowString), line, facts.limit);
        return;
    }
    const double seconds = facts.seconds;
    if (facts.count == 1) {
        loam::FormatResource(loam::StringResource(OneResultString), line, pattern, seconds);
        return;
    }
    loam::String count;
    loam::String total;
    loam::FormatThousands(count, facts.count);
    loam::FormatByteSize(total, static_cast<int64_t>(facts.totalSize));
    loam::FormatResource(loam::StringResource(ResultsFoundString), line, count.GetCString(),
                         pattern, seconds, total.GetCString());
}

// The difference wraps as the clock does; it is kept as a float, as it is printed.
float GetElapsedSeconds(uint32_t startTick, uint32_t endTick) {
    return static_cast<float>((endTick - startTick) * 0.001);
}

bool AskToRaiseLimit() {
    quilt::Question question(loam::StringResource(TooManyResultsTitleString),
                             loam::StringResource(RaiseLimitString), nullptr);
    const loam::ResourceId buttons[] = {loam::StringResource(YesString),
                                        loam::StringResource(NoString), loam::ResourceId{}};
    return question.Ask(buttons).id == YesString;
}
