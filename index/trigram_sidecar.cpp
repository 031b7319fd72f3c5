#include "index/trigram_sidecar.h"

#include "index/index_data.h"
#include "index/index_format.h"
#include "loam/disk_file.h"
#include "loam/error.h"
#include "loam/string.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <unordered_map>

namespace trigram {

namespace {

constexpr char Magic[8] = {'S', 'V', 'T', 'R', 'I', 'G', '\r', '\n'};
constexpr uint32_t FormatVersion = 1;
// How much of each end of the index the file's checksum of it covers: the header and the first
// records, and the last records, which every rebuild changes.
constexpr uint32_t SampleBytes = 1 << 16;
// Landmarks are checked a page at a time.
constexpr uint32_t PageLandmarks = 1024;
constexpr uint32_t PagesReadBetween = 2;
// A bucket of the key directory holds about this many keys, read and checked together.
constexpr uint32_t BucketKeys = 128;
constexpr uint32_t MaxBuckets = 1 << 20;
constexpr uint32_t MaxBlockBytes = BlockRecords * (sizeof(IndexRecord) + UINT8_MAX);
constexpr uint32_t ReadGapBytes = 4096;
constexpr uint32_t MaxReadBytes = 1 << 18;

#pragma pack(push, 1)
struct Header {
    char magic[8];
    uint32_t version;
    uint32_t blockRecords;
    // The index the file belongs to.
    uint64_t indexSize;
    int64_t indexSeconds;
    int64_t indexNanoseconds;
    uint64_t indexInode;
    uint64_t indexSample;
    int32_t recordCount;
    uint32_t blockCount;
    uint32_t bucketCount;
    uint32_t entryCount;
    uint64_t landmarksAt;
    uint64_t pageChecksumsAt;
    uint64_t postingsAt;
    uint64_t postingsBytes;
    uint64_t entriesAt;
    uint64_t bucketsAt;
    uint64_t bucketsChecksum;
    uint64_t fileSize;
    uint64_t headerChecksum;
};

struct Bucket {
    uint32_t first;
    uint32_t count;
    uint64_t checksum;
};

struct Entry {
    uint32_t key;
    uint32_t blocks;
    uint32_t offset;
    uint32_t bytes;
    uint64_t checksum;
};
#pragma pack(pop)

uint32_t BucketOf(uint32_t key, uint32_t bucketCount) {
    const int shift = 32 - std::countr_zero(bucketCount);
    return shift >= 32 ? 0 : (key * 0x9E3779B1u) >> shift;
}

uint32_t BucketCountFor(size_t keys) {
    uint32_t count = 16;
    while (count < MaxBuckets && count * BucketKeys < keys)
        count *= 2;
    return count;
}

bool ReadAt(int descriptor, uint64_t offset, void* into, size_t bytes) {
    auto* at = static_cast<char*>(into);
    while (bytes > 0) {
        const ssize_t got = pread(descriptor, at, bytes, static_cast<off_t>(offset));
        if (got <= 0)
            return false;
        at += got;
        offset += static_cast<uint64_t>(got);
        bytes -= static_cast<size_t>(got);
    }
    return true;
}

// A checksum of the index's first and last bytes, read from the open file.
bool SampleIndex(int descriptor, uint64_t size, uint64_t& sample) {
    std::vector<char> bytes(static_cast<size_t>(std::min<uint64_t>(size, SampleBytes)));
    if (!ReadAt(descriptor, 0, bytes.data(), bytes.size()))
        return false;
    sample = Checksum(bytes.data(), bytes.size());
    if (!ReadAt(descriptor, size - bytes.size(), bytes.data(), bytes.size()))
        return false;
    sample = Checksum(bytes.data(), bytes.size(), sample);
    return true;
}

// Whether [at, at + bytes) lies in the file behind the header, without overflow.
bool Within(uint64_t at, uint64_t bytes, uint64_t fileSize) {
    return at >= sizeof(Header) && at <= fileSize && bytes <= fileSize - at;
}

void PutVarint(uint32_t value, uint8_t* out, int& length) {
    length = 0;
    while (value >= 0x80) {
        out[length++] = static_cast<uint8_t>(value | 0x80);
        value >>= 7;
    }
    out[length++] = static_cast<uint8_t>(value);
}

} // namespace

loam::FileSpec FileBeside(const loam::FileSpec& indexFile) {
    return loam::FileSpec(indexFile.GetPath() + ".trigrams");
}

uint64_t Checksum(const void* bytes, size_t length, uint64_t seed) {
    constexpr uint64_t Odd1 = 0x9E3779B97F4A7C15ull;
    constexpr uint64_t Odd2 = 0xC2B2AE3D27D4EB4Full;
    uint64_t sum = seed ^ (length * Odd1);
    const auto* at = static_cast<const unsigned char*>(bytes);
    for (; length >= 8; at += 8, length -= 8) {
        uint64_t word;
        std::memcpy(&word, at, 8);
        sum = std::rotl(sum ^ (word * Odd2), 31) * Odd1;
    }
    uint64_t last = 0;
    if (length > 0)
        std::memcpy(&last, at, length);
    sum = std::rotl(sum ^ (last * Odd2), 31) * Odd1;
    sum ^= sum >> 29;
    sum *= Odd2;
    return sum ^ (sum >> 32);
}

// The keys met so far, in an open-addressed table of key and slot, and each key's blocks as
// gaps in variable-length bytes, in chains of chunks cut from large slabs: a chunk doubles the
// one before it up to a limit, so a rare key costs a few bytes and a common one little slack.
struct SidecarWriter::Keys {
    static constexpr uint32_t Empty = UINT32_MAX;
    static constexpr uint32_t SlabShift = 20;
    static constexpr uint32_t SlabBytes = 1u << SlabShift;
    static constexpr uint32_t FirstChunk = 16;
    static constexpr uint32_t LastChunk = 512;

