#pragma once

#include "index/file_index_writer.h"
#include "index/volume_index_builder.h"
#include "loam/disk_file.h"
#include "quilt/dialog.h"
#include "quilt/edit_box.h"

#include <cstdint>
#include <memory>

// The whole program in a run with /buildindex: a minimised window that rebuilds the index file
// from scratch and ends the program, with no click needed. It shows only the folder that the
// walk is in; it polls the build rather than being told.
class BuildIndexWindow : public quilt::Dialog {
public:
    static constexpr uint32_t TickInterval = 100;

    BuildIndexWindow();
    ~BuildIndexWindow() override;

    bool OnTimer(uint32_t id) override;
    // From Quit, or from the tick that sees the index sealed. Quit during a build leaves an
    // abandoned index, which loads as empty.
    void OnCancel() override;
    void OnInitDialog() override;

private:
    void StartBuild();
    void ShowProgress(uint32_t timerId);
    void DiscardBuild();
    void CheckWrittenIndex();
    void ReportFailure();

    quilt::EditBox folderLine;
    std::unique_ptr<VolumeIndexBuilder> builder;
    std::unique_ptr<FileIndexWriter> writer;
    // Kept after a failed open, for the next attempt.
    std::unique_ptr<loam::DiskFile> indexFile;
};
