#include "search/piece_finder.h"

#include "search/name_glob.h"

#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// A lower-case ASCII letter matches itself and its capital, which differs from it in one bit
// alone; setting that bit before comparing finds both. Any other byte matches only itself.
uint8_t CaseMask(char byte) {
    return byte >= 'a' && byte <= 'z' ? 0x20 : 0;
}

#if defined(__SSE2__)
struct Lanes {
    __m128i firstMask, firstValue, secondMask, secondValue;
};

// One bit for each of the sixteen places from at where both bytes stand.
inline uint32_t PairsAt(const Lanes& lanes, const char* at, ptrdiff_t distance) {
    const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at + distance));
    const __m128i both =
        _mm_and_si128(_mm_cmpeq_epi8(_mm_or_si128(first, lanes.firstMask), lanes.firstValue),
                      _mm_cmpeq_epi8(_mm_or_si128(second, lanes.secondMask), lanes.secondValue));
    return static_cast<uint32_t>(_mm_movemask_epi8(both));
}
#endif

} // namespace

PieceFinder::PieceFinder(const std::string& piece, uint32_t first, uint32_t second)
    : piece(piece), first(first), distance(second - first),
      firstValue(static_cast<uint8_t>(piece[first])), firstMask(CaseMask(piece[first])),
      secondValue(static_cast<uint8_t>(piece[second])), secondMask(CaseMask(piece[second])) {}

const char* PieceFinder::Find(const char* from, const char* to, const char* limit) const {
    const auto size = static_cast<ptrdiff_t>(piece.size());
    if (limit - from < size)
        return to;
    // Places at which the whole piece lies before limit.
    const char* end = limit - to >= size ? to : limit - size + 1;
    for (const char* place = from; place < end; ++place) {
        const char* pair = FindPair(place + first, end + first, limit);
        if (pair == end + first)
            break;
        place = pair - first;
        if (NameGlob::PieceMatchesAt(piece, place))
            return place;
    }
    return to;
}

bool PieceFinder::PairAt(const char* at) const {
    return (static_cast<uint8_t>(at[0]) | firstMask) == firstValue &&
           (static_cast<uint8_t>(at[distance]) | secondMask) == secondValue;
}

// The first place p in [from, to) where the pair stands; p + distance is always below limit.
const char* PieceFinder::FindPair(const char* from, const char* to, const char* limit) const {
    const char* at = from;
    const auto reach = static_cast<ptrdiff_t>(distance);
#if defined(__SSE2__)
    constexpr ptrdiff_t Block = 32;
    const Lanes lanes = {_mm_set1_epi8(static_cast<char>(firstMask)),
                         _mm_set1_epi8(static_cast<char>(firstValue)),
                         _mm_set1_epi8(static_cast<char>(secondMask)),
                         _mm_set1_epi8(static_cast<char>(secondValue))};
    for (; at < to && limit - at >= reach + Block; at += Block) {
        const uint32_t pairs = PairsAt(lanes, at, reach) | PairsAt(lanes, at + 16, reach) << 16;
        if (pairs != 0) {
            const char* found = at + __builtin_ctz(pairs);
            return found < to ? found : to;
        }
    }
#endif
    for (; at < to; ++at) {
        if (PairAt(at))
            return at;
    }
    return to;
}
