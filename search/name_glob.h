#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// What an expression asks of a whole name when it is made of nothing but literal bytes, single
// bytes of any value and runs of any bytes: the pieces between the runs, in order, the first at
// the name's start and the last at its end. A piece holds its literal bytes folded to lower case
// and a byte of any value as NUL, which no name holds.
//
// Read from a wildcard pattern, the pieces say exactly which names match. Read from a regular
// expression, a class or a repeated character widens to bytes of any value, and the pieces then
// say only which names cannot match.
class NameGlob {
public:
    // A wildcard pattern with its automatic wildcards applied. False when it holds
    // regular-expression syntax, which keeps its meaning in the expression.
    bool ReadWildcards(const char* pattern);
    // A regular expression. False for anything that is not read with certainty: groups,
    // alternatives, intervals, most escapes.
    bool ReadExpression(const char* expression);

    bool IsExact() const { return exact; }
    bool HasLiteral() const;
    // The repeats that the expression's matcher may have to try at more than one length: all
    // but a final run of any bytes, which takes the rest of the name at once.
    int32_t GetRetriedRepeats() const { return repeats - (endsWithAnyRun ? 1 : 0); }
    const std::vector<std::string>& GetPieces() const { return pieces; }

    bool Matches(const char* name, size_t length) const;
    // Whether a piece stands at the given place of a name, which holds at least as many bytes.
    static bool PieceMatchesAt(const std::string& piece, const char* at);

private:
    void Clear();
    void AddByte(char byte) { pieces.back() += byte; }
    void AddRun();
    bool ReadClass(const char* expression, size_t& at);
    bool ReadRepeat(const char* expression, size_t& at, char atom, bool isDot);

    std::vector<std::string> pieces;
    bool exact = true;
    int32_t repeats = 0;
    bool endsWithAnyRun = false;
};
