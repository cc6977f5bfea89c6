#include "shellext/class_factory.h"

#include <new>

#include "common/com_boundary.h"
#include "shellext/vqcprop_module.h"

namespace {

// IUnknown answers the first row.
// clang-format off
constexpr InterfaceRow<CachedClassFactory> kInterfaces[] = {
    {&IID_IClassFactory, InterfaceOf<CachedClassFactory, IClassFactory>},
};
// clang-format on

}  // namespace

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
    return QueryInterfaceFromTable(this, kInterfaces, iid, object);
}

STDMETHODIMP_(ULONG) CachedClassFactory::AddRef() {
    const ULONG count = ComObject::AddRef();
    if (count == 2) TheModule().Lock();
    return count;
}

STDMETHODIMP_(ULONG) CachedClassFactory::Release() {
    // At 0 ComObject has deleted the factory; only the module is touched after it.
    const ULONG count = ComObject::Release();
    if (count == 1) TheModule().Unlock();
    return count;
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