    struct Key {
        uint32_t key;
        uint32_t nextBlock = 0;
        uint32_t blocks = 0;
        uint32_t bytes = 0;
        uint32_t head = 0;
        uint32_t tail = 0;
        uint16_t tailUsed = 0;
        uint16_t tailRoom = 0;
    };
    struct Probe {
        uint32_t key;
        uint32_t slot;
    };

    std::vector<Probe> table = std::vector<Probe>(1 << 12, Probe{Empty, 0});
    std::vector<Key> keys;
    std::vector<std::unique_ptr<uint8_t[]>> slabs;
    uint32_t slabUsed = SlabBytes;

    uint8_t* At(uint32_t reference) {
        return slabs[reference >> SlabShift].get() + (reference & (SlabBytes - 1));
    }

    uint32_t NewChunk(uint32_t bytes) {
        if (slabUsed + bytes > SlabBytes) {
            slabs.push_back(std::make_unique_for_overwrite<uint8_t[]>(SlabBytes));
            slabUsed = 0;
        }
        const auto reference = static_cast<uint32_t>((slabs.size() - 1) << SlabShift | slabUsed);
        slabUsed += bytes;
        std::memset(At(reference), 0, sizeof(uint32_t));
        return reference;
    }

    Key& Find(uint32_t key) {
        const auto mask = static_cast<uint32_t>(table.size() - 1);
        for (uint32_t at = (key * 0x9E3779B1u) & mask;; at = (at + 1) & mask) {
            if (table[at].key == key)
                return keys[table[at].slot];
            if (table[at].key != Empty)
                continue;
            table[at] = {key, static_cast<uint32_t>(keys.size())};
            keys.push_back(Key{key});
            if (keys.size() * 4 > table.size() * 3)
                Grow();
            return keys.back();
        }
    }

    void Grow() {
        std::vector<Probe> old(table.size() * 2, Probe{Empty, 0});
        old.swap(table);
        const auto mask = static_cast<uint32_t>(table.size() - 1);
        for (const Probe& probe : old) {
            if (probe.key == Empty)
                continue;
            uint32_t at = (probe.key * 0x9E3779B1u) & mask;
            while (table[at].key != Empty)
                at = (at + 1) & mask;
            table[at] = probe;
        }
    }

