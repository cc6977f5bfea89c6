// ComObject: the IUnknown reference counting every COM class of the tree shares, and the
// interface table its QueryInterface walks (the shape of the platform's QITAB and QISearch).
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <climits>
#include <cstddef>
#include <type_traits>

// One row of a class's interface table: an IID and the interface of the object that answers
// it. Where the platform's table keeps the interface's byte offset, a row keeps the cast to
// it: the compiler checks it, and a constant table can hold it (a base's offset is no
// constant expression).
template <typename Object>
struct InterfaceRow {
    const IID* iid;
    IUnknown* (*interfaceOf)(Object* object) noexcept;
};

// The second column of a row: {&IID_IShellExtInit, InterfaceOf<VQCProp, IShellExtInit>}.
template <typename Object, typename Interface>
IUnknown* InterfaceOf(Object* object) noexcept {
    return static_cast<Interface*>(object);
}

// QueryInterface over a table. IUnknown answers the first row's interface, the object's
// identity; any other IID is looked for row by row, in order, and the first row naming it
// answers. The answer is AddRef'ed; without one *out is null and the result E_NOINTERFACE.
// A null object is E_INVALIDARG and a null out E_POINTER, *out left alone in both cases.
template <typename Object, std::size_t N>
HRESULT QueryInterfaceFromTable(Object* object, const InterfaceRow<Object> (&table)[N], REFIID iid,
                                void** out) noexcept {
    if (!object) return E_INVALIDARG;
    if (!out) return E_POINTER;
    IUnknown* answer = nullptr;
    if (IsEqualIID(iid, IID_IUnknown)) {
        answer = table[0].interfaceOf(object);
    } else {
        for (const InterfaceRow<Object>& row : table) {
            if (IsEqualIID(iid, *row.iid)) {
                answer = row.interfaceOf(object);
                break;
            }
        }
    }
    *out = answer;
    if (!answer) return E_NOINTERFACE;
    answer->AddRef();
    return S_OK;
}

// AddRef and Release for Derived (the class itself) over the interfaces it implements. The
// count stays a member of Derived, where each class keeps it (the settings record's is one of
// its public fields); Derived names it in a static kReferenceCount, and its type says how it
// is counted: a ULONG with plain ++ and -- (an object of one apartment thread), a volatile
// LONG with InterlockedIncrement and InterlockedDecrement (one that any thread may reach).
// Both answer the new count. Release deletes the object when the count reaches 0, after
// marking the count so that a stray AddRef and Release during the destruction cannot delete
// it a second time. QueryInterface is Derived's own: usually QueryInterfaceFromTable.
template <typename Derived, typename... Interfaces>
class ComObject : public Interfaces... {
public:
    STDMETHODIMP_(ULONG) AddRef() override { return Increment(Count()); }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG count = Decrement(Count());
        if (count == 0) {
            MarkDestroying(Count());
            delete this;
        }
        return count;
    }

protected:
    ComObject() noexcept = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;
    virtual ~ComObject() = default;

private:
    // The platform's own mark for an object being destroyed: far from 0 either way.
    static constexpr LONG kCountWhileDestroying = -(LONG_MAX / 2);

    auto& Count() noexcept {
        auto& count = static_cast<Derived*>(this)->*Derived::kReferenceCount;
        using Type = std::remove_reference_t<decltype(count)>;
        static_assert(std::is_same_v<Type, ULONG> || std::is_same_v<Type, volatile LONG>,
                      "a reference count is a ULONG (plain) or a volatile LONG (interlocked)");
        return count;
    }
    static ULONG Increment(ULONG& count) noexcept { return ++count; }
    static ULONG Decrement(ULONG& count) noexcept { return --count; }
    static void MarkDestroying(ULONG& count) noexcept { count = static_cast<ULONG>(kCountWhileDestroying); }
    static ULONG Increment(volatile LONG& count) noexcept { return static_cast<ULONG>(InterlockedIncrement(&count)); }
    static ULONG Decrement(volatile LONG& count) noexcept { return static_cast<ULONG>(InterlockedDecrement(&count)); }
    static void MarkDestroying(volatile LONG& count) noexcept { count = kCountWhileDestroying; }
};
