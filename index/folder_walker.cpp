#include "index/folder_walker.h"

#include "index/index_format.h"

#include <cstring>

FolderWalker::FolderWalker(FileIndexWriter* writer, const loam::FileSpec& path, FolderWalker* above,
                           const std::vector<loam::String>* walkRoots)
    : writer(writer), path(path) {
    loam::FolderEntryInfo info;
    const bool known = loam::GetFolderEntryInfo(path, info);
    if (above) {
        shared = above->shared;
        writer->AddFolder(path, info.modified);
    } else {
        ownShared = std::make_unique<Shared>();
        ownShared->device = info.device;
        ownShared->walkRoots = walkRoots;
        shared = ownShared.get();
        writer->AddRoot(path, info.modified);
    }
    // A folder that cannot be examined has no known file system to stay in.
    if (known && info.device == shared->device)
        OpenFolder();
}

FolderWalker::FolderWalker(FolderWalker& above, const loam::FileSpec& path,
                           const loam::FolderEntryInfo& info)
    : writer(above.writer), path(path), shared(above.shared) {
    writer->AddFolder(path, info.modified);
    if (info.device == shared->device)
        OpenFolder();
}

FolderWalker::~FolderWalker() = default;

void FolderWalker::OpenFolder() {
    loam::FileSpec pattern(path);
    pattern.Append("*.*");
    iterator = std::make_unique<loam::FolderIterator>(pattern);
}

bool FolderWalker::Walk(bool limited, int32_t* steps, bool* finished) {
    if (child) {
        const bool result = child->Walk(limited, steps, finished);
        if (!*finished)
            return result;
        child.reset();
    }
    loam::FileSpec& entry = shared->entry;
    loam::FolderEntryInfo& info = shared->info;
    for (;;) {
        if (limited && *steps <= 0) {
            *finished = false;
            return true;
        }
        if (!iterator || !iterator->Next(&entry, &info)) {
            *finished = true;
            return true;
        }
        if (!info.isFolder) {
            writer->AddFile(entry, info.size, info.modified);
            if (limited)
                --*steps;
            continue;
        }
        if (IsPassedOver(entry))
            continue;
        child.reset(new FolderWalker(*this, entry, info));
        const bool result = child->Walk(limited, steps, finished);
        if (*finished)
            child.reset();
        if (!result)
            return false;
    }
}

bool FolderWalker::WalkSteps(int32_t budget, bool* finished) {
    bool ownFinished = false;
    return Walk(true, &budget, finished ? finished : &ownFinished);
}

bool FolderWalker::WalkAll() {
    int32_t unused = 0;
    bool finished = false;
    return Walk(false, &unused, &finished);
}

void FolderWalker::GetCurrentFolder(loam::FileSpec* out) const {
    const FolderWalker* deepest = this;
    while (deepest->child)
        deepest = deepest->child.get();
    *out = deepest->path;
}

// A folder whose name the index cannot hold would leave everything below it without a parent.
bool FolderWalker::IsPassedOver(const loam::FileSpec& folder) const {
    const loam::String& text = folder.GetPath();
    int32_t separator = 0;
    text.FindLastChar(loam::NativeSeparator, &separator);
    return text.GetLength() - separator - 1 > MaxIndexNameLength || IsWalkRoot(text);
}

bool FolderWalker::IsWalkRoot(const loam::String& folder) const {
    if (!shared->walkRoots)
        return false;
    // A root ends in a separator, a path from the iterator does not.
    for (const loam::String& root : *shared->walkRoots) {
        if (root.GetLength() == folder.GetLength() + 1 &&
            std::memcmp(root.GetCString(), folder.GetCString(), folder.GetLength()) == 0)
            return true;
    }
    return false;
}
