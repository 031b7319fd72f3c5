#include "quilt/progress_dialog.h"

#include "quilt/application.h"
#include "quilt/clock.h"
#include "quilt/timer.h"

#include <algorithm>

namespace quilt {

namespace {

// The dialog's layout in pixels: a bar across a 300 pixel wide dialog, the button centred below.
constexpr int32_t dialogWidth = 300;
constexpr int32_t edge = 6;
constexpr int32_t spacing = 12;
constexpr Rect buttonSize{0, 0, 50, 14}; // dialog units

} // namespace

ProgressDialog::ProgressDialog(JobWorker* jobWorker, const loam::String& titleText, Window* parent)
    : Dialog(DynamicDialogResource, parent), title(titleText), worker(jobWorker) {}

bool ProgressDialog::RunWithBarNoCancel() {
    showBar = true;
    showCancel = false;
    return RunAfterGrace(GraceTime);
}

bool ProgressDialog::RunWithBar() {
    showBar = true;
    showCancel = true;
    return RunAfterGrace(GraceTime);
}

bool ProgressDialog::RunNoBar() {
    showBar = false;
    return RunAfterGrace(GraceTime);
}

// Slices follow each other with no pause and no window until the grace time is over, so a quick
// job never shows a dialog; a slice that runs long stretches the grace.
bool ProgressDialog::RunAfterGrace(uint32_t grace) {
    percent = 0;
    uint32_t deadline = GetTickCount() + grace;
    while (worker != nullptr && !IsTickReached(GetTickCount(), deadline)) {
        if (worker->RunSlice(this, &percent) == 0) {
            return true;
        }
    }
    return RunModal(true) == IdOK;
}

void ProgressDialog::OnInitDialog() {
    Dialog::OnInitDialog();
    SetText(title);
    Rect button = buttonSize;
    MapDialogRect(button);
    int32_t width = button.GetWidth();
    int32_t height = button.GetHeight();
    int32_t barBottom = -edge;
    if (showBar) {
        barBottom = height;
        bar.Create(this, Rect{edge, edge, dialogWidth - edge, barBottom + edge}, NoControlId);
        bar.SetRange(0, 100);
    }
    int32_t buttonHeight = -edge;
    if (showCancel) {
        int32_t left = dialogWidth / 2 - width / 2;
        int32_t top = barBottom + spacing;
        cancelButton.Create(this, Rect{left, top, left + width, top + height}, IdCancel);
        cancelButton.SetText(loam::String("Cancel"));
        buttonHeight = height;
    }
    SetClientRect(Rect{0, 0, dialogWidth, buttonHeight + barBottom + spacing});
    if (worker != nullptr) {
        timerId = Timer::StartWindowTimer(true, TickInterval, *this);
    }
    initialised = true;
}

bool ProgressDialog::OnTimer(uint32_t) {
    if (closing) {
        EndDialog(IdOK);
        return true;
    }
    // A slice that serves messages through SetProgress lets the next tick in: it must wait.
    if (inSlice) {
        return true;
    }
    inSlice = true;
    int32_t result = worker->RunSlice(this, &percent);
    inSlice = false;
    if (result == 0) {
        EndDialog(IdOK);
    } else if (showBar) {
        MoveBar(percent);
    }
    return true;
}

void ProgressDialog::OnCancel() {
    closing = true;
    Timer::Stop(timerId);
    if (worker != nullptr) {
        worker->JobClosed(this);
    }
    Dialog::OnCancel();
}

void ProgressDialog::SetProgress(int32_t newPercent) {
    if (!showBar || !initialised) {
        return;
    }
    MoveBar(newPercent);
    Update();
    Application* application = Application::GetCurrent();
    if (application != nullptr && application->GetImp() != nullptr) {
        application->PumpMessages();
    }
}

void ProgressDialog::MoveBar(int32_t position) {
    bar.SetPos(std::clamp(position, 0, 100));
}

} // namespace quilt
