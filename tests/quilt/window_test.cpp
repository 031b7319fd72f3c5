#include "quilt/window.h"

#include "quilt/imp_factory.h"
#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_driver.h"
#include "quilt/offscreen/offscreen_window_imp.h"
#include "test_application.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace {

using quilt::OffscreenDriver;
using quilt::OffscreenWindow;
using quilt::Point;
using quilt::Rect;
using quilt::Window;

TEST(RectTest, UnionIntersectAndOffset) {
    const std::tuple<const char*, Rect, Rect, Rect, Rect, bool> cases[] = {
        {"overlapping", {0, 0, 10, 10}, {5, 5, 20, 20}, {0, 0, 20, 20}, {5, 5, 10, 10}, true},
        {"touching edges", {0, 0, 10, 10}, {10, 0, 20, 10}, {0, 0, 20, 10}, {}, false},
        {"apart", {0, 0, 10, 10}, {30, 30, 40, 40}, {0, 0, 40, 40}, {}, false},
        {"empty first", {}, {5, 5, 20, 20}, {5, 5, 20, 20}, {}, false},
        {"empty second", {-5, -5, 5, 5}, {}, {-5, -5, 5, 5}, {}, false},
    };
    for (const auto& [name, a, b, united, overlap, intersects] : cases) {
        Rect both;
        both.Union(a, b);
        EXPECT_TRUE(both.Equals(united)) << name;
        Rect common{1, 2, 3, 4};
        EXPECT_EQ(common.Intersect(a, b), intersects) << name;
        EXPECT_TRUE(common.Equals(overlap)) << name;
        EXPECT_EQ(a.Intersects(b), intersects) << name;
    }
    Rect moved{1, 2, 3, 4};
    moved.Offset(10, -2);
    EXPECT_TRUE(moved.Equals(Rect{11, 0, 13, 2}));
}

TEST(ImpFactoryTest, ChooseBackend) {
    const std::tuple<const char*, bool, quilt::Backend> cases[] = {
        {nullptr, true, quilt::Backend::Gtk},
        {nullptr, false, quilt::Backend::Offscreen},
        {"gtk", true, quilt::Backend::Gtk},
        {"gtk", false, quilt::Backend::Offscreen},
        {"offscreen", true, quilt::Backend::Offscreen},
        {"something", true, quilt::Backend::Gtk},
    };
    for (const auto& [requested, desktopAvailable, expected] : cases) {
        EXPECT_EQ(quilt::ChooseBackend(requested, desktopAvailable), expected)
            << (requested != nullptr ? requested : "unset") << desktopAvailable;
    }
}

// Records the events that reach it.
class EventWindow : public Window {
public:
    bool OnDestroy() override {
        log.push_back("destroy id " + std::to_string(GetId()));
        return false;
    }
    bool OnClose() override {
        log.push_back("close");
        return keepOpen;
    }
    bool OnMove(int32_t x, int32_t y) override {
        log.push_back("move " + std::to_string(x) + "," + std::to_string(y));
        return true;
    }
    bool OnSize(int32_t width, int32_t height) override {
        log.push_back("size " + std::to_string(width) + "x" + std::to_string(height));
        return true;
    }
    bool OnConstrainSize(quilt::Size& size) override {
        size.width = std::max(size.width, 200);
        return true;
    }
    bool OnKeyDown(int32_t key, uint32_t modifiers) override {
        log.push_back("key " + std::to_string(key) + " " + std::to_string(modifiers));
        return true;
    }
    bool OnMouseDown(uint32_t flags, const Point* point) override {
        log.push_back("down " + std::to_string(flags) + " " + std::to_string(point->x) + "," +
                      std::to_string(point->y));
        return true;
    }
    bool OnWantKey(int32_t key) override { return key == quilt::KeyReturn; }

    bool keepOpen = false;
    std::vector<std::string> log;
};

class WindowTest : public testing::Test {
protected:
    Window& MakeTopWindow() {
        top.Create(nullptr, quilt::WindowKindTop, nullptr);
        top.Show(quilt::ShowModeShow);
        return top;
    }

    // A control as a dialog template makes it: native, and bound to no wrapper.
    OffscreenWindow* AddNativeControl(OffscreenWindow* parent, int32_t id) {
        auto control = std::make_unique<OffscreenWindow>("Button", parent);
        control->id = id;
        control->visible = true;
        return quilt::GetOffscreenDesktop().AddWindow(std::move(control));
    }

    OffscreenDriver driver;
    TestApplication application;
    EventWindow top;
};

TEST_F(WindowTest, AWindowWithoutNativeWindowFailsQuietly) {
    Window window;
    loam::String text;
    Rect rect{1, 2, 3, 4};
    EXPECT_EQ(window.GetId(), -1);
    EXPECT_EQ(window.GetFreeChildId(), -1);
    EXPECT_FALSE(window.SetText(loam::String("text")) || window.GetText(text) ||
                 window.GetRect(rect) || window.GetClientRect(rect) || window.HasFocus() ||
                 window.CaptureMouse() || window.HasScrollBar(quilt::ScrollBarVertical));
    window.MoveBy(5, 5, true);
    window.Show(quilt::ShowModeShow);
    window.SetFocus();
    EXPECT_TRUE(rect.Equals(Rect{1, 2, 3, 4}));
}

