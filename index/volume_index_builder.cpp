#include "index/volume_index_builder.h"

#include "loam/error.h"
#include "loam/mount_table.h"

#include <algorithm>
#include <cstring>

VolumeIndexBuilder::VolumeIndexBuilder(IndexBuilderMonitor* monitor) : monitor(monitor) {
    const std::vector<char> drives = loam::GetDriveStrings();
    for (const char* root = drives.data(); *root; root += std::strlen(root) + 1) {
        // A root named twice would be walked twice.
        if (loam::GetDriveType(root) == loam::DriveFixed &&
            std::find(roots.begin(), roots.end(), root) == roots.end())
            roots.emplace_back(root);
    }
}

VolumeIndexBuilder::~VolumeIndexBuilder() = default;

bool VolumeIndexBuilder::Start(FileIndexWriter* newWriter) {
    if (writer)
        return RaiseBuildInProgress();
    finished = false;
    writer = newWriter;
    EnableIdle();
    return true;
}

bool VolumeIndexBuilder::IsRunning(loam::FileSpec* folder) const {
    if (!writer)
        return false;
    if (folder && walker)
        walker->GetCurrentFolder(folder);
    return true;
}

bool VolumeIndexBuilder::RunSteps(FileIndexWriter* stepWriter, int32_t budget, bool* done) {
    while (rootIndex < roots.size()) {
        if (!walker) {
            walker = std::make_unique<FolderWalker>(stepWriter, loam::FileSpec(roots[rootIndex]),
                                                    nullptr, &roots);
        }
        // Every volume gets the whole budget, so one call may add that much on each of them.
        bool volumeDone = false;
        const bool result = walker->WalkSteps(budget, &volumeDone);
        if (!volumeDone) {
            if (done)
                *done = false;
            if (monitor) {
                loam::FileSpec folder;
                walker->GetCurrentFolder(&folder);
                monitor->OnIndexProgress(folder);
            }
            return result;
        }
        if (!result)
            return false;
        walker.reset();
        ++rootIndex;
    }
    if (done)
        *done = true;
    return true;
}

bool VolumeIndexBuilder::RunToCompletion(FileIndexWriter* stepWriter) {
    return RunSteps(stepWriter, INT32_MAX, nullptr);
}

bool VolumeIndexBuilder::OnIdle(uint32_t) {
    if (!writer) {
        DisableIdle();
        return false;
    }
    if (!RunSteps(writer, SliceSteps, &finished)) {
        loam::ClearErrors();
        writer = nullptr;
        DisableIdle();
        return false;
    }
    if (!finished)
        return true;
    writer->Finish();
    writer = nullptr;
    if (monitor)
        monitor->OnIndexFinished();
    DisableIdle();
    return false;
}
