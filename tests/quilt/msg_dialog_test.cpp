#include "quilt/msg_dialog.h"

#include "app/resources/message_dialog_templates.h"
#include "loam/error.h"
#include "loam/resource.h"
#include "quilt/error_dialog.h"
#include "quilt/offscreen/testing/drawing_recorder.h"
#include "quilt/question_dialog.h"
#include "test_application.h"

#include <numeric>
#include <string>
#include <tuple>

namespace {

// The offscreen dialog font makes a dialog unit 2 by 2 pixels and a line of text 16 pixels
// high, each byte 8 pixels wide. The alert's template is 372 by 142 pixels, its text 344 by 68.
constexpr loam::StringTableEntry strings[] = {{119, "&Yes"}, {120, "&No"}, {131, "Search failed"}};

void RegisterMessageDialogs() {
    quilt::RegisterDialogTemplates(MessageDialogTemplates);
    loam::RegisterStringTable(strings, static_cast<int>(std::size(strings)));
    quilt::AlertDialog::SetTemplate({loam::ResourceKindDialog, AlertDialogId}, AlertTextId,
                                    AlertOkId);
    quilt::QuestionDialog::SetTemplate({loam::ResourceKindDialog, QuestionDialogId}, QuestionTextId,
                                       QuestionFirstButtonId, QuestionSecondButtonId);
}

// No driver: nobody is at the screen, as in a headless run.
class HeadlessMessageTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterMessageDialogs();
        loam::ClearErrors();
    }
    void TearDown() override {
        loam::GetErrorState().SetReporter(nullptr);
        loam::ClearErrors();
    }
};

class MsgDialogTest : public HeadlessMessageTest {
protected:
    OffscreenDriver driver;
};

TEST_F(MsgDialogTest, AnAlertFitsItsHeightToTheTextAndGrowsSixteenPixelsWide) {
    const std::tuple<const char*, int32_t> cases[] = {
        {"Done", 1},
        // 43 bytes fit in a line of 344 pixels.
        {"The quick brown fox jumps over the lazy dog and then runs far away into the woods, "
         "where nobody will ever find it again, not even the hunter with his hounds and horn.",
         4},
        {"one\ntwo\nthree\nfour\nfive\nsix", 6},
    };
    for (const auto& [text, lines] : cases) {
        SCOPED_TRACE(text);
        // The lines and a margin of 8 above and below take the place of the template's text.
        const int32_t dy = lines * 16 + 2 * 8 - 68;
        driver.OnNextModal([&](Dialog& dialog) {
            const Rect frame = driver.GetScreenRect(dialog);
            EXPECT_TRUE(frame.GetWidth() == 372 + 16 && frame.GetHeight() == 142 + dy);
            EXPECT_TRUE(driver.GetControlRect(dialog, AlertOkId)
                            .Equals(Rect{144, 100 + dy, 244, 128 + dy}));
            EXPECT_FALSE(driver.IsControlVisible(dialog, AlertTextId));
            EXPECT_EQ(driver.GetText(dialog), "Title");
            driver.PressReturn(dialog);
        });
        quilt::ShowAlert(loam::String("Title"), loam::String(text));
        EXPECT_EQ(driver.GetWaitingModalActions(), 0u);
    }
}

TEST_F(MsgDialogTest, AnAlertPaintsItsTextCentredInsideAFrame) {
    quilt::OffscreenDrawingRecorder recorder;
    // Return waits until the dialog has been painted once.
    driver.OnNextModal([&](Dialog& dialog) { driver.PressReturn(dialog, driver.Now() + 10); });
    quilt::ShowAlert(loam::String("Title"), loam::String("Done"));

    auto texts = recorder.GetDrawings(quilt::OffscreenDrawingKind::Text);
    auto edges = recorder.GetDrawings(quilt::OffscreenDrawingKind::Edge);
    ASSERT_FALSE(texts.empty());
    ASSERT_FALSE(edges.empty());
    EXPECT_EQ(texts.back().text, "Done");
    EXPECT_TRUE(texts.back().rect.Equals(Rect{22, 22, 366, 38}));
    EXPECT_EQ(texts.back().flags & 0x15u, 0x15u);
    EXPECT_TRUE(edges.back().rect.Equals(Rect{14, 14, 374, 46}));
    EXPECT_EQ(edges.back().flags, quilt::EdgeSunkenOuter);
}

using QuestionTest = MsgDialogTest;

