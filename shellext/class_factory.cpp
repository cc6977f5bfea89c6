#include "shellext/class_factory.h"

#include <new>

#include "common/com_boundary.h"
#include "shellext/vqcprop_module.h"

HRESULT CachedClassFactory::Create(InstanceCreator createInstance, REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    auto* factory = new (std::nothrow) CachedClassFactory(createInstance);
    if (!factory) return E_OUTOFMEMORY;
    // The first reference is the map's own; it takes no module lock.
    const HRESULT result = factory->QueryInterface(iid, object);
    if (FAILED(result)) delete factory;
    return result;
}

STDMETHODIMP CachedClassFactory::QueryInterface(REFIID iid, void** object) {
    if (!object) return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory)) {
        *object = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

STDMETHODIMP_(ULONG) CachedClassFactory::AddRef() {
    const LONG count = InterlockedIncrement(&refCount_);
    if (count == 2) TheModule().Lock();
    return static_cast<ULONG>(count);
}

STDMETHODIMP_(ULONG) CachedClassFactory::Release() {
    const LONG count = InterlockedDecrement(&refCount_);
    if (count == 0) {
        delete this;
    } else if (count == 1) {
        TheModule().Unlock();
    }
    return static_cast<ULONG>(count);
}

STDMETHODIMP CachedClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
    return GuardComCall([&]() -> HRESULT {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        return createInstance_(outer, iid, object);
    });
}

STDMETHODIMP CachedClassFactory::LockServer(BOOL lock) {
    if (lock) {
        TheModule().Lock();
    } else {
        TheModule().Unlock();
    }
    return S_OK;
}
