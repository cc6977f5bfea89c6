// The built DLL through its exported entry points, loaded the way a client loads it,
// and its registration failure log, written when the DLL is unloaded.
#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>

#include "common/com_ptr.h"
#include "tests/shellext/shellext_test_support.h"

using namespace test_support;

namespace {

// {5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}
const CLSID kClassId = {0x5e1d7c40, 0xa3b2, 0x11d0, {0x8e, 0x6f, 0x00, 0xa0, 0xc9, 0xb3, 0x5d, 0x21}};
const CLSID kOtherClass = {0x5e1d7c40, 0xa3b2, 0x11d0, {0x8e, 0x6f, 0x00, 0xa0, 0xc9, 0xb3, 0x5d, 0x20}};
constexpr char kVariable[] = "VOXA_REGISTRATE_LOG_FILE";

using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();
using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
using RegisterServer = HRESULT(STDAPICALLTYPE*)();

// A copy of the DLL in a folder of its own, loaded and unloaded by the test.
class LoadedDll {
public:
    explicit LoadedDll(const std::string& tag, const std::string& name = VQC_DLL_FILE_NAME) : folder_(tag) {
        path_ = folder_.File(name);
        if (CopyInto(BuiltDllPath(), path_)) module_ = LoadLibraryA(path_.c_str());
    }
    ~LoadedDll() { Unload(); }

    HMODULE Module() const { return module_; }
    const std::string& Path() const { return path_; }
    const TempFolder& Folder() const { return folder_; }
    template <typename Function>
    Function Export(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }
    void Unload() {
        if (module_) FreeLibrary(module_);
        module_ = nullptr;
    }

private:
    TempFolder folder_;
    std::string path_;
    HMODULE module_ = nullptr;
};

}  // namespace

TEST(DllEntryPoints, UnderscoreNamesAreTheSameEntries) {
    LoadedDll dll("aliases");
    ASSERT_NE(dll.Module(), nullptr);
    for (const char* name : {"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"}) {
        const FARPROC plain = GetProcAddress(dll.Module(), name);
        const FARPROC underscored = GetProcAddress(dll.Module(), (std::string("_") + name).c_str());
        EXPECT_NE(plain, nullptr) << name;
        EXPECT_EQ(plain, underscored) << name;
    }
}

TEST(DllEntryPoints, FreshDllCanUnload) {
    LoadedDll dll("fresh");
    ASSERT_NE(dll.Module(), nullptr);
    EXPECT_EQ(dll.Export<CanUnloadNow>("DllCanUnloadNow")(), S_OK);
}

TEST(DllEntryPoints, ObjectsAndFactoryReferencesKeepItLoadedUntilReleased) {
    LoadedDll dll("locks");
    ASSERT_NE(dll.Module(), nullptr);
    auto canUnload = dll.Export<CanUnloadNow>("DllCanUnloadNow");
    auto getClassObject = dll.Export<GetClassObject>("DllGetClassObject");
    {
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(getClassObject(kClassId, IID_IClassFactory, factory.PutVoid()), S_OK);
        EXPECT_EQ(canUnload(), S_FALSE);
        ComPtr<IUnknown> object;
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, object.PutVoid()), S_OK);
        factory.Reset();
        EXPECT_EQ(canUnload(), S_FALSE);  // the object alone
        object.Reset();
    }
    EXPECT_EQ(canUnload(), S_OK);
}

TEST(DllEntryPoints, TwoRequestsAnswerTheSameFactory) {
    LoadedDll dll("same-factory");
    ASSERT_NE(dll.Module(), nullptr);
    auto getClassObject = dll.Export<GetClassObject>("DllGetClassObject");
    ComPtr<IClassFactory> first;
    ComPtr<IClassFactory> second;
    ASSERT_EQ(getClassObject(kClassId, IID_IClassFactory, first.PutVoid()), S_OK);
    ASSERT_EQ(getClassObject(kClassId, IID_IClassFactory, second.PutVoid()), S_OK);
    EXPECT_EQ(first.Get(), second.Get());
}

TEST(DllEntryPoints, OtherClassIsNotAvailableAndNullOutputIsEPointer) {
    LoadedDll dll("other-class");
    ASSERT_NE(dll.Module(), nullptr);
    auto getClassObject = dll.Export<GetClassObject>("DllGetClassObject");
    void* object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(getClassObject(kOtherClass, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(getClassObject(kClassId, IID_IClassFactory, nullptr), E_POINTER);
}

TEST(DllEntryPoints, ObjectAnswersTheClassIdAsAnInterface) {
    LoadedDll dll("class-as-iid");
    ASSERT_NE(dll.Module(), nullptr);
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(dll.Export<GetClassObject>("DllGetClassObject")(kClassId, IID_IClassFactory, factory.PutVoid()), S_OK);
    ComPtr<IUnknown> object;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, object.PutVoid()), S_OK);
    ComPtr<IUnknown> own;
    EXPECT_EQ(object->QueryInterface(kClassId, own.PutVoid()), S_OK);
    EXPECT_TRUE(own);
}

