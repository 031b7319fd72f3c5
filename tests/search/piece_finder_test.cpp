// The finder against a search place by place, with its widest steps and with those of any
// x86-64 processor, over stretches of every length around the block sizes. Each stretch is a
// heap block of its own, so that a read at or past its end or before its start is caught.
#include "search/piece_finder.h"

#include "search/name_glob.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <tuple>

namespace {

using namespace std::string_literals;

const char* FindEachPlace(const std::string& piece, const char* from, const char* to,
                          const char* limit) {
    for (const char* place = from; place < to; ++place) {
        if (limit - place >= static_cast<ptrdiff_t>(piece.size()) &&
            NameGlob::PieceMatchesAt(piece, place))
            return place;
    }
    return to;
}

char Capital(char byte) {
    return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - ('a' - 'A')) : byte;
}

// Bytes of the piece in either case, bytes near them and the piece itself here and there, so
// that pairs, whole pieces and near misses all occur.
std::string Stretch(const std::string& piece, size_t length, std::mt19937& random) {
    const std::string others = "xX.\0\xC9\xE9 "s + piece;
    std::string bytes;
    while (bytes.size() < length) {
        if (random() % 24 == 0) {
            for (char byte : piece)
                bytes += byte == '\0'   ? others[random() % others.size()]
                         : random() % 2 ? Capital(byte)
                                        : byte;
        } else {
            bytes += others[random() % others.size()];
        }
    }
    bytes.resize(length);
    return bytes;
}

TEST(PieceFinder, FindsWhatASearchPlaceByPlaceFinds) {
    const std::tuple<std::string, uint32_t, uint32_t> table[] = {
        {".txt", 1, 2},  {"t", 0, 0},         {"report", 0, 5},
        {"a\0c"s, 0, 2}, {"\xE9t\xE9", 0, 2}, {"img_" + std::string(34, '\0') + ".jpg", 3, 39},
    };
    std::mt19937 random(7);
    for (const auto& [piece, first, second] : table) {
        const PieceFinder finders[] = {PieceFinder(piece, first, second),
                                       PieceFinder(piece, first, second, false)};
        for (size_t length = 0; length <= 200; ++length) {
            const std::string bytes = Stretch(piece, length, random);
            const auto block = std::make_unique<char[]>(length);
            std::copy(bytes.begin(), bytes.end(), block.get());
            const char* limit = block.get() + length;
            const char* to = block.get() + random() % (length + 1);
            for (const char* from = block.get();; ++from) {
                const char* expected = FindEachPlace(piece, from, to, limit);
                for (const PieceFinder& finder : finders)
                    ASSERT_EQ(finder.Find(from, to, limit), expected)
                        << piece << " in " << length << " bytes from " << from - block.get();
                if (expected == to)
                    break;
                from = expected;
            }
        }
    }
}

} // namespace
