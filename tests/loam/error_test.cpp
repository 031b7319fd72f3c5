#include "loam/error.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using loam::GetErrorState;
using Reports = std::vector<std::vector<std::string>>;

// Records the messages of every stack it is shown, newest first.
struct RecordingReporter : loam::ErrorReporter {
    RecordingReporter(Reports* reports, bool raiseWhileReporting)
        : reports(reports), raiseWhileReporting(raiseWhileReporting) {}

    void Report(loam::ErrorStack& errors) override {
        reports->emplace_back();
        for (loam::ErrorInfo* error = errors.GetTop(); error; error->GetNext(&error))
            reports->back().push_back(error->GetMessage().GetCString());
        if (raiseWhileReporting) {
            loam::RaiseError(loam::ErrorGeneral, "raised by the dialog");
            GetErrorState().ReportError();
        }
    }

    Reports* reports;
    bool raiseWhileReporting;
};

class ErrorStateTest : public ::testing::Test {
protected:
    void SetUp() override { loam::ClearErrors(); }
    void TearDown() override { loam::ClearErrors(); }
    Reports Report(bool raiseWhileReporting = false) {
        Reports reports;
        GetErrorState().SetReporter(new RecordingReporter(&reports, raiseWhileReporting));
        loam::ReportError();
        GetErrorState().SetReporter(nullptr);
        return reports;
    }
};

} // namespace

TEST_F(ErrorStateTest, NewestErrorIsOnTopAndLinksToOlderOnes) {
    EXPECT_STREQ(loam::GetCurrentErrorInfo().GetMessage().GetCString(), "");
    EXPECT_FALSE(GetErrorState().RaiseError(256, 2, "first", nullptr, "C:\\src\\file.cpp", 7));
    EXPECT_FALSE(loam::RaiseFormatted(258, "second %d", 2));
    const loam::ErrorInfo& top = GetErrorState().GetCurrentError();
    EXPECT_EQ(top.GetCode(), 258u);
    EXPECT_STREQ(top.GetMessage().GetCString(), "second 2");
    loam::ErrorInfo* older = nullptr;
    ASSERT_TRUE(top.GetNext(&older));
    EXPECT_STREQ(older->GetSourceFile().GetCString(), "file.cpp");
    EXPECT_FALSE(older->GetNext(nullptr));
    loam::ErrorInfo* newer = nullptr;
    ASSERT_TRUE(older->GetPrevious(&newer));
    EXPECT_EQ(newer, &top);
}

TEST_F(ErrorStateTest, ReportShowsTheWholeStackAndStartsAFreshOne) {
    loam::RaiseError(256, "older");
    loam::RaiseError(1, "newer");
    EXPECT_EQ(Report(), (Reports{{"newer", "older"}}));
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
    EXPECT_EQ(Report(), (Reports{{"ReportError() called when no errors have been encountered."}}));

    loam::RaiseError(1, "lost");
    loam::ReportError();
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);

    loam::RaiseError(1, "shown");
    EXPECT_EQ(Report(true), (Reports{{"shown"}}));
    EXPECT_STREQ(loam::GetCurrentErrorInfo().GetMessage().GetCString(), "raised by the dialog");
    EXPECT_FALSE(GetErrorState().IsReporting());
}

TEST_F(ErrorStateTest, SaveAndRestoreBracketKeepsTheOuterError) {
    loam::RaiseError(263, "the copy failed");
    GetErrorState().SaveState();
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
    loam::RaiseError(256, "clean-up failed");
    GetErrorState().RestoreState();
    EXPECT_EQ(loam::GetCurrentErrorCode(), 263u);
    EXPECT_FALSE(GetErrorState().GetCurrentError().GetNext(nullptr));
    GetErrorState().RestoreState();
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
}
