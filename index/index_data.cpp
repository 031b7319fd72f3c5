#include "index/index_data.h"

#include "loam/disk_file.h"
#include "loam/error.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <vector>

namespace {

const char* const notFoundText = "The index file was not found.";
const char* const emptyText = "The index file does not contain any data.";
const char* const cannotOpenText = "The index file could not be opened to load the data.";
const char* const cannotLoadText = "The index file data could not be loaded.";
const char* const newerVersionText =
    "Index file was built by a newer version of Sorvanta (and cannot be used)";
const char* const internalFaultText =
    "Sorvanta has encountered an internal fault - please report this problem.";
const char* const notUnderstoodText =
    "Warning: Index file is not understood by this version of Sorvanta.";

// Positions and sizes of files are 32-bit signed in the base library, so a larger index cannot
// be read whole, and is refused rather than loaded in part.
constexpr uint32_t MaxImageSize = 0x7FFFFFFF;
// The fixed part and a name block that holds at least its NUL.
constexpr uint32_t MinRecordSize = sizeof(IndexRecord) + 1;
constexpr uint32_t MaxRecordSize = sizeof(IndexRecord) + UINT8_MAX;

// A scan's records: a window is tabled at a time, so that the table stays in the nearer caches
// while the search goes over it, out of a piece of the file of some windows' length. The piece's
// buffer is small and used again and again: fresh memory, on this system's first touch of each
// page, costs more than the search, and a small piece is still in the nearer caches when the
// pass reaches what was read into it.
constexpr int32_t WindowRecords = 4096;
constexpr uint32_t ChunkBytes = 1 << 18;
// A piece is topped up once less than this is left of it, so that a window seldom ends early.
constexpr uint32_t RefillBelow = ChunkBytes / 2;
// One record in so many is a landmark, from which any record is found again by steps forward.
constexpr uint32_t LandmarkSpacing = 64;
// What outlives a window is copied into blocks of one huge page each.
constexpr uint32_t CopyBlockBytes = 2 << 20;

// How far ahead of the pass its memory is asked for: the chain from record to record leaves the
// processor no room to fetch ahead by itself.
constexpr ptrdiff_t PrefetchDistance = 4096;

bool Fail(uint32_t code, const char* text) {
    return loam::GetErrorState().RaiseError(code, loam::SeverityError, text);
}

// The file may have grown, or have a size that 32 bits do not hold: then there is more to read.
bool HasMoreBytes(loam::File& file) {
    loam::GetErrorState().SaveState();
    char byte;
    uint32_t count = 0;
    file.Read(&byte, 1, &count);
    loam::GetErrorState().RestoreState();
    return count != 0;
}

// The pass over the records, kept in locals so that nothing of it goes through memory from one
// record to the next. Its speed is that of the chain from one record's length to the next
// record's place, so nothing else it does may branch or wait on that chain.
struct RecordTally {
    const IndexRecord** slot;
    // Where the next folder's ordinal goes, when the folders are noted.
    int32_t* folderSlot;
    const char* cursor;
    int32_t ordinal;
    uint32_t files;
    uint32_t folders;
    uint64_t totalSize;
    bool faulty = false;

    bool IsWellFormed() const { return !faulty; }

    // Enters the record at cursor, which lies wholly inside the buffer, and moves past it.
    // Padding is NUL, so a name block that holds its NUL ends in one; a parent is a record that
    // came before, and the mark of no parent, one below 0, is one step from every ordinal.
    template <bool notesFolders> void Take() {
        const auto* record = reinterpret_cast<const IndexRecord*>(cursor);
        __builtin_prefetch(cursor + PrefetchDistance);
        const uint32_t nameLength = record->nameLength;
        const uint32_t parent = record->parent;
        const uint64_t fileMask = -static_cast<uint64_t>(record->kind == IndexKindFile);
        *slot++ = record;
        files += static_cast<uint32_t>(fileMask & 1);
        const bool isFolder = record->kind == IndexKindFolder;
        if constexpr (notesFolders) {
            *folderSlot = ordinal;
            folderSlot += isFolder;
        }
        folders += isFolder;
        totalSize += record->size & fileMask;
        cursor += sizeof(IndexRecord) + nameLength;
        // The last byte of the name block; of the fixed part when the block is empty.
        const char lastByte = cursor[-1];
        faulty |=
            (nameLength == 0) | (lastByte != '\0') | (parent + 1 > static_cast<uint32_t>(ordinal));
        ++ordinal;
    }
};

size_t RecordBytes(const IndexRecord* record) {
    return sizeof(IndexRecord) + record->nameLength;
}

} // namespace

