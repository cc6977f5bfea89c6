// Both DLLs in one 64-bit system: vqcprop32.dll registered by the 32-bit regsvr32 in the
// 32-bit registry view, vqcprop64.dll by the 64-bit regsvr32 in the 64-bit view. Each leaves
// the other view as it was (but for AppID, which the two views share), unregistering one
// leaves the other registered, and each serves the programs of its own bitness whether the
// other is registered or not. This is a 32-bit program: the 64-bit side is the 64-bit
// regsvr32 and a 64-bit program of the 64-bit tree (class_probe.exe). The tests use the
// prefix's real class registry and run one at a time (RESOURCE_LOCK in CMakeLists.txt).
#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>
#include <shlobj.h>

#include <map>
#include <string>
#include <vector>

#include "common/com_ptr.h"
#include "tests/shellext/shellext_test_support.h"
#include "tests/support/system_programs.h"

using namespace test_support;

static_assert(sizeof(void*) == 4, "the 32-bit side of the views is this program itself");

namespace {

// {5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}
const CLSID kClassId = {0x5e1d7c40, 0xa3b2, 0x11d0, {0x8e, 0x6f, 0x00, 0xa0, 0xc9, 0xb3, 0x5d, 0x21}};
const std::string kClassKey = "Software\\Classes\\CLSID\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}";
const std::string kAppId = "{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}";

enum class View { Bits32, Bits64 };

REGSAM ViewFlag(View view) { return view == View::Bits32 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY; }

// The regsvr32 of a view: the 32-bit one in the 32-bit system folder, the 64-bit one through
// the folder name that shows a 32-bit program the 64-bit system folder.
std::string Regsvr32(View view) {
    char folder[MAX_PATH + 1] = {};
    if (view == View::Bits32) {
        GetSystemWow64DirectoryA(folder, sizeof(folder));
        return std::string(folder) + "\\regsvr32.exe";
    }
    return WindowsFolder() + "\\sysnative\\regsvr32.exe";
}

// A value below HKLM in one view; the text is empty when the key or value is missing.
std::string ViewText(View view, const std::string& keyPath, const char* valueName) {
    UniqueRegKey key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, keyPath.c_str(), 0, KEY_READ | ViewFlag(view), key.Put()) != ERROR_SUCCESS)
        return "";
    char text[1024] = {};
    DWORD size = sizeof(text) - 1;
    DWORD type = 0;
    if (RegQueryValueExA(key.Get(), valueName, nullptr, &type, reinterpret_cast<BYTE*>(text), &size) != ERROR_SUCCESS ||
        type != REG_SZ)
        return "";
    return text;
}

bool ViewKeyExists(View view, const std::string& keyPath) {
    UniqueRegKey key;
    return RegOpenKeyExA(HKEY_LOCAL_MACHINE, keyPath.c_str(), 0, KEY_READ | ViewFlag(view), key.Put()) == ERROR_SUCCESS;
}

using Snapshot = std::map<std::string, std::string>;