TEST(DllFailureLog, ProtectedClassKeyIsLoggedWhenTheDllUnloads) {
    PrivateClassesRoot root("dll-log");
    CreateKey(root.Get(), "CLSID", REG_OPTION_VOLATILE);
    LoadedDll dll("dll-log");
    ASSERT_NE(dll.Module(), nullptr);
    const std::string logFile = dll.Folder().File("registration.log");
    ScopedEnvironment variable(kVariable, logFile.c_str());

    SetLastError(0);
    EXPECT_EQ(dll.Export<RegisterServer>("DllRegisterServer")(), static_cast<HRESULT>(0x800703FD));
    EXPECT_FALSE(FileExists(logFile));  // written at unload, not before
    dll.Unload();

    const std::string log = ReadFileBytes(logFile);
    const std::string prefix = "Failed to create registry key " + NativeKeyName(root.Get(), "CLSID") +
                               "\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21} Error ";
    ASSERT_EQ(log.substr(0, prefix.size()), prefix) << log;
    // The error is the thread's last-error value at the failure; its text is the system's.
    const std::string rest = log.substr(prefix.size());
    const std::size_t space = rest.find(' ');
    ASSERT_NE(space, std::string::npos) << log;
    const std::string code = rest.substr(0, space);
    EXPECT_EQ(log, prefix + code + " " + SystemErrorText(static_cast<DWORD>(std::stol(code))));
}

TEST(DllFailureLog, TwoFailedRegistrationsGiveTwoLinesAndNoFinalLineFeed) {
    PrivateClassesRoot root("dll-log-two", REG_OPTION_VOLATILE);
    LoadedDll dll("dll-log-two");
    ASSERT_NE(dll.Module(), nullptr);
    const std::string logFile = dll.Folder().File("registration.log");
    ScopedEnvironment variable(kVariable, logFile.c_str());
    auto registerServer = dll.Export<RegisterServer>("DllRegisterServer");
    SetLastError(1021);
    EXPECT_EQ(registerServer(), static_cast<HRESULT>(0x800703FD));
    SetLastError(1021);
    EXPECT_EQ(registerServer(), static_cast<HRESULT>(0x800703FD));
    dll.Unload();

    const std::string log = ReadFileBytes(logFile);
    const std::string prefix = "Failed to create registry key HKEY_CLASSES_ROOT\\AppID Error ";
    ASSERT_EQ(log.substr(0, prefix.size()), prefix) << log;
    const std::string code = log.substr(prefix.size(), log.find(' ', prefix.size()) - prefix.size());
    const std::string line = prefix + code + " " + SystemErrorText(static_cast<DWORD>(std::stol(code)));
    EXPECT_EQ(log, line + "\n" + line);
}

TEST(DllFailureLog, UnsetVariableCreatesNoFileEvenWhenWritesFail) {
    PrivateClassesRoot root("dll-log-unset");
    CreateKey(root.Get(), "CLSID", REG_OPTION_VOLATILE);
    SetEnvironmentVariableA(kVariable, nullptr);
    LoadedDll dll("dll-log-unset");
    ASSERT_NE(dll.Module(), nullptr);
    SetCurrentDirectoryA(dll.Folder().Path().c_str());
    EXPECT_EQ(dll.Export<RegisterServer>("DllRegisterServer")(), static_cast<HRESULT>(0x800703FD));
    dll.Unload();
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA(dll.Folder().File("*").c_str(), &found);
    int files = 0;
    if (search != INVALID_HANDLE_VALUE) {
        do {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) ++files;
        } while (FindNextFileA(search, &found));
        FindClose(search);
    }
    EXPECT_EQ(files, 1);  // the DLL itself
}

TEST(DllFailureLog, SuccessfulRegistrationLeavesAnExistingLogUntouched) {
    PrivateClassesRoot root("dll-log-success");
    LoadedDll dll("dll-log-success");
    ASSERT_NE(dll.Module(), nullptr);
    const std::string logFile = dll.Folder().File("registration.log");
    WriteFileBytes(logFile, "from an earlier run");
    ScopedEnvironment variable(kVariable, logFile.c_str());
    EXPECT_EQ(dll.Export<RegisterServer>("DllRegisterServer")(), S_OK);
    dll.Unload();
    EXPECT_EQ(ReadFileBytes(logFile), "from an earlier run");
    EXPECT_TRUE(KeyExists(root.Get(), "CLSID\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}\\InProcServer32"));
}

TEST(DllRegistration, RenamedDllNamesItsAppIdKeyAfterItself) {
    PrivateClassesRoot root("renamed");
    LoadedDll dll("renamed", "renamed-extension.dll");
    ASSERT_NE(dll.Module(), nullptr);
    ASSERT_EQ(dll.Export<RegisterServer>("DllRegisterServer")(), S_OK);
    EXPECT_EQ(ReadValue(root.Get(), "AppID\\renamed-extension.dll", "AppID").Text(),
              "{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}");
    EXPECT_FALSE(KeyExists(root.Get(), "AppID\\" VQC_DLL_FILE_NAME));
    EXPECT_EQ(_stricmp(ReadValue(root.Get(), "CLSID\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}\\InProcServer32", nullptr)
                           .Text()
                           .c_str(),
                       dll.Path().c_str()),
              0);
    ASSERT_EQ(dll.Export<RegisterServer>("DllUnregisterServer")(), S_OK);
    EXPECT_FALSE(KeyExists(root.Get(), "AppID\\renamed-extension.dll"));
}
