#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/button.h"
#include "quilt/check_box.h"
#include "quilt/msg_dialog.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quilt {

// A message with a row of buttons, made and laid out at run time to fit their texts. Its result
// is the index of the button that was clicked; only a button ends it.
class QuestionDialog : public MsgDialog {
public:
    QuestionDialog(const loam::String& titleText, const loam::String& messageText, Window* parent);
    ~QuestionDialog() override;

    // Set once at start, before the first question. A check box id of -1 means none.
    static void SetTemplate(const loam::ResourceId& resource, int32_t textId, int32_t firstButtonId,
                            int32_t secondButtonId, int32_t rememberBoxId = NoControlId);

    const MessageMap* GetMessageMap() const override { return &messageMap; }
    void LayoutControls(int32_t* dx, int32_t* dy) override;
    void CreateControls() override;

    // Before the dialog runs; two at least.
    void SetButtonTexts(std::vector<loam::String> texts) { buttonTexts = std::move(texts); }
    int32_t GetButtonCount() const { return static_cast<int32_t>(buttonTexts.size()); }
    void UseRememberBox(bool use) { useRememberBox = use; }
    // True when the user unticked the box that remembers the answer.
    bool GetDoNotRemember() const { return doNotRemember; }

    static const MessageMap messageMap;

private:
    static const MessageMapEntry entries[];

    bool OnClicked(int32_t kind, int32_t subKind, int32_t id);
    bool HasRememberBox() const;
    void BindButtons();
    int32_t MeasureButtonWidth(const loam::String& caption, int32_t minimum);

    static loam::ResourceId templateResource;
    static int32_t templateTextId;
    static int32_t templateFirstId;
    static int32_t templateSecondId;
    static int32_t templateRememberId;

    std::vector<std::unique_ptr<Button>> buttons;
    std::vector<int32_t> buttonIds;
    std::vector<loam::String> buttonTexts;
    CheckBox rememberBox;
    bool useRememberBox = false;
    bool doNotRemember = false;
};

// What the application asks the user. The dialog is modal and centred; a null parent means the
// application's main window.
class Question {
public:
    Question(const loam::ResourceId& title, const loam::ResourceId& text, Window* parent = nullptr);
    Question(const loam::String& title, const loam::String& text, Window* parent = nullptr);
    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;
    ~Question();

    // `buttons` ends at an entry with id 0; the chosen button's entry.
    loam::ResourceId Ask(const loam::ResourceId* buttons);
    // `buttons` ends at null; the chosen button's index.
    int32_t Ask(const char* const* buttons);

    // Remembers the answer under this preference name, and offers to stop asking.
    void SetPreferenceName(const char* name) { preferenceName = name; }

private:
    int32_t AskWithTexts(std::vector<loam::String> texts);
    int32_t GetRememberedChoice(const std::vector<loam::String>& texts, bool& show);
    void Remember(const loam::String& chosen);

    std::unique_ptr<QuestionDialog> dialog;
    loam::String preferenceName;
};

} // namespace quilt