// Every key and value below `path` in one view: key path -> its values, name, type and bytes.
void Collect(View view, const std::string& path, Snapshot& snapshot) {
    UniqueRegKey key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ | ViewFlag(view), key.Put()) != ERROR_SUCCESS)
        return;
    std::string values;
    for (DWORD index = 0;; ++index) {
        char name[16384];
        DWORD nameSize = sizeof(name);
        BYTE data[4096];
        DWORD dataSize = sizeof(data);
        DWORD type = 0;
        const LONG result = RegEnumValueA(key.Get(), index, name, &nameSize, nullptr, &type, data, &dataSize);
        if (result == ERROR_NO_MORE_ITEMS) break;
        values += std::string(name, nameSize) + ":" + std::to_string(type) + "=";
        if (result == ERROR_SUCCESS) values.append(reinterpret_cast<const char*>(data), dataSize);
        values += ";";
    }
    snapshot[path] = values;
    std::vector<std::string> children;
    for (DWORD index = 0;; ++index) {
        char name[256];
        DWORD nameSize = sizeof(name);
        if (RegEnumKeyExA(key.Get(), index, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        children.emplace_back(name, nameSize);
    }
    for (const std::string& child : children) Collect(view, path + "\\" + child, snapshot);
}

// The class registry of one view without the keys both views share (AppID) and, seen from
// the 64-bit view, without the node that holds the 32-bit view.
Snapshot ClassesOf(View view) {
    const std::string root = "Software\\Classes";
    UniqueRegKey key;
    Snapshot snapshot;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, root.c_str(), 0, KEY_READ | ViewFlag(view), key.Put()) != ERROR_SUCCESS)
        return snapshot;
    for (DWORD index = 0;; ++index) {
        char name[256];
        DWORD nameSize = sizeof(name);
        if (RegEnumKeyExA(key.Get(), index, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        if (_stricmp(name, "AppID") == 0 || _stricmp(name, "Wow6432Node") == 0) continue;
        Collect(view, root + "\\" + name, snapshot);
    }
    return snapshot;
}

// The keys whose presence or values differ between two snapshots, for the failure message.
std::string Differences(const Snapshot& before, const Snapshot& after) {
    std::string text;
    for (const auto& [path, values] : before) {
        const auto found = after.find(path);
        if (found == after.end())
            text += "\n  removed: " + path;
        else if (found->second != values)
            text += "\n  changed: " + path;
    }
    for (const auto& [path, values] : after) {
        if (!before.count(path)) text += "\n  added: " + path;
    }
    return text;
}

// What the 64-bit probe reported: the DLL that served the class and its icon location.
struct ProbeReport {
    DWORD status = 0xFFFFFFFF;
    std::string servedBy;
    std::string icon;
};

// Both DLLs copied into a folder of the test's own (the registry then names the copies) and
// registered in neither view before and after each test.
class TwinDlls : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(CopyInto(BuiltDllPath(), dll32_)) << BuiltDllPath();
        ASSERT_TRUE(CopyInto(VQC_X64_DLL_PATH, dll64_))
            << VQC_X64_DLL_PATH << ": the 64-bit tree (build/windows) must be built before the 32-bit tests run";
        WriteFileBytes(file_, ConnectionLineWithIcon({32, 16}));
        Unregister(View::Bits32);
        Unregister(View::Bits64);
        ASSERT_FALSE(ViewKeyExists(View::Bits32, kClassKey));
        ASSERT_FALSE(ViewKeyExists(View::Bits64, kClassKey));
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    }
    void TearDown() override {
        CoFreeUnusedLibraries();
        CoUninitialize();
        Unregister(View::Bits32);
        Unregister(View::Bits64);
    }

    const std::string& Dll(View view) const { return view == View::Bits32 ? dll32_ : dll64_; }
    DWORD Register(View view) { return RunProgram(Regsvr32(view), "/s \"" + Dll(view) + "\""); }
    DWORD Unregister(View view) { return RunProgram(Regsvr32(view), "/u /s \"" + Dll(view) + "\""); }

    // The server of the class in a view, as InProcServer32 names it.
    std::string Server(View view) const { return ViewText(view, kClassKey + "\\InProcServer32", nullptr); }

    // The class created in this 32-bit process; empty when it is not registered for it.
    HRESULT CreateHere(std::string& servedBy, std::string& icon) {
        ComPtr<IUnknown> object;
        const HRESULT result =
            CoCreateInstance(kClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, object.PutVoid());
        if (FAILED(result)) return result;
        servedBy = GetModuleHandleA(dll32_.c_str()) ? dll32_ : "another module";
        ComPtr<IPersistFile> persist;
        ComPtr<IExtractIconA> extract;
        EXPECT_EQ(object->QueryInterface(IID_IPersistFile, persist.PutVoid()), S_OK);
        EXPECT_EQ(object->QueryInterface(IID_IExtractIconA, extract.PutVoid()), S_OK);
        if (!persist || !extract) return E_NOINTERFACE;
        EXPECT_EQ(persist->Load(Wide(file_).c_str(), STGM_READ), S_OK);
        char location[MAX_PATH + 1] = {};
        int index = -1;
        UINT flags = 0;
        EXPECT_EQ(extract->GetIconLocation(GIL_FORSHELL, location, sizeof(location), &index, &flags), S_OK);
        icon = std::string(location) + "\t" + std::to_string(index) + "\t" + std::to_string(flags);
        return result;
    }

    // The class created in a 64-bit process of the 64-bit tree.
    ProbeReport CreateIn64BitProgram() {
        ProbeReport report;
        const std::string out = folder_.File("probe.txt");
        DeleteFileA(out.c_str());
        report.status = RunProgram(VQC_X64_CLASS_PROBE, "\"" + file_ + "\" \"" + out + "\"");
        const std::string text = ReadFileBytes(out);
        const auto line = [&](const std::string& name) {
            const std::size_t start = text.find(name + "\t");
            if (start == std::string::npos) return std::string();
            const std::size_t from = start + name.size() + 1;
            return text.substr(from, text.find('\n', from) - from);
        };
        report.servedBy = line("served-by");
        report.icon = line("icon");
        return report;
    }

    std::string IconOfTheFile() const { return file_ + "\t0\t26"; }

    TempFolder folder_{"registry-views"};
    std::string dll32_ = folder_.File("vqcprop32.dll");
    std::string dll64_ = folder_.File("vqcprop64.dll");
    std::string file_ = folder_.File("with icon.vqc");
};

