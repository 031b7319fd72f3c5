#include "tools/pattern_set.h"

#include "loam/error.h"
#include "search/index_searcher.h"
#include "search/name_automaton.h"

bool PatternSet::Compile(const std::vector<loam::String>& patterns, bool isRegExp,
                         bool autoWildcards) {
    expressions.clear();
    for (const loam::String& pattern : patterns) {
        if (!Add(IndexSearcher::MakeExpression(pattern, isRegExp, autoWildcards))) {
            expressions.clear();
            return loam::RaiseError(loam::ErrorGeneral, SearchSyntaxErrorText);
        }
    }
    return true;
}

// An empty expression is refused, as the search pass refuses it.
bool PatternSet::Add(const loam::String& text) {
    if (text.IsEmpty())
        return false;
    try {
        expressions.emplace_back(text.GetCString(), text.GetCString() + text.GetLength(),
                                 SearchSyntax);
        return true;
    } catch (...) {
        return false;
    }
}

PatternSet::Verdict PatternSet::Match(const char* text) {
    folded.Assign(text);
    folded.ToLower();
    const char* first = folded.GetCString();
    const char* last = first + folded.GetLength();
    try {
        for (const boost::regex& expression : expressions) {
            if (!boost::regex_match(first, last, match, expression, SearchMatchFlags))
                return Verdict::NotMatched;
        }
    } catch (...) {
        return Verdict::GaveUp;
    }
    return Verdict::Matched;
}
