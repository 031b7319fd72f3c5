#include "quilt/job_worker.h"

#include "quilt/application.h"

namespace quilt {

void JobController::SetProgressRange(uint32_t) {}

void JobController::SetProgress(int32_t) {}

void JobController::Refresh() {}

bool JobController::IsCancelled() {
    return false;
}

Window* JobController::GetWindow() {
    return Application::GetMainWindow();
}

void JobWorker::JobClosed(JobController*) {}

void JobWorker::RunToEnd(JobController* controller) {
    JobController plain;
    if (!controller)
        controller = &plain;
    int32_t percent = 0;
    while (RunSlice(controller, &percent) == 1) {
    }
}

} // namespace quilt
