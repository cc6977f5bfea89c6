// The handle owners on real handles: each kind closes with its own function, nothing else
// is ever closed, ownership moves only where it is handed over, and a close leaves the
// thread's last error as the caller had it.
#include "common/unique_handle.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

#include "common/win_handles.h"
#include "tests/support/temp_folder.h"

using test_support::TempFolder;

namespace {

constexpr DWORD kCallersError = 1234;

// A file no one else may open while it is held (share mode 0).
HANDLE OpenExclusive(const std::string& path) {
    return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

// Whether the file can be opened without sharing, that is, whether no handle holds it.
bool NobodyHolds(const std::string& path) {
    const HANDLE file = OpenExclusive(path);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return true;
}

// A handle value that is not (or no longer) open: its close fails and sets the last error,
// as closing a handle that something else closed does.
HANDLE ClosedEvent() {
    const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    CloseHandle(event);
    return event;
}

// A stand-in close function that counts its calls, for the rule that neither empty value
// of a kind is ever closed; the kind takes the kernel handles' two empty values.
int g_closes = 0;
BOOL WINAPI CountingClose(HANDLE) {
    ++g_closes;
    return TRUE;
}
using CountedKernelHandle = UniqueAny<HANDLE, CountingClose, kNullHandle, kInvalidHandleValue>;
using CountedFileSearch = UniqueAny<HANDLE, CountingClose, kInvalidHandleValue, kNullHandle>;

}  // namespace

TEST(UniqueAny, ResetKeepsTheThreadsLastError) {
    const HANDLE closed = ClosedEvent();
    SetLastError(kCallersError);
    ASSERT_FALSE(CloseHandle(closed));
    ASSERT_NE(GetLastError(), kCallersError);  // the close by hand overwrites it

    UniqueKernelHandle stale(closed);
    SetLastError(kCallersError);
    stale.Reset();
    EXPECT_EQ(GetLastError(), kCallersError);
}

TEST(UniqueAny, DestructionKeepsTheThreadsLastError) {
    {
        const UniqueKernelHandle stale(ClosedEvent());
        SetLastError(kCallersError);
    }
    EXPECT_EQ(GetLastError(), kCallersError);
}

TEST(UniqueAny, ResetClosesTheHandle) {
    const TempFolder folder("unique-reset");
    const std::string path = folder.File("held.bin");
    UniqueKernelHandle file(OpenExclusive(path));
    ASSERT_TRUE(file);
    EXPECT_FALSE(NobodyHolds(path));
    file.Reset();
    EXPECT_FALSE(file);
    EXPECT_TRUE(NobodyHolds(path));
}

TEST(UniqueAny, DestructionClosesTheHandle) {
    const TempFolder folder("unique-destroy");
    const std::string path = folder.File("held.bin");
    {
        const UniqueKernelHandle file(OpenExclusive(path));
        ASSERT_TRUE(file);
        EXPECT_FALSE(NobodyHolds(path));
    }
    EXPECT_TRUE(NobodyHolds(path));
}

TEST(UniqueAny, ResetWithANewHandleClosesTheOldOneAndHoldsTheNew) {
    const TempFolder folder("unique-replace");
    const std::string first = folder.File("first.bin");
    const std::string second = folder.File("second.bin");
    UniqueKernelHandle file(OpenExclusive(first));
    ASSERT_TRUE(file);
    const HANDLE replacement = OpenExclusive(second);
    file.Reset(replacement);
    EXPECT_TRUE(NobodyHolds(first));
    EXPECT_EQ(file.Get(), replacement);
    EXPECT_FALSE(NobodyHolds(second));
}

TEST(UniqueAny, DetachGivesUpOwnership) {
    const TempFolder folder("unique-detach");
    const std::string path = folder.File("held.bin");
    UniqueKernelHandle file(OpenExclusive(path));
    const HANDLE opened = file.Get();
    const HANDLE detached = file.Detach();
    EXPECT_EQ(detached, opened);
    EXPECT_FALSE(file);
    EXPECT_EQ(file.Get(), nullptr);
    file.Reset();
    EXPECT_FALSE(NobodyHolds(path));  // still open: the caller owns it now
    EXPECT_TRUE(CloseHandle(detached));
    EXPECT_TRUE(NobodyHolds(path));
}

TEST(UniqueAny, MoveConstructionTransfersOwnership) {
    const TempFolder folder("unique-move");
    const std::string path = folder.File("held.bin");
    UniqueKernelHandle source(OpenExclusive(path));
    const HANDLE opened = source.Get();
    {
        const UniqueKernelHandle target(std::move(source));
        EXPECT_EQ(target.Get(), opened);
        EXPECT_FALSE(source);  // a moved-from owner is empty
        source.Reset();
        EXPECT_FALSE(NobodyHolds(path));
    }
    EXPECT_TRUE(NobodyHolds(path));
}

TEST(UniqueAny, MoveAssignmentClosesTheTargetsHandleAndTakesTheSources) {
    const TempFolder folder("unique-assign");
    const std::string first = folder.File("first.bin");
    const std::string second = folder.File("second.bin");
    UniqueKernelHandle target(OpenExclusive(first));
    UniqueKernelHandle source(OpenExclusive(second));
    const HANDLE moved = source.Get();
    target = std::move(source);
    EXPECT_TRUE(NobodyHolds(first));
    EXPECT_EQ(target.Get(), moved);
    EXPECT_FALSE(source);
    EXPECT_FALSE(NobodyHolds(second));
}

TEST(UniqueAny, PutClosesTheHeldHandleAndReceivesTheNewOne) {
    const TempFolder folder("unique-put");
    const std::string first = folder.File("first.bin");
    const std::string second = folder.File("second.bin");
    UniqueKernelHandle held(OpenExclusive(first));
    const UniqueKernelHandle other(OpenExclusive(second));
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), other.Get(), GetCurrentProcess(), held.Put(), 0, FALSE,
                                DUPLICATE_SAME_ACCESS));
    EXPECT_TRUE(NobodyHolds(first));
    EXPECT_TRUE(held);
    EXPECT_NE(held.Get(), other.Get());
}

