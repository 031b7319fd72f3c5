#pragma once

#include <boost/regex.hpp>

#include <cstdint>
#include <string>
#include <vector>

// The syntax and matching flags of every expression a search compiles: Perl-like syntax with
// case ignored, and a match of the whole name by the first way found.
inline constexpr boost::regex::flag_type SearchSyntax = boost::regex::perl | boost::regex::icase;
inline constexpr boost::match_flag_type SearchMatchFlags = boost::match_any;
// A name block's length is one byte, so no loaded name is longer.
inline constexpr int32_t LongestLoadableName = 254;
// However short the name and the expression, the matcher takes at least this many steps before
// it gives up on a name by throwing.
inline constexpr double MatcherStepFloor = 100000;

// Decides in one pass over a name's bytes, with no step back, whether a regular expression
// matches the whole name, for the expressions that need no more than a finite automaton:
// literal bytes, ".", classes and the escapes of one byte, groups, alternatives, repeats and
// intervals, "^" before all and "$" after all.
//
// Why an automaton of our own and not a library's: the expression's library decides what each
// byte, class and escape matches (a line end for ".", the bytes of "\s", bytes above 127, case
// folded for ASCII letters alone), and another library decides some of these otherwise. Here
// every byte set is learnt from the expression's library itself, by matching each byte value
// against that one piece of the expression; only the structure around the pieces is read here,
// and whatever is not read with certainty leaves the expression to the library. The automaton
// then reads the name as it lies in the index, unfolded, through a table of byte classes into
// which the folding is built, and costs a load or two a byte, where a library's matcher costs
// many times that per name; measured, it decides a name of the generated indexes in a few
// nanoseconds against about 150 for the library's matcher.
//
// The library's matcher gives up on a name, by throwing, when it takes too many steps, and a
// pass that did not ask it would end elsewhere. GetTrustedLength bounds the names on which it
// cannot: the longest length for which the ways through the expression, counted by the
// automaton itself, stay below the fewest steps the matcher allows.
class NameAutomaton {
public:
    // False, and no automaton, when the expression holds anything not read with certainty or
    // the automaton would be too large.
    bool Build(const char* expression);

    // The name up to its NUL; never longer than the trusted length unless that length is the
    // longest a name can have.
    bool Matches(const char* name) const {
        const auto* at = reinterpret_cast<const uint8_t*>(name);
        uint32_t state = start;
        while (state < stopped)
            state = table[state + classes[*at++]];
        return state == accepted;
    }
    // The same for four names.
    void MatchFour(const char* const (&names)[4], bool (&matched)[4]) const;

    // Names up to this length cannot make the library's matcher give up; -1 for none.
    int32_t GetTrustedLength() const { return trustedLength; }
    // Texts of folded bytes of which every matching name holds one; none when no such texts
    // are known.
    const std::vector<std::string>& GetPieces() const { return pieces; }

private:
    // For each state, one entry per byte class: the next state's first entry. A name is decided
    // at the rows from stopped on: turned down there, or matched at accepted.
    std::vector<uint32_t> table;
    uint16_t classes[256] = {};
    uint32_t start = 0;
    uint32_t stopped = 0;
    uint32_t accepted = 0;
    int32_t trustedLength = -1;
    std::vector<std::string> pieces;
};
