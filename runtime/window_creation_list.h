// The list of page windows being created: between a page's creation callback and the
// first message of its new window, the page object waits here, keyed by the id of the
// thread that creates the window, so that the window's start-up procedure can find it.
// The process's module owns the one list; every change runs under its critical
// section, because several threads may create windows at once.
#pragma once

#include <windows.h>

#include "common/win_handles.h"

class WindowCreationList {
public:
    // The node lives in the waiting object itself, so adding can never fail for memory.
    struct Entry {
        DWORD threadId = 0;
        void* object = nullptr;
        Entry* next = nullptr;
        bool listed = false;
    };

    // A list whose critical section could not be initialised holds nothing: Add does
    // nothing and Take answers null.
    explicit WindowCreationList(OwnedCriticalSection::Initializer initialize = InitializeCriticalSectionEx);
    WindowCreationList(const WindowCreationList&) = delete;
    WindowCreationList& operator=(const WindowCreationList&) = delete;

    bool Initialized() const noexcept { return section_.Initialized(); }

    // Lists `object` for the calling thread (an entry listed before is moved to the front).
    void Add(Entry& entry, void* object) noexcept { Add(entry, object, GetCurrentThreadId()); }
    void Add(Entry& entry, void* object, DWORD threadId) noexcept;

    // Takes out the object listed last for the calling thread; null when there is none.
    void* Take() noexcept { return Take(GetCurrentThreadId()); }
    void* Take(DWORD threadId) noexcept;

    // Takes the entry out if it is still listed (an object that dies before its window).
    void Remove(Entry& entry) noexcept;

    // How many objects wait, over all threads.
    int Count() noexcept;

private:
    void Unlink(Entry& entry) noexcept;  // the section must be held

    OwnedCriticalSection section_;
    Entry* head_ = nullptr;
};
