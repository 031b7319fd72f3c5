#pragma once

#include "loam/string.h"
#include "quilt/button.h"
#include "quilt/dialog.h"
#include "quilt/job_worker.h"
#include "quilt/progress_bar.h"
#include "quilt/window.h"

#include <cstdint>

namespace quilt {

// Drives a job: slice after slice with nothing on the screen for a short grace time, so that a
// quick job stays invisible, then one slice per tick of a modal dialog with a progress bar and,
// if wanted, a Cancel button. Between two ticks the dialog serves the user.
class ProgressDialog : public Dialog, public JobController {
public:
    static constexpr uint32_t GraceTime = 300;
    static constexpr uint32_t TickInterval = 50;

    // Neither the worker nor the parent is owned.
    ProgressDialog(JobWorker* jobWorker, const loam::String& titleText, Window* parent);

    // Each runs the job to its end and answers true, or false when it was cancelled.
    bool RunWithBarNoCancel();
    bool RunWithBar();
    bool RunNoBar();
    bool RunAfterGrace(uint32_t grace);

    // Moves the bar, repaints and serves waiting messages, once the dialog is up with a bar;
    // before that, nothing.
    void SetProgress(int32_t newPercent) override;
    bool IsCancelled() override { return closing; }
    Window* GetWindow() override { return this; }

    bool OnTimer(uint32_t id) override;
    void OnCancel() override;
    void OnInitDialog() override;

private:
    void MoveBar(int32_t position);

    ProgressBar bar;
    Button cancelButton;
    loam::String title;
    JobWorker* worker;
    uint32_t timerId = 0;
    bool closing = false;
    bool showBar = false;
    bool showCancel = true;
    int32_t percent = 0;
    bool initialised = false;
    bool inSlice = false;
};

} // namespace quilt
