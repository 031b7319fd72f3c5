#pragma once

#include <cstdint>

namespace quilt {

class Window;

// The worker's view of whoever drives it. Every operation is a no-op here, so a worker that
// runs without a dialog can be given a plain controller.
class JobController {
public:
    virtual ~JobController() = default;

    virtual void SetProgressRange(uint32_t range);
    virtual void SetProgress(int32_t percent);
    virtual void Refresh();
    virtual bool IsCancelled();
    // The window that the job's own questions belong to: the application's main window.
    virtual Window* GetWindow();
};

// A piece of work cut into slices by its author, because the program has one thread and must
// stay responsive between two slices.
class JobWorker {
public:
    virtual ~JobWorker() = default;

    // Does a slice of work and writes how far the job is, 0 to 100. Answers 0 when the job is
    // over, for any reason; any other value means there is more to do.
    virtual int32_t RunSlice(JobController* controller, int32_t* percent) = 0;
    // The driver gave up on the job: release what it holds.
    virtual void JobClosed(JobController* controller);

    // Runs the slices one after another, with no window, until the job stops answering 1.
    void RunToEnd(JobController* controller);
};

// Lets an object with a worker inside it be driven as if it were one.
class JobWorkerWrapper : public JobWorker {
public:
    explicit JobWorkerWrapper(JobWorker* wrapped) : worker(wrapped) {}

    int32_t RunSlice(JobController* controller, int32_t* percent) override {
        return worker->RunSlice(controller, percent);
    }
    void JobClosed(JobController* controller) override { worker->JobClosed(controller); }

private:
    JobWorker* worker;
};

} // namespace quilt
