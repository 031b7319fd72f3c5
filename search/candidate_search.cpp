#include "search/candidate_search.h"

#include "index/index_format.h"
#include "index/trigram_sidecar.h"
#include "loam/error.h"
#include "search/index_searcher.h"
#include "search/name_automaton.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

using Blocks = std::vector<uint32_t>;

// Past this share of the blocks, reading them, even with their neighbours at once, costs more
// than the pass over the whole index; so many blocks are read in any case, which a small index's
// pass would not save.
constexpr uint32_t MostCandidateShare = 8;
constexpr size_t FewBlocks = 64;

// The keys of the runs of three known bytes of a piece. A piece that stands at the start or the
// end of every name that matches has the NUL that the keys put there before or after it.
std::vector<uint32_t> KeysOf(const std::string& piece, bool atStart, bool atEnd) {
    constexpr int AnyByte = -1;
    std::vector<int> bytes;
    if (atStart)
        bytes.push_back(0);
    for (const char byte : piece)
        bytes.push_back(byte == '\0' ? AnyByte : static_cast<uint8_t>(loam::FoldToLower(byte)));
    if (atEnd)
        bytes.push_back(0);
    std::vector<uint32_t> keys;
    for (size_t at = 0; at + 3 <= bytes.size(); ++at) {
        if (std::find(bytes.begin() + at, bytes.begin() + at + 3, AnyByte) ==
            bytes.begin() + at + 3)
            keys.push_back(
                static_cast<uint32_t>(bytes[at] << 16 | bytes[at + 1] << 8 | bytes[at + 2]));
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

// Decoding a key's list costs about this many entries' worth for each block that it may spare
// reading, so a list longer than that many times the candidates left is not worth its decoding:
// the pass turns down what it would have struck out.
constexpr uint64_t EntriesPerBlockRead = 64;

// The blocks that may hold every key: those of the key with the shortest list, narrowed by the
// lists of the others while they are short enough to be worth it.
bool BlocksOfAll(trigram::Sidecar& sidecar, const std::vector<uint32_t>& keys, Blocks& blocks) {
    std::vector<std::pair<uint32_t, uint32_t>> byLength;
    for (const uint32_t key : keys) {
        uint32_t count = 0;
        if (!sidecar.CountBlocks(key, count))
            return false;
        byLength.emplace_back(count, key);
    }
    std::sort(byLength.begin(), byLength.end());
    for (size_t i = 0; i < byLength.size(); ++i) {
        if (i > 0 && byLength[i].first > blocks.size() * EntriesPerBlockRead)
            break;
        if (!(i == 0 ? sidecar.GetBlocks(byLength[i].second, blocks)
                     : sidecar.NarrowBlocks(byLength[i].second, blocks)))
            return false;
    }
    return true;
}

// The blocks that may hold a match: those with every key of the pieces that every match holds,
// and with every key of one of the pieces of which every match holds one, where each of those
// has a key. A name without a piece may still make the matcher give up, when it is longer than
// `trusted`; the pieces chosen are those that leave the most names trusted. False when the
// pieces give no key to narrow by, or the file fails its checks.
bool FindBlocks(trigram::Sidecar& sidecar, const IndexSearcher& reader, Blocks& blocks,
                int32_t& trusted) {
    std::vector<std::string> allOf, oneOf;
    reader.GetRequiredPieces(allOf, oneOf);
    std::vector<uint32_t> keys;
    for (const bool everyPiece : {false, true}) {
        for (size_t i = 0; i < allOf.size(); ++i) {
            if (!everyPiece && reader.GetTrustedLengthWithout(i) < LongestLoadableName)
                continue;
            const std::vector<uint32_t> more = KeysOf(allOf[i], i == 0, i + 1 == allOf.size());
            keys.insert(keys.end(), more.begin(), more.end());
        }
        trusted = everyPiece ? reader.GetTrustedLength() : LongestLoadableName;
        if (!keys.empty())
            break;
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    const bool narrowed = !keys.empty();
    if (narrowed && !BlocksOfAll(sidecar, keys, blocks))
        return false;
    // A name without any of oneOf is trusted only as far as any name.
    if (narrowed && reader.GetTrustedLength() < trusted)
        return true;
    trusted = reader.GetTrustedLength();
    std::vector<std::vector<uint32_t>> alternatives;
    for (const std::string& piece : oneOf) {
        alternatives.push_back(KeysOf(piece, false, false));
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

uint32_t ParentOf(const char* record) {
    IndexRecord fixed;
    std::memcpy(&fixed, record, sizeof fixed);
    return fixed.parent;
}

void SetParent(char* record, uint32_t parent) {
    std::memcpy(record + offsetof(IndexRecord, parent), &parent, sizeof parent);
}

// A record read from the index, and its parent there.
struct Held {
    const char* record = nullptr;
    uint32_t parent = IndexNoParent;
};

// Folders by ordinal, each found in a probe or a few: a search looks up each folder above its
// matches several times, and every folder of each block it reads. Its slots are small, since
// every page of them is fresh memory that the search must be handed.
class FolderTable {
public:
    explicit FolderTable(size_t expected)
        : slots(std::bit_ceil(std::max<size_t>(expected * 2, 64))) {}
    // Keeps the first record given for an ordinal.
    void Add(uint32_t ordinal, const Held& held) {
        if ((folders.size() + 1) * 2 > slots.size())
            Grow();
        Slot& slot = slots[PlaceOf(ordinal)];
        if (slot.folder != 0)
            return;
        folders.push_back(held);
        slot = {ordinal, static_cast<uint32_t>(folders.size())};
    }
    // None for an ordinal not added.
    Held Find(uint32_t ordinal) const {
        const Slot& slot = slots[PlaceOf(ordinal)];
        return slot.folder != 0 ? folders[slot.folder - 1] : Held{};
    }

private:
    struct Slot {
        uint32_t ordinal = 0;
        // One past the folder's place among the folders, or 0 for a free slot.
        uint32_t folder = 0;
    };
    size_t PlaceOf(uint32_t ordinal) const {
        const size_t mask = slots.size() - 1;
        size_t place = (ordinal * size_t{0x9E3779B97F4A7C15}) >> 32 & mask;
        while (slots[place].folder != 0 && slots[place].ordinal != ordinal)
            place = (place + 1) & mask;
        return place;
    }
    void Grow() {
        std::vector<Slot> more(slots.size() * 2);
        slots.swap(more);
        for (const Slot& slot : more) {
            if (slot.folder != 0)
                slots[PlaceOf(slot.ordinal)] = slot;
        }
    }

    std::vector<Slot> slots;
    std::vector<Held> folders;
};

// Copies of records read, which stay where they are while more are kept.
class RecordPool {
public:
    const char* Keep(const char* record) {
        const size_t length = RecordBytes(record);
        if (chunks.empty() || ChunkBytes - used < length) {
            chunks.push_back(std::make_unique_for_overwrite<char[]>(ChunkBytes));
            used = 0;
        }
        char* copy = chunks.back().get() + used;
        std::memcpy(copy, record, length);
        used += length;
        return copy;
    }

private:
    // A page at a time: a search reads few folders, and every page of fresh memory costs it.
    static constexpr size_t ChunkBytes = 4096;
    std::vector<std::unique_ptr<char[]>> chunks;
    size_t used = 0;
};

using OrdinalRecords = std::vector<std::pair<uint32_t, Held>>;

// The candidate blocks' records one after another, read straight into an index of their own,
// over which the pass runs: it reads nothing but names, so each record's parent there is none,
// and its ordinal and parent in the whole index are kept beside.
class Candidates {
public:
    bool Read(trigram::Sidecar& sidecar, const Blocks& blocks) {
        uint64_t bytes = 0;
        if (!sidecar.MeasureBlocks(blocks, bytes) || bytes > INT32_MAX - sizeof(IndexFileHeader))
            return false;
        const size_t size = sizeof(IndexFileHeader) + bytes;
        LargeArray<char> image = AllocateLargeBytes(size);
        if (!image)
            return false;
        size_t at = sizeof(IndexFileHeader);
        const bool read =
            sidecar.ReadBlocks(blocks, [&](uint32_t block, const char* records, size_t length) {
                if (length > size - at)
                    return false;
                std::memcpy(image.get() + at, records, length);
                uint32_t ordinal = block * trigram::BlockRecords;
                for (const size_t end = at + length; at < end; ++ordinal) {
                    ordinals.push_back(ordinal);
                    parents.push_back(ParentOf(image.get() + at));
                    SetParent(image.get() + at, IndexNoParent);
                    at += RecordBytes(image.get() + at);
                }
                return true;
            });
        if (!read || at != size)
            return false;
        const IndexFileHeader header{IndexFormatVersion, 0, static_cast<int32_t>(ordinals.size())};
        std::memcpy(image.get(), &header, sizeof header);
        return index.LoadImage(std::move(image), static_cast<uint32_t>(size));
    }

    IndexData& GetIndex() { return index; }
    int32_t GetCount() const { return static_cast<int32_t>(ordinals.size()); }
    uint32_t GetOrdinal(int32_t i) const { return ordinals[static_cast<size_t>(i)]; }
    Held Get(int32_t i) const {
        return {reinterpret_cast<const char*>(index.GetRecord(i)), parents[static_cast<size_t>(i)]};
    }

private:
    IndexData index;
    std::vector<uint32_t> ordinals;
    std::vector<uint32_t> parents;
};

// The folders above the matches, read a level at a time, each from the candidates when it is
// among them and otherwise from its block, every block once a level, and kept in the pool. A
// folder's entries follow it, so the other folders of a block read are kept too: they are often
// those a later level asks for.
bool ReadFolders(trigram::Sidecar& sidecar, const Candidates& candidates,
                 const std::vector<Held>& matches, RecordPool& pool, OrdinalRecords& folders) {
    FolderTable known(matches.size() * 2);
    for (int32_t i = 0; i < candidates.GetCount(); ++i) {
        const Held held = candidates.Get(i);
        if (reinterpret_cast<const IndexRecord*>(held.record)->IsFolder())
            known.Add(candidates.GetOrdinal(i), held);
    }
    // Every level's folders are folders above the matches.
    std::vector<uint32_t> wanted, unread, above;
    for (const Held& match : matches) {
        if (match.parent != IndexNoParent)
            wanted.push_back(match.parent);
    }
    Blocks blocks;
    while (!wanted.empty()) {
        std::sort(wanted.begin(), wanted.end());
        wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
        above.insert(above.end(), wanted.begin(), wanted.end());
        unread.clear();
        blocks.clear();
        for (const uint32_t ordinal : wanted) {
            if (known.Find(ordinal).record)
                continue;
            unread.push_back(ordinal);
            if (blocks.empty() || blocks.back() != ordinal / trigram::BlockRecords)
                blocks.push_back(ordinal / trigram::BlockRecords);
        }
        auto next = unread.begin();
        const bool read =
            sidecar.ReadBlocks(blocks, [&](uint32_t block, const char* bytes, size_t length) {
                uint32_t ordinal = block * trigram::BlockRecords;
                for (size_t at = 0; at < length; ++ordinal) {
                    const auto* record = reinterpret_cast<const IndexRecord*>(bytes + at);
                    const bool isWanted = next != unread.end() && *next == ordinal;
                    next += isWanted;
                    if ((isWanted || record->IsFolder()) && !known.Find(ordinal).record)
                        known.Add(ordinal, {pool.Keep(bytes + at), record->parent});
                    at += RecordBytes(bytes + at);
                }
                return true;
            });
        if (!read || next != unread.end())
            return false;
        // Up a level from every folder of this one, read now or before.
        for (uint32_t& ordinal : wanted)
            ordinal = known.Find(ordinal).parent;
        wanted.erase(std::remove(wanted.begin(), wanted.end(), IndexNoParent), wanted.end());
    }
    std::sort(above.begin(), above.end());
    above.erase(std::unique(above.begin(), above.end()), above.end());
    for (const uint32_t ordinal : above)
        folders.emplace_back(ordinal, known.Find(ordinal));
    return true;
}

// The matches and the folders above them in file order, as an index whose every parent is the
// ordinal of its record among them, with the matches as its results.
bool LoadAnswer(const std::vector<uint32_t>& matchOrdinals, const std::vector<Held>& matches,
                const OrdinalRecords& folders, IndexData& index) {
    OrdinalRecords all;
    all.reserve(matches.size() + folders.size());
    for (size_t i = 0; i < matches.size(); ++i)
        all.emplace_back(matchOrdinals[i], matches[i]);
    for (const auto& [ordinal, folder] : folders) {
        if (!std::binary_search(matchOrdinals.begin(), matchOrdinals.end(), ordinal))
            all.emplace_back(ordinal, folder);
    }
    const auto byOrdinal = [](const std::pair<uint32_t, Held>& one,
                              const std::pair<uint32_t, Held>& other) {
        return one.first < other.first;
    };
    std::sort(all.begin(), all.end(), byOrdinal);
    size_t size = sizeof(IndexFileHeader);
    for (const auto& [ordinal, held] : all)
        size += RecordBytes(held.record);
    if (size > INT32_MAX)
        return false;
    LargeArray<char> image = AllocateLargeBytes(size);
    if (!image)
        return false;
    const IndexFileHeader header{IndexFormatVersion, 0, static_cast<int32_t>(all.size())};
    std::memcpy(image.get(), &header, sizeof header);
    char* out = image.get() + sizeof header;
    const auto placeOf = [&](uint32_t ordinal) {
        return static_cast<uint32_t>(
            std::lower_bound(all.begin(), all.end(), std::pair(ordinal, Held{}), byOrdinal) -
            all.begin());
    };
    for (const auto& [ordinal, held] : all) {
        const size_t length = RecordBytes(held.record);
        std::memcpy(out, held.record, length);
        SetParent(out, held.parent == IndexNoParent ? IndexNoParent : placeOf(held.parent));
        out += length;
    }
    if (!index.LoadImage(std::move(image), static_cast<uint32_t>(size)))
        return false;
    index.ClearResults();
    for (const uint32_t ordinal : matchOrdinals)
        index.AddResult(index.GetRecord(static_cast<int32_t>(placeOf(ordinal))));
    return true;
}

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
    Blocks blocks;
    int32_t trusted = -1;
    if (!FindBlocks(sidecar, reader, blocks, trusted) || !AddLongNames(sidecar, trusted, blocks) ||
        blocks.size() > std::max<size_t>(sidecar.GetBlockCount() / MostCandidateShare, FewBlocks))
        return false;
    Candidates candidates;
    IndexSearcher searcher;
    if (!candidates.Read(sidecar, blocks) ||
        !searcher.Start(&candidates.GetIndex(), pattern, isRegExp, autoWildcards))
        return false;
    searcher.RunToEnd(nullptr);
    if (!searcher.Rewind())
        return false;
    // The results are records of the candidates' table, in its order.
    const IndexData& found = candidates.GetIndex();
    std::vector<uint32_t> matchOrdinals;
    std::vector<Held> matches;
    int32_t at = 0;
    for (int32_t i = 0; i < found.GetResultCount(); ++i) {
        while (found.GetRecord(at) != found.GetResult(i))
            ++at;
        matchOrdinals.push_back(candidates.GetOrdinal(at));
        matches.push_back(candidates.Get(at));
    }
    RecordPool pool;
    OrdinalRecords folders;
    return ReadFolders(sidecar, candidates, matches, pool, folders) &&
           LoadAnswer(matchOrdinals, matches, folders, index);
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
