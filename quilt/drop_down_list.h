#pragma once

#include "loam/string.h"
#include "quilt/edit_box.h"
#include "quilt/list_control.h"

#include <cstdint>
#include <deque>

namespace quilt {

// The last texts a user gave a drop-down list, newest first, with a data word each.
class DropDownHistory {
public:
    static constexpr int32_t DefaultLimit = 20;

    struct Entry {
        loam::String text;
        uint32_t data = 0;
    };

    int32_t GetCount() const { return static_cast<int32_t>(entries.size()); }
    int32_t GetLimit() const { return limit; }
    const Entry& Get(int32_t row) const { return entries[static_cast<size_t>(row)]; }
    Entry& Get(int32_t row) { return entries[static_cast<size_t>(row)]; }
    void Clear() { entries.clear(); }
    // Appends; refused once the count has reached the limit.
    bool Append(const loam::String& text, uint32_t data);
    // At `row`, which may be the count; refused beyond the count or at or beyond the limit.
    bool Insert(int32_t row, const loam::String& text, uint32_t data);
    bool Remove(int32_t row);
    int32_t Find(const loam::String& text) const;
    // Every entry of exactly this text goes, the text comes first, and the oldest go while the
    // count is at or above the limit: an addition leaves one place below the limit free.
    void Add(const loam::String& text);
    void SetLimit(int32_t newLimit);

private:
    void Trim();

    std::deque<Entry> entries;
    int32_t limit = DefaultLimit;
};

// The platform side of a drop-down list with or without an edit field. The history mode is
// kept here: in it the row operations, but for the selection, work on the history and leave the
// native list alone, and the native list is rebuilt from the history each time the user opens
// it. The backend reports SelectionChanged, TextChanged (the field's text), ListOpened,
// ListClosed and SelectionEnded; they reach the owner as MsgListSelChange, MsgListTextChange and
// MsgListSelEndOk. A backend implements the native row operations below, the selection, sorting
// and text of the ListControlImp and WindowImp, and hands the field to BindEdit when it binds.
class DropDownListImp : public ListControlImp {
public:
    void Clear() override;
    int32_t GetCount() override;
    bool AddItem(const loam::String& text, int32_t* row, uint32_t data) override;
    bool InsertAfter(int32_t after, const loam::String& text, int32_t* row, uint32_t data) override;
    bool InsertBefore(int32_t before, const loam::String& text, int32_t* row,
                      uint32_t data) override;
    bool RemoveItem(int32_t row) override;
    // A row has one text: the column is not looked at.
    bool SetItemText(int32_t row, const loam::String& text, int32_t column) override;
    bool SetItemData(int32_t row, uint32_t data) override;
    bool GetItemText(int32_t row, loam::String& text, int32_t column) override;
    bool GetItemData(int32_t row, uint32_t& data) override;
    int32_t FindItem(const loam::String& text) override;
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;

    void ClearEditSelection();
    void SetEditSelection(int32_t start, int32_t end);
    // Switching it on copies the native rows into the history, up to its limit; switching it
    // off rebuilds the native list from the history.
    void SetHistoryMode(bool on);
    void AddToHistory(const loam::String& text);
    void SetHistoryLimit(int32_t limit) { history.SetLimit(limit); }
    // Return in the edit field then raises MsgEnterKey at the parent, under the list's id,
    // instead of pressing the dialog's default button.
    void SetEnterNotifies(bool notifies);

protected:
    // The native list's rows, counted from 0. NativeInsert puts the row at `at`, or for -1 in
    // ascending order in a sorted list and at the end otherwise, and answers where it went, -1
    // when it could not. Without a native window they do nothing and answer false, 0 or -1.
    virtual void NativeClear() = 0;
    virtual int32_t NativeGetCount() = 0;
    virtual int32_t NativeInsert(int32_t at, const loam::String& text, uint32_t data) = 0;
    virtual bool NativeRemove(int32_t row) = 0;
    virtual bool NativeSetItemText(int32_t row, const loam::String& text) = 0;
    virtual bool NativeSetItemData(int32_t row, uint32_t data) = 0;
    virtual bool NativeGetItemText(int32_t row, loam::String& text) = 0;
    virtual bool NativeGetItemData(int32_t row, uint32_t& data) = 0;
    // A backend whose list has an edit field binds it here when it binds the list, giving the
    // dialog and the list's id, under which Return in the field reaches the dialog.
    void BindEdit(Window* dialog, NativeHandle field, int32_t listId);
    EditBox& GetEdit() { return edit; }
    bool HasEdit() const { return hasEdit; }

private:
    struct Route {
        ControlEvent event;
        NotificationAnswer (DropDownListImp::*handler)(const NativeNotification&,
                                                       NotificationTranslation&);
    };
    static const Route routes[];

    bool InsertNative(int32_t at, const loam::String& text, int32_t* row, uint32_t data);
    bool InsertHistory(int32_t at, const loam::String& text, int32_t* row, uint32_t data);
    bool IsHistoryRow(int32_t row) const { return row >= 0 && row < history.GetCount(); }
    // The native list anew from the history, whose newest entry becomes the text.
    void Rebuild();
    NotificationAnswer OnSelectionChanged(const NativeNotification&, NotificationTranslation& out);
    NotificationAnswer OnTextChanged(const NativeNotification& notification,
                                     NotificationTranslation& out);
    NotificationAnswer OnListOpened(const NativeNotification&, NotificationTranslation&);
    NotificationAnswer OnSelectionEnded(const NativeNotification&, NotificationTranslation& out);

    bool historyMode = false;
    bool hasEdit = false;
    EditBox edit;
    DropDownHistory history;
};

class DropDownList : public ListControl {
public:
    DropDownList();

    virtual void ClearEditSelection() { dropImp->ClearEditSelection(); }

    void SetHistoryMode(bool on);
    bool GetHistoryMode() const { return historyMode; }
    void AddToHistory(const loam::String& text) { dropImp->AddToHistory(text); }
    // The current text counts as used, unless it is empty.
    void AddCurrentTextToHistory();
    void SetEnterNotifies(bool notifies) { dropImp->SetEnterNotifies(notifies); }
    void SetEditSelection(int32_t start, int32_t end) { dropImp->SetEditSelection(start, end); }

private:
    DropDownListImp* dropImp;
    bool historyMode = false;
};

} // namespace quilt
