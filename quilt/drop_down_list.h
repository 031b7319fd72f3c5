#pragma once

#include "loam/string.h"
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

// The platform side of a drop-down list with or without an edit field. In history mode the row
// operations, but for the selection, work on the history and leave the native list alone; the
// native list is rebuilt from the history each time the user opens it.
class DropDownListImp : public ListControlImp {
public:
    virtual void ClearEditSelection() = 0;
    virtual void SetEditSelection(int32_t start, int32_t end) = 0;
    // Switching it on copies the native rows into the history, up to its limit; switching it
    // off rebuilds the native list from the history.
    virtual void SetHistoryMode(bool on) = 0;
    virtual void AddToHistory(const loam::String& text) = 0;
    virtual void SetHistoryLimit(int32_t limit) = 0;
    // Return in the edit field then raises MsgEnterKey at the parent, under the list's id,
    // instead of pressing the dialog's default button.
    virtual void SetEnterNotifies(bool notifies) = 0;
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
