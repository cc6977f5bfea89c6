// VqcPropModule: the DLL's module object. It owns the lock count that decides when the
// shell may unload the DLL, the one-entry object map with its cached class factory, the
// per-class registration loops that run after the server's own registry entries, and the
// list of property page windows being created; the pages reach the instance, the lock
// count and that list through the ModuleRuntime it is.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include "common/win_handles.h"
#include "runtime/module_runtime.h"
#include "runtime/window_creation_list.h"

// One row of the object map: how the class is found, created and registered.
struct ObjectMapEntry {
    const CLSID* classId;
    HRESULT (*updateRegistry)(BOOL doRegister);  // the class's registry script (none: S_OK)
    HRESULT (*createFactory)(REFIID iid, void** object);
    HRESULT (*createInstance)(IUnknown* outer, REFIID iid, void** object);
    void* cachedFactory;      // IUnknown*, stored EncodePointer'd
    const char* description;  // none
    const void* categoryMap;  // none
    void (*objectMain)(bool starting);
};

class VqcPropModule final : public ModuleRuntime {
public:
    // Start-up. A critical section that cannot be initialised does not stop loading; it
    // leaves the module "not initialised", and every class request then answers
    // E_UNEXPECTED. The initializer is a parameter so that this path can be exercised.
    explicit VqcPropModule(OwnedCriticalSection::Initializer initialize = InitializeCriticalSectionEx);
    ~VqcPropModule() override;

    virtual LONG Lock() noexcept;
    virtual LONG Unlock() noexcept;
    virtual LONG GetLockCount() const noexcept;
    // The lock count itself, which every property page names as its reference parent:
    // the sheet counts the pages it holds in it.
    UINT* LockCountAddress() noexcept override { return reinterpret_cast<UINT*>(const_cast<LONG*>(&lockCount_)); }

    // DllCanUnloadNow and DllGetClassObject.
    HRESULT CanUnloadNow() const noexcept;
    HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object) noexcept;

    // The per-class loops of registration: registry script, then category map (none);
    // removal runs them the other way round. Both stop at the first failure.
    HRESULT RegisterClassObjects() noexcept;
    HRESULT UnregisterClassObjects() noexcept;

    bool InitializationFailed() const noexcept { return initializationFailed_; }
    ObjectMapEntry* ObjectMapBegin() noexcept { return objectMap_; }
    ObjectMapEntry* ObjectMapEnd() noexcept { return objectMap_ + 1; }

    // The DLL's own instance: resources, and every GetModuleFileNameA of the program.
    HINSTANCE instance;
    GUID libraryId;

    HINSTANCE Instance() const noexcept override { return instance; }
    // Page objects waiting for their windows, under the window-creation critical section.
    WindowCreationList& WindowCreation() noexcept override { return windowCreation_; }

private:
    void ReleaseCachedFactories() noexcept;

    bool initializationFailed_ = false;
    OwnedCriticalSection resourceSection_;
    OwnedCriticalSection factorySection_;  // serialises creation of cached factories
    bool comModuleInitialized_;
    OwnedCriticalSection moduleSection_;
    volatile LONG lockCount_ = 0;
    ObjectMapEntry objectMap_[1];
    WindowCreationList windowCreation_;  // its section is initialised last
};

// The module of the DLL (or of the test program that links the server's code).
VqcPropModule& TheModule() noexcept;

class RegistrationLog;
// The registration log of the process; written out when the DLL unloads.
RegistrationLog& TheRegistrationLog() noexcept;
