// One owner type per Windows handle kind. Adding a kind is one traits struct and one alias.
#pragma once

#include <windows.h>

#include "common/unique_handle.h"

namespace handle_traits {

template <typename H, BOOL(WINAPI* CloseFn)(H)>
struct NullInvalid {
    using Handle = H;
    static Handle Invalid() noexcept { return nullptr; }
    static bool IsValid(Handle h) noexcept { return h != nullptr; }
    static void Close(Handle h) noexcept { CloseFn(h); }
};

// Kernel handles: both null and INVALID_HANDLE_VALUE mean "nothing".
struct Kernel {
    using Handle = HANDLE;
    static Handle Invalid() noexcept { return nullptr; }
    static bool IsValid(Handle h) noexcept { return h != nullptr && h != INVALID_HANDLE_VALUE; }
    static void Close(Handle h) noexcept { CloseHandle(h); }
};

struct RegKey {
    using Handle = HKEY;
    static Handle Invalid() noexcept { return nullptr; }
    static bool IsValid(Handle h) noexcept { return h != nullptr; }
    static void Close(Handle h) noexcept { RegCloseKey(h); }
};

struct MappedView {
    using Handle = const void*;
    static Handle Invalid() noexcept { return nullptr; }
    static bool IsValid(Handle h) noexcept { return h != nullptr; }
    static void Close(Handle h) noexcept { UnmapViewOfFile(h); }
};

struct LocalMemory {
    using Handle = HLOCAL;
    static Handle Invalid() noexcept { return nullptr; }
    static bool IsValid(Handle h) noexcept { return h != nullptr; }
    static void Close(Handle h) noexcept { LocalFree(h); }
};

struct GdiObject {
    using Handle = HGDIOBJ;
    static Handle Invalid() noexcept { return nullptr; }
    static bool IsValid(Handle h) noexcept { return h != nullptr; }
    static void Close(Handle h) noexcept { DeleteObject(h); }
};

}  // namespace handle_traits

using UniqueKernelHandle = UniqueHandle<handle_traits::Kernel>;
using UniqueRegKey = UniqueHandle<handle_traits::RegKey>;
using UniqueMappedView = UniqueHandle<handle_traits::MappedView>;
using UniqueLocalMemory = UniqueHandle<handle_traits::LocalMemory>;
using UniqueGdiObject = UniqueHandle<handle_traits::GdiObject>;
using UniqueIcon = UniqueHandle<handle_traits::NullInvalid<HICON, DestroyIcon>>;
using UniqueModule = UniqueHandle<handle_traits::NullInvalid<HMODULE, FreeLibrary>>;

// A window DC from GetDC, given back with ReleaseDC.
class WindowDC {
public:
    explicit WindowDC(HWND window) noexcept : window_(window), dc_(GetDC(window)) {}
    ~WindowDC() {
        if (dc_) ReleaseDC(window_, dc_);
    }
    WindowDC(const WindowDC&) = delete;
    WindowDC& operator=(const WindowDC&) = delete;
    HDC Get() const noexcept { return dc_; }

private:
    HWND window_;
    HDC dc_;
};

// A memory DC from CreateCompatibleDC, deleted with DeleteDC.
using UniqueMemoryDC = UniqueHandle<handle_traits::NullInvalid<HDC, DeleteDC>>;

// Selects a GDI object into a DC for the owner's lifetime and puts the old one back.
class SelectedObject {
public:
    SelectedObject(HDC dc, HGDIOBJ object) noexcept : dc_(dc), old_(SelectObject(dc, object)) {}
    ~SelectedObject() {
        if (old_ && old_ != HGDI_ERROR) SelectObject(dc_, old_);
    }
    SelectedObject(const SelectedObject&) = delete;
    SelectedObject& operator=(const SelectedObject&) = delete;

private:
    HDC dc_;
    HGDIOBJ old_;
};

// Memory from GlobalAlloc and friends (a drop list of CF_HDROP, for example).
namespace handle_traits {
struct GlobalMemory {
    using Handle = HGLOBAL;
    static Handle Invalid() noexcept { return nullptr; }
    static bool IsValid(Handle h) noexcept { return h != nullptr; }
    static void Close(Handle h) noexcept { GlobalFree(h); }
};
}  // namespace handle_traits
using UniqueGlobalMemory = UniqueHandle<handle_traits::GlobalMemory>;

// A FindFirstFile search: INVALID_HANDLE_VALUE is "none", FindClose ends it.
namespace handle_traits {
struct FileSearch {
    using Handle = HANDLE;
    static Handle Invalid() noexcept { return INVALID_HANDLE_VALUE; }
    static bool IsValid(Handle h) noexcept { return h != nullptr && h != INVALID_HANDLE_VALUE; }
    static void Close(Handle h) noexcept { FindClose(h); }
};
}  // namespace handle_traits
using UniqueFileSearch = UniqueHandle<handle_traits::FileSearch>;

// A critical section that may fail to initialise; usable only when Initialized().
class OwnedCriticalSection {
public:
    using Initializer = BOOL(WINAPI*)(LPCRITICAL_SECTION, DWORD, DWORD);
    explicit OwnedCriticalSection(Initializer initialize) noexcept
        : initialized_(initialize(&section_, 0, 0) != FALSE) {}
    ~OwnedCriticalSection() {
        if (initialized_) DeleteCriticalSection(&section_);
    }
    OwnedCriticalSection(const OwnedCriticalSection&) = delete;
    OwnedCriticalSection& operator=(const OwnedCriticalSection&) = delete;
    bool Initialized() const noexcept { return initialized_; }
    void Enter() noexcept { EnterCriticalSection(&section_); }
    void Leave() noexcept { LeaveCriticalSection(&section_); }

private:
    CRITICAL_SECTION section_{};
    bool initialized_;
};
