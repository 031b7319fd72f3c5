#pragma once

#include "app/resources/message_dialog_templates.h"
#include "app/sorvanta_options.h"
#include "quilt/error_dialog.h"
#include "quilt/keys.h"
#include "quilt/msg_dialog.h"
#include "sorvanta_run.h"

#include <filesystem>
#include <string>
#include <vector>

// The search window started as a user starts it, on the offscreen backend, and what the user
// sees and answers in it.
class SorvantaWindowTest : public SorvantaRunTest {
protected:
    void SetUp() override {
        SorvantaRunTest::SetUp();
        // The base puts the variable back after the test.
        environment.emplace_back("QUILT_PLATFORM", "offscreen");
    }

    void StartWindow() {
        ASSERT_TRUE(Start(""));
        ASSERT_NE(Main(), nullptr);
    }
    // Closes the window as its close box does, and starts the program anew.
    void Restart() {
        driver.PostClose(*Main());
        driver.RunUntilIdle();
        application.reset();
        StartWindow();
    }
    // Makes the desktop's default application for each of `mimeTypes` a small program that
    // writes down what it was given, one a line, in "recorder.log".
    void RecordLaunches(const std::vector<std::string>& mimeTypes) const {
        std::filesystem::create_directories(Path("config"));
        std::filesystem::create_directories(Path("data/applications"));
        MakeFile("recorder", "#!/bin/sh\nprintf '%s\\n' \"$1\" >> \"$0.log\"\n");
        std::filesystem::permissions(Path("recorder"), std::filesystem::perms::owner_all);
        std::string defaults = "[Default Applications]\n";
        std::string types;
        for (const std::string& type : mimeTypes) {
            defaults += type + "=recorder.desktop\n";
            types += type + ";";
        }
        MakeFile("config/mimeapps.list", defaults);
        MakeFile("data/applications/recorder.desktop",
                 "[Desktop Entry]\nType=Application\nName=Recorder\nExec=" + Path("recorder") +
                     " %u\nMimeType=" + types + "\n");
    }
    quilt::Dialog* Main() const { return driver.FindDialog(DialogMainWindow); }
    std::string Text(int32_t id) const { return driver.GetControlText(*Main(), id).GetCString(); }
    void Click(int32_t id) {
        driver.Click(*Main(), id);
        driver.RunUntilIdle();
    }
    // Builds the index from the start through the button, and lets the build run to its end.
    void BuildIndex() {
        Click(MainBuildButton);
        ASSERT_EQ(Text(MainIndexStatus).rfind("Index status good", 0), 0u) << Text(MainIndexStatus);
    }
    // Serves what the user did, and nothing else.
    void Serve() { driver.PumpMessages(); }
    // Types a pattern into an empty field and presses Return.
    void Find(const char* pattern) {
        Type(pattern);
        driver.PressReturn(*Main());
        driver.RunUntilIdle();
    }
    // Erases the field with Backspace and types the pattern.
    void Type(const char* pattern) {
        quilt::Dialog& main = *Main();
        driver.Click(main, MainSearchPattern);
        for (size_t i = Text(MainSearchPattern).size(); i > 0; --i)
            driver.PressKey(main, quilt::KeyBackspace);
        driver.TypeText(main, MainSearchPattern, pattern);
        Serve();
    }
    std::vector<std::string> Column(int32_t column) const {
        std::vector<std::string> texts;
        for (int32_t row = 0; row < driver.GetRowCount(*Main(), MainResultsList); ++row)
            texts.push_back(driver.GetCellText(*Main(), MainResultsList, row, column).GetCString());
        return texts;
    }

    // What a message dialog said, as "title: text".
    struct Said {
        std::vector<std::string> messages;
    };
    // Answers the next message dialog with the button `id`, and records what it said.
    void Answer(int32_t id, Said& said) {
        driver.OnNextModal([this, id, &said](quilt::Dialog& dialog) {
            std::string text;
            if (auto* message = dynamic_cast<quilt::MsgDialog*>(&dialog))
                text = message->GetMessage().GetCString();
            if (auto* error = dynamic_cast<quilt::ErrorDialog*>(&dialog))
                text = error->GetError()->GetMessage().GetCString();
            said.messages.push_back(std::string(driver.GetText(dialog).GetCString()) + ": " + text);
            driver.Click(dialog, id);
        });
    }
};
