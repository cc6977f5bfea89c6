// CachedClassFactory: the class factory that the module creates once and keeps in the
// object map. It holds a module lock while anyone outside the map references it, so the
// DLL stays loaded while the shell holds the factory.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include "common/com_object.h"

class CachedClassFactory : public ComObject<CachedClassFactory, IClassFactory> {
public:
    using InstanceCreator = HRESULT (*)(IUnknown* outer, REFIID iid, void** object);

    // Creates a factory with one reference (the map's) and answers it for iid.
    static HRESULT Create(InstanceCreator createInstance, REFIID iid, void** object);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    // ComObject's interlocked counting; rising to 2 takes a module lock, falling back to 1
    // drops it.
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

    // A non-null outer unknown is refused with CLASS_E_NOAGGREGATION.
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
    STDMETHODIMP LockServer(BOOL lock) override;

private:
    friend ComObject;

    explicit CachedClassFactory(InstanceCreator createInstance) noexcept : createInstance_(createInstance) {}
    ~CachedClassFactory() override = default;

    // Interlocked: DllGetClassObject and DllCanUnloadNow may come from any thread.
    volatile LONG refCount_ = 0;
    static constexpr auto kReferenceCount = &CachedClassFactory::refCount_;
    InstanceCreator createInstance_;
};
