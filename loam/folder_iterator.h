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

struct FolderListing;

// Lists the entries of one folder, "." and ".." passed over. Names are read a batch at a time
// as they are asked for, and the kind, size and time of an entry only when it is reached, so a
// folder of any size costs little at a time. A symbolic link is an entry, never a folder. A
// folder that cannot be opened lists as empty, which is not an error.
//
// A sub-folder is opened through the descriptor of the folder above, so a path of any length
// can be listed. A walk lets go of a folder's descriptor while it lists a sub-folder (Suspend)
// and takes it back through the sub-folder's (Resume): it holds a descriptor for the folder
// under walk and the one just below it, however deep the tree.
class FolderIterator {
public:
    // The pattern names the folder's entries ("/a/b/*.*"); the folder is its parent.
    explicit FolderIterator(const FileSpec& pattern);
    // The sub-folder `name` of the folder that `above` lists; Next gives names, not paths.
    FolderIterator(const FolderIterator& above, const char* name);
    FolderIterator(const FolderIterator&) = delete;
    FolderIterator& operator=(const FolderIterator&) = delete;
    ~FolderIterator();

    void Open(const FileSpec& pattern);
    void Close();
    bool IsOpen() const;
    bool Next(FileSpec* path, FolderEntryInfo* info);
    // The next entry's name, valid until the next call.
    bool NextName(const char** name, FolderEntryInfo* info);
    const FileSpec& GetFolder() const { return folder; }

    // Reads the names not yet listed and closes the folder's descriptor.
    void Suspend();
    // Opens the folder again as the parent of `below`, a sub-folder listed since Suspend, or
    // else by its path. If neither is this folder any more (it was moved meanwhile), the
    // listing ends here.
    void Resume(const FolderIterator& below, const FileSpec& path);

private:
    FileSpec folder;
    std::unique_ptr<FolderListing> listing;
};

} // namespace loam