// What a scan holds beside the window: where its bytes come from, the piece of them in the
// buffer, and the copies of what outlives a window.
struct IndexData::ScanState {
    // The bytes come from the file, or from an image given whole.
    loam::DiskFile file;
    LargeArray<char> image;
    uint32_t size = 0;
    // The piece: chunkBytes bytes from the source's offset chunkOffset.
    LargeArray<char> chunk;
    uint32_t chunkOffset = 0;
    uint32_t chunkBytes = 0;
    // Copies of records, in blocks that never move.
    std::vector<LargeArray<char>> blocks;
    size_t blockUsed = CopyBlockBytes;
    // Whether the matches and their folders are kept, and the ordinals of the window's folders,
    // as the pass notes them.
    bool keepsMatches = true;
    std::unique_ptr<int32_t[]> windowFolders;
    int32_t windowFolderCount = 0;
    // The folders passed so far, by ordinal, and the offsets of the landmarks: room for every
    // record is set aside at the start, and only what is filled is ever touched.
    LargeArray<uint32_t> folderOrdinals;
    LargeArray<const IndexRecord*> folderCopies;
    uint32_t foldersKept = 0;
    LargeArray<uint32_t> landmarks;
    uint32_t landmarkCount = 0;
    // Parents that are not folders, which only a damaged but loadable file has, found again.
    std::map<uint32_t, const IndexRecord*> others;

    bool SetAsideFolders(int32_t recordCount) {
        const auto count = static_cast<uint32_t>(recordCount);
        folderOrdinals = AllocateHugePageArray<uint32_t>(count);
        folderCopies = AllocateHugePageArray<const IndexRecord*>(count);
        landmarks = AllocateHugePageArray<uint32_t>(count / LandmarkSpacing + 1);
        return folderOrdinals && folderCopies && landmarks;
    }

    bool Read(uint32_t offset, char* into, uint32_t bytes) {
        if (image) {
            std::memcpy(into, image.get() + offset, bytes);
            return true;
        }
        return file.SeekFromStart(static_cast<int32_t>(offset)) && file.Read(into, bytes, nullptr);
    }

    const IndexRecord* Keep(const IndexRecord* record) {
        const size_t bytes = RecordBytes(record);
        if (blockUsed + bytes > CopyBlockBytes) {
            auto block = AllocateHugePageArray<char>(CopyBlockBytes);
            blocks.push_back(block ? std::move(block) : LargeArray<char>(new char[CopyBlockBytes]));
            blockUsed = 0;
        }
        char* copy = blocks.back().get() + blockUsed;
        std::memcpy(copy, record, bytes);
        blockUsed += bytes;
        return reinterpret_cast<const IndexRecord*>(copy);
    }

    // A record that the scan has passed, read again from its landmark on.
    // Null if the file cannot be read again, which is no error of the caller's.
    const IndexRecord* FindAgain(uint32_t ordinal) {
        const uint32_t offset = landmarks[ordinal / LandmarkSpacing];
        std::vector<char> bytes(std::min<size_t>(LandmarkSpacing * MaxRecordSize, size - offset));
        loam::GetErrorState().SaveState();
        const bool read = Read(offset, bytes.data(), static_cast<uint32_t>(bytes.size()));
        loam::GetErrorState().RestoreState();
        if (!read)
            return nullptr;
        const auto* record = reinterpret_cast<const IndexRecord*>(bytes.data());
        for (uint32_t step = ordinal % LandmarkSpacing; step > 0; --step)
            record = record->GetNextRecord();
        return others[ordinal] = Keep(record);
    }
};

IndexData::IndexData() = default;

IndexData::~IndexData() {
    Release();
}

bool IndexData::Load(loam::FileSpec indexFile) {
    Release();
    if (indexFile.GetKind() != loam::FileKindFile)
        return Fail(loam::ErrorGeneral, notFoundText);
    const uint32_t size = indexFile.GetFileSize();
    if (size == 0)
        return Fail(loam::ErrorGeneral, emptyText);
    if (size > MaxImageSize)
        return Fail(loam::ErrorGeneral, cannotLoadText);
    loam::DiskFile file;
    if (!file.OpenFile(indexFile, loam::FileModeRead))
        return Fail(loam::ErrorGeneral, cannotOpenText);
    IndexFileHeader first{};
    const auto headerBytes = static_cast<uint32_t>(std::min<size_t>(size, sizeof first));
    if (!file.Read(&first, headerBytes, nullptr) || !SetAsideImage(size, first.recordCount))
        return Fail(loam::ErrorGeneral, cannotLoadText);
    std::memcpy(buffer.get(), &first, headerBytes);
    return ReadImage(file, size, headerBytes);
}

