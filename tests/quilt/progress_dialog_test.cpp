#include "quilt/progress_dialog.h"

#include "quilt/dialog_template.h"
#include "quilt/job_worker.h"
#include "quilt/offscreen/offscreen_controls.h"
#include "quilt/progress_bar.h"
#include "test_application.h"

#include <algorithm>
#include <tuple>

namespace {

using quilt::ProgressDialog;

// The bar is made without an id of its own, so it gets a free one: it is found by its class.
quilt::OffscreenWindow* FindBar(OffscreenDriver& driver, Dialog& dialog) {
    for (const auto& child : driver.GetNative(dialog)->children) {
        if (dynamic_cast<quilt::OffscreenProgressBar*>(child.get()) != nullptr) {
            return child.get();
        }
    }
    return nullptr;
}

// A job of `slices` slices, each of which takes `sliceTime` ms of the virtual clock and moves the
// percentage on by `step`.
class CountingWorker : public quilt::JobWorker {
public:
    CountingWorker(OffscreenDriver& clockDriver, int32_t sliceCount, uint32_t milliseconds)
        : driver(clockDriver), slices(sliceCount), sliceTime(milliseconds) {}

    int32_t RunSlice(quilt::JobController* controller, int32_t* percent) override {
        starts.push_back(driver.Now());
        driver.AdvanceClock(sliceTime);
        *percent += step;
        if (duringSlice) {
            duringSlice(*controller);
        }
        return static_cast<int32_t>(starts.size()) < slices ? 1 : 0;
    }
    void JobClosed(quilt::JobController* controller) override {
        ++closed;
        closedCancelled = controller->IsCancelled();
    }

    OffscreenDriver& driver;
    int32_t slices;
    uint32_t sliceTime;
    int32_t step = 1;
    std::function<void(quilt::JobController&)> duringSlice;
    std::vector<uint32_t> starts;
    int32_t closed = 0;
    bool closedCancelled = false;
};

class ProgressDialogTest : public ::testing::Test {
protected:
    OffscreenDriver driver;
    TestApplication application;
};

TEST_F(ProgressDialogTest, AJobThatEndsWithinTheGraceShowsNothing) {
    CountingWorker worker(driver, 9, 30);
    quilt::JobWorkerWrapper wrapper(&worker);
    bool shown = false;
    driver.OnNextModal([&](Dialog&) { shown = true; });
    uint32_t start = driver.Now();

    ProgressDialog dialog(&wrapper, loam::String("Searching..."), &application.GetWindow());
    EXPECT_TRUE(dialog.RunWithBarNoCancel());

    EXPECT_FALSE(shown);
    // Back to back, with no pause between the slices.
    ASSERT_EQ(worker.starts.size(), 9u);
    EXPECT_EQ(worker.starts.back(), start + 8 * 30);
}

TEST_F(ProgressDialogTest, ALongerJobGetsTheDialogAndOneSlicePerTick) {
    CountingWorker worker(driver, 20, 30);
    worker.step = 7;
    std::vector<int32_t> barPositions;
    worker.duringSlice = [&](quilt::JobController& controller) {
        if (Dialog* dialog = driver.GetModalDialog()) {
            barPositions.push_back(
                driver.GetProgressPosition(*dialog, FindBar(driver, *dialog)->id));
            EXPECT_EQ(controller.GetWindow(), dialog);
        }
    };
    loam::String title;
    driver.OnNextModal([&](Dialog& dialog) { title = driver.GetText(dialog); });
    uint32_t start = driver.Now();

    ProgressDialog dialog(&worker, loam::String("Searching..."), &application.GetWindow());
    EXPECT_TRUE(dialog.RunWithBarNoCancel());

    EXPECT_EQ(title, "Searching...");
    ASSERT_EQ(worker.starts.size(), 20u);
    // Ten slices of 30 ms fill the grace; the rest wait for the ticks.
    EXPECT_EQ(worker.starts[9], start + 270);
    for (size_t index = 10; index < worker.starts.size(); ++index) {
        EXPECT_GE(worker.starts[index] - worker.starts[index - 1], ProgressDialog::TickInterval);
    }
    // The bar shows the percentage of the grace's last slice only after the first tick, and
    // stops at the top when the job runs over 100.
    ASSERT_GE(barPositions.size(), 3u);
    EXPECT_EQ(barPositions[0], 0);
    EXPECT_EQ(barPositions[1], quilt::ScaleProgress(77, 0, 100));
    EXPECT_EQ(barPositions.back(), quilt::ProgressNativeMaximum);
}

TEST_F(ProgressDialogTest, TheRunFormsShowTheirBarAndButton) {
    const std::tuple<bool (ProgressDialog::*)(), bool, bool> cases[] = {
        {&ProgressDialog::RunWithBarNoCancel, true, false},
        {&ProgressDialog::RunWithBar, true, true},
        {&ProgressDialog::RunNoBar, false, true},
    };
    for (const auto& [run, hasBar, hasButton] : cases) {
        SCOPED_TRACE(hasBar + 2 * hasButton);
        CountingWorker worker(driver, 100, 100);
        driver.OnNextModal([&](Dialog& dialog) {
            EXPECT_EQ(FindBar(driver, dialog) != nullptr, hasBar);
            EXPECT_EQ(driver.FindControl(dialog, quilt::IdCancel) != nullptr, hasButton);
            driver.PressEscape(dialog);
        });
        ProgressDialog dialog(&worker, loam::String("Moving..."), nullptr);
        EXPECT_FALSE((dialog.*run)());
        EXPECT_EQ(worker.closed, 1);
    }
}

TEST_F(ProgressDialogTest, CancelDuringASliceThatServesMessagesStopsTheJob) {
    CountingWorker worker(driver, 1000, 20);
    std::vector<bool> cancelledSeen;
    worker.duringSlice = [&](quilt::JobController& controller) {
        controller.SetProgress(50);
        cancelledSeen.push_back(controller.IsCancelled());
        if (controller.IsCancelled()) {
            worker.slices = 0;
        }
    };
    driver.OnNextModal(
        [&](Dialog& dialog) { driver.Click(dialog, quilt::IdCancel, driver.Now() + 60); });

    ProgressDialog dialog(&worker, loam::String("Moving..."), nullptr);
    EXPECT_FALSE(dialog.RunWithBar());

    // The click arrives inside the first tick's slice, through its SetProgress.
    ASSERT_EQ(worker.starts.size(), cancelledSeen.size());
    EXPECT_TRUE(cancelledSeen.back());
    EXPECT_EQ(std::count(cancelledSeen.begin(), cancelledSeen.end(), true), 1);
    EXPECT_EQ(worker.closed, 1);
    EXPECT_TRUE(worker.closedCancelled);
}

TEST_F(ProgressDialogTest, ADialogEndedByReturnGetsNoMoreTicks) {
    CountingWorker worker(driver, 1000, 10);
    driver.OnNextModal([&](Dialog& dialog) { driver.PressReturn(dialog, driver.Now() + 120); });
    {
        ProgressDialog dialog(&worker, loam::String("Searching..."), &application.GetWindow());
        // Return ends the dialog as done, with the job unfinished.
        EXPECT_TRUE(dialog.RunWithBarNoCancel());
        size_t slices = worker.starts.size();
        EXPECT_LT(slices, 1000u);

        driver.RunFor(1000);
        EXPECT_EQ(worker.starts.size(), slices);
        EXPECT_EQ(worker.closed, 0);
    }
    driver.RunFor(1000);
    EXPECT_FALSE(driver.HasQuit());
}

} // namespace
