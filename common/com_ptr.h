// Owner of one COM interface reference: Release on destruction, AddRef on copy.
#pragma once

#include <unknwn.h>

#include <utility>

template <typename Interface>
class ComPtr {
public:
    ComPtr() noexcept = default;
    // Takes a reference of its own on pointer.
    explicit ComPtr(Interface* pointer) noexcept : pointer_(pointer) {
        if (pointer_) pointer_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.pointer_) {}
    ComPtr(ComPtr&& other) noexcept : pointer_(other.Detach()) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComPtr() { Reset(); }

    // Adopts a reference the caller already owns (no AddRef).
    static ComPtr Adopt(Interface* pointer) noexcept {
        ComPtr owner;
        owner.pointer_ = pointer;
        return owner;
    }

    Interface* Get() const noexcept { return pointer_; }
    Interface* operator->() const noexcept { return pointer_; }
    explicit operator bool() const noexcept { return pointer_ != nullptr; }

    void Reset() noexcept {
        if (Interface* old = std::exchange(pointer_, nullptr)) old->Release();
    }
    Interface* Detach() noexcept { return std::exchange(pointer_, nullptr); }

    // For functions that hand out a new reference through an out-parameter.
    Interface** Put() noexcept {
        Reset();
        return &pointer_;
    }
    void** PutVoid() noexcept { return reinterpret_cast<void**>(Put()); }

private:
    Interface* pointer_ = nullptr;
};
