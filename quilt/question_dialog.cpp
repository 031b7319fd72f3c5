#include "quilt/question_dialog.h"

#include "loam/preferences.h"
#include "quilt/dialog_units.h"
#include "quilt/font.h"
#include "quilt/gc.h"

#include <algorithm>
#include <cctype>

namespace quilt {

namespace {

constexpr char lastChoiceSuffix[] = "_LastChoice";

// A button's text as it is remembered: "&Yes" is kept as "Yes".
loam::String GetLettersAndDigits(const loam::String& text) {
    loam::String kept;
    for (const char* byte = text.GetCString(); *byte != '\0'; ++byte) {
        if (std::isalnum(static_cast<unsigned char>(*byte)) != 0) {
            kept.Append(*byte);
        }
    }
    return kept;
}

int32_t GetGap(const Rect& first, const Rect& second) {
    return second.left >= first.left ? second.left - first.right : first.left - second.right;
}

} // namespace

loam::ResourceId QuestionDialog::templateResource{loam::ResourceKindDialog, 0};
int32_t QuestionDialog::templateTextId = NoControlId;
int32_t QuestionDialog::templateFirstId = NoControlId;
int32_t QuestionDialog::templateSecondId = NoControlId;
int32_t QuestionDialog::templateRememberId = NoControlId;

const MessageMapEntry QuestionDialog::entries[] = {
    NotificationRange(MsgClicked, AnyControl, AnyControl, &QuestionDialog::OnClicked),
    EndOfMap,
};

const MessageMap QuestionDialog::messageMap{&MsgDialog::messageMap, entries};

QuestionDialog::QuestionDialog(const loam::String& titleText, const loam::String& messageText,
                               Window* parent)
    : MsgDialog(templateResource, templateTextId, parent) {
    SetTitle(titleText);
    SetMessage(messageText);
}

QuestionDialog::~QuestionDialog() = default;

void QuestionDialog::SetTemplate(const loam::ResourceId& resource, int32_t textId,
                                 int32_t firstButtonId, int32_t secondButtonId,
                                 int32_t rememberBoxId) {
    templateResource = resource;
    templateTextId = textId;
    templateFirstId = firstButtonId;
    templateSecondId = secondButtonId;
    templateRememberId = rememberBoxId;
}

bool QuestionDialog::HasRememberBox() const {
    return templateRememberId != NoControlId && useRememberBox;
}

// The template's two buttons are the first two; any further one is made like the second.
void QuestionDialog::BindButtons() {
    Rect second;
    GetControlRect(templateSecondId, second);
    for (int32_t index = 0; index < GetButtonCount(); ++index) {
        auto button = std::make_unique<Button>();
        int32_t id = index == 0 ? templateFirstId : templateSecondId;
        if (index < 2) {
            button->BindToControl(this, id);
        } else {
            id = GetFreeChildId();
            button->Create(this, second, id);
        }
        buttons.push_back(std::move(button));
        buttonIds.push_back(id);
    }
    if (GetButtonCount() < 2) {
        HideControl(templateSecondId);
    }
}

int32_t QuestionDialog::MeasureButtonWidth(const loam::String& caption, int32_t minimum) {
    Font font;
    CreateDialogFont(font);
    GC gc(*this);
    gc.SetFont(&font);
    Rect measured;
    gc.MeasureText(caption, TextSingleLine, measured);
    return std::max(minimum, measured.GetWidth() + 2 * GetStandardMargin());
}

void QuestionDialog::CreateControls() {
    Rect first;
    Rect second;
    GetControlRect(templateFirstId, first);
    GetControlRect(templateSecondId, second);
    BindButtons();

    std::vector<int32_t> widths;
    for (const loam::String& caption : buttonTexts) {
        widths.push_back(MeasureButtonWidth(caption, first.GetWidth()));
    }
    int32_t gap = GetGap(first, second);
    int32_t rowWidth = gap * (GetButtonCount() - 1);
    for (int32_t width : widths) {
        rowWidth += width;
    }
    if (textRect.GetWidth() < rowWidth) {
        int32_t growth = rowWidth - textRect.GetWidth();
        GrowDialog(growth, 0);
        if (HasRememberBox()) {
            OffsetControl(templateRememberId, HalfOf(growth), 0);
        }
    }

    Rect client;
    GetClientRect(client);
    int32_t left = client.GetWidth() / 2 - rowWidth / 2;
    for (int32_t index = 0; index < GetButtonCount(); ++index) {
        SetControlRect(buttonIds[index],
                       Rect{left, second.top, left + widths[index], second.bottom});
        left += widths[index] + gap;
    }
    for (int32_t index = 0; index < GetButtonCount(); ++index) {
        buttons[index]->SetText(buttonTexts[index]);
    }
    if (HasRememberBox()) {
        rememberBox.BindToControl(this, templateRememberId);
    }
}

void QuestionDialog::LayoutControls(int32_t* dx, int32_t* dy) {
    if (templateRememberId != NoControlId) {
        LayoutCheckBox(templateRememberId, useRememberBox, dx, dy);
    }
    for (int32_t id : buttonIds) {
        OffsetControl(id, HalfOf(*dx), *dy);
    }
}

// A question ends only by one of its buttons: Escape and the close box change nothing.
bool QuestionDialog::OnClicked(int32_t, int32_t, int32_t id) {
    if (templateRememberId != NoControlId && id == templateRememberId) {
        return false;
    }
    auto found = std::find(buttonIds.begin(), buttonIds.end(), id);
    if (found != buttonIds.end()) {
        if (HasRememberBox()) {
            doNotRemember = !rememberBox.IsChecked();
        }
        EndDialog(static_cast<int32_t>(found - buttonIds.begin()));
        return true;
    }
    if (id != IdCancel) {
        EndDialog(0);
    }
    return true;
}

Question::Question(const loam::ResourceId& title, const loam::ResourceId& text, Window* parent)
    : Question(title.GetString(), text.GetString(), parent) {}

Question::Question(const loam::String& title, const loam::String& text, Window* parent)
    : dialog(std::make_unique<QuestionDialog>(title, text, parent)) {}

Question::~Question() = default;

loam::ResourceId Question::Ask(const loam::ResourceId* buttons) {
    std::vector<loam::String> texts;
    for (const loam::ResourceId* button = buttons; button->id != 0; ++button) {
        texts.push_back(button->GetString());
    }
    return buttons[AskWithTexts(std::move(texts))];
}

int32_t Question::Ask(const char* const* buttons) {
    std::vector<loam::String> texts;
    for (const char* const* button = buttons; *button != nullptr; ++button) {
        texts.emplace_back(*button);
    }
    return AskWithTexts(std::move(texts));
}

int32_t Question::AskWithTexts(std::vector<loam::String> texts) {
    auto count = static_cast<int32_t>(texts.size());
    int32_t chosen = 0;
    bool show = true;
    if (!preferenceName.IsEmpty()) {
        dialog->UseRememberBox(true);
        chosen = GetRememberedChoice(texts, show);
    }
    dialog->SetButtonTexts(texts);
    if (show) {
        // A run that failed, or that nobody answered, keeps the default.
        int32_t result = RunMessageDialog(*dialog, {}, chosen);
        chosen = result >= 0 && result < count ? result : chosen;
    }
    if (!preferenceName.IsEmpty() && !dialog->GetDoNotRemember()) {
        Remember(texts[chosen]);
    }
    return chosen;
}

// Whether to ask at all, and which button the last answer was. Without a remembered answer
// the question is asked whatever the preference says.
int32_t Question::GetRememberedChoice(const std::vector<loam::String>& texts, bool& show) {
    loam::Preferences& preferences = loam::GetPreferences();
    loam::String lastChoice;
    if (!preferences.GetString((preferenceName + lastChoiceSuffix).GetCString(), lastChoice) ||
        lastChoice.IsEmpty()) {
        show = true;
        return 0;
    }
    show = true;
    if (!preferences.GetBool(preferenceName.GetCString(), show)) {
        show = true;
    }
    for (size_t index = 0; index < texts.size(); ++index) {
        if (GetLettersAndDigits(texts[index]).EqualsNoCase(lastChoice)) {
            return static_cast<int32_t>(index);
        }
    }
    return 0;
}

void Question::Remember(const loam::String& chosen) {
    loam::Preferences& preferences = loam::GetPreferences();
    preferences.SetBool(preferenceName.GetCString(), false);
    preferences.SetString((preferenceName + lastChoiceSuffix).GetCString(),
                          GetLettersAndDigits(chosen));
}

} // namespace quilt
