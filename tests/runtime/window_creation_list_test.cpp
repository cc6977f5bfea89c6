// The list of page windows being created: objects wait per thread, the last one listed for
// a thread comes out first, and nothing of another thread is ever taken.
#include "runtime/window_creation_list.h"

#include <gtest/gtest.h>

namespace {
BOOL WINAPI FailingInitializer(LPCRITICAL_SECTION, DWORD, DWORD) { return FALSE; }
}  // namespace

TEST(WindowCreationList, TakeAnswersTheObjectListedForTheThread) {
    WindowCreationList list;
    WindowCreationList::Entry entry;
    int object = 0;
    list.Add(entry, &object);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.Take(), &object);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Take(), nullptr);
}

TEST(WindowCreationList, EachThreadTakesOnlyItsOwnObject) {
    WindowCreationList list;
    WindowCreationList::Entry first;
    WindowCreationList::Entry second;
    int firstObject = 1;
    int secondObject = 2;
    list.Add(first, &firstObject, 100);
    list.Add(second, &secondObject, 200);
    EXPECT_EQ(list.Take(300), nullptr);
    EXPECT_EQ(list.Take(100), &firstObject);
    EXPECT_EQ(list.Take(100), nullptr);
    EXPECT_EQ(list.Take(200), &secondObject);
    EXPECT_EQ(list.Count(), 0);
}

TEST(WindowCreationList, LastListedForAThreadComesOutFirst) {
    WindowCreationList list;
    WindowCreationList::Entry first;
    WindowCreationList::Entry second;
    int firstObject = 1;
    int secondObject = 2;
    list.Add(first, &firstObject, 7);
    list.Add(second, &secondObject, 7);
    EXPECT_EQ(list.Take(7), &secondObject);
    EXPECT_EQ(list.Take(7), &firstObject);
}

TEST(WindowCreationList, ListingAnEntryAgainKeepsItOnce) {
    WindowCreationList list;
    WindowCreationList::Entry entry;
    int object = 0;
    list.Add(entry, &object, 5);
    list.Add(entry, &object, 5);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.Take(5), &object);
    EXPECT_EQ(list.Take(5), nullptr);
}

TEST(WindowCreationList, RemoveTakesOutAnEntryThatNeverGotItsWindow) {
    WindowCreationList list;
    WindowCreationList::Entry first;
    WindowCreationList::Entry second;
    int firstObject = 1;
    int secondObject = 2;
    list.Add(first, &firstObject, 9);
    list.Add(second, &secondObject, 9);
    list.Remove(second);
    list.Remove(second);  // no longer listed: nothing happens
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.Take(9), &firstObject);
}

TEST(WindowCreationList, ObjectsOfTwoRealThreadsStayApart) {
    WindowCreationList list;
    WindowCreationList::Entry mine;
    int myObject = 1;
    list.Add(mine, &myObject);
    struct Other {
        WindowCreationList* list;
        WindowCreationList::Entry entry;
        int object = 2;
        void* takenBeforeAdding = reinterpret_cast<void*>(0xdeadbeef);
        void* taken = reinterpret_cast<void*>(0xdeadbeef);
    } other{&list, {}};
    const HANDLE thread = CreateThread(
        nullptr, 0,
        [](void* parameter) WINAPI -> DWORD {
            auto* o = static_cast<Other*>(parameter);
            o->takenBeforeAdding = o->list->Take();
            o->list->Add(o->entry, &o->object);
            o->taken = o->list->Take();
            return 0;
        },
        &other, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_EQ(other.takenBeforeAdding, nullptr);
    EXPECT_EQ(other.taken, &other.object);
    EXPECT_EQ(list.Take(), &myObject);
}

TEST(WindowCreationList, ListWithoutItsCriticalSectionHoldsNothing) {
    WindowCreationList list(FailingInitializer);
    EXPECT_FALSE(list.Initialized());
    WindowCreationList::Entry entry;
    int object = 0;
    list.Add(entry, &object);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Take(), nullptr);
}
