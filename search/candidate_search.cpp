#include "search/candidate_search.h"

#include "index/index_format.h"
#include "index/trigram_sidecar.h"
#include "loam/error.h"
#include "search/index_searcher.h"
#include "search/name_automaton.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using Blocks = std::vector<uint32_t>;

// Past this share of the blocks, reading them one by one costs more than the pass over the
// whole index; so many blocks are read in any case, which a small index's pass would not save.
constexpr uint32_t MostCandidateShare = 32;
constexpr size_t FewBlocks = 64;

// The keys of the runs of three or more literal bytes of a piece.
std::vector<uint32_t> KeysOf(const std::string& piece) {
    std::string folded(piece);
    for (char& byte : folded)
        byte = loam::FoldToLower(byte);
    std::vector<uint32_t> keys;
    for (size_t at = 0; at + 3 <= folded.size(); ++at) {
        if (std::memchr(folded.data() + at, '\0', 3) == nullptr)
            keys.push_back(trigram::KeyOf(folded.data() + at));
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

void Intersect(Blocks& into, const Blocks& other) {
    Blocks both;
    std::set_intersection(into.begin(), into.end(), other.begin(), other.end(),
                          std::back_inserter(both));
    into.swap(both);
}

void Unite(Blocks& into, const Blocks& other) {
    Blocks either;
    std::set_union(into.begin(), into.end(), other.begin(), other.end(),
                   std::back_inserter(either));
    into.swap(either);
}

// The blocks that hold every key.
bool BlocksOfAll(trigram::Sidecar& sidecar, const std::vector<uint32_t>& keys, Blocks& blocks) {
    Blocks more;
    for (size_t i = 0; i < keys.size(); ++i) {
        if (!sidecar.GetBlocks(keys[i], i == 0 ? blocks : more))
            return false;
        if (i > 0)
            Intersect(blocks, more);
    }
    return true;
}

// The blocks that may hold a match: those with every key of allOf, and with every key of one
// of oneOf, when each of them has one. False when the pieces give no key to narrow by, or the
// file fails its checks.
bool FindBlocks(trigram::Sidecar& sidecar, const std::vector<std::string>& allOf,
                const std::vector<std::string>& oneOf, Blocks& blocks) {
    std::vector<uint32_t> keys;
    for (const std::string& piece : allOf) {
        const std::vector<uint32_t> more = KeysOf(piece);
        keys.insert(keys.end(), more.begin(), more.end());
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    bool narrowed = !keys.empty();
    if (narrowed && !BlocksOfAll(sidecar, keys, blocks))
        return false;
    std::vector<std::vector<uint32_t>> alternatives;
    for (const std::string& piece : oneOf) {
        alternatives.push_back(KeysOf(piece));
        if (alternatives.back().empty())
            return narrowed;
    }
    if (alternatives.empty())
        return narrowed;
    Blocks any, one;
    for (const std::vector<uint32_t>& alternative : alternatives) {
        if (!BlocksOfAll(sidecar, alternative, one))
            return false;
        Unite(any, one);
    }
    if (narrowed)
        Intersect(blocks, any);
    else
        blocks.swap(any);
    return true;
}

// The matcher may give up on a name longer than it is trusted with, which ends the pass there;
// such names are read whatever they hold, so that the pass ends where it would have.
bool AddLongNames(trigram::Sidecar& sidecar, int32_t trustedLength, Blocks& blocks) {
    if (trustedLength >= LongestLoadableName)
        return true;
    int32_t shortest = 0;
    for (const int32_t length : trigram::LongNameLengths) {
        if (length <= trustedLength + 1)
            shortest = length;
    }
    Blocks longNames;
    if (shortest == 0 || !sidecar.GetBlocks(trigram::LongNameKey(shortest), longNames))
        return false;
    Unite(blocks, longNames);
    return true;
}

size_t RecordBytes(const char* record) {
    return sizeof(IndexRecord) + reinterpret_cast<const IndexRecord*>(record)->nameLength;
}

// The records read: the candidates' blocks whole, and the folders above them, each once.
class Gathering {
public:
    explicit Gathering(trigram::Sidecar& sidecar) : sidecar(sidecar) {}

    bool AddBlock(uint32_t block) {
        if (!sidecar.ReadBlock(block, bytes))
            return false;
        uint32_t ordinal = block * trigram::BlockRecords;
        for (size_t at = 0; at < bytes.size(); ++ordinal) {
            const size_t length = RecordBytes(bytes.data() + at);
            Add(ordinal, bytes.data() + at, length);
            at += length;
        }
        return true;
    }

    // Every folder above what was read, read in turn from its block. Folders lie together, so
    // the blocks read for them are kept for the folders beside them.
    bool AddFolders() {
        std::unordered_map<uint32_t, std::vector<char>> folderBlocks;
        while (!pending.empty()) {
            const uint32_t ordinal = pending.back();
            pending.pop_back();
            if (places.count(ordinal) > 0)
                continue;
            const uint32_t block = ordinal / trigram::BlockRecords;
            std::vector<char>& read = folderBlocks[block];
            if (read.empty() && !sidecar.ReadBlock(block, read))
                return false;
            size_t at = 0;
            for (uint32_t step = ordinal % trigram::BlockRecords; step > 0 && at < read.size();
                 --step)
                at += RecordBytes(&read[at]);
            if (at >= read.size())
                return false;
            Add(ordinal, &read[at], RecordBytes(&read[at]));
        }
        return true;
    }

    // An index image of the records read, in file order, each parent the ordinal of its record
    // among them.
    bool LoadInto(IndexData& index) {
        std::vector<uint32_t> ordinals;
        ordinals.reserve(places.size());
        for (const auto& place : places)
            ordinals.push_back(place.first);
        std::sort(ordinals.begin(), ordinals.end());
        const size_t size = sizeof(IndexFileHeader) + pool.size();
        if (size > INT32_MAX)
            return false;
        LargeArray<char> image = AllocateLargeBytes(size);
        if (!image)
            return false;
        const IndexFileHeader header{IndexFormatVersion, 0, static_cast<int32_t>(ordinals.size())};
        std::memcpy(image.get(), &header, sizeof header);
        char* out = image.get() + sizeof header;
        for (const uint32_t ordinal : ordinals) {
            const Place& place = places[ordinal];
            std::memcpy(out, pool.data() + place.at, place.length);
            IndexRecord fixed;
            std::memcpy(&fixed, out, sizeof fixed);
            const uint32_t parent = fixed.GetParent();
            if (parent != IndexNoParent)
                fixed.parent = static_cast<uint32_t>(
                    std::lower_bound(ordinals.begin(), ordinals.end(), parent) - ordinals.begin());
            std::memcpy(out, &fixed, sizeof fixed);
            out += place.length;
        }
        return index.LoadImage(std::move(image), static_cast<uint32_t>(size));
    }

private:
    struct Place {
        size_t at;
        size_t length;
    };

    void Add(uint32_t ordinal, const char* record, size_t length) {
        if (!places.emplace(ordinal, Place{pool.size(), length}).second)
            return;
        pool.insert(pool.end(), record, record + length);
        const uint32_t parent = reinterpret_cast<const IndexRecord*>(record)->GetParent();
        if (parent != IndexNoParent && places.count(parent) == 0)
            pending.push_back(parent);
    }

    trigram::Sidecar& sidecar;
    std::vector<char> bytes;
    std::vector<char> pool;
    std::unordered_map<uint32_t, Place> places;
    std::vector<uint32_t> pending;
};

bool Search(IndexData& index, const loam::FileSpec& indexFile, const loam::String& pattern,
            bool isRegExp, bool autoWildcards) {
    trigram::Sidecar sidecar;
    if (!sidecar.Open(indexFile))
        return false;
    // The pieces as the pass reads them, asked of a pass over no records.
    IndexData none;
    IndexSearcher reader;
    if (!reader.Start(&none, pattern, isRegExp, autoWildcards))
        return false;
    std::vector<std::string> allOf, oneOf;
    reader.GetRequiredPieces(allOf, oneOf);
    Blocks blocks;
    if (!FindBlocks(sidecar, allOf, oneOf, blocks) ||
        !AddLongNames(sidecar, reader.GetTrustedLength(), blocks) ||
        blocks.size() > std::max<size_t>(sidecar.GetBlockCount() / MostCandidateShare, FewBlocks))
        return false;
    Gathering gathering(sidecar);
    for (const uint32_t block : blocks) {
        if (!gathering.AddBlock(block))
            return false;
    }
    if (!gathering.AddFolders() || !gathering.LoadInto(index))
        return false;
    IndexSearcher searcher;
    if (!searcher.Start(&index, pattern, isRegExp, autoWildcards))
        return false;
    searcher.RunToEnd(nullptr);
    return searcher.Rewind();
}

} // namespace

bool SearchCandidates(IndexData& index, const loam::FileSpec& indexFile,
                      const loam::String& pattern, bool isRegExp, bool autoWildcards) {
    loam::GetErrorState().SaveState();
    const bool answered = Search(index, indexFile, pattern, isRegExp, autoWildcards);
    loam::GetErrorState().RestoreState();
    if (!answered)
        index.Release();
    return answered;
}
