#include "app/resources/string_table.h"
#include "loam/resource.h"
#include "quilt/dialog_template.h"
#include "sorvanta_run.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using SorvantaAppTest = SorvantaRunTest;

struct StartCase {
    const char* commandLine;
    bool rebuildOnly;
};

// The switch is found anywhere in the raw text, and only in this spelling.
const StartCase startCases[] = {
    {"/buildindex", true},    {"--quiet /buildindex somewhere", true},
    {"x/buildindexes", true}, {"\"/buildindex\"", true},
    {"/BuildIndex", false},   {"/build index", false},
    {"buildindex", false},    {"", false},
};

TEST_F(SorvantaAppTest, TheCommandLineChoosesTheWindowAfterTheSameStartUp) {
    for (const StartCase& test : startCases) {
        SCOPED_TRACE(test.commandLine);
        testing::internal::CaptureStderr();
        const bool started = Start(test.commandLine);
        const std::string said = testing::internal::GetCapturedStderr();

        EXPECT_EQ(started, test.rebuildOnly);
        EXPECT_EQ(RebuildWindow() != nullptr, test.rebuildOnly);
        EXPECT_EQ(application->GetTitleResource().id, StringTitle);
        EXPECT_STREQ(loam::StringResource(StringTitle).GetString().GetCString(), "Sorvanta");
        EXPECT_NE(quilt::FindDialogTemplate({loam::ResourceKindDialog, 111}), nullptr);
        EXPECT_EQ(SorvantaApp::GetIndexFile().GetPath().GetCString(), Path(indexName));
        EXPECT_TRUE(application->OnCommand(101));
        if (test.rebuildOnly) {
            EXPECT_EQ(said, "");
            EXPECT_EQ(RebuildWindow(), nullptr);
            EXPECT_TRUE(driver.HasQuit());
        } else {
            EXPECT_NE(said.find("sorvanta /buildindex"), std::string::npos) << said;
            EXPECT_NE(said.find("sorvanta-find"), std::string::npos) << said;
            EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
        }
        application.reset();
    }
}

} // namespace
