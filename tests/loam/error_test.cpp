#include "loam/error.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using loam::GetErrorState;
using Reports = std::vector<std::vector<std::string>>;

struct Item : loam::ListItem {
    explicit Item(int value, std::vector<int>* deleted = nullptr)
        : value(value), deleted(deleted) {}
    ~Item() override {
        if (deleted)
            deleted->push_back(value);
    }
    int value;
    std::vector<int>* deleted;
};

std::vector<int> Values(const loam::List& list) {
    std::vector<int> values;
    for (auto* at = list.GetHead(); at; at = at->GetNext())
        values.push_back(static_cast<Item*>(at)->value);
    return values;
}

// Records the messages of every stack it is shown, newest first.
class RecordingReporter : public loam::ErrorReporter {
public:
    RecordingReporter(Reports* reports, bool raiseWhileReporting)
        : reports(reports), raiseWhileReporting(raiseWhileReporting) {}

    void Report(loam::ErrorStack& errors) override {
        std::vector<std::string> messages;
        for (loam::ErrorInfo* error = errors.GetTop(); error;) {
            messages.push_back(error->GetMessage().GetCString());
            if (!error->GetNext(&error))
                break;
        }
        reports->push_back(messages);
        if (raiseWhileReporting) {
            loam::RaiseError(loam::ErrorGeneral, "raised by the dialog");
            GetErrorState().ReportError();
        }
    }

private:
    Reports* reports;
    bool raiseWhileReporting;
};

class ErrorStateTest : public ::testing::Test {
protected:
    void SetUp() override { loam::ClearErrors(); }
    void TearDown() override {
        GetErrorState().SetReporter(nullptr);
        loam::ClearErrors();
    }
    Reports Report(bool raiseWhileReporting = false) {
        Reports reports;
        GetErrorState().SetReporter(new RecordingReporter(&reports, raiseWhileReporting));
        loam::ReportError();
        GetErrorState().SetReporter(nullptr);
        return reports;
    }
};

} // namespace

// The error stacks push at the head and take out of the middle; a list owns what is left.
TEST(List, LinksUnlinksAndOwnsItsItems) {
    std::vector<int> deleted;
    {
        loam::List list;
        auto* middle = new Item(2, &deleted);
        list.AddHead(new Item(3, &deleted));
        list.AddHead(middle);
        list.AddHead(new Item(1, &deleted));
        EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 3}));
        delete list.Remove(middle);
        EXPECT_EQ(Values(list), (std::vector<int>{1, 3}));
        EXPECT_EQ(list.GetHead()->GetNext()->GetPrevious(), list.GetHead());
    }
    EXPECT_EQ(deleted, (std::vector<int>{2, 1, 3}));
}

TEST_F(ErrorStateTest, NewestErrorIsOnTopAndLinksToOlderOnes) {
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
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
