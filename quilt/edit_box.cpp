#include "quilt/edit_box.h"

#include "quilt/imp_factory.h"
#include "quilt/keys.h"

namespace quilt {

namespace {

struct EditEvent {
    ControlEvent event;
    int32_t kind;
    bool carriesId;
};

constexpr EditEvent editEvents[] = {
    {ControlEvent::FocusGained, MsgFocusGained, false},
    {ControlEvent::FocusLost, MsgFocusLost, false},
    {ControlEvent::TextChanged, MsgTextChange, true},
    {ControlEvent::TextUpdated, MsgTextUpdate, true},
};

} // namespace

NotificationAnswer EditBoxImp::TranslateNotification(const NativeNotification& notification,
                                                     NotificationTranslation& out) {
    for (const EditEvent& entry : editEvents) {
        if (entry.event == notification.event) {
            out.kind = entry.kind;
            if (entry.carriesId) {
                out.parameter = notification.id;
            }
            return AnswerDispatch;
        }
    }
    return AnswerDefault;
}

EditBox::EditBox() : Window(GetImpFactory().CreateEditBoxImp()) {
    editImp = dynamic_cast<EditBoxImp*>(GetImp());
}

bool EditBox::OnWantKey(int32_t key) {
    return enterNotifies && key == KeyReturn;
}

bool EditBox::OnWantChar(uint16_t character) {
    return enterNotifies && character == KeyReturn;
}

bool EditBox::OnKeyDown(int32_t key, uint32_t) {
    if (!enterNotifies || key != KeyReturn) {
        return false;
    }
    MessageTarget* target = enterTarget != nullptr ? enterTarget : GetParent();
    if (target == nullptr) {
        return false;
    }
    int32_t id = enterId != -1 ? enterId : GetId();
    return target->Dispatch(MsgEnterKey, 0, id, nullptr);
}

// The native box never sees the Return that the box took for itself.
bool EditBox::OnChar(uint16_t character) {
    return enterNotifies && character == KeyReturn;
}

EditBox& EditBox::SetContent(const loam::String& text) {
    SetText(text);
    return *this;
}

EditBox& EditBox::SetContent(const char* text) {
    return SetContent(loam::String(text));
}

loam::String EditBox::GetContent() {
    loam::String text;
    GetText(text);
    return text;
}

bool EditBox::Create(Window* parent, const Rect& rect) {
    if (!editImp->Create(parent, rect)) {
        return false;
    }
    SetParent(parent);
    return true;
}

} // namespace quilt
