#include "quilt/application.h"

#include "test_application.h"

#include <string>
#include <tuple>

namespace {

// What the last run of the process did.
struct ProcessRecord {
    std::string openedFile;
    bool opened = false;
    int idleRounds = 0;
    bool exited = false;
};

ProcessRecord record;

// Closes its main window in its first idle round.
class ClosingApplication : public quilt::Application {
public:
    ClosingApplication() {
        closer.onIdle = [] {
            ++record.idleRounds;
            quilt::Application::GetMainWindow()->Destroy();
        };
    }
    bool Start() override {
        closer.EnableIdle();
        return Application::Start();
    }
    void OpenFile(const loam::FileSpec& file) override {
        record.opened = true;
        record.openedFile = file.GetPath().GetCString();
    }
    void OnExit() override { record.exited = true; }

private:
    RecordingIdleHandler closer;
};

TEST(ApplicationTest, TheProcessRunsUntilItsMainWindowCloses) {
    const std::tuple<std::vector<const char*>, bool, const char*> cases[] = {
        {{"sorvanta"}, false, ""},
        {{"sorvanta", "\"/home/some", "file\""}, true, "/home/some file"},
        {{"sorvanta", "/buildindex"}, true, "/buildindex"},
        {{"sorvanta", "\""}, true, "\""},
    };
    for (const auto& [arguments, opened, openedFile] : cases) {
        OffscreenDriver driver;
        record = ProcessRecord{};
        std::vector<char*> argv;
        for (const char* argument : arguments) {
            argv.push_back(const_cast<char*>(argument));
        }
        auto create = []() -> quilt::Application* { return new ClosingApplication; };
        EXPECT_EQ(quilt::RunProcess(create, static_cast<int>(argv.size()), argv.data()), 0);
        EXPECT_EQ(record.opened, opened);
        EXPECT_EQ(record.openedFile, openedFile);
        EXPECT_EQ(record.idleRounds, 1);
        EXPECT_TRUE(record.exited);
        EXPECT_EQ(quilt::Application::GetCurrent(), nullptr);
    }
}

TEST(ApplicationTest, TheExitCommandDestroysTheMainWindowAndEndsTheLoop) {
    OffscreenDriver driver;
    TestApplication application;
    EXPECT_FALSE(application.OnCommand(101));
    EXPECT_TRUE(application.OnExitCommand());
    EXPECT_FALSE(application.GetWindow().HasNativeWindow());
    EXPECT_TRUE(driver.HasQuit());
}

} // namespace
