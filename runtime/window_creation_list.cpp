#include "runtime/window_creation_list.h"

WindowCreationList::WindowCreationList(OwnedCriticalSection::Initializer initialize) : section_(initialize) {}

void WindowCreationList::Add(Entry& entry, void* object, DWORD threadId) noexcept {
    if (!section_.Initialized()) return;
    section_.Enter();
    Unlink(entry);
    entry.threadId = threadId;
    entry.object = object;
    entry.next = head_;
    entry.listed = true;
    head_ = &entry;
    section_.Leave();
}

void* WindowCreationList::Take(DWORD threadId) noexcept {
    if (!section_.Initialized()) return nullptr;
    section_.Enter();
    void* object = nullptr;
    for (Entry* entry = head_; entry; entry = entry->next) {
        if (entry->threadId == threadId) {
            object = entry->object;
            Unlink(*entry);
            break;
        }
    }
    section_.Leave();
    return object;
}

void WindowCreationList::Remove(Entry& entry) noexcept {
    if (!section_.Initialized()) return;
    section_.Enter();
    Unlink(entry);
    section_.Leave();
}

int WindowCreationList::Count() noexcept {
    if (!section_.Initialized()) return 0;
    section_.Enter();
    int count = 0;
    for (Entry* entry = head_; entry; entry = entry->next) ++count;
    section_.Leave();
    return count;
}

void WindowCreationList::Unlink(Entry& entry) noexcept {
    if (!entry.listed) return;
    for (Entry** link = &head_; *link; link = &(*link)->next) {
        if (*link == &entry) {
            *link = entry.next;
            break;
        }
    }
    entry.next = nullptr;
    entry.listed = false;
}
