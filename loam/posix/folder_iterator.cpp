#include "loam/folder_iterator.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace loam {

// A folder's entries as read at opening: the names packed one after another, each ending in a
// NUL, and per entry where its name starts and what it is.
struct FolderSnapshot {
    struct Entry {
        size_t nameOffset;
        FolderEntryInfo info;
    };
    std::vector<char> names;
    std::vector<Entry> entries;
    size_t next = 0;
};

namespace {

bool IsDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

void FillInfo(const struct stat& status, FolderEntryInfo& info) {
    info.size = static_cast<uint32_t>(status.st_size);
    info.isFolder = S_ISDIR(status.st_mode);
    info.modified = DateTime(static_cast<int32_t>(status.st_mtime));
    info.device = status.st_dev;
}

void AddEntry(int folder, const char* name, FolderSnapshot& snapshot) {
    FolderEntryInfo info;
    struct stat status;
    if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0) {
        FillInfo(status, info);
    } else if (errno == ENOENT) {
        // Gone since the folder was read. An entry that exists but cannot be examined (in a
        // folder that may be read but not searched) keeps its name, as a file of size 0 and
        // time 0 that the walk never enters.
        return;
    }
    snapshot.entries.push_back({snapshot.names.size(), info});
    snapshot.names.insert(snapshot.names.end(), name, name + std::strlen(name) + 1);
}

void ReadEntries(int folder, FolderSnapshot& snapshot) {
    alignas(dirent64) char buffer[32 * 1024];
    for (;;) {
        const ssize_t count = getdents64(folder, buffer, sizeof buffer);
        if (count <= 0)
            return;
        // The records hold more than their names, so this is room enough for this batch.
        const size_t needed = snapshot.names.size() + static_cast<size_t>(count);
        if (snapshot.names.capacity() < needed)
            snapshot.names.reserve(std::max(needed, 2 * snapshot.names.capacity()));
        for (ssize_t offset = 0; offset < count;) {
            const auto* record = reinterpret_cast<const dirent64*>(buffer + offset);
            offset += record->d_reclen;
            if (!IsDotOrDotDot(record->d_name))
                AddEntry(folder, record->d_name, snapshot);
        }
    }
}

// A path ending in "/" is resolved through a final symbolic link whatever the flags say.
String WithoutFinalSeparator(const FileSpec& location) {
    String path(location.GetPath());
    const int32_t length = path.GetLength();
    if (length > 1 && path.GetCString()[length - 1] == '/')
        path.Truncate(length - 1);
    return path;
}

std::unique_ptr<FolderSnapshot> ReadFolder(const FileSpec& folder) {
    const String path = WithoutFinalSeparator(folder);
    const int descriptor = open(path.GetCString(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    auto snapshot = std::make_unique<FolderSnapshot>();
    ReadEntries(descriptor, *snapshot);
    close(descriptor);
    if (snapshot->entries.empty())
        return nullptr;
    return snapshot;
}

} // namespace

bool GetFolderEntryInfo(const FileSpec& path, FolderEntryInfo& info) {
    struct stat status;
    if (fstatat(AT_FDCWD, WithoutFinalSeparator(path).GetCString(), &status, AT_SYMLINK_NOFOLLOW) !=
        0)
        return false;
    FillInfo(status, info);
    return true;
}

FolderIterator::FolderIterator(const FileSpec& pattern) {
    Open(pattern);
}

FolderIterator::~FolderIterator() = default;

void FolderIterator::Open(const FileSpec& pattern) {
    Close();
    folder.Clear();
    if (pattern.GetParent(folder))
        snapshot = ReadFolder(folder);
}

void FolderIterator::Close() {
    snapshot.reset();
}

bool FolderIterator::Next(FileSpec* path, FolderEntryInfo* info) {
    if (!snapshot)
        return false;
    const FolderSnapshot::Entry& entry = snapshot->entries[snapshot->next++];
    if (path) {
        *path = folder;
        path->Append(&snapshot->names[entry.nameOffset]);
    }
    if (info)
        *info = entry.info;
    // The last entry frees the names at once, before a walk goes down into it.
    if (snapshot->next == snapshot->entries.size())
        snapshot.reset();
    return true;
}

} // namespace loam
