#pragma once

#include "quilt/dialog_imp.h"
#include "quilt/geometry.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>
#include <vector>

namespace quilt {

class Dialog;

class CheckBoxImp : public virtual WindowImp {
public:
    using WindowImp::Create;
    // The native state; 0 without a native window.
    virtual int32_t GetState() = 0;
    // `state` is one of the CheckState values.
    virtual void SetState(int32_t state) = 0;
    // A check box made by code, which only the program checks.
    virtual bool Create(Window* parent, const Rect& rect, int32_t id) = 0;
    // A click reaches the check box before its dialog.
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;
};

// A check box, which may enable and disable other controls of its dialog by its state: its
// dependents are enabled while it is checked, and disabled otherwise, indeterminate included.
class CheckBox : public Window {
public:
    CheckBox();

    // Each click, before the dialog hears of it as MsgClicked.
    virtual void OnClicked();
    virtual void OnStateChanged();

    void SetChecked(bool checked);
    // 1 checked, 2 indeterminate, any other unchecked. A change of state calls OnStateChanged;
    // the present state changes nothing.
    void SetState(int32_t state);
    bool IsChecked() { return GetState() == CheckStateChecked; }
    // 0 unchecked, 1 checked, 2 for any other state.
    int32_t GetState() { return ReadCheckState(checkImp->GetState()); }
    bool Create(Window* parent, const Rect& rect, int32_t id);

    void SetDependentDialog(Dialog* dependentDialog) { dialog = dependentDialog; }
    // Without a dialog the id is dropped; otherwise the control takes the present state at once.
    void AddDependent(int32_t id);
    // Over an array of ids that ends at -1.
    void AddDependents(const int32_t* ids);

private:
    void ApplyState(int32_t id);

    CheckBoxImp* checkImp;
    std::vector<int32_t> dependents;
    Dialog* dialog = nullptr;
};

} // namespace quilt
