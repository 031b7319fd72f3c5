#include "loam/folder_iterator.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace loam {

// An open folder: its descriptor while it is held, who it is, and the names read from it but
// not yet listed, each ending in a NUL.
struct FolderListing {
    int descriptor = -1;
    dev_t device = 0;
    ino_t inode = 0;
    std::vector<char> names;
    size_t next = 0;
    bool allRead = false;

    ~FolderListing() { CloseDescriptor(); }
    void CloseDescriptor() {
        if (descriptor >= 0)
            ::close(descriptor);
        descriptor = -1;
    }
};

namespace {

constexpr size_t batchSize = 32 * 1024;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

int CloseWithError(int descriptor, int error) {
    ::close(descriptor);
    errno = error;
    return -1;
}

bool IsDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

void FillInfo(const struct stat& status, FolderEntryInfo& info) {
    info.size = static_cast<uint32_t>(status.st_size);
    info.isFolder = S_ISDIR(status.st_mode);
    info.modified = DateTime(static_cast<int32_t>(status.st_mtime));
    info.device = status.st_dev;
}

// Takes the descriptor, or closes it when it is no folder.
std::unique_ptr<FolderListing> StartListing(int descriptor) {
    struct stat status;
    if (descriptor < 0)
        return nullptr;
    if (::fstat(descriptor, &status) != 0 || !S_ISDIR(status.st_mode)) {
        ::close(descriptor);
        return nullptr;
    }
    auto listing = std::make_unique<FolderListing>();
    listing->descriptor = descriptor;
    listing->device = status.st_dev;
    listing->inode = status.st_ino;
    return listing;
}

// Appends the next batch of names to those not yet listed; false when there are no more.
bool ReadBatch(FolderListing& listing) {
    alignas(dirent64) char buffer[batchSize];
    const ssize_t count = getdents64(listing.descriptor, buffer, sizeof buffer);
    if (count <= 0) {
        listing.allRead = true;
        return false;
    }
    for (ssize_t offset = 0; offset < count;) {
        const auto* record = reinterpret_cast<const dirent64*>(buffer + offset);
        offset += record->d_reclen;
        if (!IsDotOrDotDot(record->d_name))
            listing.names.insert(listing.names.end(), record->d_name,
                                 record->d_name + std::strlen(record->d_name) + 1);
    }
    return true;
}

// Makes sure a name is waiting; false when the folder has no more.
bool HasWaitingName(FolderListing& listing) {
    while (listing.next == listing.names.size()) {
        listing.names.clear();
        listing.next = 0;
        if (listing.allRead || listing.descriptor < 0 || !ReadBatch(listing))
            return false;
    }
    return true;
}

// False when the entry is gone since its folder was read. An entry that exists but cannot be
// examined (in a folder that may be read but not searched) keeps its name, as a file of size 0
// and time 0 that a walk never enters.
bool Examine(const FolderListing& listing, const char* name, FolderEntryInfo& info) {
    info = FolderEntryInfo();
    struct stat status;
    if (::fstatat(listing.descriptor, name, &status, AT_SYMLINK_NOFOLLOW) == 0)
        FillInfo(status, info);
    else if (errno == ENOENT)
        return false;
    return true;
}

// A path ending in "/" is resolved through a final symbolic link whatever the flags say.
String WithoutFinalSeparator(const FileSpec& location) {
    String path(location.GetPath());
    const int32_t length = path.GetLength();
    if (length > 1 && path.GetCString()[length - 1] == '/')
        path.Truncate(length - 1);
    return path;
}

// Opens a folder by a path of any length: a path that the system would refuse whole is opened a
// part at a time, each part below the folder that the one before opened.
int OpenFolderPath(const String& path) {
    const char* text = path.GetCString();
    if (path.GetLength() < PATH_MAX)
        return ::open(text, folderFlags);
    int descriptor = ::open(text[0] == '/' ? "/" : ".", folderFlags);
    for (const char* part = text; descriptor >= 0 && *part;) {
        while (*part == '/')
            ++part;
        const char* end = part;
        for (const char* at = part; *at && at - part < PATH_MAX - 1; ++at) {
            if (at[1] == '/' || at[1] == 0)
                end = at + 1;
        }
        if (end == part)
            return CloseWithError(descriptor, ENAMETOOLONG);
        const std::string piece(part, end);
        const int below = ::openat(descriptor, piece.c_str(), folderFlags);
        ::close(descriptor);
        descriptor = below;
        part = end;
    }
    return descriptor;
}

bool IsSameFolder(int descriptor, const FolderListing& listing) {
    struct stat status;
    return ::fstat(descriptor, &status) == 0 && status.st_dev == listing.device &&
           status.st_ino == listing.inode;
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

FolderIterator::FolderIterator(const FolderIterator& above, const char* name) {
    if (above.listing && above.listing->descriptor >= 0)
        listing = StartListing(::openat(above.listing->descriptor, name, folderFlags));
}

FolderIterator::~FolderIterator() = default;

void FolderIterator::Open(const FileSpec& pattern) {
    Close();
    folder.Clear();
    if (pattern.GetParent(folder))
        listing = StartListing(::open(WithoutFinalSeparator(folder).GetCString(), folderFlags));
}

void FolderIterator::Close() {
    listing.reset();
}

bool FolderIterator::IsOpen() const {
    return listing != nullptr;
}

bool FolderIterator::Next(FileSpec* path, FolderEntryInfo* info) {
    const char* name = nullptr;
    if (!NextName(&name, info))
        return false;
    if (path) {
        *path = folder;
        path->Append(name);
    }
    return true;
}

bool FolderIterator::NextName(const char** name, FolderEntryInfo* info) {
    FolderEntryInfo examined;
    while (listing && HasWaitingName(*listing)) {
        const char* waiting = &listing->names[listing->next];
        listing->next += std::strlen(waiting) + 1;
        if (!Examine(*listing, waiting, examined))
            continue;
        *name = waiting;
        if (info)
            *info = examined;
        return true;
    }
    return false;
}

void FolderIterator::Suspend() {
    if (!listing || listing->descriptor < 0)
        return;
    while (!listing->allRead)
        ReadBatch(*listing);
    listing->CloseDescriptor();
}

void FolderIterator::Resume(const FolderIterator& below, const FileSpec& path) {
    if (!listing || listing->descriptor >= 0)
        return;
    int descriptor = below.listing && below.listing->descriptor >= 0
                         ? ::openat(below.listing->descriptor, "..", folderFlags)
                         : -1;
    // The folder below was moved away: this one may still be where it was.
    if (descriptor >= 0 && !IsSameFolder(descriptor, *listing)) {
        ::close(descriptor);
        descriptor = -1;
    }
    if (descriptor < 0)
        descriptor = OpenFolderPath(WithoutFinalSeparator(path));
    if (descriptor >= 0 && IsSameFolder(descriptor, *listing)) {
        listing->descriptor = descriptor;
        return;
    }
    if (descriptor >= 0)
        ::close(descriptor);
    listing.reset();
}

} // namespace loam
