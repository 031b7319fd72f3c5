#pragma once

#include "index/index_format.h"
#include "index/large_array.h"
#include "loam/date_time.h"
#include "loam/file_spec.h"
#include "loam/string.h"

#include <cstdint>
#include <memory>

namespace loam {
class DiskFile;
}

namespace quilt {
class Window;
}

// What a scan keeps of its matches: the records and the folders above them, which outlive their
// window so that their paths can be told, or only their number.
enum class ScanMatches { Kept, Counted };

// A loaded index file: the file's bytes in one buffer, a table of pointers to its records, and
// the result table of the last search. Paths are rebuilt on demand from the parent ordinals.
class IndexData {
public:
    IndexData();
    IndexData(const IndexData&) = delete;
    IndexData& operator=(const IndexData&) = delete;
    ~IndexData();

    // Reads the file into memory of the program's own, which stays whatever becomes of the file.
    bool Load(loam::FileSpec indexFile);
    // Takes the whole image of an index file, checks it and builds the tables.
    bool LoadImage(LargeArray<char> image, uint32_t imageSize);

    // For a reader that goes through the records once, in file order, and shows nothing before
    // the last of them is checked: the file passes through one buffer a piece at a time, and the
    // record table holds a window of its records. Neither the whole image nor a table over every
    // record is made, which cost such a reader more than its search; what outlives a window,
    // its results and its folders, is copied. Fails as Load fails, and takes the first window.
    bool Scan(loam::FileSpec indexFile, ScanMatches matches = ScanMatches::Kept);
    bool ScanImage(LargeArray<char> image, uint32_t imageSize,
                   ScanMatches matches = ScanMatches::Kept);
    // Moves the table of a scan on to the records after its window: empty once the window has
    // passed the last record. A damaged record fails with the words of Load, and releases all.
    bool TakeNextWindow();
    void Release();
    bool IsLoaded() const { return image != nullptr; }

    // Runs a search under a progress dialog and leaves its matches in the result table.
    bool Search(const loam::String& pattern, bool isRegExp, bool autoWildcards,
                quilt::Window* parent);

    // The record table, in file order: every record, or those of the window. Every ordinal below
    // GetRecordCount is valid.
    int32_t GetRecordCount() const { return tableCount; }
    const IndexRecord* const* GetRecords() const { return records.get(); }
    const IndexRecord* GetRecord(int32_t ordinal) const { return records[ordinal]; }
    const IndexFileHeader* GetHeader() const { return image ? &header : nullptr; }

    uint32_t GetFileCount() const { return fileCount; }
    uint32_t GetFolderCount() const { return folderCount; }
    uint64_t GetTotalSize() const { return totalSize; }

    void ClearResults() { resultCount = 0; }
    // A counted scan has no result table.
    void AddResult(const IndexRecord* record) {
        if (results)
            results[resultCount] = scan ? KeepCopy(record) : record;
        ++resultCount;
    }
    int32_t GetResultCount() const { return resultCount; }
    const IndexRecord* GetResult(int32_t index) const { return results[index]; }
    bool IsResultFolder(int32_t index) const;
    uint32_t GetResultSize(int32_t index) const;
    loam::DateTime GetResultDate(int32_t index) const;
    loam::String GetResultName(int32_t index) const;
    loam::String GetResultFolder(int32_t index) const;
    loam::String GetResultPath(int32_t index) const;
    uint64_t GetResultsTotalSize() const;

    // Of a scan, for a result or a folder that a window has passed.
    void GetFolderOf(const IndexRecord* record, loam::FileSpec& folder) const;
    // The record of the folder that holds `record`; null for a root.
    const IndexRecord* GetParentOf(const IndexRecord* record) const;
    loam::String GetPathOf(const IndexRecord* record) const;

    // One line per record of the table, full paths with a separator after each folder.
    void DumpToText(const loam::FileSpec& textFile) const;
    // A record's line in the text dump: its full path, a folder's ending in the separator.
    loam::String GetDumpLine(const IndexRecord* record) const;

private:
    struct ScanState;

    bool TakeImage(const char* bytes, uint32_t imageSize);
    bool StartScan(ScanMatches matches);
    bool SetAsideImage(uint32_t size, int32_t recordCount);
    bool ReadImage(loam::DiskFile& file, uint32_t size, uint32_t done);
    bool TableQuietly(uint32_t bytesRead, uint32_t size);
    bool TableReadRecords(uint32_t bytesRead, uint32_t size);
    bool CheckHeader(const char* bytes, uint32_t imageSize);
    bool BuildTables(uint32_t bytes);
    bool StartTables(uint32_t bytes);
    bool TakeRecords(int32_t count, bool endIsFileEnd);
    template <bool notesFolders> bool TakeRecords(int32_t count, bool endIsFileEnd);
    bool FillChunk();
    void KeepWindow();
    const IndexRecord* KeepCopy(const IndexRecord* record);
    const IndexRecord* GetRecordByOrdinal(uint32_t ordinal) const;
    bool IsResult(int32_t index) const { return index >= 0 && index < resultCount; }

    // The image is the buffer's bytes, or a scan's piece.
    LargeArray<char> buffer;
    // Room for the record and result tables behind the image, in the buffer's block, when the
    // count in the header has been seen before the image was set aside; null otherwise.
    const IndexRecord** tableRoom = nullptr;
    const char* image = nullptr;
    // The header as loaded, kept apart from the image, of which a scan holds only a piece.
    IndexFileHeader header{};
    uint32_t bufferSize = 0;
    LargeArray<const IndexRecord*> records;
    int32_t tableCount = 0;
    // The ordinal of the table's first record, and where the record after the table starts.
    int32_t windowFirst = 0;
    const char* nextRecord = nullptr;
    // Set for a scan only.
    std::unique_ptr<ScanState> scan;
    uint32_t fileCount = 0;
    uint32_t folderCount = 0;
    uint64_t totalSize = 0;
    LargeArray<const IndexRecord*> results;
    int32_t resultCount = 0;
};
