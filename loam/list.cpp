#include "loam/list.h"

namespace loam {

bool List::AddHead(ListItem* item) {
    item->previous = nullptr;
    item->next = head;
    if (head)
        head->previous = item;
    else
        tail = item;
    head = item;
    ++count;
    return true;
}

bool List::AddTail(ListItem* item) {
    item->next = nullptr;
    item->previous = tail;
    if (tail)
        tail->next = item;
    else
        head = item;
    tail = item;
    ++count;
    return true;
}

bool List::Contains(const ListItem* item) const {
    for (const ListItem* at = head; at; at = at->next) {
        if (at == item)
            return true;
    }
    return false;
}

bool List::InsertBefore(ListItem* item, ListItem* reference) {
    if (reference == head)
        return AddHead(item);
    if (!Contains(reference))
        return false;
    item->next = reference;
    item->previous = reference->previous;
    reference->previous->next = item;
    reference->previous = item;
    ++count;
    return true;
}

bool List::InsertAfter(ListItem* item, ListItem* reference) {
    if (reference == tail)
        return AddTail(item);
    if (!Contains(reference))
        return false;
    item->previous = reference;
    item->next = reference->next;
    reference->next->previous = item;
    reference->next = item;
    ++count;
    return true;
}

ListItem* List::Remove(ListItem* item) {
    if (item->previous)
        item->previous->next = item->next;
    else
        head = item->next;
    if (item->next)
        item->next->previous = item->previous;
    else
        tail = item->previous;
    item->next = nullptr;
    item->previous = nullptr;
    --count;
    return item;
}

void List::DeleteAll() {
    while (head)
        Remove(head)->DeleteItem();
}

} // namespace loam