// The image and, behind it, room for its two tables, in one block: the first touch of each small
// page costs this system more than reading what fills it, and a block has small pages only in
// its last, partial huge page. That page then falls in the result table, which a search touches
// only as far as its matches reach. A count that the file cannot hold gets no room: the checks
// refuse it later.
bool IndexData::SetAsideImage(uint32_t size, int32_t recordCount) {
    const auto count = static_cast<uint32_t>(recordCount);
    const bool plausible = size >= sizeof(IndexFileHeader) && recordCount > 0 &&
                           count <= (size - sizeof(IndexFileHeader)) / MinRecordSize;
    const size_t imageBytes =
        (size + sizeof(IndexRecord*) - 1) / sizeof(IndexRecord*) * sizeof(IndexRecord*);
    if (plausible)
        buffer = AllocateLargeBytes(imageBytes + 2 * sizeof(IndexRecord*) * count);
    if (buffer) {
        tableRoom = reinterpret_cast<const IndexRecord**>(buffer.get() + imageBytes);
        std::uninitialized_default_construct_n(tableRoom, 2 * size_t(count));
        return true;
    }
    buffer = AllocateLargeBytes(size);
    return buffer != nullptr;
}

// The file comes in a piece at a time, and each piece's records are tabled while the piece is
// still in the nearer caches: tabling the whole image after the read would fetch it all from
// memory a second time. The tabling is quiet, since a file that cannot be read fails as
// unreadable whatever its records hold; a damaged file is checked again whole once it is read,
// and fails with the words that the checks of a whole image give.
bool IndexData::ReadImage(loam::DiskFile& file, uint32_t size, uint32_t done) {
    bool tabling = TableQuietly(done, size);
    while (done < size) {
        const uint32_t piece = std::min(ChunkBytes, size - done);
        if (!file.Read(buffer.get() + done, piece, nullptr)) {
            Release();
            return Fail(loam::ErrorGeneral, cannotLoadText);
        }
        done += piece;
        tabling = tabling && TableQuietly(done, size);
    }
    if (HasMoreBytes(file)) {
        Release();
        return Fail(loam::ErrorGeneral, cannotLoadText);
    }
    return tabling || TakeImage(buffer.get(), size);
}

bool IndexData::TableQuietly(uint32_t bytesRead, uint32_t size) {
    loam::GetErrorState().SaveState();
    const bool tabled = TableReadRecords(bytesRead, size);
    loam::GetErrorState().RestoreState();
    return tabled;
}

// Tables the records that lie wholly within the first bytesRead bytes of the image, once its
// header has come.
bool IndexData::TableReadRecords(uint32_t bytesRead, uint32_t size) {
    if (!records) {
        if (bytesRead < sizeof(IndexFileHeader) && bytesRead < size)
            return true;
        if (!CheckHeader(buffer.get(), size) || !StartTables(size - sizeof(IndexFileHeader)))
            return false;
        nextRecord = image + sizeof(IndexFileHeader);
    }
    bufferSize = bytesRead;
    return TakeRecords(header.recordCount - tableCount, bytesRead == size);
}

bool IndexData::LoadImage(LargeArray<char> bytes, uint32_t imageSize) {
    Release();
    buffer = std::move(bytes);
    return TakeImage(buffer.get(), imageSize);
}

bool IndexData::TakeImage(const char* bytes, uint32_t imageSize) {
    // A failed index keeps nothing, so that no half-built table can ever be searched.
    if (CheckHeader(bytes, imageSize) && BuildTables(imageSize - sizeof(IndexFileHeader)))
        return true;
    Release();
    return false;
}