bool SamePath(const std::string& a, const std::string& b) { return _stricmp(a.c_str(), b.c_str()) == 0; }

}  // namespace

TEST_F(TwinDlls, ThirtyTwoBitRegsvr32WritesOnlyThe32BitView) {
    const Snapshot before = ClassesOf(View::Bits64);
    ASSERT_GT(before.size(), 100u);
    ASSERT_EQ(Register(View::Bits32), 0u);
    EXPECT_TRUE(SamePath(Server(View::Bits32), dll32_)) << Server(View::Bits32);
    EXPECT_EQ(ViewText(View::Bits32, kClassKey, nullptr), "VQCProp Class");
    EXPECT_EQ(ViewText(View::Bits32, "Software\\Classes\\AppID\\vqcprop32.dll", "AppID"), kAppId);
    EXPECT_FALSE(ViewKeyExists(View::Bits64, kClassKey));
    const Snapshot after = ClassesOf(View::Bits64);
    EXPECT_TRUE(after == before) << "the 64-bit view changed:" << Differences(before, after);
}

TEST_F(TwinDlls, SixtyFourBitRegsvr32WritesOnlyThe64BitView) {
    const Snapshot before = ClassesOf(View::Bits32);
    ASSERT_GT(before.size(), 100u);
    ASSERT_EQ(Register(View::Bits64), 0u);
    EXPECT_TRUE(SamePath(Server(View::Bits64), dll64_)) << Server(View::Bits64);
    EXPECT_EQ(ViewText(View::Bits64, kClassKey, nullptr), "VQCProp Class");
    EXPECT_EQ(ViewText(View::Bits64, "Software\\Classes\\AppID\\vqcprop64.dll", "AppID"), kAppId);
    EXPECT_FALSE(ViewKeyExists(View::Bits32, kClassKey));
    const Snapshot after = ClassesOf(View::Bits32);
    EXPECT_TRUE(after == before) << "the 32-bit view changed:" << Differences(before, after);
}

TEST_F(TwinDlls, BothRegisteredEachViewNamesItsOwnDll) {
    ASSERT_EQ(Register(View::Bits32), 0u);
    ASSERT_EQ(Register(View::Bits64), 0u);
    EXPECT_TRUE(SamePath(Server(View::Bits32), dll32_)) << Server(View::Bits32);
    EXPECT_TRUE(SamePath(Server(View::Bits64), dll64_)) << Server(View::Bits64);
    // AppID is one key for both views: each DLL's name is there.
    EXPECT_EQ(ViewText(View::Bits64, "Software\\Classes\\AppID\\vqcprop32.dll", "AppID"), kAppId);
    EXPECT_EQ(ViewText(View::Bits32, "Software\\Classes\\AppID\\vqcprop64.dll", "AppID"), kAppId);
}

