#pragma once

#include "loam/string.h"
#include "quilt/colour.h"
#include "quilt/geometry.h"
#include "quilt/message_target.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>

namespace quilt {

class EditBoxImp : public virtual WindowImp {
public:
    using WindowImp::Create;
    // An edit box with a border, made by code with a free id.
    virtual bool Create(Window* parent, const Rect& rect) = 0;
    virtual void AppendText(const loam::String& text) = 0;
    // Without the focus the text replaces what was selected when the box lost it. With
    // `moveCaret` the box takes the focus and the caret goes behind the text.
    virtual void InsertText(const loam::String& text, bool moveCaret) = 0;
    virtual int32_t GetCaret() = 0;
    virtual void SetCaret(int32_t position) = 0;
    // False when nothing is selected, and then the out values stay as they were; either may be
    // null.
    virtual bool GetSelection(int32_t* start, int32_t* end) = 0;
    // False when `end` is not behind `start`.
    virtual bool SetSelection(int32_t start, int32_t end) = 0;
    virtual void ClearSelection() = 0;
    virtual void SetTextColour(const Colour& colour) = 0;
    virtual void SetBackColour(const Colour& colour) = 0;
    virtual void ResetTextColour() = 0;
    virtual void ResetBackColour() = 0;
    // Focus and text events; a text event carries the box's id.
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;
};

// An edit box. It can take Return for itself: then Return raises MsgEnterKey on the enter
// target, or the parent, instead of pressing the dialog's default button.
class EditBox : public Window {
public:
    EditBox();

    bool OnWantKey(int32_t key) override;
    bool OnWantChar(uint16_t character) override;
    bool OnKeyDown(int32_t key, uint32_t modifiers) override;
    bool OnChar(uint16_t character) override;

    EditBox& SetContent(const loam::String& text);
    EditBox& SetContent(const char* text);
    loam::String GetContent();
    void AppendText(const loam::String& text) { editImp->AppendText(text); }
    void InsertText(const loam::String& text, bool moveCaret) {
        editImp->InsertText(text, moveCaret);
    }
    int32_t GetCaret() { return editImp->GetCaret(); }
    void SetCaret(int32_t position) { editImp->SetCaret(position); }
    bool GetSelection(int32_t* start, int32_t* end) { return editImp->GetSelection(start, end); }
    bool SetSelection(int32_t start, int32_t end) { return editImp->SetSelection(start, end); }
    void ClearSelection() { editImp->ClearSelection(); }
    void SetTextColour(const Colour& colour) { editImp->SetTextColour(colour); }
    void SetBackColour(const Colour& colour) { editImp->SetBackColour(colour); }
    void ResetTextColour() { editImp->ResetTextColour(); }
    void ResetBackColour() { editImp->ResetBackColour(); }
    bool Create(Window* parent, const Rect& rect);

    void SetEnterNotifies(bool notifies) { enterNotifies = notifies; }
    // Id -1: MsgEnterKey carries the box's own id.
    void SetEnterTarget(MessageTarget* target, int32_t id) {
        enterTarget = target;
        enterId = id;
    }

private:
    EditBoxImp* editImp;
    bool enterNotifies = false;
    MessageTarget* enterTarget = nullptr;
    int32_t enterId = -1;
};

} // namespace quilt
