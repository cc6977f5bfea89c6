// UniqueAny: the move-only owner of one Windows handle. Every kind is one line naming the
// handle type, the function that closes it and the value that holds nothing, for example
//     using UniqueRegKey = UniqueAny<HKEY, RegCloseKey>;
// (the kinds of the tree are in win_handles.h).
#pragma once

#include <windows.h>

#include <cstdint>
#include <type_traits>
#include <utility>

// Handle values as numbers: a pointer made from a number (INVALID_HANDLE_VALUE) cannot be a
// template argument.
inline constexpr std::intptr_t kNullHandle = 0;
inline constexpr std::intptr_t kInvalidHandleValue = -1;  // INVALID_HANDLE_VALUE

// Runs release with the thread's last error kept across it, so that closing a handle between
// a failed call and the caller's GetLastError cannot change what the caller reads.
template <typename Release>
void KeepingLastError(Release&& release) noexcept {
    const DWORD error = GetLastError();
    std::forward<Release>(release)();
    SetLastError(error);
}

// H is the handle type, Close the function that closes one, Invalid the value an empty owner
// holds, AlsoInvalid a second value that holds nothing either (kernel handles, where some
// functions fail with null and others with INVALID_HANDLE_VALUE). Neither is ever closed.
template <typename H, auto Close, std::intptr_t Invalid = kNullHandle, std::intptr_t AlsoInvalid = Invalid>
class UniqueAny {
    static_assert(std::is_pointer_v<H>, "a handle is a pointer type");

public:
    using Handle = H;

    UniqueAny() noexcept = default;
    explicit UniqueAny(Handle handle) noexcept : handle_(handle) {}
    UniqueAny(UniqueAny&& other) noexcept : handle_(other.Detach()) {}
    UniqueAny& operator=(UniqueAny&& other) noexcept {
        if (this != &other) Reset(other.Detach());
        return *this;
    }
    UniqueAny(const UniqueAny&) = delete;
    UniqueAny& operator=(const UniqueAny&) = delete;
    ~UniqueAny() { Reset(); }

    Handle Get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return IsValid(handle_); }

    // Closes the held handle (if any) before taking the new one; the thread's last error is
    // the same afterwards.
    void Reset(Handle handle = Empty()) noexcept {
        const Handle old = std::exchange(handle_, handle);
        if (IsValid(old)) KeepingLastError([old] { Close(old); });
    }
    Handle Detach() noexcept { return std::exchange(handle_, Empty()); }

    // For APIs that return a handle through an out-parameter.
    Handle* Put() noexcept {
        Reset();
        return &handle_;
    }

private:
    static Handle Empty() noexcept { return reinterpret_cast<Handle>(Invalid); }
    static bool IsValid(Handle handle) noexcept {
        const auto value = reinterpret_cast<std::intptr_t>(handle);
        return value != Invalid && value != AlsoInvalid;
    }

    Handle handle_ = Empty();
};
