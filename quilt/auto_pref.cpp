#include "quilt/auto_pref.h"

#include "loam/preferences.h"

#include <algorithm>

namespace quilt {

namespace {

constexpr char itemCountName[] = "ItemCount";
constexpr char itemTextName[] = "ItemText";
// A damaged count must not keep the dialog reading for ever.
constexpr uint32_t maximumStoredRows = 4096;

loam::String GetItemName(int32_t row) {
    loam::String name;
    name.Format("Item%d", row);
    return name;
}

} // namespace

bool AutoPrefCheckBox::Bind(Dialog* parent, int32_t id, const char* preferenceKey, bool fallback) {
    bool bound = checkBox.BindToControl(parent, id);
    parent->AddAutoPref(this);
    key = preferenceKey;
    bool value = fallback;
    if (!loam::GetPreferences().GetBool(key.GetCString(), value)) {
        value = fallback;
    }
    checkBox.SetChecked(value);
    return bound;
}

void AutoPrefCheckBox::SavePreference() {
    loam::GetPreferences().SetBool(key.GetCString(), checkBox.IsChecked());
}

bool AutoPrefDropDownList::Bind(Dialog* parent, int32_t id, const char* preferenceKey,
                                bool enterNotify, bool historyMode) {
    bool bound = BindToControl(parent, id);
    parent->AddAutoPref(this);
    key = preferenceKey;
    Load();
    if (enterNotify) {
        SetEnterNotifies(true);
    }
    if (historyMode) {
        SetHistoryMode(true);
    }
    return bound;
}

// A gap in the numbers is passed over; the count alone ends the rows.
void AutoPrefDropDownList::Load() {
    loam::Preferences* node = loam::GetPreferences().GetChild(key.GetCString());
    uint32_t count = 0;
    if (node == nullptr || !node->GetInt(itemCountName, count)) {
        return;
    }
    count = std::min(count, maximumStoredRows);
    for (int32_t row = 0; row < static_cast<int32_t>(count); ++row) {
        loam::String text;
        if (node->GetString(GetItemName(row).GetCString(), text)) {
            AddItem(text, nullptr, 0);
        }
    }
    loam::String text;
    if (node->GetString(itemTextName, text)) {
        SetText(text);
    }
}

void AutoPrefDropDownList::SavePreference() {
    if (GetHistoryMode()) {
        AddCurrentTextToHistory();
    }
    loam::Preferences* node = loam::GetPreferences().GetChild(key.GetCString());
    if (node == nullptr) {
        return;
    }
    int32_t count = GetCount();
    for (int32_t row = 0; row < count; ++row) {
        loam::String text;
        GetItemText(row, text, 0);
        node->SetString(GetItemName(row).GetCString(), text);
    }
    node->SetInt(itemCountName, static_cast<uint32_t>(count));
    loam::String text;
    GetText(text);
    node->SetString(itemTextName, text);
}

} // namespace quilt