TEST_F(WindowTest, ScrollBarsRecordedBeforeCreationAreApplied) {
    Window window;
    window.ShowScrollBars(quilt::ScrollBarVertical);
    window.Create(nullptr, quilt::WindowKindTop, nullptr);
    EXPECT_TRUE(window.HasScrollBar(quilt::ScrollBarVertical));
    EXPECT_FALSE(window.HasScrollBar(quilt::ScrollBarHorizontal));
    EXPECT_FALSE(window.HasScrollBar(3));
}

TEST_F(WindowTest, TextsComeBackWhole) {
    Window& window = MakeTopWindow();
    for (int length : {0, 127, 128, 4000}) {
        loam::String text(std::string(length, 'x').c_str());
        loam::String back;
        ASSERT_TRUE(window.SetText(text));
        ASSERT_TRUE(window.GetText(back));
        EXPECT_EQ(back.GetLength(), length);
        EXPECT_EQ(window.IsTextEmpty(), length == 0);
    }
}

TEST_F(WindowTest, ChildIdsAndBindingToTemplateControls) {
    Window& parent = MakeTopWindow();
    EXPECT_EQ(parent.GetFreeChildId(), 1001);
    OffscreenWindow* parentNative = driver.GetNative(parent);
    OffscreenWindow* group = AddNativeControl(parentNative, 1001);
    OffscreenWindow* inGroup = AddNativeControl(group, 1050);
    EXPECT_EQ(parent.GetFreeChildId(), 1002);

    Window control;
    ASSERT_TRUE(control.BindToControl(&parent, 1050));
    EXPECT_EQ(control.GetParent(), &parent);
    EXPECT_EQ(control.GetId(), 1050);
    control.SetText(loam::String("OK"));
    EXPECT_TRUE(inGroup->text == "OK");

    Window second;
    EXPECT_FALSE(second.BindToControl(&parent, 1050));
    EXPECT_FALSE(second.BindToControl(&parent, 4242));
    EXPECT_EQ(second.GetId(), -1);
}

TEST_F(WindowTest, DestroyingAWrapperTakesItsBoundControlWithIt) {
    Window& parent = MakeTopWindow();
    quilt::OffscreenHandle handle = AddNativeControl(driver.GetNative(parent), 1005)->handle;
    auto unbound = std::make_unique<Window>();
    unbound->BindToControl(&parent, 1005);
    unbound->Unbind();
    unbound.reset();
    ASSERT_NE(quilt::GetOffscreenDesktop().Find(handle), nullptr);

    auto bound = std::make_unique<Window>();
    bound->BindToControl(&parent, 1005);
    bound.reset();
    EXPECT_EQ(quilt::GetOffscreenDesktop().Find(handle), nullptr);
}

TEST_F(WindowTest, TheCloseBoxDestroysUnlessOnCloseKeepsTheWindow) {
    for (bool keepOpen : {true, false}) {
        EventWindow window;
        window.keepOpen = keepOpen;
        window.Create(nullptr, quilt::WindowKindTop, nullptr);
        window.Show(quilt::ShowModeShow);
        driver.PostClose(window);
        driver.PumpMessages();
        EXPECT_EQ(window.HasNativeWindow(), keepOpen);
        // OnDestroy runs with the native window already gone.
        const std::vector<std::string> log{"close", "destroy id -1"};
        EXPECT_EQ(window.log, keepOpen ? std::vector<std::string>{"close"} : log);
    }
}

TEST_F(WindowTest, SizeChangesAreConstrainedAndReported) {
    MakeTopWindow();
    top.SetRect(Rect{10, 20, 110, 220}, true);
    Rect rect;
    top.GetRect(rect);
    EXPECT_TRUE(rect.Equals(Rect{10, 20, 210, 220}));
    top.MoveBy(5, 0, true);
    top.SetClientRect(Rect{0, 0, 300, 100});
    EXPECT_EQ(top.log, (std::vector<std::string>{"move 10,20", "size 200x200", "move 15,20",
                                                 "size 300x100"}));
    top.Center();
    top.GetRect(rect);
    EXPECT_TRUE(rect.Equals(Rect{362, 334, 662, 434}));
}

TEST_F(WindowTest, PointsMapBetweenWindows) {
    Window& parent = MakeTopWindow();
    parent.SetRect(Rect{100, 50, 500, 450}, true);
    Window child;
    quilt::ChildControl childSpec{"Static", loam::String(), 0, Rect{10, 20, 30, 40}, 1100, false};
    child.CreateControl(&parent, childSpec);
    Point point{1, 2};
    child.MapPoint(&parent, point);
    EXPECT_EQ(point.x, 11);
    EXPECT_EQ(point.y, 22);
    Rect rect{0, 0, 5, 5};
    child.MapRect(nullptr, rect);
    EXPECT_TRUE(rect.Equals(Rect{110, 70, 115, 75}));
}

