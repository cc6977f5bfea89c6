// The DLL as Windows uses it: registered by the system's regsvr32 in the real
// HKEY_CLASSES_ROOT, created by COM, driven in its icon role as the shell drives it,
// unloaded by COM when the last object goes, and unregistered again. These tests share
// the real class registry and run one at a time (RESOURCE_LOCK in CMakeLists.txt).
#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>

#include "common/com_ptr.h"
#include "tests/shellext/shellext_test_support.h"
#include "tests/support/system_programs.h"

using namespace test_support;

namespace {

// {5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}
const CLSID kClassId = {0x5e1d7c40, 0xa3b2, 0x11d0, {0x8e, 0x6f, 0x00, 0xa0, 0xc9, 0xb3, 0x5d, 0x21}};
const std::string kClassKey = "CLSID\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}";
const std::string kAppId = "{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}";

// Runs the system's regsvr32 and answers its exit code.
DWORD RunRegsvr32(const std::string& arguments) { return RunProgram(SystemFolder() + "\\regsvr32.exe", arguments); }

// A copy of the DLL registered with regsvr32 for the test's length.
class RegisteredDll : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(CopyInto(BuiltDllPath(), dll_));
        ASSERT_EQ(RunRegsvr32("/s \"" + dll_ + "\""), 0u);
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    }
    void TearDown() override {
        CoUninitialize();
        RunRegsvr32("/u /s \"" + dll_ + "\"");
    }

    ComPtr<IUnknown> Create() {
        ComPtr<IUnknown> object;
        EXPECT_EQ(CoCreateInstance(kClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, object.PutVoid()), S_OK);
        return object;
    }

    TempFolder folder_{"registered"};
    std::string dll_ = folder_.File(VQC_DLL_FILE_NAME);
};

template <typename Interface>
ComPtr<Interface> As(const ComPtr<IUnknown>& object, REFIID iid) {
    ComPtr<Interface> result;
    EXPECT_EQ(object->QueryInterface(iid, result.PutVoid()), S_OK);
    return result;
}

struct IconLocation {
    HRESULT result = E_FAIL;
    std::string file;
    int index = static_cast<int>(0xdeadbeef);
    UINT flags = 0xdeadbeef;
};

IconLocation LocateIcon(const ComPtr<IUnknown>& object) {
    IconLocation location;
    char file[MAX_PATH + 1] = "unwritten";
    location.result = As<IExtractIconA>(object, IID_IExtractIconA)
                          ->GetIconLocation(GIL_FORSHELL, file, sizeof(file), &location.index, &location.flags);
    location.file = file;
    return location;
}

}  // namespace

TEST_F(RegisteredDll, Regsvr32WritesTheEntriesKeyByKey) {
    const StoredValue className = ReadValue(HKEY_CLASSES_ROOT, kClassKey, nullptr);
    EXPECT_EQ(className.Text(), "VQCProp Class");
    EXPECT_EQ(className.type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(className.byteCount, 14u);
    const StoredValue server = ReadValue(HKEY_CLASSES_ROOT, kClassKey + "\\InProcServer32", nullptr);
    EXPECT_EQ(_stricmp(server.Text().c_str(), dll_.c_str()), 0) << server.Text();
    EXPECT_EQ(server.byteCount, server.Text().size() + 1);
    EXPECT_EQ(ReadValue(HKEY_CLASSES_ROOT, kClassKey + "\\InProcServer32", "ThreadingModel").Text(), "Apartment");
    EXPECT_EQ(ReadValue(HKEY_CLASSES_ROOT, kClassKey + "\\InProcServer32", "AppID").Text(), kAppId);
    EXPECT_EQ(ReadValue(HKEY_CLASSES_ROOT, kClassKey, "AppID").result, ERROR_FILE_NOT_FOUND);
    const StoredValue appName = ReadValue(HKEY_CLASSES_ROOT, "AppID\\" + kAppId, nullptr);
    EXPECT_EQ(appName.Text(), "vqcprop");
    EXPECT_EQ(appName.byteCount, 8u);
    const StoredValue fileAppId = ReadValue(HKEY_CLASSES_ROOT, "AppID\\" VQC_DLL_FILE_NAME, "AppID");
    EXPECT_EQ(fileAppId.Text(), kAppId);
    EXPECT_EQ(fileAppId.byteCount, 39u);
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, "TypeLib\\" + kAppId));
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, "Interface\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}"));
}

