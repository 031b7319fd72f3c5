#include "quilt/message_loop.h"

#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_driver.h"
#include "quilt/timer.h"
#include "test_application.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using quilt::OffscreenDriver;
using quilt::Window;

class MainLoopTest : public testing::Test {
protected:
    // The first idle round, which comes at once, is out of the way.
    void RunFirstRound() {
        idle.EnableIdle();
        ASSERT_TRUE(driver.RunUntilIdle());
        ASSERT_EQ(idle.times, std::vector<uint32_t>{start});
    }

    bool RunUntilIdleCalls(size_t calls) {
        return driver.RunUntil([this, calls] { return idle.times.size() >= calls; });
    }

    OffscreenDriver driver;
    uint32_t start = driver.Now();
    TestApplication application;
    RecordingIdleHandler idle;
};

TEST_F(MainLoopTest, FirstRoundComesAtOnceThenTheLoopWaits) {
    RunFirstRound();
    EXPECT_EQ(driver.Now(), start);
    EXPECT_FALSE(driver.HasQuit());
}

TEST(MainLoopInputTest, UserInputMovesTheNextRoundButPointerMotionDoesNot) {
    using Post = std::function<void(OffscreenDriver&, Window&, uint32_t)>;
    struct InputCase {
        const char* name;
        Post post;
        bool isInput;
    };
    const quilt::Point point{10, 10};
    const InputCase cases[] = {
        {"key down", [](auto& d, auto& w, uint32_t at) { d.PostKeyDown(w, 'A', 0, at); }, true},
        {"key up", [](auto& d, auto& w, uint32_t at) { d.PostKeyUp(w, 'A', 0, at); }, true},
        {"character", [](auto& d, auto& w, uint32_t at) { d.PostChar(w, 'a', at); }, true},
        {"button down",
         [point](auto& d, auto& w, uint32_t at) {
             d.PostMouseDown(w, quilt::MouseLeft, point, at);
         },
         true},
        {"button up",
         [point](auto& d, auto& w, uint32_t at) { d.PostMouseUp(w, quilt::MouseRight, point, at); },
         true},
        {"double click",
         [point](auto& d, auto& w, uint32_t at) {
             d.PostMouseDoubleClick(w, quilt::MouseLeft, point, at);
         },
         true},
        {"wheel", [](auto& d, auto& w, uint32_t at) { d.PostMouseWheel(w, -120, at); }, true},
        {"pointer motion",
         [point](auto& d, auto& w, uint32_t at) { d.PostMouseMove(w, 0, point, at); }, false},
    };
    for (const InputCase& test : cases) {
        OffscreenDriver driver;
        uint32_t start = driver.Now();
        TestApplication application;
        RecordingIdleHandler idle;
        idle.EnableIdle();
        ASSERT_TRUE(driver.RunUntilIdle());

        driver.PostKeyDown(application.GetWindow(), quilt::KeyReturn, 0, start + 100);
        test.post(driver, application.GetWindow(), start + 2000);
        ASSERT_TRUE(driver.RunUntil([&] { return idle.times.size() == 2; })) << test.name;
        uint32_t expected = test.isInput ? start + 4050 : start + 2150;
        EXPECT_EQ(idle.times[1], expected) << test.name;
    }
}

TEST_F(MainLoopTest, FocusTheUserGivesIsInputButFocusTheProgramMovesIsNot) {
    RunFirstRound();
    struct FocusWindow : Window {
        bool OnTimer(uint32_t) override {
            SetFocus();
            return true;
        }
    } window;
    window.Create(nullptr, quilt::WindowKindTop, nullptr);
    window.Show(quilt::ShowModeShow);
    driver.PostActivate(application.GetWindow(), start + 1500);
    quilt::Timer::StartWindowTimer(false, 2500, window);
    ASSERT_TRUE(RunUntilIdleCalls(2));
    EXPECT_TRUE(driver.HasFocus(window));
    EXPECT_EQ(idle.times[1], start + 1500 + 2050);
}

TEST_F(MainLoopTest, RoundsRunBackToBackWhileAHandlerWantsMore) {
    idle.rounds = 3;
    idle.EnableIdle();
    ASSERT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(idle.counts, (std::vector<uint32_t>{0, 1, 2, 3}));
    EXPECT_EQ(idle.times, std::vector<uint32_t>(4, start));
    EXPECT_EQ(application.GetIdleCount(), 0u);
}