// The same checks as Load, in the same order, with the whole read put off: the size is checked
// for more bytes at once, and the first piece is read.
bool IndexData::Scan(loam::FileSpec indexFile, ScanMatches matches) {
    Release();
    if (indexFile.GetKind() != loam::FileKindFile)
        return Fail(loam::ErrorGeneral, notFoundText);
    const uint32_t size = indexFile.GetFileSize();
    if (size == 0)
        return Fail(loam::ErrorGeneral, emptyText);
    if (size > MaxImageSize)
        return Fail(loam::ErrorGeneral, cannotLoadText);
    scan = std::make_unique<ScanState>();
    scan->size = size;
    if (!scan->file.OpenFile(indexFile, loam::FileModeRead)) {
        Release();
        return Fail(loam::ErrorGeneral, cannotOpenText);
    }
    if (!scan->file.SeekFromStart(static_cast<int32_t>(size)) || HasMoreBytes(scan->file)) {
        Release();
        return Fail(loam::ErrorGeneral, cannotLoadText);
    }
    return StartScan(matches);
}

bool IndexData::ScanImage(LargeArray<char> bytes, uint32_t imageSize, ScanMatches matches) {
    Release();
    scan = std::make_unique<ScanState>();
    scan->image = std::move(bytes);
    scan->size = scan->image ? imageSize : 0;
    return StartScan(matches);
}

bool IndexData::StartScan(ScanMatches matches) {
    scan->chunk = AllocateHugePageArray<char>(ChunkBytes);
    if (!scan->chunk) {
        Release();
        return Fail(loam::ErrorGeneral, cannotLoadText);
    }
    scan->keepsMatches = matches == ScanMatches::Kept;
    if (scan->keepsMatches)
        scan->windowFolders = std::make_unique_for_overwrite<int32_t[]>(WindowRecords + 1);
    if (FillChunk() && CheckHeader(scan->chunk.get(), scan->size) &&
        BuildTables(scan->size - sizeof(IndexFileHeader)))
        return true;
    Release();
    return false;
}

// Moves what is left of the piece to the front of the buffer and reads on behind it.
bool IndexData::FillChunk() {
    ScanState& piece = *scan;
    const bool first = nextRecord == nullptr;
    const auto kept = first ? 0 : static_cast<uint32_t>(image + bufferSize - nextRecord);
    const uint32_t offset = piece.chunkOffset + piece.chunkBytes - kept;
    if (kept > 0)
        std::memmove(piece.chunk.get(), nextRecord, kept);
    const uint32_t bytes = std::min(ChunkBytes - kept, piece.size - (offset + kept));
    if (bytes > 0 && !piece.Read(offset + kept, piece.chunk.get() + kept, bytes))
        return Fail(loam::ErrorGeneral, cannotLoadText);
    piece.chunkOffset = offset;
    piece.chunkBytes = kept + bytes;
    image = piece.chunk.get();
    bufferSize = piece.chunkBytes;
    nextRecord = first ? image + sizeof(IndexFileHeader) : image;
    return true;
}

bool IndexData::CheckHeader(const char* bytes, uint32_t imageSize) {
    image = bytes;
    bufferSize = scan ? scan->chunkBytes : imageSize;
    if (!image || imageSize < sizeof(IndexFileHeader) || imageSize > MaxImageSize)
        return Fail(loam::ErrorGeneral, notUnderstoodText);
    std::memcpy(&header, image, sizeof header);
    if (header.version > IndexFormatVersion)
        return Fail(loam::ErrorGeneral, newerVersionText);
    return true;
}

void IndexData::Release() {
    buffer.reset();
    tableRoom = nullptr;
    scan.reset();
    image = nullptr;
    header = IndexFileHeader{};
    bufferSize = 0;
    records.reset();
    tableCount = 0;
    windowFirst = 0;
    nextRecord = nullptr;
    fileCount = 0;
    folderCount = 0;
    totalSize = 0;
    results.reset();
    resultCount = 0;
}

// Every record is checked to lie wholly inside the file, to hold the NUL of its name, and to
// name an earlier record as its parent, so that nothing read later leaves the buffer and every
// walk up the parents ends.
bool IndexData::BuildTables(uint32_t bytes) {
    if (!StartTables(bytes))
        return false;
    if (!scan) {
        nextRecord = image + sizeof(IndexFileHeader);
        return TakeRecords(header.recordCount, true);
    }
    if (scan->keepsMatches && !scan->SetAsideFolders(header.recordCount))
        return Fail(loam::ErrorGeneral, notUnderstoodText);
    if (!TakeRecords(std::min(header.recordCount, WindowRecords), scan->chunkBytes == scan->size))
        return false;
    KeepWindow();
    return true;
}