TEST_F(QuestionTest, TheButtonRowFitsItsTextsAndStaysCentred) {
    // The template's buttons are 100 pixels wide with a gap of 32, the text 344 wide; the dialog
    // always grows by 16 for the text's margins.
    const std::tuple<std::vector<const char*>, int32_t, std::vector<int32_t>> cases[] = {
        {{"&Yes", "&No"}, 372 + 16, {100, 100}},
        {{"&Yes", "Increase the limit"}, 372 + 16, {100, 18 * 8 + 16}},
        // 3 buttons of 100 and 2 gaps are 20 pixels more than the text.
        {{"One", "Two", "Three"}, 372 + 20 + 16, {100, 100, 100}},
    };
    for (const auto& [texts, clientWidth, widths] : cases) {
        SCOPED_TRACE(texts.back());
        driver.OnNextModal([&](Dialog& dialog) {
            EXPECT_EQ(driver.GetScreenRect(dialog).GetWidth(), clientWidth);
            // The template's two buttons, then those made by code with free ids from 1001 on.
            std::vector<int32_t> ids{QuestionFirstButtonId, QuestionSecondButtonId};
            for (int32_t id = 1001; driver.FindControl(dialog, id) != nullptr; ++id) {
                ids.push_back(id);
            }
            ASSERT_EQ(ids.size(), widths.size());
            // Centred, and moved up by the 52 pixels the one-line text takes off the template.
            int32_t left = (clientWidth - 32 * (static_cast<int32_t>(ids.size()) - 1) -
                            std::accumulate(widths.begin(), widths.end(), 0)) /
                           2;
            for (size_t index = 0; index < ids.size(); ++index) {
                EXPECT_TRUE(driver.GetControlRect(dialog, ids[index])
                                .Equals(Rect{left, 70, left + widths[index], 98}));
                EXPECT_EQ(driver.GetControlText(dialog, ids[index]), texts[index]);
                left += widths[index] + 32;
            }
            driver.Click(dialog, ids.back());
        });
        std::vector<const char*> asked = texts;
        asked.push_back(nullptr);
        quilt::Question question(loam::String("Title"), loam::String("Go on?"));
        EXPECT_EQ(question.Ask(asked.data()), static_cast<int32_t>(texts.size()) - 1);
    }
}

TEST_F(QuestionTest, OnlyAButtonEndsAQuestion) {
    driver.OnNextModal([&](Dialog& dialog) {
        driver.PressEscape(dialog);
        driver.PostClose(dialog);
        driver.RunFor(0);
        EXPECT_NE(driver.FindDialog(QuestionDialogId), nullptr);
        driver.Click(dialog, QuestionSecondButtonId, driver.Now() + 100);
    });
    const loam::ResourceId buttons[] = {loam::StringResource(119), loam::StringResource(120), {}};
    quilt::Question question(loam::StringResource(131), loam::StringResource(131));
    EXPECT_EQ(question.Ask(buttons).id, 120);
}

using ErrorDialogTest = MsgDialogTest;

TEST_F(ErrorDialogTest, TheReporterShowsTheNewestErrorAndTheStackIsGoneAfterwards) {
    loam::GetErrorState().SetReporter(new quilt::QuiltErrorReporter(MessageErrorDialogIds));
    loam::RaiseError(loam::ErrorGeneral, "oldest");
    loam::RaiseError(loam::ErrorNotFound, "middle");
    loam::RaiseError(loam::ErrorCannotOpen, "newest");

    loam::String title;
    loam::String message;
    driver.OnNextModal([&](Dialog& dialog) {
        title = driver.GetText(dialog);
        message = static_cast<quilt::ErrorDialog&>(dialog).GetError()->GetMessage();
        EXPECT_FALSE(driver.IsControlVisible(dialog, 1003));
        driver.PressReturn(dialog);
    });
    loam::ReportError();

    EXPECT_EQ(title, "Error");
    EXPECT_EQ(message, "newest");
    EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNone);
}

TEST_F(ErrorDialogTest, AReportRaisedWhileAReportIsUpWaitsForTheNextReport) {
    loam::GetErrorState().SetReporter(new quilt::QuiltErrorReporter(MessageErrorDialogIds));
    loam::RaiseError(loam::ErrorGeneral, "first");
    driver.OnNextModal([&](Dialog& dialog) {
        loam::RaiseError(loam::ErrorNotFound, "during");
        loam::ReportError();
        driver.PressReturn(dialog);
    });
    driver.OnNextModal([&](Dialog& dialog) { driver.PressReturn(dialog); });
    loam::ReportError();

    EXPECT_EQ(driver.GetWaitingModalActions(), 1u);
    EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNotFound);
}