TEST(UniqueAny, NeitherEmptyValueIsEverClosed) {
    g_closes = 0;
    {
        CountedKernelHandle null(nullptr);
        CountedKernelHandle invalid(INVALID_HANDLE_VALUE);
        CountedFileSearch nullSearch(nullptr);
        CountedFileSearch invalidSearch(INVALID_HANDLE_VALUE);
        EXPECT_FALSE(null);
        EXPECT_FALSE(invalid);
        EXPECT_FALSE(nullSearch);
        EXPECT_FALSE(invalidSearch);
        invalid.Reset();
        invalidSearch.Reset();
    }
    EXPECT_EQ(g_closes, 0);
    { const CountedKernelHandle held(reinterpret_cast<HANDLE>(0x1234)); }
    EXPECT_EQ(g_closes, 1);
}

TEST(UniqueKernelHandle, TakesNullAndInvalidHandleValueForNothing) {
    static_assert(std::is_same_v<UniqueKernelHandle, UniqueAny<HANDLE, CloseHandle, kNullHandle, kInvalidHandleValue>>);
    const UniqueKernelHandle none;
    EXPECT_EQ(none.Get(), nullptr);
    const TempFolder folder("unique-kernel");
    const UniqueKernelHandle failed(CreateFileA(folder.File("missing.bin").c_str(), GENERIC_READ, 0, nullptr,
                                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    EXPECT_EQ(failed.Get(), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(failed);
    const UniqueKernelHandle noEvent(OpenEventA(EVENT_ALL_ACCESS, FALSE, "vqc-no-such-event"));
    EXPECT_EQ(noEvent.Get(), nullptr);
    EXPECT_FALSE(noEvent);
}

TEST(UniqueFileSearch, HoldsInvalidHandleValueWhenEmpty) {
    static_assert(std::is_same_v<UniqueFileSearch, UniqueAny<HANDLE, FindClose, kInvalidHandleValue, kNullHandle>>);
    UniqueFileSearch none;
    EXPECT_EQ(none.Get(), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(none);
    const TempFolder folder("unique-search");
    WIN32_FIND_DATAA found;
    UniqueFileSearch search(FindFirstFileA(folder.File("*.none").c_str(), &found));
    EXPECT_EQ(search.Get(), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(search);
    search.Reset();
    EXPECT_EQ(search.Detach(), INVALID_HANDLE_VALUE);
}

TEST(UniqueFileSearch, ResetEndsTheSearch) {
    const TempFolder folder("unique-search-end");
    for (const char* name : {"a.bin", "b.bin", "c.bin"}) ASSERT_TRUE(NobodyHolds(folder.File(name)));  // creates it
    WIN32_FIND_DATAA found;
    UniqueFileSearch search(FindFirstFileA(folder.File("*.bin").c_str(), &found));
    ASSERT_TRUE(search);
    const HANDLE ended = search.Get();
    EXPECT_TRUE(FindNextFileA(ended, &found));
    search.Reset();
    EXPECT_FALSE(FindNextFileA(ended, &found));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(UniqueRegKey, ResetClosesTheKey) {
    UniqueRegKey key;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, key.Put()), ERROR_SUCCESS);
    const HKEY closed = key.Get();
    DWORD subkeys = 0;
    EXPECT_EQ(RegQueryInfoKeyA(closed, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr),
              ERROR_SUCCESS);
    key.Reset();
    EXPECT_EQ(RegQueryInfoKeyA(closed, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr),
              ERROR_INVALID_HANDLE);
}

TEST(UniqueMappedView, ResetUnmapsTheView) {
    const UniqueKernelHandle mapping(
        CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, nullptr));
    ASSERT_TRUE(mapping);
    UniqueMappedView view(MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, 0));
    ASSERT_TRUE(view);
    MEMORY_BASIC_INFORMATION region{};
    ASSERT_NE(VirtualQuery(view.Get(), &region, sizeof(region)), 0u);
    EXPECT_EQ(region.State, static_cast<DWORD>(MEM_COMMIT));
    const void* unmapped = view.Get();
    view.Reset();
    ASSERT_NE(VirtualQuery(unmapped, &region, sizeof(region)), 0u);
    EXPECT_EQ(region.State, static_cast<DWORD>(MEM_FREE));
}

TEST(UniqueLocalMemory, ResetFreesTheBlock) {
    UniqueLocalMemory block(LocalAlloc(LMEM_MOVEABLE, 64));
    ASSERT_TRUE(block);
    const HLOCAL freed = block.Get();
    EXPECT_NE(LocalFlags(freed), static_cast<UINT>(LMEM_INVALID_HANDLE));
    block.Reset();
    EXPECT_EQ(LocalFlags(freed), static_cast<UINT>(LMEM_INVALID_HANDLE));
}

TEST(UniqueGlobalMemory, ResetFreesTheBlock) {
    UniqueGlobalMemory block(GlobalAlloc(GMEM_MOVEABLE, 64));
    ASSERT_TRUE(block);
    const HGLOBAL freed = block.Get();
    EXPECT_NE(GlobalFlags(freed), static_cast<UINT>(GMEM_INVALID_HANDLE));
    block.Reset();
    EXPECT_EQ(GlobalFlags(freed), static_cast<UINT>(GMEM_INVALID_HANDLE));
}

TEST(UniqueGdiObject, ResetDeletesTheObject) {
    UniqueGdiObject brush(CreateSolidBrush(RGB(1, 2, 3)));
    ASSERT_TRUE(brush);
    const HGDIOBJ deleted = brush.Get();
    EXPECT_EQ(GetObjectType(deleted), static_cast<DWORD>(OBJ_BRUSH));
    brush.Reset();
    EXPECT_EQ(GetObjectType(deleted), 0u);
}

TEST(UniqueMemoryDC, ResetDeletesTheDC) {
    UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
    ASSERT_TRUE(dc);
    const HDC deleted = dc.Get();
    EXPECT_EQ(GetObjectType(deleted), static_cast<DWORD>(OBJ_MEMDC));
    dc.Reset();
    EXPECT_EQ(GetObjectType(deleted), 0u);
}

TEST(UniqueIcon, ResetDestroysTheIcon) {
    BYTE andMask[32 * 32 / 8] = {};
    BYTE xorMask[32 * 32 / 8] = {};
    UniqueIcon icon(CreateIcon(nullptr, 32, 32, 1, 1, andMask, xorMask));
    ASSERT_TRUE(icon);
    const HICON destroyed = icon.Get();
    ICONINFO info{};
    ASSERT_TRUE(GetIconInfo(destroyed, &info));
    DeleteObject(info.hbmMask);
    if (info.hbmColor) DeleteObject(info.hbmColor);
    icon.Reset();
    EXPECT_FALSE(GetIconInfo(destroyed, &info));
}

TEST(UniqueModule, ResetFreesTheLibrary) {
    // A system library that nothing of this program loads on its own.
    const char* const library = "msimg32.dll";
    ASSERT_EQ(GetModuleHandleA(library), nullptr);
    UniqueModule module(LoadLibraryA(library));
    ASSERT_TRUE(module);
    EXPECT_EQ(GetModuleHandleA(library), module.Get());
    module.Reset();
    EXPECT_EQ(GetModuleHandleA(library), nullptr);
}

TEST(SelectedObject, PutsTheReplacedObjectBack) {
    const UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
    const UniqueGdiObject bitmap(CreateBitmap(4, 4, 1, 1, nullptr));
    const HGDIOBJ original = GetCurrentObject(dc.Get(), OBJ_BITMAP);
    {
        const SelectedObject selected(dc.Get(), bitmap.Get());
        EXPECT_TRUE(selected);
        EXPECT_EQ(GetCurrentObject(dc.Get(), OBJ_BITMAP), bitmap.Get());
    }
    EXPECT_EQ(GetCurrentObject(dc.Get(), OBJ_BITMAP), original);
}

TEST(SelectedObject, RefusedSelectionPutsNothingBack) {
    const UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
    const HGDIOBJ original = GetCurrentObject(dc.Get(), OBJ_BITMAP);
    {
        const SelectedObject selected(dc.Get(), nullptr);
        EXPECT_FALSE(selected);
    }
    EXPECT_EQ(GetCurrentObject(dc.Get(), OBJ_BITMAP), original);
}

TEST(WindowDC, HoldsTheScreensDC) {
    const WindowDC dc(nullptr);
    ASSERT_TRUE(dc);
    EXPECT_EQ(GetObjectType(dc.Get()), static_cast<DWORD>(OBJ_DC));
}

TEST(OwnedCriticalSection, KeepsAnotherThreadOutWhileEntered) {
    OwnedCriticalSection section(InitializeCriticalSectionEx);
    ASSERT_TRUE(section.Initialized());
    std::atomic<bool> otherEntered{false};
    section.Enter();
    std::thread other([&] {
        section.Enter();
        otherEntered = true;
        section.Leave();
    });
    Sleep(100);
    EXPECT_FALSE(otherEntered);
    section.Leave();
    other.join();
    EXPECT_TRUE(otherEntered);
}

TEST(OwnedCriticalSection, FailedInitialisationLeavesItUnusable) {
    const OwnedCriticalSection section([](LPCRITICAL_SECTION, DWORD, DWORD) WINAPI -> BOOL { return FALSE; });
    EXPECT_FALSE(section.Initialized());
}