// Checks the record count against the file's length and sets aside the tables, still empty.
bool IndexData::StartTables(uint32_t bytes) {
    fileCount = 0;
    folderCount = 0;
    totalSize = 0;
    if (!image)
        return Fail(loam::ErrorWrongState, internalFaultText);
    const int32_t count = header.recordCount;
    if (count < 0 || static_cast<uint32_t>(count) > bytes / MinRecordSize)
        return Fail(loam::ErrorGeneral, notUnderstoodText);
    const int32_t tableSize = scan ? std::min(count, WindowRecords) : count;
    const bool keepsMatches = !scan || scan->keepsMatches;
    if (tableRoom) {
        records = LargeArray<const IndexRecord*>(tableRoom, LargeArrayRelease::Borrowed());
        results = LargeArray<const IndexRecord*>(tableRoom + count, LargeArrayRelease::Borrowed());
    } else {
        records = AllocateLargeArray<const IndexRecord*>(tableSize);
        if (keepsMatches)
            results = AllocateLargeArray<const IndexRecord*>(count);
    }
    if (!records || (keepsMatches && !results))
        return Fail(loam::ErrorGeneral, notUnderstoodText);
    resultCount = 0;
    tableCount = 0;
    return true;
}

bool IndexData::TakeNextWindow() {
    if (!scan)
        return Fail(loam::ErrorWrongState, internalFaultText);
    windowFirst += tableCount;
    tableCount = 0;
    const bool moreToRead = scan->chunkOffset + scan->chunkBytes < scan->size;
    if (moreToRead && image + bufferSize - nextRecord < static_cast<ptrdiff_t>(RefillBelow) &&
        !FillChunk()) {
        Release();
        return false;
    }
    const bool endIsFileEnd = scan->chunkOffset + scan->chunkBytes == scan->size;
    if (!TakeRecords(std::min(header.recordCount - windowFirst, WindowRecords), endIsFileEnd)) {
        Release();
        return false;
    }
    KeepWindow();
    return true;
}

// One pass over at most count records, from nextRecord on, which join the table. A record that
// reaches past the end of the buffer is damage at the end of the file, and otherwise ends the
// pass early.
bool IndexData::TakeRecords(int32_t count, bool endIsFileEnd) {
    return scan && scan->keepsMatches ? TakeRecords<true>(count, endIsFileEnd)
                                      : TakeRecords<false>(count, endIsFileEnd);
}

template <bool notesFolders> bool IndexData::TakeRecords(int32_t count, bool endIsFileEnd) {
    RecordTally tally{records.get() + tableCount,
                      notesFolders ? scan->windowFolders.get() : nullptr,
                      nextRecord,
                      windowFirst + tableCount,
                      fileCount,
                      folderCount,
                      totalSize};
    const int32_t end = tally.ordinal + count;
    const char* const imageEnd = image + bufferSize;
    // While the longest record still fits before the end, no record can reach past it, and the
    // checks are gathered instead of each being a branch.
    if (imageEnd - tally.cursor >= static_cast<ptrdiff_t>(MaxRecordSize)) {
        const char* const lastSafe = imageEnd - MaxRecordSize;
        while (tally.ordinal < end && tally.cursor <= lastSafe)
            tally.Take<notesFolders>();
    }
    while (tally.ordinal < end && tally.IsWellFormed()) {
        const auto remaining = static_cast<size_t>(imageEnd - tally.cursor);
        if (remaining < sizeof(IndexRecord) ||
            sizeof(IndexRecord) + reinterpret_cast<const IndexRecord*>(tally.cursor)->nameLength >
                remaining) {
            if (endIsFileEnd)
                return Fail(loam::ErrorGeneral, notUnderstoodText);
            break;
        }
        tally.Take<notesFolders>();
    }
    if (!tally.IsWellFormed())
        return Fail(loam::ErrorGeneral, notUnderstoodText);
    nextRecord = tally.cursor;
    fileCount = tally.files;
    folderCount = tally.folders;
    totalSize = tally.totalSize;
    tableCount = tally.ordinal - windowFirst;
    if constexpr (notesFolders)
        scan->windowFolderCount =
            static_cast<int32_t>(tally.folderSlot - scan->windowFolders.get());
    return true;
}

