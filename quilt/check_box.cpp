#include "quilt/check_box.h"

#include "quilt/dialog.h"
#include "quilt/imp_factory.h"

namespace quilt {

NotificationAnswer CheckBoxImp::TranslateNotification(const NativeNotification& notification,
                                                      NotificationTranslation& out) {
    auto* checkBox = dynamic_cast<CheckBox*>(GetOwner());
    if (notification.event == ControlEvent::Clicked && checkBox != nullptr) {
        checkBox->OnClicked();
    }
    return WindowImp::TranslateNotification(notification, out);
}

CheckBox::CheckBox() : Window(GetImpFactory().CreateCheckBoxImp()) {
    checkImp = dynamic_cast<CheckBoxImp*>(GetImp());
}

void CheckBox::OnClicked() {
    OnStateChanged();
}

void CheckBox::OnStateChanged() {
    if (dialog == nullptr) {
        return;
    }
    for (int32_t id : dependents) {
        ApplyState(id);
    }
}

void CheckBox::SetState(int32_t state) {
    int32_t wanted = ToCheckState(state);
    if (!HasNativeWindow() || GetState() == wanted) {
        return;
    }
    checkImp->SetState(wanted);
    OnStateChanged();
}

void CheckBox::SetChecked(bool checked) {
    SetState(checked ? CheckStateChecked : CheckStateUnchecked);
}

bool CheckBox::Create(Window* parent, const Rect& rect, int32_t id) {
    SetParent(parent);
    return checkImp->Create(parent, rect, id);
}

void CheckBox::AddDependent(int32_t id) {
    if (dialog == nullptr) {
        return;
    }
    dependents.push_back(id);
    ApplyState(id);
}

void CheckBox::AddDependents(const int32_t* ids) {
    for (; *ids != -1; ++ids) {
        AddDependent(*ids);
    }
}

void CheckBox::ApplyState(int32_t id) {
    if (IsChecked()) {
        dialog->EnableControlById(id);
    } else {
        dialog->DisableControlById(id);
    }
}

} // namespace quilt
