#include "index/folder_walker.h"

#include <cstring>

FolderWalker::FolderWalker(FileIndexWriter* writer, const loam::FileSpec& path,
                           FolderWalker* aboveWalker, const std::vector<loam::String>* walkRoots)
    : writer(writer), above(nullptr), pathLength(path.GetPath().GetLength()),
      ownShared(std::make_unique<Shared>()), shared(ownShared.get()) {
    loam::FolderEntryInfo info;
    const bool known = loam::GetFolderEntryInfo(path, info);
    shared->device = aboveWalker ? aboveWalker->shared->device : info.device;
    shared->walkRoots = aboveWalker ? aboveWalker->shared->walkRoots : walkRoots;
    shared->folder = path;
    if (aboveWalker)
        writer->AddFolder(path, info.modified);
    else
        writer->AddRoot(path, info.modified);
    // A folder that cannot be examined has no known file system to stay in.
    if (!known || info.device != shared->device)
        return;
    loam::FileSpec pattern(path);
    pattern.Append("*.*");
    iterator = std::make_unique<loam::FolderIterator>(pattern);
}

FolderWalker::FolderWalker(FolderWalker& above, const char* name, const loam::FolderEntryInfo& info)
    : writer(above.writer), above(&above), shared(above.shared) {
    shared->folder = shared->entry;
    pathLength = shared->folder.GetPath().GetLength();
    writer->AddFolder(shared->folder, info.modified);
    if (info.device != shared->device)
        return;
    iterator = std::make_unique<loam::FolderIterator>(*above.iterator, name);
    // The folder above needs its descriptor again only when this one is done.
    if (iterator->IsOpen())
        above.iterator->Suspend();
}

// A deep chain is taken down from the top, one walker at a time, not by recursion.
FolderWalker::~FolderWalker() {
    std::unique_ptr<FolderWalker> next = std::move(child);
    while (next)
        next = std::move(next->child);
}

// Every slice goes on in the deepest walker of the chain, and the walk moves down and up the
// chain in a loop, so the depth of the tree costs no stack.
bool FolderWalker::Walk(bool limited, int32_t* steps, bool* finished) {
    FolderWalker* current = GetDeepest();
    loam::FileSpec& entry = shared->entry;
    loam::FolderEntryInfo& info = shared->info;
    const char* name = nullptr;
    for (;;) {
        if (limited && *steps <= 0) {
            *finished = false;
            return true;
        }
        if (!current->iterator || !current->iterator->NextName(&name, &info)) {
            if (current == this) {
                *finished = true;
                return true;
            }
            current = current->above;
            current->EndChild();
            continue;
        }
        entry = shared->folder;
        entry.Append(name);
        if (!info.isFolder) {
            writer->AddFile(entry, info.size, info.modified);
            if (limited)
                --*steps;
            continue;
        }
        if (current->IsPassedOver(entry))
            continue;
        current->child.reset(new FolderWalker(*current, name, info));
        current = current->child.get();
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
    *out = shared->folder;
}

FolderWalker* FolderWalker::GetDeepest() {
    FolderWalker* deepest = this;
    while (deepest->child)
        deepest = deepest->child.get();
    return deepest;
}

void FolderWalker::EndChild() {
    shared->folder = loam::FileSpec(shared->folder.GetPath().Left(pathLength));
    if (iterator && child->iterator)
        iterator->Resume(*child->iterator, shared->folder);
    child.reset();
}

bool FolderWalker::IsPassedOver(const loam::FileSpec& folder) const {
    return IsWalkRoot(folder.GetPath());
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
