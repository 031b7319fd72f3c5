#include "quilt/message_loop.h"

#include "quilt/keys.h"
#include "quilt/timer.h"
#include "test_application.h"

#include <string>
#include <tuple>

namespace {

using quilt::Window;

class MainLoopTest : public testing::Test {
protected:
    // The first idle round, which comes at once, is out of the way.
    void RunFirstRound() {
        idle.EnableIdle();
        ASSERT_TRUE(driver.RunUntilIdle());
        ASSERT_EQ(idle.times, std::vector<uint32_t>{start});
    }

    OffscreenDriver driver;
    uint32_t start = driver.Now();
    TestApplication application;
    RecordingIdleHandler idle;
};

// Each case runs across the wrap of the tick count.
TEST(MainLoopInputTest, UserInputMovesTheNextRoundButPointerMotionDoesNot) {
    const quilt::Point at{10, 10};
    using Post = std::function<void(OffscreenDriver&, Window&, uint32_t)>;
    const std::pair<const char*, Post> cases[] = {
        {"key up", [](auto& d, auto& w, uint32_t t) { d.PostKeyUp(w, 'A', 0, t); }},
        {"character", [](auto& d, auto& w, uint32_t t) { d.PostChar(w, 'a', t); }},
        {"button down",
         [at](auto& d, auto& w, uint32_t t) { d.PostMouseDown(w, quilt::MouseLeft, at, t); }},
        {"wheel", [](auto& d, auto& w, uint32_t t) { d.PostMouseWheel(w, -120, t); }},
        {"activation", [](auto& d, auto& w, uint32_t t) { d.PostActivate(w, t); }},
        {"pointer motion", [at](auto& d, auto& w, uint32_t t) { d.PostMouseMove(w, 0, at, t); }},
    };
    for (const auto& [name, post] : cases) {
        OffscreenDriver driver(0xFFFFFFFFu - 999);
        uint32_t start = driver.Now();
        TestApplication application;
        RecordingIdleHandler idle;
        idle.EnableIdle();
        ASSERT_TRUE(driver.RunUntilIdle());

        driver.PostKeyDown(application.GetWindow(), quilt::KeyReturn, 0, start + 100);
        post(driver, application.GetWindow(), start + 2000);
        ASSERT_TRUE(driver.RunUntil([&] { return idle.times.size() == 2; })) << name;
        const bool isInput = std::string(name) != "pointer motion";
        EXPECT_EQ(idle.times[1], isInput ? start + 4050 : start + 2150) << name;
    }
}

// A headless run moves the focus itself and must not wait as if a user had acted.
TEST_F(MainLoopTest, FocusTheProgramMovesIsNoInput) {
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
    ASSERT_TRUE(driver.RunUntil([this] { return idle.times.size() >= 2; }));
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

TEST_F(MainLoopTest, ATimerTickWakesTheWaitButBringsNoIdleRound) {
    RunFirstRound();
    struct TickWindow : Window {
        bool OnTimer(uint32_t) override { return ++ticks > 0; }
        int ticks = 0;
    } window;
    window.Create(nullptr, quilt::WindowKindTop, nullptr);
    ASSERT_NE(quilt::Timer::StartWindowTimer(false, 5000, window), 0u);
    EXPECT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(window.ticks, 1);
    EXPECT_EQ(idle.times.size(), 1u);
}

TEST_F(MainLoopTest, FirstRegistrationWakesIdleTimeButReEnablingDoesNot) {
    RecordingIdleHandler disabled;
    disabled.EnableIdle();
    disabled.DisableIdle();
    RunFirstRound();
    EXPECT_TRUE(disabled.times.empty());
    idle.DisableIdle();
    idle.EnableIdle();
    ASSERT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(idle.times.size(), 1u);

    RecordingIdleHandler newcomer;
    newcomer.EnableIdle();
    ASSERT_TRUE(driver.RunUntilIdle());
    EXPECT_EQ(newcomer.times, std::vector<uint32_t>{start});
    EXPECT_EQ(idle.times.size(), 2u);
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

TEST(MessageLoopTest, TheLastInputTimeIsNeverLowered) {
    const std::tuple<uint32_t, uint32_t, uint32_t> cases[] = {{5000, 3000, 5000},
                                                              {3000, 5000, 5000},
                                                              {0xFFFFFFF0u, 0x10, 0x10},
                                                              {0x10, 0xFFFFFFF0u, 0x10}};
    for (const auto& [first, second, expected] : cases) {
        quilt::MessageLoop loop;
        loop.NoteUserInput(first);
        loop.NoteUserInput(second);
        EXPECT_EQ(loop.GetLastInputTime(), expected) << first << " " << second;
    }
}

} // namespace
