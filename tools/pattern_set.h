#pragma once

#include "loam/string.h"
#include "search/name_automaton.h"

#include <boost/regex.hpp>

#include <vector>

// Patterns that a text must match all, each over the whole text, with the search pass's own
// translation of wildcards, its syntax and its folding. Where the expression is a regular
// language, the search's automaton decides in one pass over the text; the expression's library
// decides the others, on the text folded to lower case.
class PatternSet {
public:
    enum class Verdict { Matched, NotMatched, GaveUp };

    // False when a pattern does not give a valid expression, with the search's words on the
    // error stack; the set then holds none.
    bool Compile(const std::vector<loam::String>& patterns, bool isRegExp, bool autoWildcards);
    bool IsEmpty() const { return patterns.empty(); }

    // GaveUp when the expression library ended a match early, which a long text and a
    // backtracking expression can make it do: that text's verdict is then unknown.
    Verdict Match(const char* text);

private:
    struct Pattern {
        boost::regex expression;
        NameAutomaton automaton;
        bool hasAutomaton = false;
    };

    bool Add(const loam::String& text);
    bool MatchesFolded(const boost::regex& expression, const char* text);

    std::vector<Pattern> patterns;
    // Reused from text to text, so that a match allocates nothing for a text that fits.
    loam::String folded;
    bool isFolded = false;
    boost::cmatch match;
};
