#pragma once

#include <cstdint>
#include <string>

// Finds in a stretch of bytes the next place where a piece of a glob stands: its literal bytes
// compared as names are compared (an ASCII letter in either case, any other byte as it stands),
// a NUL in the piece taking any byte. Two chosen literal bytes of the piece are looked for
// first, 32 or 64 places at a time where the processor allows it, and each place where both
// stand is then compared whole.
class PieceFinder {
public:
    PieceFinder() = default;
    // The piece as the glob holds it, folded to lower case, and the places in it of the two
    // bytes to look for first: literal bytes, first <= second. Without mayUseWide, the finder
    // takes the steps of any x86-64 processor, as it does on one without AVX2.
    PieceFinder(const std::string& piece, uint32_t first, uint32_t second, bool mayUseWide = true);

    // The first place p in [from, to) where the piece stands, reading no byte before from or
    // at or after limit; to when there is none.
    const char* Find(const char* from, const char* to, const char* limit) const;

private:
    const char* FindPair(const char* from, const char* to, const char* limit) const;
    bool PieceAt(const char* place, const char* limit) const;

    std::string piece;
    uint32_t first = 0;
    uint32_t distance = 0;
    uint8_t firstValue = 0;
    uint8_t firstMask = 0;
    uint8_t secondValue = 0;
    uint8_t secondMask = 0;
    // Whether the processor compares 32 bytes in one step, which the build does not assume.
    bool wide = false;
    // A piece of up to sixteen bytes is compared in one step: each byte with its case mask set
    // against its value, where the bit of its place in literals says it is a literal byte.
    uint8_t pieceValues[16] = {};
    uint8_t pieceMasks[16] = {};
    uint32_t literals = 0;
};
