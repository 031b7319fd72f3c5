#include "loam/error.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using loam::ErrorInfo;
using loam::ErrorStack;
using loam::GetErrorState;

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
    explicit RecordingReporter(std::vector<std::vector<std::string>>* reports,
                               bool raiseWhileReporting = false)
        : reports(reports), raiseWhileReporting(raiseWhileReporting) {}

    void Report(ErrorStack& errors) override {
        std::vector<std::string> messages;
        for (ErrorInfo* error = errors.GetTop(); error;) {
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
    std::vector<std::vector<std::string>>* reports;
    bool raiseWhileReporting;
};

class ErrorStateTest : public ::testing::Test {
protected:
    void SetUp() override {
        GetErrorState().SetReporter(new RecordingReporter(&reports));
        loam::ClearErrors();
    }
    void TearDown() override {
        GetErrorState().SetReporter(nullptr);
        loam::ClearErrors();
    }
    std::vector<std::vector<std::string>> reports;
};

} // namespace

TEST(List, LinksAndUnlinksAtBothEnds) {
    loam::List list;
    auto* a = new Item(1);
    auto* b = new Item(2);
    auto* c = new Item(3);
    list.AddHead(b);
    EXPECT_EQ(list.GetHead(), list.GetTail());
    list.AddHead(a);
    list.AddTail(c);
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 3}));
    list.Remove(b);
    delete b;
    EXPECT_EQ(Values(list), (std::vector<int>{1, 3}));
    list.InsertAfter(new Item(5), a);
    list.InsertBefore(new Item(6), a);
    EXPECT_EQ(Values(list), (std::vector<int>{6, 1, 5, 3}));
    EXPECT_EQ(list.GetCount(), 4u);
}

TEST(List, InsertNextToAStrangerChangesNothing) {
    loam::List list;
    list.AddHead(new Item(1));
    list.AddTail(new Item(2));
    Item stranger(9);
    Item candidate(4);
    EXPECT_FALSE(list.InsertBefore(&candidate, &stranger));
    EXPECT_FALSE(list.InsertAfter(&candidate, &stranger));
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2}));
}

TEST(List, OwnsItsItemsUntilRemoved) {
    std::vector<int> deleted;
    {
        loam::List list;
        list.AddTail(new Item(1, &deleted));
        list.AddTail(new Item(2, &deleted));
        auto* kept = list.Remove(list.GetHead());
        EXPECT_EQ(list.GetHead(), list.GetTail());
        delete kept;
        list.Remove(list.GetHead())->DeleteItem();
        EXPECT_EQ(list.GetHead(), nullptr);
        EXPECT_EQ(list.GetTail(), nullptr);
        list.AddTail(new Item(3, &deleted));
    }
    EXPECT_EQ(deleted, (std::vector<int>{1, 2, 3}));
}

TEST_F(ErrorStateTest, NewestErrorIsOnTopAndLinksToOlderOnes) {
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
    EXPECT_STREQ(loam::GetCurrentErrorInfo().GetMessage().GetCString(), "");
    EXPECT_FALSE(GetErrorState().RaiseError(256, 2, "first", nullptr, "C:\\src\\file.cpp", 7));
    EXPECT_FALSE(loam::RaiseFormatted(258, "second %d", 2));
    const ErrorInfo& top = GetErrorState().GetCurrentError();
    EXPECT_EQ(top.GetCode(), 258u);
    EXPECT_EQ(top.GetSeverity(), 2u);
    ErrorInfo* older = nullptr;
    ASSERT_TRUE(top.GetNext(&older));
    EXPECT_STREQ(older->GetMessage().GetCString(), "first");
    EXPECT_STREQ(older->GetSourceFile().GetCString(), "file.cpp");
    EXPECT_FALSE(older->GetNext(nullptr));
    ErrorInfo* newer = nullptr;
    ASSERT_TRUE(older->GetPrevious(&newer));
    EXPECT_EQ(newer, &top);
}

TEST_F(ErrorStateTest, ReportShowsTheWholeStackAndStartsAFreshOne) {
    loam::RaiseError(256, "older");
    loam::RaiseError(1, "newer");
    loam::ReportError();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0], (std::vector<std::string>{"newer", "older"}));
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
}

TEST_F(ErrorStateTest, ReportOfNothingShowsTheMisuse) {
    loam::ReportError();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0],
              (std::vector<std::string>{
                  "ReportError() called when no errors have been encountered."}));
}

TEST_F(ErrorStateTest, WithoutReporterTheStackIsEmptied) {
    GetErrorState().SetReporter(nullptr);
    loam::RaiseError(1, "lost");
    loam::ReportError();
    EXPECT_TRUE(reports.empty());
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
}

TEST_F(ErrorStateTest, AnErrorRaisedWhileReportingWaitsForTheNextReport) {
    GetErrorState().SetReporter(new RecordingReporter(&reports, true));
    loam::RaiseError(1, "shown");
    loam::ReportError();
    ASSERT_EQ(reports.size(), 1u);
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
}

TEST_F(ErrorStateTest, RestoreWithoutSaveLeavesAnEmptyStack) {
    loam::RaiseError(1, "dropped");
    GetErrorState().RestoreState();
    EXPECT_EQ(loam::GetCurrentErrorCode(), 0u);
}

TEST(StandardMessages, TableHasItsThirtyNineTexts) {
    EXPECT_STREQ(loam::GetStandardMessage(8),
                 "The application encountered an problem while writing to a file (reason: %s).");
    EXPECT_STREQ(loam::GetStandardMessage(38),
                 "The application has encountered an error while trying to receive data via a "
                 "network connection.");
    EXPECT_STREQ(loam::GetStandardMessage(39), "");
}
