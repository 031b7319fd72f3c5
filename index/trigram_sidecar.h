#pragma once

#include "loam/file_spec.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// The trigram file beside an index: for each sequence of three bytes of the names, folded as a
// search folds them and with a NUL before and after each name, the blocks of records whose names
// hold it; and where each block starts in
// the index. A block is BlockRecords records in file order, so a reader that knows the blocks a
// name must lie in reads those records alone, and a record's folders through the same table.
//
// The file says which index it belongs to (its size, time, inode, and a checksum of its first
// and last bytes) and checksums every part a reader takes, so that a file that is stale or
// damaged is refused and the reader goes through the whole index as it always could. The index
// itself is never changed by it.
namespace trigram {

constexpr uint32_t BlockRecords = 16;
// Keys of three folded bytes take 24 bits; the keys above them list the blocks that hold a name
// at least as long as one of these lengths.
constexpr uint32_t LongNameKeyBase = 1u << 24;
constexpr int32_t LongNameLengths[] = {16, 32, 64, 128};

inline uint32_t KeyOf(const char* threeFoldedBytes) {
    const auto* at = reinterpret_cast<const uint8_t*>(threeFoldedBytes);
    return static_cast<uint32_t>(at[0]) << 16 | static_cast<uint32_t>(at[1]) << 8 | at[2];
}
inline uint32_t LongNameKey(int32_t length) {
    return LongNameKeyBase | static_cast<uint32_t>(length);
}

// The trigram file of an index file: its name with ".trigrams" added.
loam::FileSpec FileBeside(const loam::FileSpec& indexFile);

uint64_t Checksum(const void* bytes, size_t length, uint64_t seed = 0);

// Gathers the key and block of every three bytes of the names while a build writes its records,
// sorted and written out in runs that keep its memory small, and writes the file from the runs
// once the index is sealed.
class SidecarWriter {
public:
    // The memory that the keys and blocks gathered between two runs may take.
    static constexpr size_t DefaultKeptListBytes = size_t{4} << 20;

    explicit SidecarWriter(const loam::FileSpec& indexFile,
                           size_t keptListBytes = DefaultKeptListBytes);
    SidecarWriter(const SidecarWriter&) = delete;
    SidecarWriter& operator=(const SidecarWriter&) = delete;
    ~SidecarWriter();

    // The next record of the index, as written: its name and its whole length in the file.
    void AddRecord(const char* name, int32_t nameLength, uint32_t recordBytes);
    // Writes the file beside the sealed and closed index, made beside its name and renamed
    // over it. An index whose length is not what its records add up to, as after a failed
    // write, gets none, and an older one is removed: the finder then reads the whole index.
    // False, with nothing raised, when no file was made.
    bool Write(const loam::FileSpec& indexFile);

    struct Runs;

private:
    using ListTaker =
        std::function<bool(uint32_t key, uint32_t blocks, const std::vector<uint8_t>& bytes)>;

    void AddPair(uint64_t pair);
    bool WriteRun();
    bool ForEachList(const ListTaker& take);

    std::unique_ptr<Runs> runs;
    std::vector<uint32_t> landmarks;
    uint64_t indexBytes;
    int32_t recordCount = 0;
    std::string folded;
    // Key and block of every key of every name since the last run, and room to sort them.
    std::vector<uint64_t> pairs;
    std::vector<uint64_t> spare;
    static constexpr int RecentPairBits = 12;
    std::vector<uint64_t> recentPairs = std::vector<uint64_t>(size_t{1} << RecentPairBits, 0);
    size_t keptPairs;
    // Whether a run could not be written, which leaves no whole lists to write.
    bool failed = false;
};

// Writes the trigram file of an index file that is already on the disk, from its records as
// they load. False, with nothing raised, when it cannot be loaded or the file not written.
bool WriteFileOf(const loam::FileSpec& indexFile,
                 size_t keptListBytes = SidecarWriter::DefaultKeptListBytes);

// A trigram file opened for one search, over the index it belongs to, both held open so that
// what was checked is what is read. Every part read is checked against its checksum; any
// failure says only that the file cannot serve.
class Sidecar {
public:
    Sidecar();
    Sidecar(const Sidecar&) = delete;
    Sidecar& operator=(const Sidecar&) = delete;
    ~Sidecar();

    // False, with nothing raised, when either file is missing or they do not belong together.
    bool Open(const loam::FileSpec& indexFile);

    int32_t GetRecordCount() const;
    uint32_t GetBlockCount() const;
    // How many blocks a key lists, which is what reading its list costs; 0 for a key not in
    // the file.
    bool CountBlocks(uint32_t key, uint32_t& count);
    // The ascending blocks listed under a key; none for a key not in the file.
    bool GetBlocks(uint32_t key, std::vector<uint32_t>& blocks);
    // Keeps of the ascending blocks those that a key lists; none for a key not in the file.
    bool NarrowBlocks(uint32_t key, std::vector<uint32_t>& blocks);
    // The records of each of the ascending blocks, as they lie in the index, handed to `take`
    // a block at a time, each checked to be whole, to end its names with a NUL and to name
    // earlier records as parents. Blocks that lie close together in the index are read at
    // once. False when a block fails its checks or `take` refuses one.
    // The bytes that the ascending blocks' records take in the index.
    bool MeasureBlocks(const std::vector<uint32_t>& blocks, uint64_t& bytes);
    using BlockTaker = std::function<bool(uint32_t block, const char* bytes, size_t length)>;
    bool ReadBlocks(const std::vector<uint32_t>& blocks, const BlockTaker& take);

private:
    struct State;
    // Reads and checks the bytes of a key's list, and says how many blocks it holds.
    bool ReadList(uint32_t key, uint32_t& count);
    template <typename Take> bool DecodeList(uint32_t key, Take take);
    bool IsPageRead(uint32_t number) const;
    bool GetLandmark(uint32_t block, uint32_t& offset);
    bool LoadLandmarkPages(const std::vector<uint32_t>& numbers);
    bool LoadLandmarksOf(const std::vector<uint32_t>& blocks);
    bool GetBlockBytes(uint32_t block, uint32_t& start, uint32_t& end);
    bool CheckBlock(uint32_t block, const char* bytes, size_t length) const;

    std::unique_ptr<State> state;
};

} // namespace trigram
