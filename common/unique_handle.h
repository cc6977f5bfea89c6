// A move-only owner of one handle. Each handle kind gets its own owner type by naming
// a traits struct with `Handle`, `Invalid()` and `Close(Handle)`; see win_handles.h.
#pragma once

#include <utility>

template <typename Traits>
class UniqueHandle {
public:
    using Handle = typename Traits::Handle;

    UniqueHandle() noexcept = default;
    explicit UniqueHandle(Handle handle) noexcept : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Detach()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        if (this != &other) Reset(other.Detach());
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;
    ~UniqueHandle() { Reset(); }

    Handle Get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return Traits::IsValid(handle_); }

    // Closes the held handle (if any) before taking the new one.
    void Reset(Handle handle = Traits::Invalid()) noexcept {
        const Handle old = std::exchange(handle_, handle);
        if (Traits::IsValid(old)) Traits::Close(old);
    }
    Handle Detach() noexcept { return std::exchange(handle_, Traits::Invalid()); }

    // For APIs that return a handle through an out-parameter.
    Handle* Put() noexcept {
        Reset();
        return &handle_;
    }

private:
    Handle handle_ = Traits::Invalid();
};
