#pragma once

#include "loam/string.h"

#include <boost/regex.hpp>

#include <vector>

// Patterns that a text must match all, each over the whole text, with the search pass's own
// translation of wildcards, its syntax and its folding: the text is folded to lower case here,
// and the expressions ignore case.
class PatternSet {
public:
    enum class Verdict { Matched, NotMatched, GaveUp };

    // False when a pattern does not give a valid expression, with the search's words on the
    // error stack; the set then holds none.
    bool Compile(const std::vector<loam::String>& patterns, bool isRegExp, bool autoWildcards);
    bool IsEmpty() const { return expressions.empty(); }

    // GaveUp when the expression library ended a match early, which a long text and a
    // backtracking expression can make it do: that text's verdict is then unknown.
    Verdict Match(const char* text);

private:
    bool Add(const loam::String& text);

    std::vector<boost::regex> expressions;
    // Reused from text to text, so that a match allocates nothing for a text that fits.
    loam::String folded;
    boost::cmatch match;
};
