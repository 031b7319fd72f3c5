#include "quilt/timer.h"

#include "test_application.h"

#include <memory>

namespace {

class TimerWindow : public quilt::Window {
public:
    TimerWindow() { Create(nullptr, quilt::WindowKindTop, nullptr); }

    bool OnTimer(uint32_t id) override {
        ticks.push_back(quilt::GetTickCount());
        if (onTimer) {
            onTimer(id);
        }
        return true;
    }

    std::function<void(uint32_t)> onTimer;
    std::vector<uint32_t> ticks;
};

class TimerTest : public testing::Test {
protected:
    OffscreenDriver driver;
    uint32_t start = driver.Now();
    TestApplication application;
};

TEST_F(TimerTest, WindowTimerIdsStartAt1000AndAreNeverReused) {
    TimerWindow window;
    uint32_t first = quilt::Timer::StartWindowTimer(true, 100, window);
    quilt::Timer::Stop(first);
    uint32_t second = quilt::Timer::StartWindowTimer(true, 100, window);
    EXPECT_GE(first, 1000u);
    EXPECT_GT(second, first);
    quilt::Window unmade;
    EXPECT_EQ(quilt::Timer::StartWindowTimer(true, 100, unmade), 0u);
}

TEST_F(TimerTest, AOneShotTimerIsOutOfTheTableBeforeItsHandlerRuns) {
    TimerWindow window;
    int restarts = 2;
    window.onTimer = [&](uint32_t id) {
        quilt::Timer::Stop(id);
        EXPECT_FALSE(quilt::Timer::OnNativeTimer(id));
        if (restarts-- > 0) {
            quilt::Timer::StartWindowTimer(false, 100, window);
        }
    };
    quilt::Timer::StartWindowTimer(false, 100, window);
    driver.RunFor(1000);
    EXPECT_EQ(window.ticks, (std::vector<uint32_t>{start + 100, start + 200, start + 300}));
}

TEST_F(TimerTest, ARepeatingTimerFiresUntilStopped) {
    TimerWindow window;
    uint32_t id = quilt::Timer::StartWindowTimer(true, 100, window);
    window.onTimer = [&](uint32_t) {
        if (window.ticks.size() == 3) {
            quilt::Timer::Stop(id);
        }
    };
    driver.RunFor(2000);
    EXPECT_EQ(window.ticks, (std::vector<uint32_t>{start + 100, start + 200, start + 300}));
}

TEST_F(TimerTest, ATimerNeverFiresIntoAWindowThatIsGone) {
    TimerWindow destroyed;
    uint32_t destroyedTimer = quilt::Timer::StartWindowTimer(true, 100, destroyed);
    auto deleted = std::make_unique<TimerWindow>();
    uint32_t deletedTimer = quilt::Timer::StartWindowTimer(true, 100, *deleted);

    destroyed.Destroy();
    deleted.reset();
    driver.RunFor(1000);
    EXPECT_TRUE(destroyed.ticks.empty());
    EXPECT_FALSE(quilt::Timer::OnNativeTimer(destroyedTimer));
    EXPECT_FALSE(quilt::Timer::OnNativeTimer(deletedTimer));
    quilt::Timer::Stop(destroyedTimer);
}

TEST(TimerWrapTest, ATimerFiresAcrossTheWrapOfTheTickCount) {
    OffscreenDriver driver(0xFFFFFF00u);
    TestApplication application;
    TimerWindow window;
    quilt::Timer::StartWindowTimer(false, 0x200, window);
    driver.RunFor(0x1000);
    EXPECT_EQ(window.ticks, std::vector<uint32_t>{0x100});
}

} // namespace
