#include "quilt/error_dialog.h"

#include "quilt/application.h"
#include "quilt/dialog_units.h"
#include "quilt/font.h"
#include "quilt/gc.h"
#include "quilt/msg_dialog.h"

#include <span>

namespace quilt {

namespace {

// The error's own frame leaves less room around the text than a message dialog's.
constexpr int32_t messageInset = 3;
constexpr uint32_t messageTextFlags = TextCenter | TextVCenter | TextWordBreak;

struct SeverityText {
    uint32_t severity;
    const char* text;
};

constexpr SeverityText headlines[] = {
    {loam::SeverityError, "An error has occurred."},
    {loam::SeverityCritical, "A critical error has occurred."},
    {loam::SeverityTerminal, "A terminal error has occured.  The program must now exit."},
};

constexpr SeverityText debugHeadlines[] = {
    {loam::SeverityError, "An error has occurred."},
    {loam::SeverityCritical, "A critical error has occurred."},
    {loam::SeverityTerminal, "A terminal error has occurred.  The program must now exit."},
};

const char* FindSeverityText(std::span<const SeverityText> table, uint32_t severity) {
    for (const SeverityText& entry : table) {
        if (entry.severity == severity) {
            return entry.text;
        }
    }
    return "";
}

loam::String GetSourcePlace(const loam::ErrorInfo& error) {
    loam::String file = error.GetSourceFile();
    if (file.IsEmpty()) {
        return loam::String(" (source location of error unknown)");
    }
    loam::String place;
    place.Format("  (%s, at line %u)", file.GetCString(), error.GetSourceLine());
    return place;
}

Window* GetParentOrMainWindow(Window* parent) {
    return parent != nullptr ? parent : Application::GetMainWindow();
}

} // namespace

const MessageMapEntry ErrorDialog::entries[] = {
    NotificationRange(MsgClicked, AnyControl, AnyControl, &ErrorDialog::OnClicked),
    EndOfMap,
};

const MessageMap ErrorDialog::messageMap{&Dialog::messageMap, entries};

ErrorDialog::ErrorDialog(const loam::ResourceId& resource, const loam::ErrorInfo* shownError,
                         const ErrorDialogIds* dialogIds, Window* parent)
    : Dialog(resource, GetParentOrMainWindow(parent)), error(shownError), ids(dialogIds) {}

void ErrorDialog::OnInitDialog() {
    Dialog::OnInitDialog();
    UpdateHeadline();
    if (ids->messageText != NoControlId) {
        messageControl.BindToControl(this, ids->messageText);
    }
    if (ids->backButton != NoControlId) {
        back.BindToControl(this, ids->backButton);
    }
    if (ids->moreInfoButton != NoControlId) {
        moreInfo.BindToControl(this, ids->moreInfoButton);
    }
    Refresh();
}

void ErrorDialog::UpdateHeadline() {
    SetHeadline(loam::String(FindSeverityText(headlines, error->GetSeverity())));
}

void ErrorDialog::SetHeadline(const loam::String& text) {
    if (ids->headlineText != NoControlId && headline.BindToControl(this, ids->headlineText)) {
        headline.SetText(text);
    }
}

void ErrorDialog::Refresh() {
    messageControl.SetText(error->GetMessage());
    back.Show(error->GetPrevious(nullptr) ? ShowModeShow : ShowModeHide);
    moreInfo.Show(error->GetNext(nullptr) ? ShowModeShow : ShowModeHide);
    Rect area;
    if (GetControlRect(ids->messageText, area)) {
        Invalidate(&area);
    }
}

bool ErrorDialog::OnPaint() {
    Rect area;
    if (!GetControlRect(ids->messageText, area)) {
        return false;
    }
    Font font;
    CreateDialogFont(font);
    RedrawGC gc(*this);
    gc.SetFont(&font);
    gc.DrawEdge(area, EdgeSunkenOuter);
    Rect inside{area.left + messageInset, area.top + messageInset, area.right - messageInset,
                area.bottom - messageInset};
    gc.DrawTextInRect(error->GetMessage(), inside, messageTextFlags);
    return true;
}

bool ErrorDialog::OnClicked(int32_t, int32_t, int32_t id) {
    loam::ErrorInfo* neighbour = nullptr;
    bool stepsOlder = id != NoControlId && id == ids->moreInfoButton;
    bool stepsNewer = id != NoControlId && id == ids->backButton;
    if (!stepsOlder && !stepsNewer) {
        EndDialog(id);
        return true;
    }
    bool moved = stepsOlder ? error->GetNext(&neighbour) : error->GetPrevious(&neighbour);
    if (moved) {
        error = neighbour;
        Refresh();
    }
    return true;
}

void ErrorDialog_Dbg::UpdateHeadline() {
    loam::String text(FindSeverityText(debugHeadlines, error->GetSeverity()));
    text += GetSourcePlace(*error);
    SetHeadline(text);
}

void QuiltErrorReporter::Report(loam::ErrorStack& stack) {
    const loam::ErrorInfo* newest = stack.GetTop();
    if (newest == nullptr) {
        return;
    }
    ErrorDialog dialog(ids.plainDialog, newest, &ids, nullptr);
    loam::String message = newest->GetMessage();
    RunMessageDialog(dialog, {&message}, IdOK);
}

} // namespace quilt