TEST_F(RegisteredDll, Regsvr32UnregistersAndKeepsTheParentKeys) {
    CreateKey(HKEY_CLASSES_ROOT, ".vqc\\shellex\\IconHandler");
    CreateKey(HKEY_CLASSES_ROOT, "VCLIENT\\DefaultIcon");
    ASSERT_EQ(RunRegsvr32("/u /s \"" + dll_ + "\""), 0u);
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, kClassKey));
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, "AppID\\" + kAppId));
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, "AppID\\" VQC_DLL_FILE_NAME));
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, ".vqc"));
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, "VCLIENT"));
    EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, "AppID"));
    EXPECT_TRUE(KeyExists(HKEY_CLASSES_ROOT, "CLSID"));
}

TEST_F(RegisteredDll, RegisteringTwiceSucceeds) {
    EXPECT_EQ(RunRegsvr32("/s \"" + dll_ + "\""), 0u);
    EXPECT_EQ(ReadValue(HKEY_CLASSES_ROOT, kClassKey, nullptr).Text(), "VQCProp Class");
}

TEST_F(RegisteredDll, CoCreateInstanceCreatesTheObjectAndCoFreeUnusedLibrariesUnloadsIt) {
    ComPtr<IUnknown> object = Create();
    ASSERT_TRUE(object);
    EXPECT_NE(GetModuleHandleA(dll_.c_str()), nullptr);
    ComPtr<IUnknown> own;
    EXPECT_EQ(object->QueryInterface(kClassId, own.PutVoid()), S_OK);
    own.Reset();
    CoFreeUnusedLibraries();
    EXPECT_NE(GetModuleHandleA(dll_.c_str()), nullptr);  // still in use
    object.Reset();
    CoFreeUnusedLibraries();
    EXPECT_EQ(GetModuleHandleA(dll_.c_str()), nullptr);
}

TEST_F(RegisteredDll, FileWithAnIconGivesItsPathFlags26AndItsIcons) {
    const std::string file = folder_.File("with icon.vqc");
    WriteFileBytes(file, ConnectionLineWithIcon({48, 16}));
    ComPtr<IUnknown> object = Create();
    ASSERT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(Wide(file).c_str(), STGM_READ), S_OK);
    const IconLocation location = LocateIcon(object);
    EXPECT_EQ(location.result, S_OK);
    EXPECT_EQ(location.file, file);
    EXPECT_EQ(location.index, 0);
    EXPECT_EQ(location.flags, 26u);
    HICON large = nullptr;
    HICON small = nullptr;
    ASSERT_EQ(As<IExtractIconA>(object, IID_IExtractIconA)
                  ->Extract(location.file.c_str(), location.index, &large, &small, MAKELONG(32, 16)),
              S_OK);
    UniqueIcon largeOwner(large);
    UniqueIcon smallOwner(small);
    EXPECT_EQ(IconSize(large).cx, 48);
    EXPECT_EQ(IconSize(large).cy, 48);
    EXPECT_EQ(IconSize(small).cx, 16);
    EXPECT_EQ(IconSize(small).cy, 16);
}

TEST_F(RegisteredDll, FileWithoutAnIconGivesTheDllsPathFlagsTwoAndSFalse) {
    const std::string file = folder_.File("plain.vqc");
    WriteFileBytes(file, "-h server.example -u tester -C bookmark");
    ComPtr<IUnknown> object = Create();
    ASSERT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(Wide(file).c_str(), STGM_READ), S_OK);
    const IconLocation location = LocateIcon(object);
    EXPECT_EQ(location.result, S_OK);
    EXPECT_EQ(_stricmp(location.file.c_str(), dll_.c_str()), 0) << location.file;
    EXPECT_EQ(location.index, 0);
    EXPECT_EQ(location.flags, 2u);
    HICON large = reinterpret_cast<HICON>(0xdeadbeef);
    HICON small = reinterpret_cast<HICON>(0xdeadbeef);
    EXPECT_EQ(As<IExtractIconA>(object, IID_IExtractIconA)
                  ->Extract(location.file.c_str(), location.index, &large, &small, MAKELONG(32, 16)),
              S_FALSE);
    EXPECT_EQ(large, reinterpret_cast<HICON>(0xdeadbeef));
    EXPECT_EQ(small, reinterpret_cast<HICON>(0xdeadbeef));

    // The shell then extracts the DLL's own icon at that location itself.
    HICON dllLarge = nullptr;
    HICON dllSmall = nullptr;
    ASSERT_EQ(ExtractIconExA(location.file.c_str(), location.index, &dllLarge, &dllSmall, 1), 2u);
    UniqueIcon largeOwner(dllLarge);
    UniqueIcon smallOwner(dllSmall);
    EXPECT_EQ(IconSize(dllLarge).cx, 32);
    EXPECT_EQ(IconSize(dllLarge).cy, 32);
    EXPECT_EQ(IconSize(dllSmall).cx, 16);
    EXPECT_EQ(IconSize(dllSmall).cy, 16);
}
