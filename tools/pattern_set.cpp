#include "tools/pattern_set.h"

#include "loam/error.h"
#include "search/index_searcher.h"

bool PatternSet::Compile(const std::vector<loam::String>& texts, bool isRegExp,
                         bool autoWildcards) {
    patterns.clear();
    for (const loam::String& text : texts) {
        if (!Add(IndexSearcher::MakeExpression(text, isRegExp, autoWildcards))) {
            patterns.clear();
            return loam::RaiseError(loam::ErrorGeneral, SearchSyntaxErrorText);
        }
    }
    return true;
}

// An empty expression is refused, as the search pass refuses it.
bool PatternSet::Add(const loam::String& text) {
    if (text.IsEmpty())
        return false;
    Pattern& pattern = patterns.emplace_back();
    try {
        pattern.expression.assign(text.GetCString(), text.GetCString() + text.GetLength(),
                                  SearchSyntax);
    } catch (...) {
        return false;
    }
    pattern.hasAutomaton = pattern.automaton.Build(text.GetCString());
    return true;
}

// The library's matcher throws when it gives up; the automaton never does.
PatternSet::Verdict PatternSet::Match(const char* text) {
    isFolded = false;
    try {
        for (const Pattern& pattern : patterns) {
            const bool matched = pattern.hasAutomaton ? pattern.automaton.Matches(text)
                                                      : MatchesFolded(pattern.expression, text);
            if (!matched)
                return Verdict::NotMatched;
        }
    } catch (...) {
        return Verdict::GaveUp;
    }
    return Verdict::Matched;
}

bool PatternSet::MatchesFolded(const boost::regex& expression, const char* text) {
    if (!isFolded) {
        folded.Assign(text);
        folded.ToLower();
        isFolded = true;
    }
    const char* first = folded.GetCString();
    return boost::regex_match(first, first + folded.GetLength(), match, expression,
                              SearchMatchFlags);
}
