#pragma once

#include "index/file_index_writer.h"
#include "index/index_data.h"
#include "index/volume_index_builder.h"
#include "loam/disk_file.h"
#include "quilt/auto_pref.h"
#include "quilt/button.h"
#include "quilt/dialog.h"
#include "quilt/edit_box.h"
#include "search/search_results_list.h"

#include <cstdint>
#include <memory>

class SorvantaApp;

// The window the user sees: the pattern with its history, Find and Options, the outcome of the
// last search, the results, and the Build Index button with the state of the index. It owns the
// one loaded index and, during a build, the file, the writer and the builder. A build writes
// only the file: the index in memory stays searchable until the new one replaces it.
//
// Its state is the pair of builder and buildFinished: no build, a build under way, or a build
// finished whose builder still exists, as the builder calls in from its own idle slice and
// must not be destroyed there. The next click, or the window's end, tidies it up.
class SorvantaWindow : public quilt::Dialog, public IndexBuilderMonitor {
public:
    // The application is not kept.
    explicit SorvantaWindow(SorvantaApp& application);
    ~SorvantaWindow() override;

    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    // The close box and Escape: stores the size and the automatic preferences, and ends the
    // program.
    void OnCancel() override;
    void OnInitDialog() override;

    void OnIndexProgress(const loam::FileSpec& folder) override;
    void OnIndexFinished() override;

    bool OnFind();
    bool OnBuildIndex();
    // The list's selection decides, not the row given.
    bool OnResultActivated(int32_t row);
    bool OnOptions();
    // The selected row's context menu, at the point that the list gives.
    bool OnResultMenu(int32_t where);
    bool OnOpenResult();
    bool OnShowResultInFolder();
    bool OnCopyResultPath();
    bool OnCopyResultName();

    static const quilt::MessageMap messageMap;

private:
    bool LoadIndex();
    void PickUpNewIndex();
    void ShowIndexStatus();
    void StartBuild();
    void CancelBuild();
    void FinishBuild();
    void DiscardBuild();
    void ShowOutcome(const loam::String& pattern, uint32_t startTick);
    void RestoreSize();

    static const quilt::MessageMapEntry entries[];

    std::unique_ptr<VolumeIndexBuilder> builder;
    std::unique_ptr<FileIndexWriter> writer;
    std::unique_ptr<loam::DiskFile> indexFile;
    quilt::EditBox indexStatus;
    quilt::Button buildButton;
    quilt::EditBox searchStatus;
    SearchResultsList resultsList;
    quilt::AutoPrefDropDownList searchPattern;
    quilt::AutoPrefCheckBox useRegExp;
    bool buildFinished = false;
    std::unique_ptr<IndexData> index;
    // The index file as the last load found it: another process may replace it.
    loam::FileStamp loadedStamp;
};
