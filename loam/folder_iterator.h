#pragma once

#include "loam/date_time.h"
#include "loam/file_spec.h"

#include <cstdint>
#include <memory>

namespace loam {

// What the folder iterator tells of an entry besides its path.
struct FolderEntryInfo {
    uint32_t size = 0; // the low 32 bits of the size
    bool isFolder = false;
    DateTime modified;
    uint64_t device = 0; // the file system that holds the entry
};

// What the iterator would tell of the entry at `path`, a symbolic link being an entry of its own.
// False, raising nothing, when the entry cannot be examined.
bool GetFolderEntryInfo(const FileSpec& path, FolderEntryInfo& info);

struct FolderSnapshot;

// Lists the entries of one folder, "." and ".." passed over. All entries with their kind, size
// and time are read when the folder is opened and its descriptor is closed at once, so that a
// deep walk holds no descriptor per level. A symbolic link is an entry, never a folder. A folder
// that cannot be opened lists as empty, which is not an error.
class FolderIterator {
public:
    // The pattern names the folder's entries ("/a/b/*.*"); the folder is its parent.
    explicit FolderIterator(const FileSpec& pattern);
    FolderIterator(const FolderIterator&) = delete;
    FolderIterator& operator=(const FolderIterator&) = delete;
    ~FolderIterator();

    void Open(const FileSpec& pattern);
    void Close();
    bool Next(FileSpec* path, FolderEntryInfo* info);
    const FileSpec& GetFolder() const { return folder; }

private:
    FileSpec folder;
    std::unique_ptr<FolderSnapshot> snapshot;
};

} // namespace loam
