#pragma once

#include "loam/file_spec.h"
#include "loam/string.h"
#include "quilt/button.h"
#include "quilt/dialog.h"
#include "quilt/progress_bar.h"

#include <cstdint>
#include <functional>

class ProgressDialog;

// Work done in one call, which keeps the program responsive by serving messages through the
// dialog's SetProgress while it runs.
class ProgressWorker_OneShot {
public:
    // Once the dialog stands, before the work.
    virtual void Prepare() = 0;
    virtual void Run(ProgressDialog& dialog) = 0;

protected:
    ~ProgressWorker_OneShot() = default;
};

// Runs a one-shot worker at its first timer tick, when the dialog is on the screen, with a bar
// and a Cancel button. Cancel only raises a flag: the work looks at it and ends itself, and the
// dialog closes when the work returns.
class ProgressDialog : public quilt::Dialog {
public:
    // Neither the worker nor the parent is owned.
    ProgressDialog(ProgressWorker_OneShot* worker, const loam::String& title,
                   quilt::Window* parent);

    void OnInitDialog() override;
    bool OnTimer(uint32_t id) override;
    void OnCancel() override;

    // Moves the bar, percent held within 0 to 100, repaints and serves waiting messages.
    void SetProgress(int32_t percent);
    bool IsCancelled() const { return closing; }

private:
    quilt::ProgressBar bar;
    quilt::Button cancelButton;
    loam::String title;
    ProgressWorker_OneShot* oneShotWorker;
    uint32_t timerId = 0;
    bool closing = false;
};

// Moves the index file to another folder: a copy made beside its new name and renamed over it,
// then the removal of the original. The original goes only once the copy is whole, so the index
// is never lost; a copy that fails or is cancelled leaves nothing at the destination. The mover
// shows no message: it leaves a status and a reason for the options dialog to tell.
class FileMover : public loam::CopyFileHandler, public ProgressWorker_OneShot {
public:
    enum Status : int32_t {
        // A cancel served before the work began: nothing was done.
        StatusNotRun = -1,
        StatusMoved = 0,
        StatusCancelled = 1,
        StatusNoSpace = 2,
        StatusTargetExists = 3,
        StatusCopyFailed = 4,
        StatusNotRemoved = 5,
        // The new place could not be stored: the copy was taken back, the original stays in
        // force.
        StatusNotStored = 6,
    };
    // Stores the folder that is to hold the index, the new one (true) or the old one (false);
    // false, with the error raised, when it cannot.
    using PlaceKeeper = std::function<bool(bool isNew)>;

    // Answers the free bytes, for the caller, of the volume that holds `path`; false when the
    // system cannot tell.
    using FreeSpaceQuery = bool (*)(const loam::FileSpec& path, uint32_t& bytes);

    FileMover(const loam::FileSpec& source, const loam::FileSpec& destination);

    // Every mover asks `query` from now on; null asks the volume itself again. A full volume is
    // not something a test can make without the rights to mount one.
    static void SetFreeSpaceQuery(FreeSpaceQuery query);
    // The index must always be where the settings say: the keeper stores the new place once the
    // copy is whole and before the original goes, and the old place again if the original
    // cannot go. Without a keeper the move stores nothing.
    void SetPlaceKeeper(PlaceKeeper keeper) { keepPlace = std::move(keeper); }

    void Prepare() override {}
    void Run(ProgressDialog& runner) override;
    bool OnCopyProgress(uint32_t bytesCopied) override;

    int32_t GetStatus() const { return status; }
    // False when there is no reason to tell.
    bool GetReason(loam::String& text) const;

private:
    void TakeReason();
    void TakeBackCopy();
    bool KeepPlace(bool isNew) { return !keepPlace || keepPlace(isNew); }
    static FreeSpaceQuery& GetFreeSpaceQuery();

    ProgressDialog* dialog = nullptr;
    loam::FileSpec source;
    loam::FileSpec destination;
    uint32_t fileSize = 0;
    int32_t status = StatusNotRun;
    loam::String reason;
    PlaceKeeper keepPlace;
};
