#pragma once

#include <cstdint>

namespace loam {

// The base of anything that lives in a List: an item is in at most one list at a time.
class ListItem {
public:
    virtual ~ListItem() = default;
    // Deletes an item whose type the list does not know.
    virtual void DeleteItem() { delete this; }

    ListItem* GetNext() const { return next; }
    ListItem* GetPrevious() const { return previous; }

private:
    friend class List;
    ListItem* next = nullptr;
    ListItem* previous = nullptr;
};

// An intrusive doubly linked list that owns its items while they are in it.
class List {
public:
    List() = default;
    List(const List&) = delete;
    List& operator=(const List&) = delete;
    virtual ~List() { DeleteAll(); }

    ListItem* GetHead() const { return head; }
    ListItem* GetTail() const { return tail; }
    uint32_t GetCount() const { return count; }
    bool IsEmpty() const { return count == 0; }

    bool AddHead(ListItem* item);
    bool AddTail(ListItem* item);
    bool InsertBefore(ListItem* item, ListItem* reference);
    bool InsertAfter(ListItem* item, ListItem* reference);
    ListItem* Remove(ListItem* item);
    void DeleteAll();

private:
    bool Contains(const ListItem* item) const;

    ListItem* head = nullptr;
    ListItem* tail = nullptr;
    uint32_t count = 0;
};

} // namespace loam
