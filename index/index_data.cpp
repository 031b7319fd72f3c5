#include "index/index_data.h"

#include "loam/disk_file.h"
#include "loam/error.h"

#include <cstring>
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

// The pass of BuildTables over the records, kept in locals so that nothing of it goes through
// memory from one record to the next. Its speed is that of the chain from one record's length to
// the next record's place, so nothing else it does may branch or wait on that chain.
struct RecordTally {
    const IndexRecord** table;
    const char* cursor;
    int32_t ordinal = 0;
    uint32_t files = 0;
    uint32_t folders = 0;
    uint64_t totalSize = 0;
    bool faulty = false;

    bool IsWellFormed() const { return !faulty; }

    // Enters the record at cursor, which lies wholly inside the buffer, and moves past it.
    // Padding is NUL, so a name block that holds its NUL ends in one; a parent is a record that
    // came before, and the mark of no parent, one below 0, is one step from every ordinal.
    void Take() {
        const auto* record = reinterpret_cast<const IndexRecord*>(cursor);
        const uint32_t nameLength = record->nameLength;
        const uint32_t parent = record->parent;
        const uint64_t fileMask = -static_cast<uint64_t>(record->kind == IndexKindFile);
        table[ordinal] = record;
        files += static_cast<uint32_t>(fileMask & 1);
        folders += record->kind == IndexKindFolder;
        totalSize += record->size & fileMask;
        cursor += sizeof(IndexRecord) + nameLength;
        // The last byte of the name block; of the fixed part when the block is empty.
        const char lastByte = cursor[-1];
        faulty |=
            (nameLength == 0) | (lastByte != '\0') | (parent + 1 > static_cast<uint32_t>(ordinal));
        ++ordinal;
    }
};

} // namespace

bool IndexData::Load(loam::FileSpec indexFile, IndexSource source) {
    Release();
    if (indexFile.GetKind() != loam::FileKindFile)
        return Fail(loam::ErrorGeneral, notFoundText);
    const uint32_t size = indexFile.GetFileSize();
    if (size == 0)
        return Fail(loam::ErrorGeneral, emptyText);
    if (size > MaxImageSize)
        return Fail(loam::ErrorGeneral, cannotLoadText);
    if (source == IndexSource::View && mapping.Open(indexFile, MaxImageSize))
        return TakeImage(mapping.GetData(), mapping.GetSize());
    auto bytes = AllocateLargeArray<char>(size);
    if (!bytes)
        return Fail(loam::ErrorGeneral, cannotLoadText);
    loam::DiskFile file;
    if (!file.OpenFile(indexFile, loam::FileModeRead))
        return Fail(loam::ErrorGeneral, cannotOpenText);
    if (!file.Read(bytes.get(), size, nullptr) || HasMoreBytes(file))
        return Fail(loam::ErrorGeneral, cannotLoadText);
    file.Close();
    return LoadImage(std::move(bytes), size);
}

bool IndexData::LoadImage(LargeArray<char> bytes, uint32_t imageSize) {
    Release();
    buffer = std::move(bytes);
    return TakeImage(buffer.get(), imageSize);
}

bool IndexData::TakeImage(const char* bytes, uint32_t imageSize) {
    image = bytes;
    bufferSize = imageSize;
    bool loaded = false;
    if (!image || imageSize < sizeof(IndexFileHeader) || imageSize > MaxImageSize) {
        Fail(loam::ErrorGeneral, notUnderstoodText);
    } else {
        std::memcpy(&header, image, sizeof header);
        if (header.version > IndexFormatVersion)
            Fail(loam::ErrorGeneral, newerVersionText);
        else
            loaded =
                BuildTables(image + sizeof(IndexFileHeader), imageSize - sizeof(IndexFileHeader));
    }
    // A failed index keeps nothing, so that no half-built table can ever be searched.
    if (!loaded)
        Release();
    return loaded;
}

void IndexData::Release() {
    buffer.reset();
    mapping.Close();
    image = nullptr;
    header = IndexFileHeader{};
    bufferSize = 0;
    records.reset();
    fileCount = 0;
    folderCount = 0;
    totalSize = 0;
    results.reset();
    resultCount = 0;
}

// One pass over the records. Every record is checked to lie wholly inside the buffer, to hold
// the NUL of its name, and to name an earlier record as its parent, so that nothing read later
// leaves the buffer and every walk up the parents ends.
bool IndexData::BuildTables(const char* firstRecord, uint32_t bytes) {
    fileCount = 0;
    folderCount = 0;
    totalSize = 0;
    if (!image)
        return Fail(loam::ErrorWrongState, internalFaultText);
    const int32_t count = header.recordCount;
    if (count < 0 || static_cast<uint32_t>(count) > bytes / MinRecordSize)
        return Fail(loam::ErrorGeneral, notUnderstoodText);
    records = AllocateLargeArray<const IndexRecord*>(count);
    results = AllocateLargeArray<const IndexRecord*>(count);
    if (!records || !results)
        return Fail(loam::ErrorGeneral, notUnderstoodText);
    RecordTally tally{records.get(), firstRecord};
    const char* const end = firstRecord + bytes;
    // While the longest record still fits before the end, no record can reach past it, and the
    // checks are gathered instead of each being a branch.
    if (bytes >= MaxRecordSize) {
        const char* const lastSafe = end - MaxRecordSize;
        while (tally.ordinal < count && tally.cursor <= lastSafe)
            tally.Take();
    }
    while (tally.ordinal < count && tally.IsWellFormed()) {
        const auto remaining = static_cast<size_t>(end - tally.cursor);
        if (remaining < sizeof(IndexRecord) ||
            sizeof(IndexRecord) + reinterpret_cast<const IndexRecord*>(tally.cursor)->nameLength >
                remaining)
            return Fail(loam::ErrorGeneral, notUnderstoodText);
        tally.Take();
    }
    if (!tally.IsWellFormed())
        return Fail(loam::ErrorGeneral, notUnderstoodText);
    fileCount = tally.files;
    folderCount = tally.folders;
    totalSize = tally.totalSize;
    resultCount = 0;
    return true;
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

// Parents always come before their entries in the file, so the walk up is short and ends.
void IndexData::GetFolderOf(const IndexRecord* record, loam::FileSpec& folder) const {
    std::vector<const IndexRecord*> chain;
    for (uint32_t parent = record->parent; parent != IndexNoParent;
         parent = records[parent]->parent)
        chain.push_back(records[parent]);
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