// Copies the window's folders and notes its landmarks before the buffer is used again. A counted
// scan keeps nothing.
void IndexData::KeepWindow() {
    ScanState& kept = *scan;
    if (!kept.keepsMatches)
        return;
    const int32_t end = windowFirst + tableCount;
    for (int32_t ordinal = (windowFirst + LandmarkSpacing - 1) / LandmarkSpacing * LandmarkSpacing;
         ordinal < end; ordinal += LandmarkSpacing) {
        const auto* at = reinterpret_cast<const char*>(records[ordinal - windowFirst]);
        kept.landmarks[kept.landmarkCount++] = kept.chunkOffset + static_cast<uint32_t>(at - image);
    }
    for (int32_t slot = 0; slot < kept.windowFolderCount; ++slot) {
        const int32_t ordinal = kept.windowFolders[slot];
        kept.folderOrdinals[kept.foldersKept] = static_cast<uint32_t>(ordinal);
        kept.folderCopies[kept.foldersKept++] = kept.Keep(records[ordinal - windowFirst]);
    }
}

const IndexRecord* IndexData::KeepCopy(const IndexRecord* record) {
    return scan->Keep(record);
}

// A scan's parent is one of the folders it has passed or, in a damaged but loadable file, a
// record of another kind read again.
const IndexRecord* IndexData::GetRecordByOrdinal(uint32_t ordinal) const {
    if (!scan)
        return records[ordinal];
    const uint32_t* const first = scan->folderOrdinals.get();
    const uint32_t* const end = first + scan->foldersKept;
    const uint32_t* const folder = std::lower_bound(first, end, ordinal);
    if (folder != end && *folder == ordinal)
        return scan->folderCopies[static_cast<size_t>(folder - first)];
    const auto other = scan->others.find(ordinal);
    return other != scan->others.end() ? other->second : scan->FindAgain(ordinal);
}

bool IndexData::IsResultFolder(int32_t index) const {
    return IsResult(index) && results[index]->IsFolder();
}

uint32_t IndexData::GetResultSize(int32_t index) const {
    return IsResult(index) ? results[index]->size : 0;
}

loam::DateTime IndexData::GetResultDate(int32_t index) const {
    return IsResult(index) ? loam::DateTime(results[index]->modified) : loam::DateTime();
}

loam::String IndexData::GetResultName(int32_t index) const {
    return loam::String(results[index]->GetName());
}

loam::String IndexData::GetResultFolder(int32_t index) const {
    loam::FileSpec folder;
    GetFolderOf(results[index], folder);
    return folder.GetPath();
}

loam::String IndexData::GetResultPath(int32_t index) const {
    return GetPathOf(results[index]);
}

uint64_t IndexData::GetResultsTotalSize() const {
    uint64_t total = 0;
    for (int32_t i = 0; i < resultCount; ++i)
        total += results[i]->size;
    return total;
}

const IndexRecord* IndexData::GetParentOf(const IndexRecord* record) const {
    return record->parent == IndexNoParent ? nullptr : GetRecordByOrdinal(record->parent);
}

// Parents always come before their entries in the file, so the walk up is short and ends.
void IndexData::GetFolderOf(const IndexRecord* record, loam::FileSpec& folder) const {
    std::vector<const IndexRecord*> chain;
    for (uint32_t parent = record->parent; parent != IndexNoParent; parent = chain.back()->parent) {
        const IndexRecord* up = GetRecordByOrdinal(parent);
        if (!up)
            break;
        chain.push_back(up);
    }
    folder.Clear();
    if (chain.empty())
        return;
    // A root's name is a whole path and is taken as it stands, leading separator and all.
    folder = loam::FileSpec(chain.back()->GetName());
    for (auto level = chain.rbegin() + 1; level != chain.rend(); ++level)
        folder.AppendPath((*level)->GetName());
}

loam::String IndexData::GetPathOf(const IndexRecord* record) const {
    loam::FileSpec path;
    GetFolderOf(record, path);
    path.Append(record->GetName());
    return path.GetPath();
}

loam::String IndexData::GetDumpLine(const IndexRecord* record) const {
    loam::String line = GetPathOf(record);
    if (record->IsFolder() && !line.IsEmpty() &&
        line.GetCString()[line.GetLength() - 1] != loam::NativeSeparator)
        line.Append(loam::NativeSeparator);
    return line;
}

// The dump takes its name's place only once it is whole.
void IndexData::DumpToText(const loam::FileSpec& textFile) const {
    loam::DiskFile file;
    if (!file.CreateBeside(textFile)) {
        loam::ClearErrors();
        return;
    }
    for (int32_t ordinal = 0; ordinal < GetRecordCount(); ++ordinal) {
        if (!file.WriteLine(GetDumpLine(records[ordinal]))) {
            loam::ClearErrors();
            return;
        }
    }
    if (!file.PutInPlace())
        loam::ClearErrors();
}