TEST_F(ErrorDialogTest, TheHeadlineNamesTheSeverityWhereTheTemplateHasOne) {
    const std::tuple<uint32_t, const char*, bool, const char*> cases[] = {
        {loam::SeverityError, nullptr, false, "An error has occurred."},
        {loam::SeverityCritical, nullptr, false, "A critical error has occurred."},
        {loam::SeverityTerminal, nullptr, false,
         "A terminal error has occured.  The program must now exit."},
        {7, nullptr, false, ""},
        {loam::SeverityTerminal, "walk.cpp", true,
         "A terminal error has occurred.  The program must now exit.  (walk.cpp, at line 12)"},
        {loam::SeverityError, nullptr, true,
         "An error has occurred. (source location of error unknown)"},
    };
    for (const auto& [severity, sourceFile, debug, expected] : cases) {
        SCOPED_TRACE(expected);
        loam::ErrorInfo error(loam::ErrorGeneral, severity, "broken", nullptr, sourceFile, 12);
        loam::String headline;
        driver.OnNextModal([&](Dialog& dialog) {
            headline = driver.GetControlText(dialog, 1004);
            driver.PressEscape(dialog);
        });
        const auto& ids = MessageErrorDialogIds;
        std::unique_ptr<quilt::ErrorDialog> dialog;
        if (debug)
            dialog =
                std::make_unique<quilt::ErrorDialog_Dbg>(ids.debugDialog, &error, &ids, nullptr);
        else
            dialog = std::make_unique<quilt::ErrorDialog>(ids.debugDialog, &error, &ids, nullptr);
        EXPECT_EQ(dialog->RunModal(true), quilt::IdCancel);
        EXPECT_EQ(headline, expected);
    }
}

TEST_F(ErrorDialogTest, MoreInfoAndBackStepThroughTheStack) {
    loam::ErrorStack stack;
    for (const char* message : {"oldest", "middle", "newest"}) {
        stack.Push(new loam::ErrorInfo(loam::ErrorGeneral, loam::SeverityError, message, nullptr,
                                       nullptr, 0));
    }
    const std::tuple<int32_t, const char*, bool, bool> steps[] = {
        {0, "newest", false, true},    {1006, "middle", true, true}, {1006, "oldest", true, false},
        {1006, "oldest", true, false}, {1008, "middle", true, true}, {1008, "newest", false, true},
    };
    driver.OnNextModal([&](Dialog& dialog) {
        auto& shown = static_cast<quilt::ErrorDialog&>(dialog);
        for (const auto& [click, message, back, moreInfo] : steps) {
            SCOPED_TRACE(message);
            if (click != 0) {
                driver.Click(dialog, click);
                driver.PumpMessages();
            }
            EXPECT_EQ(shown.GetError()->GetMessage(), message);
            EXPECT_EQ(driver.GetControlText(dialog, 1003), message);
            EXPECT_EQ(driver.IsControlVisible(dialog, 1008), back);
            EXPECT_EQ(driver.IsControlVisible(dialog, 1006), moreInfo);
        }
        driver.Click(dialog, 1002);
    });
    quilt::ErrorDialog dialog(MessageErrorDialogIds.debugDialog, stack.GetTop(),
                              &MessageErrorDialogIds, nullptr);
    EXPECT_EQ(dialog.RunModal(true), 1002);
}

TEST_F(HeadlessMessageTest, MessagesGoToStandardErrorAndQuestionsTakeTheirDefault) {
    testing::internal::CaptureStderr();
    quilt::ShowAlert(loam::String("Index not available"), loam::String("There is no index."));
    const char* buttons[] = {"&Yes", "&No", nullptr};
    quilt::Question question(loam::String("Too many results..."), loam::String("Raise it?"));
    int32_t answer = question.Ask(buttons);
    loam::GetErrorState().SetReporter(new quilt::QuiltErrorReporter(MessageErrorDialogIds));
    loam::RaiseError(loam::ErrorCannotOpen, "Could not open the index.");
    loam::ReportError();
    std::string printed = testing::internal::GetCapturedStderr();

    EXPECT_EQ(answer, 0);
    EXPECT_EQ(printed, "Index not available\nThere is no index.\nCould not open the index.\n");
    EXPECT_EQ(loam::GetCurrentErrorCode(), loam::ErrorNone);
}

} // namespace
