#include "shellext/vqcprop_module.h"

#include <cstring>

#include "shellext/class_factory.h"
#include "shellext/vqcprop.h"
#include "shellext/vqcprop_ids.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace {

// The class declares no registry script: every entry is written by the server's own code.
HRESULT NoRegistryScript(BOOL) { return S_OK; }

HRESULT CreateVQCPropFactory(REFIID iid, void** object) {
    return CachedClassFactory::Create(VQCProp::CreateInstance, iid, object);
}

void NoObjectMain(bool) {}

// A class's component categories; with no map there is nothing to register or remove.
HRESULT UpdateCategories(const void* categoryMap, bool) { return categoryMap ? E_NOTIMPL : S_OK; }

}  // namespace

VqcPropModule::VqcPropModule(OwnedCriticalSection::Initializer initialize)
    : instance(reinterpret_cast<HINSTANCE>(&__ImageBase)),
      libraryId(kVqcPropLibraryId),
      resourceSection_(initialize),
      factorySection_(initialize),
      comModuleInitialized_(factorySection_.Initialized()),
      moduleSection_(initialize),
      objectMap_{{&CLSID_VQCProp, NoRegistryScript, CreateVQCPropFactory, VQCProp::CreateInstance, nullptr, nullptr,
                  nullptr, NoObjectMain}},
      windowCreation_(initialize) {
    if (!resourceSection_.Initialized() || !comModuleInitialized_ || !moduleSection_.Initialized() ||
        !windowCreation_.Initialized()) {
        initializationFailed_ = true;
    }
    for (ObjectMapEntry* entry = ObjectMapBegin(); entry != ObjectMapEnd(); ++entry) {
        entry->objectMain(true);
    }
}

VqcPropModule::~VqcPropModule() {
    ReleaseCachedFactories();
    for (ObjectMapEntry* entry = ObjectMapBegin(); entry != ObjectMapEnd(); ++entry) {
        entry->objectMain(false);
    }
}

void VqcPropModule::ReleaseCachedFactories() noexcept {
    for (ObjectMapEntry* entry = ObjectMapBegin(); entry != ObjectMapEnd(); ++entry) {
        if (!entry->cachedFactory) continue;
        auto* factory = static_cast<IUnknown*>(DecodePointer(entry->cachedFactory));
        entry->cachedFactory = nullptr;
        if (factory) factory->Release();
    }
}

LONG VqcPropModule::Lock() noexcept { return InterlockedIncrement(&lockCount_); }

LONG VqcPropModule::Unlock() noexcept { return InterlockedDecrement(&lockCount_); }

LONG VqcPropModule::GetLockCount() const noexcept { return lockCount_; }

HRESULT VqcPropModule::CanUnloadNow() const noexcept { return GetLockCount() == 0 ? S_OK : S_FALSE; }

HRESULT VqcPropModule::GetClassObject(REFCLSID classId, REFIID iid, void** object) noexcept {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (!comModuleInitialized_) return E_UNEXPECTED;

    for (ObjectMapEntry* entry = ObjectMapBegin(); entry != ObjectMapEnd(); ++entry) {
        if (!entry->classId || !entry->createFactory) continue;
        if (std::memcmp(entry->classId, &classId, sizeof(CLSID)) != 0) continue;

        // Tested twice: DllGetClassObject may arrive on any thread.
        if (!entry->cachedFactory) {
#ifndef VQC_RACY_FACTORY_SLOT  // a copy for the thread stress tests leaves the section out
            factorySection_.Enter();
#endif
            HRESULT created = S_OK;
            if (!entry->cachedFactory) {
                IUnknown* factory = nullptr;
                created = entry->createFactory(IID_IUnknown, reinterpret_cast<void**>(&factory));
                if (factory) entry->cachedFactory = EncodePointer(factory);
            }
#ifndef VQC_RACY_FACTORY_SLOT
            factorySection_.Leave();
#endif
            if (!entry->cachedFactory) {
                return FAILED(created) ? created : CLASS_E_CLASSNOTAVAILABLE;
            }
        }
        auto* factory = static_cast<IUnknown*>(DecodePointer(entry->cachedFactory));
        const HRESULT result = factory->QueryInterface(iid, object);
        if (*object == nullptr && SUCCEEDED(result)) return CLASS_E_CLASSNOTAVAILABLE;
        return result;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT VqcPropModule::RegisterClassObjects() noexcept {
    for (ObjectMapEntry* entry = ObjectMapBegin(); entry != ObjectMapEnd(); ++entry) {
        HRESULT result = entry->updateRegistry(TRUE);
        if (FAILED(result)) return result;
        result = UpdateCategories(entry->categoryMap, true);
        if (FAILED(result)) return result;
    }
    return S_OK;
}

HRESULT VqcPropModule::UnregisterClassObjects() noexcept {
    for (ObjectMapEntry* entry = ObjectMapBegin(); entry != ObjectMapEnd(); ++entry) {
        HRESULT result = UpdateCategories(entry->categoryMap, false);
        if (FAILED(result)) return result;
        result = entry->updateRegistry(FALSE);
        if (FAILED(result)) return result;
    }
    return S_OK;
}
