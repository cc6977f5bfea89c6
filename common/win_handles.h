// One owner type per Windows handle kind, each one line over UniqueAny (unique_handle.h),
// and the owners of what is not a plain handle: a window's DC, an object selected into a DC
// and a critical section. Each keeps the thread's last error across its release.
#pragma once

#include <windows.h>

#include "common/unique_handle.h"

// Kernel objects (files, mappings, processes, ...): CreateFile fails with
// INVALID_HANDLE_VALUE, most others with null; neither is closed.
using UniqueKernelHandle = UniqueAny<HANDLE, CloseHandle, kNullHandle, kInvalidHandleValue>;
using UniqueRegKey = UniqueAny<HKEY, RegCloseKey>;
using UniqueMappedView = UniqueAny<const void*, UnmapViewOfFile>;
using UniqueLocalMemory = UniqueAny<HLOCAL, LocalFree>;
// Memory from GlobalAlloc and friends (a drop list of CF_HDROP, for example).
using UniqueGlobalMemory = UniqueAny<HGLOBAL, GlobalFree>;
using UniqueGdiObject = UniqueAny<HGDIOBJ, DeleteObject>;
using UniqueIcon = UniqueAny<HICON, DestroyIcon>;
using UniqueModule = UniqueAny<HMODULE, FreeLibrary>;
// A memory DC from CreateCompatibleDC.
using UniqueMemoryDC = UniqueAny<HDC, DeleteDC>;
// A FindFirstFile search: INVALID_HANDLE_VALUE is "none".
using UniqueFileSearch = UniqueAny<HANDLE, FindClose, kInvalidHandleValue, kNullHandle>;

// A window's DC from GetDC, given back to its window with ReleaseDC.
class WindowDC {
public:
    explicit WindowDC(HWND window) noexcept : window_(window), dc_(GetDC(window)) {}
    WindowDC(const WindowDC&) = delete;
    WindowDC& operator=(const WindowDC&) = delete;
    ~WindowDC() {
        if (dc_) KeepingLastError([this] { ReleaseDC(window_, dc_); });
    }

    HDC Get() const noexcept { return dc_; }
    explicit operator bool() const noexcept { return dc_ != nullptr; }

private:
    HWND window_;
    HDC dc_;
};

// A GDI object selected into a DC for the owner's lifetime; the one it replaced is put back.
class SelectedObject {
public:
    SelectedObject(HDC dc, HGDIOBJ object) noexcept : dc_(dc), old_(SelectObject(dc, object)) {}
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;
    ~SelectedObject() {
        if (*this) KeepingLastError([this] { SelectObject(dc_, old_); });
    }

    // Whether the object was selected (and the old one will be put back).
    explicit operator bool() const noexcept { return old_ != nullptr && old_ != HGDI_ERROR; }

private:
    HDC dc_;
    HGDIOBJ old_;
};

// A critical section that may fail to initialise; usable only when Initialized().
class OwnedCriticalSection {
public:
    using Initializer = BOOL(WINAPI*)(LPCRITICAL_SECTION, DWORD, DWORD);
    explicit OwnedCriticalSection(Initializer initialize) noexcept
        : initialized_(initialize(&section_, 0, 0) != FALSE) {}
    OwnedCriticalSection(const OwnedCriticalSection&) = delete;
    OwnedCriticalSection& operator=(const OwnedCriticalSection&) = delete;
    ~OwnedCriticalSection() {
        if (initialized_) KeepingLastError([this] { DeleteCriticalSection(&section_); });
    }

    bool Initialized() const noexcept { return initialized_; }
    void Enter() noexcept { EnterCriticalSection(&section_); }
    void Leave() noexcept { LeaveCriticalSection(&section_); }

private:
    CRITICAL_SECTION section_{};
    bool initialized_;
};
