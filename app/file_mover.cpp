#include "app/file_mover.h"

#include "loam/error.h"
#include "loam/volume_spec.h"
#include "quilt/application.h"
#include "quilt/timer.h"

#include <algorithm>

namespace {

constexpr char cancelledText[] = "User cancelled operation.";
constexpr quilt::Rect buttonSize{0, 0, 50, 14}; // dialog units
constexpr int32_t dialogWidth = 300;
constexpr int32_t edge = 6;

bool AskVolume(const loam::FileSpec& path, uint32_t& bytes) {
    return loam::VolumeSpec(path).GetFreeSpace(bytes);
}

} // namespace

ProgressDialog::ProgressDialog(ProgressWorker_OneShot* worker, const loam::String& titleText,
                               quilt::Window* parent)
    : Dialog(quilt::DynamicDialogResource, parent), title(titleText), oneShotWorker(worker) {}

// The work begins at the first tick, when the dialog is on the screen.
void ProgressDialog::OnInitDialog() {
    Dialog::OnInitDialog();
    SetText(title);
    quilt::Rect button = buttonSize;
    MapDialogRect(button);
    const int32_t width = button.GetWidth();
    const int32_t height = button.GetHeight();
    bar.Create(this, quilt::Rect{edge, edge, dialogWidth - edge, height + edge},
               quilt::NoControlId);
    bar.SetRange(0, 100);
    const int32_t left = dialogWidth / 2 - width / 2;
    cancelButton.Create(this, quilt::Rect{left, height + 12, left + width, 2 * height + 12},
                        quilt::IdCancel);
    cancelButton.SetText(loam::String("Cancel"));
    SetClientRect(quilt::Rect{0, 0, dialogWidth, 2 * height + 18});
    timerId = quilt::Timer::StartWindowTimer(false, 0, *this);
    oneShotWorker->Prepare();
}

bool ProgressDialog::OnTimer(uint32_t) {
    if (!closing) {
        oneShotWorker->Run(*this);
    }
    EndDialog(quilt::IdOK);
    return true;
}

// The work goes on until it looks at the flag; the dialog does not close before that.
void ProgressDialog::OnCancel() {
    closing = true;
}

void ProgressDialog::SetProgress(int32_t percent) {
    bar.SetPos(std::clamp(percent, 0, 100));
    Update();
    if (quilt::Application* application = quilt::Application::GetCurrent()) {
        application->PumpMessages();
    }
}

FileMover::FileMover(const loam::FileSpec& from, const loam::FileSpec& to)
    : source(from), destination(to) {}

void FileMover::SetFreeSpaceQuery(FreeSpaceQuery query) {
    GetFreeSpaceQuery() = query != nullptr ? query : AskVolume;
}

FileMover::FreeSpaceQuery& FileMover::GetFreeSpaceQuery() {
    static FreeSpaceQuery query = AskVolume;
    return query;
}

// Every failure ends in the status, with the error stack empty.
void FileMover::Run(ProgressDialog& runner) {
    dialog = &runner;
    status = StatusMoved;
    if (destination.GetKind() != loam::FileKindNone) {
        status = StatusTargetExists;
        return;
    }
    fileSize = source.GetFileSize();
    uint32_t freeBytes = 0;
    if (!GetFreeSpaceQuery()(destination, freeBytes)) {
        loam::ClearErrors();
    } else if (freeBytes < fileSize) {
        status = StatusNoSpace;
        return;
    }
    if (!source.Copy(destination, false, this)) {
        TakeReason();
        if (status != StatusCancelled) {
            status = StatusCopyFailed;
        }
        return;
    }
    // A kill from here on leaves the index where the settings say: at both places until the new
    // one is stored, then at the new one.
    if (!KeepPlace(true)) {
        TakeReason();
        TakeBackCopy();
        status = StatusNotStored;
        return;
    }
    if (source.Delete()) {
        runner.SetProgress(100);
        return;
    }
    TakeReason();
    // The copy goes back only once the settings name the old place again; otherwise the index
    // stays at the new place, which they name, and the original is a spare.
    if (!KeepPlace(false)) {
        loam::ClearErrors();
        return;
    }
    TakeBackCopy();
    status = StatusNotRemoved;
}

void FileMover::TakeBackCopy() {
    if (!destination.Delete()) {
        loam::ClearErrors();
    }
}

bool FileMover::OnCopyProgress(uint32_t bytesCopied) {
    if (dialog == nullptr) {
        return true;
    }
    const uint64_t percent =
        fileSize == 0 ? 100 : static_cast<uint64_t>(bytesCopied) * 100 / fileSize;
    dialog->SetProgress(static_cast<int32_t>(std::min<uint64_t>(percent, 100)));
    if (!dialog->IsCancelled()) {
        return true;
    }
    status = StatusCancelled;
    return loam::RaiseError(loam::ErrorGeneral, cancelledText);
}

bool FileMover::GetReason(loam::String& text) const {
    if (reason.IsEmpty()) {
        return false;
    }
    text = reason;
    return true;
}

void FileMover::TakeReason() {
    reason = loam::GetCurrentErrorInfo().GetMessage();
    loam::ClearErrors();
}
