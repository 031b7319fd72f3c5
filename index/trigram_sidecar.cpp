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
#include <cerrno>
#include <cstring>
#include <unordered_map>
#include <utility>

namespace trigram {

namespace {

constexpr char Magic[8] = {'S', 'V', 'T', 'R', 'I', 'G', '\r', '\n'};
constexpr uint32_t FormatVersion = 2;
// How much of each end of the index the file's checksum of it covers: the header and the first
// records, and the last records, which every rebuild changes.
constexpr uint32_t SampleBytes = 1 << 16;
// Landmarks are checked a page at a time.
constexpr uint32_t PageLandmarks = 128;
constexpr uint32_t PagesReadBetween = 8;
// Landmark pages are kept in chunks of this many.
constexpr uint32_t ChunkPages = 64;
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

// A search reads a few hundred scattered pieces of each file, and the system would otherwise
// weigh a change of the file's access time at every one. Only the file's owner may ask that.
int OpenToRead(const char* path) {
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NOATIME);
    return descriptor >= 0 || errno != EPERM ? descriptor : open(path, O_RDONLY | O_CLOEXEC);
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

void AppendVarint(uint32_t value, std::vector<uint8_t>& out) {
    while (value >= 0x80) {
        out.push_back(static_cast<uint8_t>(value | 0x80));
        value >>= 7;
    }
    out.push_back(static_cast<uint8_t>(value));
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

namespace {

// Pairs of key and block, as they are gathered: the key in the high bits.
constexpr int BlockBits = 32;
constexpr uint32_t KeyDigitBits = 13;
constexpr uint32_t KeyDigits = 2;
static_assert(KeyDigitBits * KeyDigits >= 25, "keys of three bytes and the long-name keys");

// Sorts the pairs by key alone, keeping the order of the blocks within a key, in the passes of a
// counting sort of a few bits each: where the pairs came in block order, each key's blocks come
// out ascending, at a cost that grows only as fast as the pairs.
void SortByKey(std::vector<uint64_t>& pairs, std::vector<uint64_t>& spare) {
    constexpr size_t Buckets = size_t{1} << KeyDigitBits;
    const auto digitOf = [](uint64_t pair, uint32_t digit) {
        return (pair >> (BlockBits + static_cast<int>(digit * KeyDigitBits))) & (Buckets - 1);
    };
    // Where each digit's buckets start, counted in one reading of the pairs.
    std::vector<size_t> starts(KeyDigits * Buckets, 0);
    for (const uint64_t pair : pairs) {
        for (uint32_t digit = 0; digit < KeyDigits; ++digit)
            ++starts[digit * Buckets + digitOf(pair, digit)];
    }
    for (uint32_t digit = 0; digit < KeyDigits; ++digit) {
        size_t sum = 0;
        for (size_t bucket = 0; bucket < Buckets; ++bucket)
            sum += std::exchange(starts[digit * Buckets + bucket], sum);
    }
    spare.resize(pairs.size());
    for (uint32_t digit = 0; digit < KeyDigits; ++digit) {
        size_t* start = &starts[digit * Buckets];
        for (const uint64_t pair : pairs)
            spare[start[digitOf(pair, digit)]++] = pair;
        pairs.swap(spare);
    }
}

// What a run holds for a key: the key, how many blocks, the first and the last of them, and the
// length of the gaps after the first, which follow it. In the run each number is written in
// variable-length bytes, the key as its distance from the one before.
struct RunPiece {
    uint32_t key;
    uint32_t blocks;
    uint32_t first;
    uint32_t last;
    uint32_t bytes;
};

} // namespace

// The runs of sorted lists: in a file without a name in the index's folder, or where no such
// file can be made, in memory.
struct SidecarWriter::Runs {
    static constexpr size_t FlushBytes = 1 << 20;

    int descriptor = -1;
    // What is not yet in the file; all of it, when there is no file.
    std::vector<uint8_t> held;
    std::vector<uint64_t> ends;
    uint64_t size = 0;

    ~Runs() {
        if (descriptor >= 0)
            close(descriptor);
    }

    // Bytes go into the held ones, which a file takes a large piece at a time.
    bool Append(const void* bytes, size_t length) {
        const auto* at = static_cast<const uint8_t*>(bytes);
        held.insert(held.end(), at, at + length);
        return descriptor < 0 || held.size() < FlushBytes || Flush();
    }

    bool Flush() {
        if (descriptor < 0) {
            size = held.size();
            return true;
        }
        const auto* at = reinterpret_cast<const char*>(held.data());
        size_t length = held.size();
        while (length > 0) {
            const ssize_t put = pwrite(descriptor, at, length, static_cast<off_t>(size));
            if (put <= 0)
                return false;
            at += put;
            length -= static_cast<size_t>(put);
            size += static_cast<uint64_t>(put);
        }
        held.clear();
        return true;
    }

    bool Read(uint64_t at, void* into, size_t length) const {
        if (descriptor >= 0)
            return ReadAt(descriptor, at, into, length);
        if (at > held.size() || length > held.size() - at)
            return false;
        std::memcpy(into, held.data() + at, length);
        return true;
    }
};

namespace {

// One run read back in order, through a buffer.
class RunReader {
public:
    RunReader(const SidecarWriter::Runs& runs, uint64_t start, uint64_t end)
        : runs(&runs), at(start), end(end) {}

    // The next key's piece of the run, its gaps behind what bytes holds; false at its end, or
    // when it cannot be read.
    bool Next(RunPiece& piece, std::vector<uint8_t>& bytes) {
        uint32_t fields[5];
        for (uint32_t& field : fields) {
            if (!TakeNumber(field))
                return false;
        }
        piece = {lastKey + fields[0], fields[1], fields[2], fields[2] + fields[3], fields[4]};
        lastKey = piece.key;
        const size_t from = bytes.size();
        bytes.resize(from + piece.bytes);
        return Take(bytes.data() + from, piece.bytes);
    }

private:
    static constexpr size_t BufferBytes = 1 << 14;

    bool TakeNumber(uint32_t& value) {
        value = 0;
        // Most numbers lie whole in the buffer, and are read there without a copy per byte.
        if (buffer.size() - used >= 5) {
            for (int shift = 0; shift <= 28; shift += 7) {
                const uint8_t byte = buffer[used++];
                value |= static_cast<uint32_t>(byte & 0x7F) << shift;
                if (byte < 0x80)
                    return true;
            }
            return false;
        }
        for (int shift = 0; shift <= 28; shift += 7) {
            uint8_t byte = 0;
            if (!Take(&byte, 1))
                return false;
            value |= static_cast<uint32_t>(byte & 0x7F) << shift;
            if (byte < 0x80)
                return true;
        }
        return false;
    }

    bool Take(void* into, size_t length) {
        auto* out = static_cast<uint8_t*>(into);
        while (length > 0) {
            if (used == buffer.size()) {
                const auto chunk = static_cast<size_t>(std::min<uint64_t>(BufferBytes, end - at));
                buffer.resize(chunk);
                if (chunk == 0 || !runs->Read(at, buffer.data(), chunk))
                    return false;
                at += chunk;
                used = 0;
            }
            const size_t take = std::min(length, buffer.size() - used);
            std::memcpy(out, buffer.data() + used, take);
            out += take;
            used += take;
            length -= take;
        }
        return true;
    }

    const SidecarWriter::Runs* runs;
    uint64_t at;
    uint64_t end;
    std::vector<uint8_t> buffer;
    size_t used = 0;
    uint32_t lastKey = 0;
};

} // namespace

SidecarWriter::SidecarWriter(const loam::FileSpec& indexFile, size_t keptListBytes)
    : runs(std::make_unique<Runs>()), indexBytes(sizeof(IndexFileHeader)),
      keptPairs(std::max<size_t>(keptListBytes / sizeof(uint64_t), 1)) {
    // The index's folder has room for the index, and so for its lists.
    const std::string path = indexFile.GetPath().GetCString();
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    runs->descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    // A run ends with a block, whose names may add a few pairs more than kept.
    pairs.reserve(keptPairs + BlockRecords * (MaxIndexNameBlock + std::size(LongNameLengths)));
}

SidecarWriter::~SidecarWriter() = default;

void SidecarWriter::AddRecord(const char* name, int32_t nameLength, uint32_t recordBytes) {
    const auto ordinal = static_cast<uint32_t>(recordCount++);
    const uint64_t block = ordinal / BlockRecords;
    // A run ends with a block, so that a key's runs never share one.
    if (ordinal % BlockRecords == 0) {
        if (pairs.size() >= keptPairs)
            failed = failed || !WriteRun();
        landmarks.push_back(static_cast<uint32_t>(indexBytes));
    }
    indexBytes += recordBytes;
    // The name as a search sees it: up to its NUL, folded, between the NULs that stand for its
    // start and its end, so that the keys of its first and last two bytes say where they are.
    const size_t length = strnlen(name, static_cast<size_t>(std::max(nameLength, 0)));
    folded.assign(length + 2, '\0');
    for (size_t i = 0; i < length; ++i)
        folded[i + 1] = loam::FoldToLower(name[i]);
    for (size_t i = 0; i + 3 <= folded.size(); ++i)
        AddPair(uint64_t{KeyOf(folded.data() + i)} << BlockBits | block);
    for (const int32_t longName : LongNameLengths) {
        if (length >= static_cast<size_t>(longName))
            AddPair(uint64_t{LongNameKey(longName)} << BlockBits | block);
    }
}

// Names side by side share many keys, most of all within a block; a small table of the pairs
// met last keeps most repeats out of the pairs to sort.
void SidecarWriter::AddPair(uint64_t pair) {
    const auto key = static_cast<uint32_t>(pair >> BlockBits);
    uint64_t& met = recentPairs[key * 0x9E3779B1u >> (32 - RecentPairBits)];
    if (met == pair)
        return;
    met = pair;
    pairs.push_back(pair);
}

// Sorts the pairs gathered since the last run and writes them as the next run, key by key, each
// key's blocks as gaps after its first: a block that several names of one block share once.
bool SidecarWriter::WriteRun() {
    SortByKey(pairs, spare);
    std::vector<uint8_t> bytes, numbers;
    bool written = true;
    uint32_t lastKey = 0;
    for (size_t at = 0; at < pairs.size() && written;) {
        const auto key = static_cast<uint32_t>(pairs[at] >> BlockBits);
        RunPiece piece{key, 1, static_cast<uint32_t>(pairs[at]), static_cast<uint32_t>(pairs[at]),
                       0};
        bytes.clear();
        for (++at; at < pairs.size() && pairs[at] >> BlockBits == key; ++at) {
            const auto block = static_cast<uint32_t>(pairs[at]);
            if (block == piece.last)
                continue;
            AppendVarint(block - piece.last - 1, bytes);
            piece.last = block;
            ++piece.blocks;
        }
        piece.bytes = static_cast<uint32_t>(bytes.size());
        numbers.clear();
        for (const uint32_t number : {piece.key - lastKey, piece.blocks, piece.first,
                                      piece.last - piece.first, piece.bytes})
            AppendVarint(number, numbers);
        lastKey = piece.key;
        written = runs->Append(numbers.data(), numbers.size()) &&
                  runs->Append(bytes.data(), bytes.size());
    }
    written = written && runs->Flush();
    if (!pairs.empty())
        runs->ends.push_back(runs->size);
    pairs.clear();
    return written;
}

// Hands over every key's whole list in the order of the keys, joined from the runs in turn.
bool SidecarWriter::ForEachList(const ListTaker& take) {
    std::vector<RunReader> readers;
    std::vector<RunPiece> heads;
    std::vector<std::vector<uint8_t>> headBytes;
    std::vector<bool> open;
    uint64_t start = 0;
    for (const uint64_t end : runs->ends) {
        readers.emplace_back(*runs, start, end);
        heads.emplace_back();
        headBytes.emplace_back();
        open.push_back(readers.back().Next(heads.back(), headBytes.back()));
        if (!open.back())
            return false;
        start = end;
    }
    std::vector<uint8_t> bytes;
    for (;;) {
        uint64_t key = UINT64_MAX;
        for (size_t run = 0; run < readers.size(); ++run) {
            if (open[run])
                key = std::min<uint64_t>(key, heads[run].key);
        }
        if (key == UINT64_MAX)
            return true;
        bytes.clear();
        uint32_t blocks = 0;
        uint32_t next = 0;
        for (size_t run = 0; run < readers.size(); ++run) {
            if (!open[run] || heads[run].key != key)
                continue;
            const RunPiece& piece = heads[run];
            if (piece.first < next || piece.blocks == 0)
                return false;
            AppendVarint(piece.first - next, bytes);
            bytes.insert(bytes.end(), headBytes[run].begin(), headBytes[run].end());
            blocks += piece.blocks;
            next = piece.last + 1;
            headBytes[run].clear();
            open[run] = readers[run].Next(heads[run], headBytes[run]);
        }
        if (!take(static_cast<uint32_t>(key), blocks, bytes))
            return false;
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
    // The lists go in the order of the keys; their entries, in the order of their buckets and
    // by key within one, say where.
    std::vector<Entry> entries;
    uint64_t postingsBytes = 0;
    written = written && !failed && WriteRun() &&
              ForEachList([&](uint32_t key, uint32_t blocks, const std::vector<uint8_t>& bytes) {
                  entries.push_back({key, blocks, static_cast<uint32_t>(postingsBytes),
                                     static_cast<uint32_t>(bytes.size()),
                                     Checksum(bytes.data(), bytes.size())});
                  postingsBytes += bytes.size();
                  return postingsBytes <= UINT32_MAX &&
                         file.Write(bytes.data(), static_cast<uint32_t>(bytes.size()), nullptr);
              });
    header.bucketCount = BucketCountFor(entries.size());
    header.entryCount = static_cast<uint32_t>(entries.size());
    std::sort(entries.begin(), entries.end(), [&header](const Entry& a, const Entry& b) {
        return std::pair(BucketOf(a.key, header.bucketCount), a.key) <
               std::pair(BucketOf(b.key, header.bucketCount), b.key);
    });
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

bool WriteFileOf(const loam::FileSpec& indexFile, size_t keptListBytes) {
    IndexData index;
    loam::GetErrorState().SaveState();
    const bool loaded = index.Load(indexFile);
    loam::GetErrorState().RestoreState();
    if (!loaded)
        return false;
    SidecarWriter writer(indexFile, keptListBytes);
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
    // The landmark pages read, each checked once, one after another in chunks that are never
    // moved, and where each page lies among them, one past, or 0 for a page not read; the
    // checksums of all pages, read with the first of them; and room to read pages into.
    std::vector<std::unique_ptr<uint32_t[]>> keptChunks;
    std::vector<uint32_t> pageSlots;
    uint32_t keptPages = 0;
    std::vector<uint64_t> pageSums;
    std::vector<uint32_t> readPages;
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
    s.index = OpenToRead(indexFile.GetPath().GetCString());
    s.side = OpenToRead(FileBeside(indexFile).GetPath().GetCString());
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

bool Sidecar::ReadList(uint32_t key, uint32_t& count) {
    count = 0;
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
    count = entry.blocks;
    return ReadAt(s.side, s.header.postingsAt + entry.offset, s.postings.data(), entry.bytes) &&
           Checksum(s.postings.data(), entry.bytes) == entry.checksum;
}

template <typename Take> bool Sidecar::DecodeList(uint32_t key, Take take) {
    uint32_t count = 0;
    if (!ReadList(key, count))
        return false;
    const std::vector<uint8_t>& bytes = state->postings;
    uint64_t next = 0;
    size_t at = 0;
    for (uint32_t i = 0; i < count; ++i) {
        uint64_t gap = 0;
        for (int shift = 0;; shift += 7) {
            if (at == bytes.size() || shift > 28)
                return false;
            const uint8_t byte = bytes[at++];
            gap |= uint64_t{byte & 0x7Fu} << shift;
            if (byte < 0x80)
                break;
        }
        const uint64_t block = next + gap;
        if (block >= state->header.blockCount)
            return false;
        take(static_cast<uint32_t>(block));
        next = block + 1;
    }
    return count == 0 || at == bytes.size();
}

bool Sidecar::GetBlocks(uint32_t key, std::vector<uint32_t>& blocks) {
    blocks.clear();
    return DecodeList(key, [&](uint32_t block) { blocks.push_back(block); });
}

bool Sidecar::NarrowBlocks(uint32_t key, std::vector<uint32_t>& blocks) {
    auto kept = blocks.begin();
    auto next = blocks.cbegin();
    const bool decoded = DecodeList(key, [&](uint32_t block) {
        while (next != blocks.cend() && *next < block)
            ++next;
        if (next != blocks.cend() && *next == block)
            *kept++ = *next++;
    });
    blocks.erase(kept, blocks.end());
    return decoded;
}

bool Sidecar::IsPageRead(uint32_t number) const {
    return number < state->pageSlots.size() && state->pageSlots[number] != 0;
}

bool Sidecar::GetLandmark(uint32_t block, uint32_t& offset) {
    const uint32_t number = block / PageLandmarks;
    if (!IsPageRead(number) && !LoadLandmarkPages({number}))
        return false;
    const uint32_t slot = state->pageSlots[number] - 1;
    offset = state->keptChunks[slot / ChunkPages]
                              [slot % ChunkPages * PageLandmarks + block % PageLandmarks];
    return true;
}

// Pages of landmarks, ascending, each checked against its checksum. A read costs about as much
// as copying a few pages, so pages close together are read at once, with those between them,
// and kept. They are kept close together, in chunks that are never copied to grow: every page
// of fresh memory that a search touches costs it about as much as a read.
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
        s.pageSlots.assign(pageCount, 0);
    }
    std::vector<uint32_t>& landmarks = s.readPages;
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
            if (IsPageRead(number))
                continue;
            const uint32_t slot = s.keptPages++;
            if (slot % ChunkPages == 0)
                s.keptChunks.push_back(
                    std::make_unique_for_overwrite<uint32_t[]>(size_t{ChunkPages} * PageLandmarks));
            std::copy(page, page + count,
                      s.keptChunks.back().get() + slot % ChunkPages * PageLandmarks);
            s.pageSlots[number] = slot + 1;
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
            !IsPageRead(number))
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
