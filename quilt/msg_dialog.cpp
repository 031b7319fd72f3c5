#include "quilt/msg_dialog.h"

#include "loam/preferences.h"
#include "quilt/application.h"
#include "quilt/dialog_units.h"
#include "quilt/font.h"
#include "quilt/gc.h"

#include <cstdio>

namespace quilt {

namespace {

constexpr uint32_t messageTextFlags = TextCenter | TextVCenter | TextWordBreak;

Window* GetParentOrMainWindow(Window* parent) {
    return parent != nullptr ? parent : Application::GetMainWindow();
}

// A preference that cannot be read counts as its default.
bool ReadBool(const char* name, bool fallback) {
    bool value = fallback;
    if (!loam::GetPreferences().GetBool(name, value)) {
        return fallback;
    }
    return value;
}

} // namespace

int32_t RunMessageDialog(Dialog& dialog, std::initializer_list<const loam::String*> lines,
                         int32_t unattendedResult) {
    if (dialog.GetDialogImp()->IsUserPresent()) {
        return dialog.RunModal(true);
    }
    for (const loam::String* line : lines) {
        if (!line->IsEmpty()) {
            std::fprintf(stderr, "%s\n", line->GetCString());
        }
    }
    return unattendedResult;
}

MsgDialog::MsgDialog(const loam::ResourceId& resource, int32_t textId, Window* parent)
    : Dialog(resource, GetParentOrMainWindow(parent)), textControlId(textId) {}

void MsgDialog::OnInitDialog() {
    Dialog::OnInitDialog();
    SetText(title);
    textControl.BindToControl(this, textControlId);
    GetControlRect(textControlId, textRect);
    HideControl(textControlId);
    CreateControls();

    Font font;
    CreateDialogFont(font);
    GC gc(*this);
    gc.SetFont(&font);
    Rect measured = textRect;
    gc.MeasureText(text, TextWordBreak, measured);
    int32_t dx = measured.GetWidth() + 2 * GetStandardMargin() - textRect.GetWidth();
    int32_t dy = measured.GetHeight() + 2 * GetStandardMargin() - textRect.GetHeight();
    LayoutControls(&dx, &dy);
    GrowDialog(dx, dy);
}

bool MsgDialog::OnPaint() {
    Font font;
    CreateDialogFont(font);
    RedrawGC gc(*this);
    gc.SetFont(&font);
    gc.DrawEdge(textRect, EdgeSunkenOuter);
    int32_t margin = GetStandardMargin();
    Rect inside{textRect.left + margin, textRect.top + margin, textRect.right - margin,
                textRect.bottom - margin};
    gc.DrawTextInRect(text, inside, messageTextFlags);
    return true;
}

void MsgDialog::LayoutControls(int32_t*, int32_t*) {}

void MsgDialog::GrowDialog(int32_t dx, int32_t dy) {
    Rect frame;
    if (GetRect(frame)) {
        SetSize(frame.GetWidth() + dx, frame.GetHeight() + dy);
    }
    GrowTextRect(dx, dy);
}

void MsgDialog::GrowTextRect(int32_t dx, int32_t dy) {
    textRect.right += dx;
    textRect.bottom += dy;
}

void MsgDialog::LayoutCheckBox(int32_t boxId, bool inUse, int32_t* dx, int32_t* dy) {
    if (inUse) {
        OffsetControl(boxId, HalfOf(*dx), *dy);
        return;
    }
    HideControl(boxId);
    Rect box;
    if (!GetControlRect(boxId, box)) {
        return;
    }
    int32_t below = box.bottom - textRect.bottom;
    *dy -= below;
    GrowTextRect(0, below);
}

loam::ResourceId AlertDialog::templateResource{loam::ResourceKindDialog, 0};
int32_t AlertDialog::templateTextId = NoControlId;
int32_t AlertDialog::templateOkId = IdOK;
int32_t AlertDialog::templateShowAgainId = NoControlId;

AlertDialog::AlertDialog(const loam::String& titleText, const loam::String& messageText,
                         Window* parent)
    : MsgDialog(templateResource, templateTextId, parent) {
    SetTitle(titleText);
    SetMessage(messageText);
}

void AlertDialog::SetTemplate(const loam::ResourceId& resource, int32_t textId, int32_t okId,
                              int32_t showAgainId) {
    templateResource = resource;
    templateTextId = textId;
    templateOkId = okId;
    templateShowAgainId = showAgainId;
}

void AlertDialog::CreateControls() {
    if (templateShowAgainId != NoControlId && useShowAgainBox) {
        showAgainBox.BindToControl(this, templateShowAgainId);
    }
}

void AlertDialog::LayoutControls(int32_t* dx, int32_t* dy) {
    if (templateShowAgainId != NoControlId) {
        LayoutCheckBox(templateShowAgainId, useShowAgainBox, dx, dy);
    }
    OffsetControl(templateOkId, HalfOf(*dx), *dy);
}

void AlertDialog::OnOK() {
    if (templateShowAgainId != NoControlId && useShowAgainBox) {
        showAgain = !showAgainBox.IsChecked();
    }
    MsgDialog::OnOK();
}

void ShowAlert(const loam::String& title, const loam::String& text, Window* parent,
               const char* preferenceName) {
    if (preferenceName != nullptr && !ReadBool(preferenceName, true)) {
        return;
    }
    AlertDialog dialog(title, text, parent);
    dialog.UseShowAgainBox(preferenceName != nullptr);
    RunMessageDialog(dialog, {&title, &text}, IdOK);
    if (preferenceName != nullptr) {
        loam::GetPreferences().SetBool(preferenceName, dialog.GetShowAgain());
    }
}

void ShowAlert(const loam::ResourceId& title, const loam::ResourceId& text, Window* parent,
               const char* preferenceName) {
    ShowAlert(title.GetString(), text.GetString(), parent, preferenceName);
}

} // namespace quilt