TEST_F(WindowTest, InputReachesEnabledWindowsOnly) {
    MakeTopWindow();
    driver.PostKeyDown(top, 'A', quilt::ModifierShift);
    driver.PostMouseDown(top, quilt::MouseRight | quilt::MouseControl, Point{3, 4});
    driver.PumpMessages();
    top.Enable(false);
    driver.PostKeyDown(top, 'B');
    driver.PumpMessages();
    EXPECT_EQ(top.log, (std::vector<std::string>{"key 65 2", "down 65544 3,4"}));
}

// A control whose native side answers every notification with `answer`.
class AnsweringImp : public quilt::Offscreen_WindowImp {
public:
    quilt::NotificationAnswer TranslateNotification(const quilt::NativeNotification& notification,
                                                    quilt::NotificationTranslation& out) override {
        if (answer == quilt::AnswerDefault) {
            return WindowImp::TranslateNotification(notification, out);
        }
        out.kind = quilt::MsgEnterKey;
        out.result = 77;
        return answer;
    }
    quilt::NotificationAnswer answer = quilt::AnswerDefault;
};

class NotifiedWindow : public Window {
public:
    explicit NotifiedWindow(AnsweringImp* imp) : Window(std::unique_ptr<quilt::WindowImp>(imp)) {}
    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }

    std::vector<int32_t> clicks;
    int enterKeys = 0;

private:
    bool OnClicked(int32_t id) {
        clicks.push_back(id);
        return id != 13;
    }
    bool OnEnterKey() { return ++enterKeys > 0; }

    static const quilt::MessageMapEntry entries[];
    static const quilt::MessageMap messageMap;
};

const quilt::MessageMapEntry NotifiedWindow::entries[] = {
    quilt::NotificationRange(quilt::MsgClicked, quilt::AnyControl, quilt::AnyControl,
                             &NotifiedWindow::OnClicked),
    quilt::Notification(quilt::MsgEnterKey, 1033, &NotifiedWindow::OnEnterKey),
    quilt::EndOfMap,
};
const quilt::MessageMap NotifiedWindow::messageMap{&Window::messageMap, entries};

TEST_F(WindowTest, NativeNotificationsAreTranslatedAndDispatched) {
    using Clicks = std::vector<int32_t>;
    const std::tuple<const char*, quilt::NotificationAnswer, int32_t, int32_t, intptr_t, Clicks,
                     int>
        cases[] = {
            {"code 0 is a click", quilt::AnswerDefault, 0, 1033, 0, {1033}, 0},
            {"an unhandled click", quilt::AnswerDefault, 0, 13, quilt::NotHandled, {13}, 0},
            {"other codes", quilt::AnswerDefault, 5, 1033, quilt::NotHandled, {}, 0},
            {"dispatched kind", quilt::AnswerDispatch, 9, 1033, 0, {}, 1},
            {"handled", quilt::AnswerHandled, 9, 1033, 0, {}, 0},
            {"result", quilt::AnswerResult, 9, 1033, 77, {}, 0},
        };
    for (const auto& [name, answer, code, id, result, clicks, enterKeys] : cases) {
        auto* imp = new AnsweringImp;
        NotifiedWindow window(imp);
        imp->answer = answer;
        EXPECT_EQ(imp->OnNativeNotification(code, id, 0, 0), result) << name;
        EXPECT_EQ(window.clicks, clicks) << name;
        EXPECT_EQ(window.enterKeys, enterKeys) << name;
    }

    auto* imp = new AnsweringImp;
    NotifiedWindow window(imp);
    NotifiedWindow target(new AnsweringImp);
    imp->SetCommandTarget(&target);
    imp->OnNativeNotification(0, 7, 0, 0);
    EXPECT_TRUE(window.clicks.empty());
    EXPECT_EQ(target.clicks, std::vector<int32_t>{7});
}

class CommandWindow : public Window {
public:
    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    int saves = 0;

private:
    bool OnSave() { return ++saves > 0; }

    static const quilt::MessageMapEntry entries[];
    static const quilt::MessageMap messageMap;
};

const quilt::MessageMapEntry CommandWindow::entries[] = {
    quilt::Command(500, &CommandWindow::OnSave),
    quilt::EndOfMap,
};
const quilt::MessageMap CommandWindow::messageMap{&Window::messageMap, entries};

TEST_F(WindowTest, UnhandledCommandsGoToTheParent) {
    CommandWindow parent;
    parent.Create(nullptr, quilt::WindowKindTop, nullptr);
    Window control;
    quilt::ChildControl childSpec;
    childSpec.className = "Button";
    ASSERT_TRUE(control.CreateControl(&parent, childSpec));
    EXPECT_TRUE(control.OnCommand(500));
    EXPECT_FALSE(control.OnCommand(501));
    EXPECT_EQ(parent.saves, 1);
}

} // namespace
