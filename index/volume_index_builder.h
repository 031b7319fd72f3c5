#pragma once

#include "index/file_index_writer.h"
#include "index/folder_walker.h"
#include "loam/file_spec.h"
#include "loam/string.h"
#include "quilt/application.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// How a running build reports to the window that started it.
class IndexBuilderMonitor {
public:
    virtual void OnIndexProgress(const loam::FileSpec& folder) = 0;
    // The index has been sealed.
    virtual void OnIndexFinished() = 0;

protected:
    ~IndexBuilderMonitor() = default;
};

// Walks every fixed volume into a writer, in idle slices of the main loop or in one call. A
// builder is good for one build: it takes the list of volumes when it is made, and it only
// moves forward through it.
class VolumeIndexBuilder : public quilt::IdleHandler {
public:
    // Files per volume in one idle slice: the longest the walk holds up the window.
    static constexpr int32_t SliceSteps = 500;

    explicit VolumeIndexBuilder(IndexBuilderMonitor* monitor);
    ~VolumeIndexBuilder() override;

    bool Start(FileIndexWriter* writer);
    // Forgets the writer, which is neither finished nor told.
    void Stop() { writer = nullptr; }
    // While a build runs, puts the folder under walk in `folder` if one is.
    bool IsRunning(loam::FileSpec* folder) const;
    // Walks on for up to `budget` files on each volume it reaches.
    bool RunSteps(FileIndexWriter* stepWriter, int32_t budget, bool* done);
    bool RunToCompletion(FileIndexWriter* stepWriter);
    bool OnIdle(uint32_t idleCount) override;

private:
    FileIndexWriter* writer = nullptr;
    // The fixed volumes' roots in mount order, each once and ending in a separator.
    std::vector<loam::String> roots;
    size_t rootIndex = 0;
    std::unique_ptr<FolderWalker> walker;
    bool finished = false;
    IndexBuilderMonitor* monitor;
};
