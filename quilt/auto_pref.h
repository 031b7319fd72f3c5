#pragma once

#include "loam/string.h"
#include "quilt/check_box.h"
#include "quilt/dialog.h"
#include "quilt/drop_down_list.h"

#include <cstdint>

namespace quilt {

// A check box of a dialog that keeps its state under a preference key: read when it is bound,
// written when the dialog saves its automatic preferences.
class AutoPrefCheckBox : public IAutoPref {
public:
    // A key that is not stored leaves `fallback`.
    bool Bind(Dialog* parent, int32_t id, const char* preferenceKey, bool fallback);
    void SavePreference() override;

    void SetChecked(bool checked) { checkBox.SetChecked(checked); }
    bool IsChecked() { return checkBox.IsChecked(); }
    void SetState(int32_t state) { checkBox.SetState(state); }
    int32_t GetState() { return checkBox.GetState(); }
    CheckBox& GetCheckBox() { return checkBox; }

private:
    CheckBox checkBox;
    loam::String key;
};

// A drop-down list that keeps its rows and its text in the preference node `key`: "ItemCount",
// "Item0" and up in row order, and "ItemText".
class AutoPrefDropDownList : public DropDownList, public IAutoPref {
public:
    // Loads the rows before history mode is switched on, so that the history starts from them.
    bool Bind(Dialog* parent, int32_t id, const char* preferenceKey, bool enterNotify,
              bool historyMode);
    // In history mode the text in the field counts as used first. Rows beyond the new count
    // that an earlier save left stay in the store, unread.
    void SavePreference() override;

private:
    void Load();

    loam::String key;
};

} // namespace quilt
