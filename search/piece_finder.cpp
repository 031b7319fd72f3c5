#include "search/piece_finder.h"

#include "search/name_glob.h"

#include <cstddef>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace {

// A lower-case ASCII letter matches itself and its capital, which differs from it in one bit
// alone; setting that bit before comparing finds both. Any other byte matches only itself.
uint8_t CaseMask(char byte) {
    return byte >= 'a' && byte <= 'z' ? 0x20 : 0;
}

// The pair as the scan compares it: a byte with its mask set equals its value.
struct Pair {
    ptrdiff_t distance;
    uint8_t firstValue, firstMask, secondValue, secondMask;
};

inline bool PairAt(const Pair& pair, const char* at) {
    return (static_cast<uint8_t>(at[0]) | pair.firstMask) == pair.firstValue &&
           (static_cast<uint8_t>(at[pair.distance]) | pair.secondMask) == pair.secondValue;
}

inline const char* FindPairByBytes(const Pair& pair, const char* at, const char* to) {
    for (; at < to; ++at) {
        if (PairAt(pair, at))
            return at;
    }
    return to;
}

// The block loops below read [at, at + Block) and [at + distance, at + distance + Block), so
// they go on only while both stretches lie before limit, and leave the rest to the byte loop.
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

const char* FindPairNarrow(const Pair& pair, const char* at, const char* to, const char* limit) {
    constexpr ptrdiff_t Block = 32;
    const Lanes lanes = {_mm_set1_epi8(static_cast<char>(pair.firstMask)),
                         _mm_set1_epi8(static_cast<char>(pair.firstValue)),
                         _mm_set1_epi8(static_cast<char>(pair.secondMask)),
                         _mm_set1_epi8(static_cast<char>(pair.secondValue))};
    for (; at < to && limit - at >= pair.distance + Block; at += Block) {
        const uint32_t pairs =
            PairsAt(lanes, at, pair.distance) | PairsAt(lanes, at + 16, pair.distance) << 16;
        if (pairs != 0) {
            const char* found = at + __builtin_ctz(pairs);
            return found < to ? found : to;
        }
    }
    return FindPairByBytes(pair, at, to);
}

struct WideLanes {
    __m256i firstMask, firstValue, secondMask, secondValue;
};

// One bit for each of the 32 places from at where both bytes stand.
__attribute__((target("avx2"))) inline uint32_t WidePairsAt(const WideLanes& lanes, const char* at,
                                                            ptrdiff_t distance) {
    const __m256i first = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
    const __m256i second = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at + distance));
    const __m256i both = _mm256_and_si256(
        _mm256_cmpeq_epi8(_mm256_or_si256(first, lanes.firstMask), lanes.firstValue),
        _mm256_cmpeq_epi8(_mm256_or_si256(second, lanes.secondMask), lanes.secondValue));
    return static_cast<uint32_t>(_mm256_movemask_epi8(both));
}

__attribute__((target("avx2"))) const char* FindPairWide(const Pair& pair, const char* at,
                                                         const char* to, const char* limit) {
    constexpr ptrdiff_t Block = 64;
    const WideLanes lanes = {_mm256_set1_epi8(static_cast<char>(pair.firstMask)),
                             _mm256_set1_epi8(static_cast<char>(pair.firstValue)),
                             _mm256_set1_epi8(static_cast<char>(pair.secondMask)),
                             _mm256_set1_epi8(static_cast<char>(pair.secondValue))};
    for (; at < to && limit - at >= pair.distance + Block; at += Block) {
        const uint64_t pairs = WidePairsAt(lanes, at, pair.distance) |
                               uint64_t{WidePairsAt(lanes, at + 32, pair.distance)} << 32;
        if (pairs != 0) {
            const char* found = at + __builtin_ctzll(pairs);
            return found < to ? found : to;
        }
    }
    return FindPairByBytes(pair, at, to);
}
#endif

bool HasWideVectors() {
#if defined(__SSE2__)
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

} // namespace

PieceFinder::PieceFinder(const std::string& piece, uint32_t first, uint32_t second, bool mayUseWide)
    : piece(piece), first(first), distance(second - first),
      firstValue(static_cast<uint8_t>(piece[first])), firstMask(CaseMask(piece[first])),
      secondValue(static_cast<uint8_t>(piece[second])), secondMask(CaseMask(piece[second])) {
    wide = mayUseWide && HasWideVectors();
    if (piece.size() > sizeof(pieceValues))
        return;
    for (size_t i = 0; i < piece.size(); ++i) {
        pieceValues[i] = static_cast<uint8_t>(piece[i]);
        pieceMasks[i] = CaseMask(piece[i]);
        literals |= piece[i] != '\0' ? 1u << i : 0;
    }
}

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
        if (PieceAt(place, limit))
            return place;
    }
    return to;
}

// The first place p in [from, to) where the pair stands; p + distance is always below limit.
const char* PieceFinder::FindPair(const char* from, const char* to, const char* limit) const {
    const Pair pair = {distance, firstValue, firstMask, secondValue, secondMask};
#if defined(__SSE2__)
    return wide ? FindPairWide(pair, from, to, limit) : FindPairNarrow(pair, from, to, limit);
#else
    static_cast<void>(limit);
    return FindPairByBytes(pair, from, to);
#endif
}

// The whole piece at place, which lies before limit.
bool PieceFinder::PieceAt(const char* place, const char* limit) const {
#if defined(__SSE2__)
    constexpr ptrdiff_t Lead = sizeof(pieceValues);
    if (piece.size() <= Lead && limit - place >= Lead) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(place));
        const __m128i masks = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pieceMasks));
        const __m128i values = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pieceValues));
        const auto same = static_cast<uint32_t>(
            _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_or_si128(bytes, masks), values)));
        return (same & literals) == literals;
    }
#else
    static_cast<void>(limit);
#endif
    return NameGlob::PieceMatchesAt(piece, place);
}
