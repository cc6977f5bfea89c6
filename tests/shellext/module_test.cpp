// The module and its cached class factory, linked into this program.
#include "shellext/vqcprop_module.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "common/com_ptr.h"
#include "registration/server_entries.h"
#include "shellext/vqcprop.h"
#include "shellext/vqcprop_ids.h"

namespace {

const CLSID kOtherClass = {0x5e1d7c40, 0xa3b2, 0x11d0, {0x8e, 0x6f, 0x00, 0xa0, 0xc9, 0xb3, 0x5d, 0x22}};

ComPtr<IClassFactory> Factory() {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(TheModule().GetClassObject(CLSID_VQCProp, IID_IClassFactory, factory.PutVoid()), S_OK);
    return factory;
}

BOOL WINAPI FailingInitialization(LPCRITICAL_SECTION, DWORD, DWORD) { return FALSE; }

int g_initializations = 0;
// Fails only the COM module's section (the second one the module initialises).
BOOL WINAPI FailingSecondInitialization(LPCRITICAL_SECTION section, DWORD spin, DWORD flags) {
    return ++g_initializations == 2 ? FALSE : InitializeCriticalSectionEx(section, spin, flags);
}

// Fails only the window-creation section (the fourth and last one).
BOOL WINAPI FailingFourthInitialization(LPCRITICAL_SECTION section, DWORD spin, DWORD flags) {
    return ++g_initializations == 4 ? FALSE : InitializeCriticalSectionEx(section, spin, flags);
}

// Windows' own spelling of a GUID (upper-case hex, in braces).
std::string SystemText(const GUID& guid) {
    wchar_t wide[39] = {};
    EXPECT_EQ(StringFromGUID2(guid, wide, 39), 39);
    return std::string(wide, wide + 38);
}

std::string UpperCase(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

}  // namespace

// The binary identifiers are made from the texts registration writes; Windows must spell
// each as that text again.
TEST(ServerIds, ClassIdIsTheRegisteredClassText) { EXPECT_EQ(SystemText(CLSID_VQCProp), UpperCase(kClassIdText)); }

TEST(ServerIds, LibraryIdIsTheRegisteredApplicationIdText) { EXPECT_EQ(SystemText(kVqcPropLibraryId), kAppIdText); }

TEST(Module, CanUnloadWhenNothingIsAlive) {
    EXPECT_EQ(TheModule().GetLockCount(), 0);
    EXPECT_EQ(TheModule().CanUnloadNow(), S_OK);
}

TEST(Module, LiveObjectKeepsTheModuleLoaded) {
    ComPtr<IUnknown> object;
    ASSERT_EQ(Factory()->CreateInstance(nullptr, IID_IUnknown, object.PutVoid()), S_OK);
    EXPECT_EQ(TheModule().GetLockCount(), 1);
    EXPECT_EQ(TheModule().CanUnloadNow(), S_FALSE);
    object.Reset();
    EXPECT_EQ(TheModule().CanUnloadNow(), S_OK);
}

TEST(Module, OutsideFactoryReferenceKeepsTheModuleLoaded) {
    ComPtr<IClassFactory> factory = Factory();
    EXPECT_EQ(TheModule().GetLockCount(), 1);
    EXPECT_EQ(TheModule().CanUnloadNow(), S_FALSE);
    ComPtr<IClassFactory> second = factory;  // a third reference takes no further lock
    EXPECT_EQ(TheModule().GetLockCount(), 1);
    second.Reset();
    EXPECT_EQ(TheModule().GetLockCount(), 1);
    factory.Reset();  // back to the map's own reference
    EXPECT_EQ(TheModule().GetLockCount(), 0);
    EXPECT_EQ(TheModule().CanUnloadNow(), S_OK);
}

TEST(Module, TwoRequestsAnswerTheSameFactory) {
    ComPtr<IClassFactory> first = Factory();
    ComPtr<IClassFactory> second = Factory();
    EXPECT_EQ(first.Get(), second.Get());
}

TEST(Module, FactoryIsCachedEncoded) {
    ComPtr<IClassFactory> factory = Factory();
    ObjectMapEntry* entry = TheModule().ObjectMapBegin();
    ASSERT_NE(entry->cachedFactory, nullptr);
    EXPECT_EQ(DecodePointer(entry->cachedFactory), static_cast<IUnknown*>(factory.Get()));
    EXPECT_NE(entry->cachedFactory, static_cast<void*>(factory.Get()));
}

TEST(Module, ObjectMapHoldsTheOneClass) {
    VqcPropModule& module = TheModule();
    ASSERT_EQ(module.ObjectMapEnd() - module.ObjectMapBegin(), 1);
    const ObjectMapEntry& entry = *module.ObjectMapBegin();
    EXPECT_TRUE(IsEqualCLSID(*entry.classId, CLSID_VQCProp));
    EXPECT_EQ(entry.description, nullptr);
    EXPECT_EQ(entry.categoryMap, nullptr);
    EXPECT_EQ(entry.updateRegistry(TRUE), S_OK);
    EXPECT_EQ(entry.updateRegistry(FALSE), S_OK);
    EXPECT_TRUE(IsEqualGUID(module.libraryId, kVqcPropLibraryId));
}

TEST(Module, OtherClassIdIsNotAvailable) {
    void* object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(TheModule().GetClassObject(kOtherClass, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(TheModule().GetClassObject(IID_IUnknown, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
}

TEST(Module, NullOutputIsEPointer) {
    EXPECT_EQ(TheModule().GetClassObject(CLSID_VQCProp, IID_IClassFactory, nullptr), E_POINTER);
}

TEST(Module, FactoryRefusesAnInterfaceItDoesNotHave) {
    void* object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(TheModule().GetClassObject(CLSID_VQCProp, IID_IPersistFile, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(TheModule().CanUnloadNow(), S_OK);
}

TEST(Module, FailedStartUpAnswersEUnexpected) {
    VqcPropModule failed(FailingInitialization);
    EXPECT_TRUE(failed.InitializationFailed());
    void* object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(failed.GetClassObject(CLSID_VQCProp, IID_IClassFactory, &object), E_UNEXPECTED);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(failed.GetClassObject(kOtherClass, IID_IClassFactory, &object), E_UNEXPECTED);
    EXPECT_EQ(failed.GetClassObject(CLSID_VQCProp, IID_IClassFactory, nullptr), E_POINTER);
}

TEST(Module, FailedComModuleSectionAloneAnswersEUnexpected) {
    g_initializations = 0;
    VqcPropModule failed(FailingSecondInitialization);
    EXPECT_TRUE(failed.InitializationFailed());
    void* object = nullptr;
    EXPECT_EQ(failed.GetClassObject(CLSID_VQCProp, IID_IClassFactory, &object), E_UNEXPECTED);
}

TEST(Module, FailedWindowCreationSectionMarksStartUpFailedAndListsNothing) {
    g_initializations = 0;
    VqcPropModule failed(FailingFourthInitialization);
    EXPECT_EQ(g_initializations, 4);
    EXPECT_TRUE(failed.InitializationFailed());
    EXPECT_FALSE(failed.WindowCreation().Initialized());
    WindowCreationList::Entry entry;
    int object = 0;
    failed.WindowCreation().Add(entry, &object);
    EXPECT_EQ(failed.WindowCreation().Take(), nullptr);
}

TEST(Module, HealthyStartUpIsNotFailed) {
    VqcPropModule healthy;
    EXPECT_FALSE(healthy.InitializationFailed());
    EXPECT_EQ(healthy.GetLockCount(), 0);
}

TEST(Module, LockAndUnlockAnswerTheNewCount) {
    VqcPropModule module;
    EXPECT_EQ(module.Lock(), 1);
    EXPECT_EQ(module.Lock(), 2);
    EXPECT_EQ(module.CanUnloadNow(), S_FALSE);
    EXPECT_EQ(module.Unlock(), 1);
    EXPECT_EQ(module.Unlock(), 0);
    EXPECT_EQ(module.CanUnloadNow(), S_OK);
}

TEST(ClassFactory, LockServerAddsAndRemovesALock) {
    ComPtr<IClassFactory> factory = Factory();
    const LONG before = TheModule().GetLockCount();
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    EXPECT_EQ(TheModule().GetLockCount(), before + 1);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    EXPECT_EQ(TheModule().GetLockCount(), before);
}

TEST(ClassFactory, AggregationIsRefused) {
    ComPtr<IClassFactory> factory = Factory();
    ComPtr<IUnknown> outer;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, outer.PutVoid()), S_OK);
    void* object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(factory->CreateInstance(outer.Get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
}

TEST(ClassFactory, CreatesTheObjectForEachOfItsInterfaces) {
    ComPtr<IClassFactory> factory = Factory();
    for (const IID* iid :
         {&IID_IVQCProp, &IID_IShellExtInit, &IID_IShellPropSheetExt, &IID_IPersistFile, &IID_IExtractIconA}) {
        ComPtr<IUnknown> object;
        EXPECT_EQ(factory->CreateInstance(nullptr, *iid, object.PutVoid()), S_OK);
        EXPECT_TRUE(object);
    }
    EXPECT_EQ(TheModule().GetLockCount(), 1);  // only the factory's own
}

TEST(ClassFactory, UnknownInterfaceCreatesNothingAndLeavesNoLock) {
    ComPtr<IClassFactory> factory = Factory();
    void* object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(TheModule().GetLockCount(), 1);
}

namespace {

HRESULT FactoryCreationFails(REFIID, void** object) {
    *object = nullptr;
    return E_OUTOFMEMORY;
}

HRESULT FactoryCreationSucceedsWithoutAFactory(REFIID, void** object) {
    *object = nullptr;
    return S_OK;
}

// A factory whose QueryInterface claims success but hands out nothing.
class EmptyHandedFactory : public IUnknown {
public:
    STDMETHODIMP QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++count; }
    STDMETHODIMP_(ULONG) Release() override { return --count; }
    ULONG count = 0;
};
EmptyHandedFactory g_emptyHanded;

HRESULT CreateEmptyHandedFactory(REFIID, void** object) {
    g_emptyHanded.AddRef();
    *object = &g_emptyHanded;
    return S_OK;
}

}  // namespace

TEST(Module, FailedFactoryCreationAnswersItsCode) {
    VqcPropModule module;
    module.ObjectMapBegin()->createFactory = FactoryCreationFails;
    void* object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(module.GetClassObject(CLSID_VQCProp, IID_IClassFactory, &object), E_OUTOFMEMORY);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(module.ObjectMapBegin()->cachedFactory, nullptr);
}

TEST(Module, FactoryCreationWithoutAFactoryButSuccessIsClassNotAvailable) {
    VqcPropModule module;
    module.ObjectMapBegin()->createFactory = FactoryCreationSucceedsWithoutAFactory;
    void* object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(module.GetClassObject(CLSID_VQCProp, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
}

TEST(Module, SuccessWithoutAnInterfaceIsClassNotAvailable) {
    {
        VqcPropModule module;
        module.ObjectMapBegin()->createFactory = CreateEmptyHandedFactory;
        void* object = reinterpret_cast<void*>(0xdeadbeef);
        EXPECT_EQ(module.GetClassObject(CLSID_VQCProp, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(g_emptyHanded.count, 1u);  // the map's reference
    }
    EXPECT_EQ(g_emptyHanded.count, 0u);  // released when the module goes
}

TEST(Module, EntriesWithoutAFactoryCreatorAreSkipped) {
    VqcPropModule module;
    module.ObjectMapBegin()->createFactory = nullptr;
    void* object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(module.GetClassObject(CLSID_VQCProp, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
}

TEST(Module, ClassLoopsSucceedWithTheEmptyScriptAndNoCategories) {
    EXPECT_EQ(TheModule().RegisterClassObjects(), S_OK);
    EXPECT_EQ(TheModule().UnregisterClassObjects(), S_OK);
}