    void Add(uint32_t key, uint32_t block) {
        Key& entry = Find(key);
        if (entry.blocks > 0 && entry.nextBlock == block + 1)
            return;
        uint8_t bytes[5];
        int length = 0;
        PutVarint(block - entry.nextBlock, bytes, length);
        entry.nextBlock = block + 1;
        ++entry.blocks;
        entry.bytes += static_cast<uint32_t>(length);
        for (int i = 0; i < length; ++i) {
            if (entry.tailUsed == entry.tailRoom) {
                const uint32_t chunk = std::min<uint32_t>(
                    entry.tailRoom == 0 ? FirstChunk : entry.tailRoom * 2 + 4, LastChunk);
                const uint32_t reference = NewChunk(chunk);
                if (entry.tailRoom == 0)
                    entry.head = reference;
                else
                    std::memcpy(At(entry.tail), &reference, sizeof reference);
                entry.tail = reference;
                entry.tailUsed = 0;
                entry.tailRoom = static_cast<uint16_t>(chunk - sizeof(uint32_t));
            }
            At(entry.tail)[sizeof(uint32_t) + entry.tailUsed++] = bytes[i];
        }
    }

    // The key's bytes, gathered from its chain.
    void Gather(const Key& entry, std::vector<uint8_t>& out) {
        out.clear();
        uint32_t reference = entry.head;
        uint32_t room = FirstChunk - sizeof(uint32_t);
        while (out.size() < entry.bytes) {
            const uint8_t* chunk = At(reference);
            const size_t take = std::min<size_t>(room, entry.bytes - out.size());
            out.insert(out.end(), chunk + sizeof(uint32_t), chunk + sizeof(uint32_t) + take);
            std::memcpy(&reference, chunk, sizeof reference);
            room = std::min<uint32_t>(room * 2 + 4, LastChunk) - sizeof(uint32_t);
        }
    }
};

SidecarWriter::SidecarWriter()
    : keys(std::make_unique<Keys>()), indexBytes(sizeof(IndexFileHeader)) {}

SidecarWriter::~SidecarWriter() = default;

void SidecarWriter::AddRecord(const char* name, int32_t nameLength, uint32_t recordBytes) {
    const auto ordinal = static_cast<uint32_t>(recordCount++);
    const uint32_t block = ordinal / BlockRecords;
    if (ordinal % BlockRecords == 0)
        landmarks.push_back(static_cast<uint32_t>(indexBytes));
    indexBytes += recordBytes;
    // The name as a search sees it: up to its NUL, folded.
    const size_t length = strnlen(name, static_cast<size_t>(std::max(nameLength, 0)));
    folded.resize(length);
    for (size_t i = 0; i < length; ++i)
        folded[i] = loam::FoldToLower(name[i]);
    for (size_t i = 0; i + 3 <= length; ++i)
        keys->Add(KeyOf(folded.data() + i), block);
    for (const int32_t longName : LongNameLengths) {
        if (length >= static_cast<size_t>(longName))
            keys->Add(LongNameKey(longName), block);
    }
}

bool SidecarWriter::Write(const loam::FileSpec& indexFile) {
    const loam::FileSpec location = FileBeside(indexFile);
    const int descriptor = open(indexFile.GetPath().GetCString(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    uint64_t sample = 0;
    const bool whole = descriptor >= 0 && fstat(descriptor, &status) == 0 &&
                       S_ISREG(status.st_mode) &&
                       static_cast<uint64_t>(status.st_size) == indexBytes &&
                       SampleIndex(descriptor, indexBytes, sample);
    if (descriptor >= 0)
        close(descriptor);
    if (!whole) {
        unlink(location.GetPath().GetCString());
        return false;
    }

    Header header{};
    std::memcpy(header.magic, Magic, sizeof Magic);
    header.version = FormatVersion;
    header.blockRecords = BlockRecords;
    header.indexSize = indexBytes;
    header.indexSeconds = status.st_mtim.tv_sec;
    header.indexNanoseconds = status.st_mtim.tv_nsec;
    header.indexInode = status.st_ino;
    header.indexSample = sample;
    header.recordCount = recordCount;
    header.blockCount = static_cast<uint32_t>(landmarks.size());
    header.bucketCount = BucketCountFor(keys->keys.size());
    header.entryCount = static_cast<uint32_t>(keys->keys.size());

    // Keys in the order of their buckets, and by key within one.
    std::vector<uint32_t> order(keys->keys.size());
    for (uint32_t i = 0; i < order.size(); ++i)
        order[i] = i;
    const auto place = [&](uint32_t slot) {
        const uint32_t key = keys->keys[slot].key;
        return std::pair(BucketOf(key, header.bucketCount), key);
    };
    std::sort(order.begin(), order.end(),
              [&](uint32_t a, uint32_t b) { return place(a) < place(b); });

    const uint32_t pages = (header.blockCount + PageLandmarks - 1) / PageLandmarks;
    header.landmarksAt = sizeof(Header);
    header.pageChecksumsAt = header.landmarksAt + uint64_t{header.blockCount} * sizeof(uint32_t);
    header.postingsAt = header.pageChecksumsAt + uint64_t{pages} * sizeof(uint64_t);

    loam::GetErrorState().SaveState();
    loam::DiskFile file;
    bool written = file.CreateBeside(location) && file.Write(&header, sizeof header, nullptr) &&
                   (landmarks.empty() ||
                    file.Write(landmarks.data(), header.blockCount * sizeof(uint32_t), nullptr));
    for (uint32_t page = 0; written && page < pages; ++page) {
        const uint32_t first = page * PageLandmarks;
        const uint32_t count = std::min(PageLandmarks, header.blockCount - first);
        const uint64_t sum = Checksum(landmarks.data() + first, count * sizeof(uint32_t));
        written = file.Write(&sum, sizeof sum, nullptr);
    }
    std::vector<Entry> entries;
    entries.reserve(order.size());
    std::vector<uint8_t> bytes;
    uint64_t postingsBytes = 0;
    for (const uint32_t slot : order) {
        if (!written)
            break;
        const Keys::Key& key = keys->keys[slot];
        keys->Gather(key, bytes);
        entries.push_back({key.key, key.blocks, static_cast<uint32_t>(postingsBytes), key.bytes,
                           Checksum(bytes.data(), bytes.size())});
        written = postingsBytes + key.bytes <= UINT32_MAX &&
                  (key.bytes == 0 || file.Write(bytes.data(), key.bytes, nullptr));
        postingsBytes += key.bytes;
    }
    header.postingsBytes = postingsBytes;
    header.entriesAt = header.postingsAt + postingsBytes;
    header.bucketsAt = header.entriesAt + entries.size() * sizeof(Entry);
    std::vector<Bucket> buckets(header.bucketCount, Bucket{0, 0, 0});
    for (uint32_t i = 0; i < entries.size();) {
        const uint32_t bucket = BucketOf(entries[i].key, header.bucketCount);
        uint32_t end = i;
        while (end < entries.size() && BucketOf(entries[end].key, header.bucketCount) == bucket)
            ++end;
        buckets[bucket] = {i, end - i, Checksum(&entries[i], (end - i) * sizeof(Entry))};
        i = end;
    }
    header.bucketsChecksum = Checksum(buckets.data(), buckets.size() * sizeof(Bucket));
    header.fileSize = header.bucketsAt + buckets.size() * sizeof(Bucket);
    header.headerChecksum = Checksum(&header, offsetof(Header, headerChecksum));
    written = written &&
              (entries.empty() ||
               file.Write(entries.data(), static_cast<uint32_t>(entries.size() * sizeof(Entry)),
                          nullptr)) &&
              file.Write(buckets.data(), static_cast<uint32_t>(buckets.size() * sizeof(Bucket)),
                         nullptr) &&
              file.SeekFromStart(0) && file.Write(&header, sizeof header, nullptr) &&
              file.PutInPlace();
    file.Close();
    loam::GetErrorState().RestoreState();
    if (!written)
        unlink(location.GetPath().GetCString());
    return written;
}

bool WriteFileOf(const loam::FileSpec& indexFile) {
    IndexData index;
    loam::GetErrorState().SaveState();
    const bool loaded = index.Load(indexFile);
    loam::GetErrorState().RestoreState();
    if (!loaded)
        return false;
    SidecarWriter writer;
    for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
        const IndexRecord* record = index.GetRecord(ordinal);
        writer.AddRecord(record->GetName(), record->nameLength,
                         static_cast<uint32_t>(sizeof(IndexRecord) + record->nameLength));
    }
    return writer.Write(indexFile);
}

struct Sidecar::State {
    int index = -1;
    int side = -1;
    Header header{};
    std::vector<Bucket> buckets;
    // The landmark pages read, each checked once, and the checksums of all pages, read with the
    // first of them.
    std::unordered_map<uint32_t, std::vector<uint32_t>> pages;
    std::vector<uint64_t> pageSums;
    std::vector<Entry> entries;
    // The entries of the keys looked up, found or not.
    std::unordered_map<uint32_t, std::pair<bool, Entry>> looked;
    std::vector<uint8_t> postings;
    std::vector<char> blockBytes;

    ~State() {
        if (index >= 0)
            close(index);
        if (side >= 0)
            close(side);
    }

    // The entry of a key, from its bucket; none for a key not in the file.
    bool FindEntry(uint32_t key, const Entry*& entry) {
        entry = nullptr;
        if (const auto known = looked.find(key); known != looked.end()) {
            entry = known->second.first ? &known->second.second : nullptr;
            return true;
        }
        const Bucket& bucket = buckets[BucketOf(key, header.bucketCount)];
        entries.resize(bucket.count);
        if (!ReadAt(side, header.entriesAt + uint64_t{bucket.first} * sizeof(Entry), entries.data(),
                    entries.size() * sizeof(Entry)) ||
            Checksum(entries.data(), entries.size() * sizeof(Entry)) != bucket.checksum)
            return false;
        const auto found = std::lower_bound(entries.begin(), entries.end(), key,
                                            [](const Entry& e, uint32_t k) { return e.key < k; });
        const bool known = found != entries.end() && found->key == key;
        auto& kept = looked[key];
        kept = {known, known ? *found : Entry{}};
        entry = known ? &kept.second : nullptr;
        return true;
    }

    bool CheckHeader(const struct stat& indexStatus, const struct stat& sideStatus) {
        const Header& h = header;
        const uint64_t fileSize = static_cast<uint64_t>(sideStatus.st_size);
        if (std::memcmp(h.magic, Magic, sizeof Magic) != 0 || h.version != FormatVersion ||
            h.blockRecords != BlockRecords ||
            h.headerChecksum != Checksum(&h, offsetof(Header, headerChecksum)))
            return false;
        if (h.fileSize != fileSize || h.indexSize != static_cast<uint64_t>(indexStatus.st_size) ||
            h.indexSeconds != indexStatus.st_mtim.tv_sec ||
            h.indexNanoseconds != indexStatus.st_mtim.tv_nsec ||
            h.indexInode != static_cast<uint64_t>(indexStatus.st_ino))
            return false;
        const uint64_t pages = (uint64_t{h.blockCount} + PageLandmarks - 1) / PageLandmarks;
        return h.recordCount >= 0 &&
               h.blockCount ==
                   (static_cast<uint64_t>(h.recordCount) + BlockRecords - 1) / BlockRecords &&
               h.bucketCount >= 1 && h.bucketCount <= MaxBuckets &&
               std::has_single_bit(h.bucketCount) && h.indexSize <= UINT32_MAX &&
               Within(h.landmarksAt, uint64_t{h.blockCount} * sizeof(uint32_t), fileSize) &&
               Within(h.pageChecksumsAt, pages * sizeof(uint64_t), fileSize) &&
               Within(h.postingsAt, h.postingsBytes, fileSize) &&
               Within(h.entriesAt, uint64_t{h.entryCount} * sizeof(Entry), fileSize) &&
               Within(h.bucketsAt, uint64_t{h.bucketCount} * sizeof(Bucket), fileSize);
    }
};

Sidecar::Sidecar() = default;

Sidecar::~Sidecar() = default;

bool Sidecar::Open(const loam::FileSpec& indexFile) {
    state = std::make_unique<State>();
    State& s = *state;
    s.index = open(indexFile.GetPath().GetCString(), O_RDONLY | O_CLOEXEC);
    s.side = open(FileBeside(indexFile).GetPath().GetCString(), O_RDONLY | O_CLOEXEC);
    struct stat indexStatus {
    }, sideStatus{};
    uint64_t sample = 0;
    const bool opened =
        s.index >= 0 && s.side >= 0 && fstat(s.index, &indexStatus) == 0 &&
        fstat(s.side, &sideStatus) == 0 && S_ISREG(indexStatus.st_mode) &&
        S_ISREG(sideStatus.st_mode) && static_cast<size_t>(sideStatus.st_size) >= sizeof(Header) &&
        ReadAt(s.side, 0, &s.header, sizeof s.header) && s.CheckHeader(indexStatus, sideStatus) &&
        SampleIndex(s.index, s.header.indexSize, sample) && sample == s.header.indexSample;
    if (!opened) {
        state.reset();
        return false;
    }
    s.buckets.resize(s.header.bucketCount);
    if (!ReadAt(s.side, s.header.bucketsAt, s.buckets.data(), s.buckets.size() * sizeof(Bucket)) ||
        Checksum(s.buckets.data(), s.buckets.size() * sizeof(Bucket)) != s.header.bucketsChecksum) {
        state.reset();
        return false;
    }
    for (const Bucket& bucket : s.buckets) {
        if (bucket.first > s.header.entryCount ||
            bucket.count > s.header.entryCount - bucket.first) {
            state.reset();
            return false;
        }
    }
    return true;
}

int32_t Sidecar::GetRecordCount() const {
    return state ? state->header.recordCount : 0;
}

uint32_t Sidecar::GetBlockCount() const {
    return state ? state->header.blockCount : 0;
}

bool Sidecar::CountBlocks(uint32_t key, uint32_t& count) {
    count = 0;
    const Entry* entry = nullptr;
    if (!state || !state->FindEntry(key, entry))
        return false;
    count = entry ? entry->blocks : 0;
    return true;
}

bool Sidecar::GetBlocks(uint32_t key, std::vector<uint32_t>& blocks) {
    blocks.clear();
    const Entry* found = nullptr;
    if (!state || !state->FindEntry(key, found))
        return false;
    if (!found)
        return true;
    State& s = *state;
    const Entry entry = *found;
    if (entry.blocks > s.header.blockCount || entry.bytes > uint64_t{entry.blocks} * 5 ||
        uint64_t{entry.offset} + entry.bytes > s.header.postingsBytes)
        return false;
    s.postings.resize(entry.bytes);
    if (!ReadAt(s.side, s.header.postingsAt + entry.offset, s.postings.data(), entry.bytes) ||
        Checksum(s.postings.data(), entry.bytes) != entry.checksum)
        return false;
    blocks.reserve(entry.blocks);
    uint64_t next = 0;
    size_t at = 0;
    for (uint32_t i = 0; i < entry.blocks; ++i) {
        uint64_t gap = 0;
        for (int shift = 0;; shift += 7) {
            if (at == s.postings.size() || shift > 28)
                return false;
            const uint8_t byte = s.postings[at++];
            gap |= uint64_t{byte & 0x7Fu} << shift;
            if (byte < 0x80)
                break;
        }
        const uint64_t block = next + gap;
        if (block >= s.header.blockCount)
            return false;
        blocks.push_back(static_cast<uint32_t>(block));
        next = block + 1;
    }
    return at == s.postings.size();
}

bool Sidecar::GetLandmark(uint32_t block, uint32_t& offset) {
    const uint32_t number = block / PageLandmarks;
    const auto page = state->pages.find(number);
    if (page != state->pages.end()) {
        offset = page->second[block % PageLandmarks];
        return true;
    }
    return LoadLandmarkPages({number}) && GetLandmark(block, offset);
}

// Pages of landmarks, ascending, each checked against its checksum. A read costs about as much
// as copying a few pages, so pages close together are read at once, with those between them.
bool Sidecar::LoadLandmarkPages(const std::vector<uint32_t>& numbers) {
    State& s = *state;
    const uint32_t pageCount = (s.header.blockCount + PageLandmarks - 1) / PageLandmarks;
    if (s.pageSums.empty()) {
        s.pageSums.resize(pageCount);
        if (!ReadAt(s.side, s.header.pageChecksumsAt, s.pageSums.data(),
                    s.pageSums.size() * sizeof(uint64_t))) {
            s.pageSums.clear();
            return false;
        }
    }
    std::vector<uint32_t> landmarks;
    for (size_t first = 0; first < numbers.size();) {
        size_t last = first + 1;
        while (last < numbers.size() && numbers[last] - numbers[last - 1] <= PagesReadBetween)
            ++last;
        if (numbers[last - 1] >= pageCount)
            return false;
        const uint32_t from = numbers[first] * PageLandmarks;
        const uint32_t to = std::min(s.header.blockCount, (numbers[last - 1] + 1) * PageLandmarks);
        landmarks.resize(to - from);
        if (!ReadAt(s.side, s.header.landmarksAt + uint64_t{from} * sizeof(uint32_t),
                    landmarks.data(), landmarks.size() * sizeof(uint32_t)))
            return false;
        for (uint32_t number = numbers[first]; number <= numbers[last - 1]; ++number) {
            const uint32_t* page = landmarks.data() + (number * PageLandmarks - from);
            const uint32_t count = std::min(PageLandmarks, to - number * PageLandmarks);
            if (Checksum(page, count * sizeof(uint32_t)) != s.pageSums[number])
                return false;
            s.pages.try_emplace(number, page, page + count);
        }
        first = last;
    }
    return true;
}

// Where a block's records lie in the index.
bool Sidecar::GetBlockBytes(uint32_t block, uint32_t& start, uint32_t& end) {
    const Header& h = state->header;
    end = static_cast<uint32_t>(h.indexSize);
    return block < h.blockCount && GetLandmark(block, start) &&
           (block + 1 == h.blockCount || GetLandmark(block + 1, end)) &&
           start >= sizeof(IndexFileHeader) && end > start && end <= h.indexSize &&
           end - start <= MaxBlockBytes;
}

bool Sidecar::CheckBlock(uint32_t block, const char* bytes, size_t length) const {
    const Header& h = state->header;
    const uint32_t first = block * BlockRecords;
    const uint32_t count =
        std::min<uint32_t>(BlockRecords, static_cast<uint32_t>(h.recordCount) - first);
    size_t at = 0;
    for (uint32_t ordinal = first; ordinal < first + count; ++ordinal) {
        if (length - at < sizeof(IndexRecord))
            return false;
        IndexRecord record;
        std::memcpy(&record, bytes + at, sizeof record);
        const size_t recordLength = sizeof(IndexRecord) + record.nameLength;
        if (record.nameLength == 0 || recordLength > length - at ||
            bytes[at + recordLength - 1] != '\0' ||
            (record.parent != IndexNoParent && record.parent >= ordinal))
            return false;
        at += recordLength;
    }
    return at == length;
}

// A read costs the system about as much as copying a few pages, so blocks closer than that
// are read with what lies between them.
// The landmarks of the blocks and of those after them, which end them.
bool Sidecar::LoadLandmarksOf(const std::vector<uint32_t>& blocks) {
    std::vector<uint32_t> pages;
    const auto need = [&](uint32_t block) {
        const uint32_t number = block / PageLandmarks;
        if (block < state->header.blockCount && (pages.empty() || pages.back() < number) &&
            state->pages.count(number) == 0)
            pages.push_back(number);
    };
    for (const uint32_t block : blocks) {
        need(block);
        need(block + 1);
    }
    return LoadLandmarkPages(pages);
}

bool Sidecar::MeasureBlocks(const std::vector<uint32_t>& blocks, uint64_t& bytes) {
    bytes = 0;
    if (!state || !LoadLandmarksOf(blocks))
        return false;
    for (const uint32_t block : blocks) {
        uint32_t start = 0, end = 0;
        if (!GetBlockBytes(block, start, end))
            return false;
        bytes += end - start;
    }
    return true;
}

bool Sidecar::ReadBlocks(const std::vector<uint32_t>& blocks, const BlockTaker& take) {
    if (!state)
        return false;
    if (!LoadLandmarksOf(blocks))
        return false;
    // The bytes of each block of a run, which lie one after another in the index.
    std::vector<std::pair<uint32_t, uint32_t>> run;
    for (size_t first = 0; first < blocks.size();) {
        uint32_t start = 0, end = 0;
        if (!GetBlockBytes(blocks[first], start, end))
            return false;
        run.assign(1, {start, end});
        size_t last = first + 1;
        for (; last < blocks.size(); ++last) {
            if (blocks[last] <= blocks[last - 1] || !GetBlockBytes(blocks[last], start, end) ||
                start < run.back().second)
                return false;
            if (start - run.back().second > ReadGapBytes || end - run.front().first > MaxReadBytes)
                break;
            run.emplace_back(start, end);
        }
        const uint32_t runStart = run.front().first;
        std::vector<char>& bytes = state->blockBytes;
        bytes.resize(run.back().second - runStart);
        if (!ReadAt(state->index, runStart, bytes.data(), bytes.size()))
            return false;
        for (size_t i = first; i < last; ++i) {
            const auto [blockStart, blockEnd] = run[i - first];
            const char* at = bytes.data() + (blockStart - runStart);
            if (!CheckBlock(blocks[i], at, blockEnd - blockStart) ||
                !take(blocks[i], at, blockEnd - blockStart))
                return false;
        }
        first = last;
    }
    return true;
}

} // namespace trigram
