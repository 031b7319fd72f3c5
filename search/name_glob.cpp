#include "search/name_glob.h"

#include "loam/string.h"

#include <cctype>
#include <cstring>

namespace {

constexpr char AnyByte = '\0';

// Bytes that a wildcard pattern hands on to the expression with their regular-expression
// meaning.
constexpr char expressionSyntax[] = "()[]+^$|{}\\";
// Bytes that stand for themselves in an expression when a backslash comes before them.
constexpr char escapedLiterals[] = ".^$|()[]{}*+?\\";
// Escapes inside a class that stand for one byte of a set and take nothing after them.
constexpr char classEscapes[] = "dswDSW";

bool IsOneOf(char byte, const char* set) {
    return byte != '\0' && std::strchr(set, byte) != nullptr;
}

bool IsPunctuation(char byte) {
    return byte > ' ' && byte < 0x7F && !std::isalnum(static_cast<unsigned char>(byte));
}

} // namespace

bool NameGlob::PieceMatchesAt(const std::string& piece, const char* at) {
    for (size_t i = 0; i < piece.size(); ++i) {
        if (piece[i] != AnyByte && piece[i] != loam::FoldToLower(at[i]))
            return false;
    }
    return true;
}

void NameGlob::Clear() {
    pieces.assign(1, std::string());
    exact = true;
    repeats = 0;
    endsWithAnyRun = false;
}

void NameGlob::AddRun() {
    pieces.emplace_back();
    ++repeats;
}

bool NameGlob::HasLiteral() const {
    for (const std::string& piece : pieces) {
        for (char byte : piece) {
            if (byte != AnyByte)
                return true;
        }
    }
    return false;
}

bool NameGlob::ReadWildcards(const char* pattern) {
    Clear();
    for (const char* at = pattern; *at; ++at) {
        if (IsOneOf(*at, expressionSyntax))
            return false;
        if (*at == '*')
            AddRun();
        else
            AddByte(*at == '?' ? AnyByte : loam::FoldToLower(*at));
        endsWithAnyRun = *at == '*';
    }
    return true;
}

bool NameGlob::ReadExpression(const char* expression) {
    Clear();
    size_t at = expression[0] == '^' ? 1 : 0;
    while (expression[at] != '\0') {
        const char byte = expression[at];
        if (byte == '$' && expression[at + 1] == '\0')
            return true;
        char atom = AnyByte;
        const bool isDot = byte == '.';
        if (isDot) {
            ++at;
        } else if (byte == '[') {
            if (!ReadClass(expression, at))
                return false;
        } else if (byte == '\\') {
            if (!IsOneOf(expression[at + 1], escapedLiterals))
                return false;
            atom = expression[at + 1];
            at += 2;
        } else if (IsOneOf(byte, "()|{}*+?^$")) {
            return false;
        } else {
            atom = loam::FoldToLower(byte);
            ++at;
        }
        if (!ReadRepeat(expression, at, atom, isDot))
            return false;
    }
    return true;
}

// A class stands for one byte of some set, read here as a byte of any value. Named classes,
// collating elements and escapes that could reach past the closing bracket are not read.
bool NameGlob::ReadClass(const char* expression, size_t& at) {
    size_t end = at + 1;
    if (expression[end] == '^')
        ++end;
    if (expression[end] == ']')
        ++end;
    for (; expression[end] != ']'; ++end) {
        const char byte = expression[end];
        const char next = expression[end + 1];
        if (byte == '\0' || (byte == '[' && IsOneOf(next, ":.=")))
            return false;
        if (byte == '\\') {
            if (!IsPunctuation(next) && !IsOneOf(next, classEscapes))
                return false;
            ++end;
        }
    }
    at = end + 1;
    exact = false;
    return true;
}

// A repeat widens its atom to a run of any bytes; "+" keeps the atom's first byte before the
// run. Only a repeat of "." is exactly such a run.
bool NameGlob::ReadRepeat(const char* expression, size_t& at, char atom, bool isDot) {
    const char repeat = expression[at];
    endsWithAnyRun = false;
    if (repeat == '{')
        return false;
    if (repeat != '*' && repeat != '+' && repeat != '?') {
        AddByte(atom);
        return true;
    }
    ++at;
    if (IsOneOf(expression[at], "*+?{"))
        return false;
    if (repeat == '+')
        AddByte(atom);
    AddRun();
    if (!isDot || repeat == '?')
        exact = false;
    endsWithAnyRun = isDot && repeat != '?';
    return true;
}

bool NameGlob::Matches(const char* name, size_t length) const {
    const std::string& first = pieces.front();
    if (pieces.size() == 1)
        return length == first.size() && PieceMatchesAt(first, name);
    const std::string& last = pieces.back();
    if (length < first.size() + last.size() || !PieceMatchesAt(first, name) ||
        !PieceMatchesAt(last, name + length - last.size()))
        return false;
    // Each piece between two runs is taken at its first place: a later one could only leave
    // less room for the pieces after it.
    size_t from = first.size();
    const size_t to = length - last.size();
    for (size_t i = 1; i + 1 < pieces.size(); ++i) {
        const std::string& piece = pieces[i];
        while (from + piece.size() <= to && !PieceMatchesAt(piece, name + from))
            ++from;
        if (from + piece.size() > to)
            return false;
        from += piece.size();
    }
    return true;
}