TEST_F(MainLoopTest, DisabledHandlersAreNotCalled) {
    RecordingIdleHandler disabled;
    disabled.EnableIdle();
    disabled.DisableIdle();
    RunFirstRound();
    EXPECT_TRUE(disabled.times.empty());
}

TEST_F(MainLoopTest, ATimerTickWakesTheWaitButBringsNoIdleRound) {
    RunFirstRound();
    struct TickWindow : Window {
        bool OnTimer(uint32_t) override {
            ++ticks;
            return true;
        }
        int ticks = 0;
    } window;
    window.Create(nullptr, quilt::WindowKindTop, nullptr);
    ASSERT_NE(quilt::Timer::StartWindowTimer(false, 5000, window), 0u);

    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(window.ticks, 1);
    EXPECT_EQ(idle.times.size(), 1u);
}

TEST_F(MainLoopTest, FirstRegistrationWakesIdleTimeButReEnablingDoesNot) {
    RunFirstRound();
    idle.DisableIdle();
    idle.EnableIdle();
    ASSERT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(idle.times.size(), 1u);

    RecordingIdleHandler newcomer;
    newcomer.EnableIdle();
    ASSERT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(newcomer.times, std::vector<uint32_t>{start});
    EXPECT_EQ(idle.times.size(), 2u);

    driver.PostKeyDown(application.GetWindow(), 'X', 0, start + 1000);
    ASSERT_TRUE(RunUntilIdleCalls(3));
    EXPECT_EQ(idle.times[2], start + 3050);
}

TEST_F(MainLoopTest, NoIdleRoundRunsInsideAModalLoop) {
    RunFirstRound();
    // Serves events for five seconds from a timer tick, as a modal dialog's loop does.
    struct ModalWindow : Window {
        bool OnTimer(uint32_t) override {
            for (int step = 0; step < 100; ++step) {
                driver->AdvanceClock(50);
                quilt::Application::GetCurrent()->PumpMessages();
            }
            return true;
        }
        OffscreenDriver* driver = nullptr;
    } window;
    window.driver = &driver;
    window.Create(nullptr, quilt::WindowKindTop, nullptr);
    quilt::Timer::StartWindowTimer(false, 1000, window);
    driver.PostKeyDown(application.GetWindow(), 'X', 0, start + 100);
    ASSERT_TRUE(RunUntilIdleCalls(2));
    EXPECT_EQ(idle.times[1], start + 1000 + 5000);
}

TEST_F(MainLoopTest, QuitDuringAnIdleRoundEndsTheLoopBeforeAnotherRound) {
    idle.rounds = 10;
    idle.onIdle = [this] {
        if (idle.times.size() == 2) {
            quilt::QuitApplication();
        }
    };
    idle.EnableIdle();
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_EQ(idle.times.size(), 2u);
}

TEST_F(MainLoopTest, DestroyingTheMainWindowEndsTheLoop) {
    idle.EnableIdle();
    application.GetWindow().Destroy();
    EXPECT_TRUE(driver.HasQuit());
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_TRUE(idle.times.empty());
}

TEST(MainLoopWrapTest, TheQuietPeriodSurvivesTheWrapOfTheTickCount) {
    OffscreenDriver driver(0xFFFFFFFFu - 999);
    TestApplication application;
    RecordingIdleHandler idle;
    idle.EnableIdle();
    ASSERT_TRUE(driver.RunUntilIdle());
    ASSERT_EQ(idle.times.size(), 1u);

    driver.PostKeyDown(application.GetWindow(), 'A', 0, driver.Now() + 100);
    ASSERT_TRUE(driver.RunUntil([&] { return idle.times.size() == 2; }));
    EXPECT_EQ(idle.times[1], 1150u);
}

TEST(MessageLoopTest, TheLastInputTimeIsNeverLowered) {
    struct InputCase {
        uint32_t first;
        uint32_t second;
        uint32_t expected;
    };
    const InputCase cases[] = {
        {5000, 3000, 5000},
        {3000, 5000, 5000},
        {0xFFFFFFF0u, 0x10, 0x10},
        {0x10, 0xFFFFFFF0u, 0x10},
    };
    for (const InputCase& test : cases) {
        quilt::MessageLoop loop;
        loop.NoteUserInput(test.first);
        loop.NoteUserInput(test.second);
        EXPECT_EQ(loop.GetLastInputTime(), test.expected) << test.first << " " << test.second;
    }
}

} // namespace
