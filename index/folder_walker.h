#pragma once

#include "index/file_index_writer.h"
#include "loam/file_spec.h"
#include "loam/folder_iterator.h"
#include "loam/string.h"

#include <cstdint>
#include <memory>
#include <vector>

// Walks one folder level and, through a chain of walkers below it, the whole tree under it,
// handing every folder and file to the writer. The walk can stop after a number of files and go
// on later exactly where it stopped: the chain of walkers is its state.
//
// A walk stays in the file system of its root: a folder of another one is written as an empty
// folder. It passes over the roots of other walks, which add those folders themselves. Names of
// every length go to the writer, which stores what a record cannot hold in its own way. A
// symbolic link is a file and is never followed. Paths of any length are walked, and the walk holds
// two descriptors however deep it goes.
//
// Its memory grows with the depth of the tree and with the names still to come in the folders
// of the chain above the one under walk (each of those is read whole when the walk goes down
// from it); never with the size of the disk. The path under walk is kept once, not per level.
class FolderWalker {
public:
    // Writes the folder's record at once: a walker with nothing above is a root. `walkRoots`,
    // each ending in a separator, are passed over by this walk; the walkers below share them.
    FolderWalker(FileIndexWriter* writer, const loam::FileSpec& path, FolderWalker* above,
                 const std::vector<loam::String>* walkRoots = nullptr);
    FolderWalker(const FolderWalker&) = delete;
    FolderWalker& operator=(const FolderWalker&) = delete;
    ~FolderWalker();

    // One step is one file handed to the writer; with `limited` false the steps are left alone.
    // `finished` tells whether the tree is done or the steps ran out first.
    bool Walk(bool limited, int32_t* steps, bool* finished);
    bool WalkSteps(int32_t budget, bool* finished);
    bool WalkAll();
    // The deepest folder under walk.
    void GetCurrentFolder(loam::FileSpec* out) const;

private:
    // What the walkers of one walk share.
    struct Shared {
        uint64_t device = 0;
        const std::vector<loam::String>* walkRoots = nullptr;
        // The path of the deepest walker; each walker knows how much of it is its own.
        loam::FileSpec folder;
        // The entry under look, reused for every entry so that a file costs no allocation.
        loam::FileSpec entry;
        loam::FolderEntryInfo info;
    };

    // A sub-folder `name` of `above`, whose path is the shared entry.
    FolderWalker(FolderWalker& above, const char* name, const loam::FolderEntryInfo& info);

    FolderWalker* GetDeepest();
    // Takes a finished sub-folder's walk off the chain and goes on with this folder.
    void EndChild();
    bool IsPassedOver(const loam::FileSpec& folder) const;
    bool IsWalkRoot(const loam::String& folder) const;

    FileIndexWriter* writer;
    FolderWalker* above;
    int32_t pathLength;
    // The root of a walk owns what its walkers share.
    std::unique_ptr<Shared> ownShared;
    Shared* shared;
    std::unique_ptr<loam::FolderIterator> iterator;
    std::unique_ptr<FolderWalker> child;
};