TEST_F(TwinDlls, UnregisteringThe32BitDllLeavesThe64BitOneRegisteredAndServing) {
    ASSERT_EQ(Register(View::Bits32), 0u);
    ASSERT_EQ(Register(View::Bits64), 0u);
    ASSERT_EQ(Unregister(View::Bits32), 0u);
    EXPECT_FALSE(ViewKeyExists(View::Bits32, kClassKey));
    EXPECT_FALSE(ViewKeyExists(View::Bits32, "Software\\Classes\\AppID\\vqcprop32.dll"));
    EXPECT_TRUE(SamePath(Server(View::Bits64), dll64_)) << Server(View::Bits64);
    EXPECT_EQ(ViewText(View::Bits64, kClassKey + "\\InProcServer32", "ThreadingModel"), "Apartment");
    EXPECT_EQ(ViewText(View::Bits64, "Software\\Classes\\AppID\\vqcprop64.dll", "AppID"), kAppId);
    const ProbeReport report = CreateIn64BitProgram();
    ASSERT_EQ(report.status, 0u);
    EXPECT_TRUE(SamePath(report.servedBy, dll64_)) << report.servedBy;
    EXPECT_EQ(report.icon, IconOfTheFile());
}

TEST_F(TwinDlls, UnregisteringThe64BitDllLeavesThe32BitOneRegisteredAndServing) {
    ASSERT_EQ(Register(View::Bits32), 0u);
    ASSERT_EQ(Register(View::Bits64), 0u);
    ASSERT_EQ(Unregister(View::Bits64), 0u);
    EXPECT_FALSE(ViewKeyExists(View::Bits64, kClassKey));
    EXPECT_FALSE(ViewKeyExists(View::Bits64, "Software\\Classes\\AppID\\vqcprop64.dll"));
    EXPECT_TRUE(SamePath(Server(View::Bits32), dll32_)) << Server(View::Bits32);
    EXPECT_EQ(ViewText(View::Bits32, kClassKey + "\\InProcServer32", "ThreadingModel"), "Apartment");
    EXPECT_EQ(ViewText(View::Bits32, "Software\\Classes\\AppID\\vqcprop32.dll", "AppID"), kAppId);
    std::string servedBy;
    std::string icon;
    ASSERT_EQ(CreateHere(servedBy, icon), S_OK);
    EXPECT_EQ(servedBy, dll32_);
    EXPECT_EQ(icon, IconOfTheFile());
}

TEST_F(TwinDlls, The32BitDllRegisteredAloneServes32BitProgramsOnly) {
    ASSERT_EQ(Register(View::Bits32), 0u);
    std::string servedBy;
    std::string icon;
    ASSERT_EQ(CreateHere(servedBy, icon), S_OK);
    EXPECT_EQ(servedBy, dll32_);
    EXPECT_EQ(icon, IconOfTheFile());
    EXPECT_EQ(CreateIn64BitProgram().status, 2u);  // the class is not registered for it
}

TEST_F(TwinDlls, The64BitDllRegisteredAloneServes64BitProgramsOnly) {
    ASSERT_EQ(Register(View::Bits64), 0u);
    const ProbeReport report = CreateIn64BitProgram();
    ASSERT_EQ(report.status, 0u);
    EXPECT_TRUE(SamePath(report.servedBy, dll64_)) << report.servedBy;
    EXPECT_EQ(report.icon, IconOfTheFile());
    std::string servedBy;
    std::string icon;
    EXPECT_EQ(CreateHere(servedBy, icon), REGDB_E_CLASSNOTREG);
}
