#include "app/resources/string_table.h"
#include "loam/resource.h"
#include "sorvanta_run.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using SorvantaAppTest = SorvantaRunTest;

// The switch is found anywhere in the raw text, and only in this spelling.
TEST_F(SorvantaAppTest, TheCommandLineChoosesTheWindowAfterTheSameStartUp) {
    const std::pair<const char*, bool> cases[] = {
        {"/buildindex", true},    {"--quiet /buildindex somewhere", true},
        {"x/buildindexes", true}, {"\"/buildindex\"", true},
        {"/BuildIndex", false},   {"/build index", false},
        {"buildindex", false},    {"", false},
    };
    for (const auto& [commandLine, rebuildOnly] : cases) {
        SCOPED_TRACE(commandLine);
        application.reset();
        testing::internal::CaptureStderr();
        const bool started = Start(commandLine);
        const std::string said = testing::internal::GetCapturedStderr();

        EXPECT_EQ(started, rebuildOnly);
        EXPECT_EQ(RebuildWindow() != nullptr, rebuildOnly);
        EXPECT_STREQ(loam::StringResource(StringTitle).GetString().GetCString(), "Sorvanta");
        // Without the switch, one line tells how to index and how to search.
        EXPECT_EQ(said.empty(), rebuildOnly) << said;
        if (!rebuildOnly) {
            EXPECT_NE(said.find("sorvanta /buildindex"), std::string::npos) << said;
            EXPECT_NE(said.find("sorvanta-find"), std::string::npos) << said;
            EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
        }
    }
}

} // namespace
