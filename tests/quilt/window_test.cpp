#include "quilt/window.h"

#include "quilt/imp_factory.h"
#include "quilt/keys.h"
#include "test_application.h"

#include <memory>
#include <string>
#include <tuple>

namespace {

using quilt::OffscreenWindow;
using quilt::Window;

TEST(RectTest, UnionAndIntersect) {
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
}

TEST(ImpFactoryTest, ChooseBackend) {
    const std::tuple<const char*, bool, quilt::Backend> cases[] = {
        {nullptr, true, quilt::Backend::Gtk},
        {nullptr, false, quilt::Backend::Headless},
        {"gtk", true, quilt::Backend::Gtk},
        {"gtk", false, quilt::Backend::Headless},
        {"offscreen", true, quilt::Backend::Headless},
        {"something", true, quilt::Backend::Gtk}};
    for (const auto& [requested, desktopAvailable, expected] : cases) {
        EXPECT_EQ(quilt::ChooseBackend(requested, desktopAvailable), expected)
            << (requested != nullptr ? requested : "unset") << desktopAvailable;
    }
}

// Records the events that reach it.
class EventWindow : public Window {
public:
    bool OnDestroy() override { return Log("destroy id " + std::to_string(GetId()), false); }
    bool OnClose() override { return Log("close", keepOpen); }
    bool OnKeyDown(int32_t key, uint32_t modifiers) override {
        return Log("key " + std::to_string(key) + " " + std::to_string(modifiers));
    }
    bool Log(const std::string& entry, bool result = true) {
        log.push_back(entry);
        return result;
    }

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
        auto control = std::make_unique<OffscreenWindow>(parent);
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
    EXPECT_FALSE(window.SetText(loam::String("text")) || window.GetText(text) ||
                 window.GetRect(rect) || window.GetClientRect(rect) || window.HasFocus() ||
                 window.CaptureMouse() || window.HasScrollBar(quilt::ScrollBarVertical));
    window.MoveBy(5, 5, true);
    window.Show(quilt::ShowModeShow);
    window.SetFocus();
    EXPECT_TRUE(rect.Equals(Rect{1, 2, 3, 4}));
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
    OffscreenWindow* group = AddNativeControl(driver.GetNative(parent), 1001);
    OffscreenWindow* inGroup = AddNativeControl(group, 1050);
    EXPECT_EQ(parent.GetFreeChildId(), 1002);

    Window control;
    ASSERT_TRUE(control.BindToControl(&parent, 1050));
    EXPECT_EQ(control.GetParent(), &parent);
    control.SetText(loam::String("OK"));
    EXPECT_TRUE(inGroup->text == "OK");

    Window second;
    EXPECT_FALSE(second.BindToControl(&parent, 1050));
    EXPECT_FALSE(second.BindToControl(&parent, 4242));
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

TEST_F(WindowTest, InputReachesEnabledWindowsOnly) {
    MakeTopWindow();
    driver.PostKeyDown(top, 'A', quilt::ModifierShift);
    driver.PumpMessages();
    top.Enable(false);
    driver.PostKeyDown(top, 'B');
    driver.PumpMessages();
    EXPECT_EQ(top.log, std::vector<std::string>{"key 65 2"});
}

class CommandWindow : public Window {
public:
    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    bool OnSave() { return ++saves > 0; }

    int saves = 0;
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
    childSpec.kind = quilt::ControlKind::PushButton;
    ASSERT_TRUE(control.CreateControl(&parent, childSpec));
    EXPECT_TRUE(control.OnCommand(500));
    EXPECT_FALSE(control.OnCommand(501));
    EXPECT_EQ(parent.saves, 1);
}

} // namespace
