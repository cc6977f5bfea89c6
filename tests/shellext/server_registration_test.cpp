// Registration and removal of the server's entries against a private HKEY_CLASSES_ROOT.
// The code is linked into this program, so "the module" is this test program.
#include "registration/server_registration.h"

#include <gtest/gtest.h>

#include <shlobj.h>

#include <vector>

#include "shellext/server_registration_steps.h"
#include "shellext/vqcprop_module.h"
#include "tests/registration/registry_test_support.h"

using namespace test_support;

namespace {

constexpr char kVariable[] = "VOXA_REGISTRATE_LOG_FILE";
const std::string kAppId = "{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}";
const std::string kClassId = "{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}";

std::string ModulePath() {
    char path[MAX_PATH + 1] = {};
    GetModuleFileNameA(TheModule().instance, path, sizeof(path));
    return path;
}

std::string ModuleFileName() {
    const std::string path = ModulePath();
    return path.substr(path.rfind('\\') + 1);
}

void ExpectText(HKEY root, const std::string& key, const char* value, const std::string& text) {
    const StoredValue stored = ReadValue(root, key, value);
    ASSERT_EQ(stored.result, ERROR_SUCCESS) << key << " " << (value ? value : "(Default)");
    EXPECT_EQ(stored.type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(stored.Text(), text);
    EXPECT_EQ(stored.byteCount, text.size() + 1) << key;
}

}  // namespace

TEST(ServerRegistration, WritesRowsOneToEight) {
    PrivateClassesRoot root("rows");
    RegistrationLog log;
    ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);

    ExpectText(root.Get(), "AppID\\" + kAppId, nullptr, "vqcprop");
    ExpectText(root.Get(), "AppID\\" + ModuleFileName(), "AppID", kAppId);
    ExpectText(root.Get(), "CLSID\\" + kClassId, nullptr, "VQCProp Class");
    ExpectText(root.Get(), "CLSID\\" + kClassId + "\\InProcServer32", nullptr, ModulePath());
    ExpectText(root.Get(), "CLSID\\" + kClassId + "\\InProcServer32", "ThreadingModel", "Apartment");
    ExpectText(root.Get(), "CLSID\\" + kClassId + "\\InProcServer32", "AppID", kAppId);
    // The byte counts include the terminating zero.
    EXPECT_EQ(ReadValue(root.Get(), "AppID\\" + kAppId, nullptr).byteCount, 8u);
    EXPECT_EQ(ReadValue(root.Get(), "AppID\\" + ModuleFileName(), "AppID").byteCount, 39u);
    EXPECT_EQ(ReadValue(root.Get(), "CLSID\\" + kClassId, nullptr).byteCount, 14u);
    EXPECT_EQ(ReadValue(root.Get(), "CLSID\\" + kClassId + "\\InProcServer32", "ThreadingModel").byteCount, 10u);
}

TEST(ServerRegistration, ApplicationIdSitsOnInProcServerNotOnTheClassKey) {
    PrivateClassesRoot root("appid-placement");
    RegistrationLog log;
    ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
    EXPECT_EQ(ReadValue(root.Get(), "CLSID\\" + kClassId, "AppID").result, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ReadValue(root.Get(), "CLSID\\" + kClassId + "\\InProcServer32", "AppID").Text(), kAppId);
}

TEST(ServerRegistration, RowThreeIsNamedAfterTheModuleFileBelowAppId) {
    PrivateClassesRoot root("row3");
    RegistrationLog log;
    ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
    EXPECT_EQ(ModuleFileName(), "server_registration_tests.exe");
    EXPECT_TRUE(KeyExists(root.Get(), "AppID\\server_registration_tests.exe"));
    EXPECT_FALSE(KeyExists(root.Get(), "AppID\\" + kAppId + "\\server_registration_tests.exe"));
}

TEST(ServerRegistration, WritesNoTypeLibraryInterfaceOrCategoryKeys) {
    PrivateClassesRoot root("nothing-else");
    RegistrationLog log;
    ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
    EXPECT_EQ(SubkeyCount(root.Get(), ""), 2);  // AppID and CLSID
    EXPECT_FALSE(KeyExists(root.Get(), "TypeLib"));
    EXPECT_FALSE(KeyExists(root.Get(), "Interface"));
    EXPECT_FALSE(KeyExists(root.Get(), "Component Categories"));
    EXPECT_EQ(SubkeyCount(root.Get(), "CLSID\\" + kClassId), 1);  // InProcServer32 only
    EXPECT_FALSE(KeyExists(root.Get(), "CLSID\\" + kClassId + "\\Implemented Categories"));
}

TEST(ServerRegistration, RegisteringTwiceOverwritesAndSucceeds) {
    PrivateClassesRoot root("twice");
    RegistrationLog log;
    ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
    // A stale value from elsewhere is overwritten by the second run.
    RegSetKeyValueA(root.Get(), ("CLSID\\" + kClassId).c_str(), nullptr, REG_SZ, "stale", 6);
    ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
    ExpectText(root.Get(), "CLSID\\" + kClassId, nullptr, "VQCProp Class");
    EXPECT_EQ(SubkeyCount(root.Get(), "AppID"), 2);
}

TEST(ServerRegistration, UnregisteringRemovesEntriesAndTheFileTypeKeysButKeepsTheParents) {
    PrivateClassesRoot root("unregister");
    RegistrationLog log;
    ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
    // Written by the client's installer, never by registration.
    CreateKey(root.Get(), ".vqc\\shellex\\PropertySheetHandlers\\" + kClassId);
    CreateKey(root.Get(), "VCLIENT\\DefaultIcon");
    CreateKey(root.Get(), "CLSID\\{00000000-1111-2222-3333-444444444444}");

    ASSERT_EQ(UnregisterServer(TheModule()), S_OK);
    EXPECT_FALSE(KeyExists(root.Get(), "AppID\\" + kAppId));
    EXPECT_FALSE(KeyExists(root.Get(), "AppID\\" + ModuleFileName()));
    EXPECT_FALSE(KeyExists(root.Get(), "CLSID\\" + kClassId));
    EXPECT_FALSE(KeyExists(root.Get(), ".vqc"));
    EXPECT_FALSE(KeyExists(root.Get(), "VCLIENT"));
    EXPECT_TRUE(KeyExists(root.Get(), "AppID"));
    EXPECT_TRUE(KeyExists(root.Get(), "CLSID"));
    EXPECT_TRUE(KeyExists(root.Get(), "CLSID\\{00000000-1111-2222-3333-444444444444}"));
}

TEST(ServerRegistration, UnregisteringWhatIsNotThereSucceeds) {
    PrivateClassesRoot root("unregister-empty");
    EXPECT_EQ(UnregisterServerEntries(TheModule().instance), S_OK);
    EXPECT_EQ(UnregisterServer(TheModule()), S_OK);
    EXPECT_EQ(SubkeyCount(root.Get(), ""), 0);
}

TEST(ServerRegistration, UnregisteringLeavesTheTypeLibraryKeyAlone) {
    PrivateClassesRoot root("typelib");
    CreateKey(root.Get(), "TypeLib\\" + kAppId + "\\1.0");
    RegistrationLog log;
    ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
    ASSERT_EQ(UnregisterServer(TheModule()), S_OK);
    EXPECT_TRUE(KeyExists(root.Get(), "TypeLib\\" + kAppId + "\\1.0"));
}

TEST(ServerRegistration, WithoutTheModulePathRegistrationAnswersInvalidParameter) {
    PrivateClassesRoot root("no-path");
    RegistrationLog log;
    const HMODULE notAModule = reinterpret_cast<HMODULE>(static_cast<ULONG_PTR>(0x10000));
    EXPECT_EQ(RegisterServerEntries(log, notAModule), static_cast<HRESULT>(0x80070057));
    EXPECT_EQ(SubkeyCount(root.Get(), ""), 0);
}

TEST(ServerRegistration, WriteProtectedClassKeyFailsLogsItsNativePathAndRollsBack) {
    PrivateClassesRoot root("protected-class");
    // A volatile parent refuses the non-volatile class key (error 1021).
    CreateKey(root.Get(), "CLSID", REG_OPTION_VOLATILE);
    TempFolder folder("protected-class");
    ScopedEnvironment variable(kVariable, folder.File("registration.log").c_str());
    RegistrationLog log;

    EXPECT_EQ(RegisterServer(TheModule(), log), static_cast<HRESULT>(0x800703FD));
    ASSERT_EQ(log.Messages().size(), 1u);
    const std::string prefix =
        "Failed to create registry key " + NativeKeyName(root.Get(), "CLSID") + "\\" + kClassId + " Error ";
    const std::string& line = log.Messages()[0];
    ASSERT_EQ(line.substr(0, prefix.size()), prefix) << line;
    // The code in the line is the thread's last-error value; its text is the system's.
    const std::string rest = line.substr(prefix.size());
    const std::size_t space = rest.find(' ');
    ASSERT_NE(space, std::string::npos);
    const DWORD code = static_cast<DWORD>(std::stol(rest.substr(0, space)));
    EXPECT_EQ(rest.substr(space + 1), SystemErrorText(code));
    // Rows 1 to 3 were written and are removed again; the parents stay.
    EXPECT_FALSE(KeyExists(root.Get(), "AppID\\" + kAppId));
    EXPECT_FALSE(KeyExists(root.Get(), "AppID\\" + ModuleFileName()));
    EXPECT_TRUE(KeyExists(root.Get(), "AppID"));
}

TEST(ServerRegistration, KeyFailureLogsTheLastErrorValueNotTheRegistryCode) {
    PrivateKey root("last-error");
    CreateKey(root.Get(), "CLSID", REG_OPTION_VOLATILE);
    TempFolder folder("last-error");
    ScopedEnvironment variable(kVariable, folder.File("registration.log").c_str());
    RegistrationLog log;
    log.SetFileName();
    // The registry functions leave the thread's last-error value alone here, so the line
    // carries the value from before the call while the function answers the registry's code.
    SetLastError(4242);
    EXPECT_EQ(RegisterClassEntries(root.Get(), "C:\\x.dll", log), 1021);
    ASSERT_EQ(log.Messages().size(), 1u);
    EXPECT_EQ(log.Messages()[0], "Failed to create registry key " + NativeKeyName(root.Get(), "CLSID") + "\\" +
                                     kClassId + " Error 4242 " + SystemErrorText(4242));
}

TEST(ServerRegistration, FailureDirectlyBelowTheRootNamesHkeyClassesRoot) {
    PrivateClassesRoot root("volatile-root", REG_OPTION_VOLATILE);
    TempFolder folder("volatile-root");
    ScopedEnvironment variable(kVariable, folder.File("registration.log").c_str());
    RegistrationLog log;
    EXPECT_EQ(RegisterServer(TheModule(), log), static_cast<HRESULT>(0x800703FD));
    ASSERT_EQ(log.Messages().size(), 1u);
    EXPECT_EQ(log.Messages()[0].rfind("Failed to create registry key HKEY_CLASSES_ROOT\\AppID Error ", 0), 0u)
        << log.Messages()[0];
}

TEST(ServerRegistration, UnsetVariableCollectsNothingEvenWhenWritesFail) {
    PrivateClassesRoot root("unset-variable");
    CreateKey(root.Get(), "CLSID", REG_OPTION_VOLATILE);
    SetEnvironmentVariableA(kVariable, nullptr);
    RegistrationLog log;
    EXPECT_EQ(RegisterServer(TheModule(), log), static_cast<HRESULT>(0x800703FD));
    EXPECT_FALSE(log.IsEnabled());
    EXPECT_TRUE(log.Messages().empty());
}

TEST(ServerRegistration, SuccessfulRegistrationWritesNoLogFile) {
    PrivateClassesRoot root("no-log");
    TempFolder folder("no-log");
    const std::string file = folder.File("registration.log");
    ScopedEnvironment variable(kVariable, file.c_str());
    {
        RegistrationLog log;
        ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
        EXPECT_TRUE(log.IsEnabled());
    }
    EXPECT_FALSE(FileExists(file));
}

TEST(ServerRegistration, ThreadLocaleIsRestoredAfterRegistrationAndRemoval) {
    PrivateClassesRoot root("locale");
    const LCID german = MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT);
    ASSERT_TRUE(SetThreadLocale(german));
    RegistrationLog log;
    ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
    EXPECT_EQ(GetThreadLocale(), german);
    ASSERT_EQ(UnregisterServer(TheModule()), S_OK);
    EXPECT_EQ(GetThreadLocale(), german);
}

namespace {
std::vector<std::pair<BOOL, LCID>> g_scriptCalls;
HRESULT RecordingFailingScript(BOOL doRegister) {
    g_scriptCalls.emplace_back(doRegister, GetThreadLocale());
    return doRegister ? E_ACCESSDENIED : S_OK;
}
}  // namespace

TEST(ServerRegistration, ClassLoopRunsUnderTheSystemLocaleAndItsFailureRollsBack) {
    PrivateClassesRoot root("class-loop-failure");
    const LCID german = MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT);
    ASSERT_TRUE(SetThreadLocale(german));
    ObjectMapEntry* entry = TheModule().ObjectMapBegin();
    const auto original = entry->updateRegistry;
    entry->updateRegistry = RecordingFailingScript;
    g_scriptCalls.clear();
    RegistrationLog log;
    const HRESULT result = RegisterServer(TheModule(), log);
    entry->updateRegistry = original;

    EXPECT_EQ(result, E_ACCESSDENIED);
    ASSERT_EQ(g_scriptCalls.size(), 2u);
    EXPECT_EQ(g_scriptCalls[0].first, TRUE);
    EXPECT_EQ(g_scriptCalls[0].second, GetSystemDefaultLCID());
    EXPECT_EQ(g_scriptCalls[1].first, FALSE);  // the removal loop
    EXPECT_EQ(GetThreadLocale(), german);
    EXPECT_FALSE(KeyExists(root.Get(), "CLSID\\" + kClassId));
    EXPECT_FALSE(KeyExists(root.Get(), "AppID\\" + kAppId));
}

TEST(ServerRegistration, DeleteKeyTreeRemovesEveryLevel) {
    PrivateKey root("tree");
    CreateKey(root.Get(), "top\\a\\b\\c");
    CreateKey(root.Get(), "top\\d");
    RegSetKeyValueA(root.Get(), "top\\a\\b", "v", REG_SZ, "x", 2);
    EXPECT_EQ(DeleteKeyTree(root.Get(), "top"), ERROR_SUCCESS);
    EXPECT_FALSE(KeyExists(root.Get(), "top"));
}

TEST(ServerRegistration, DeleteKeyTreeOfAnAbsentKeyAnswersTheRegistryCode) {
    PrivateKey root("tree-absent");
    EXPECT_EQ(DeleteKeyTree(root.Get(), "absent"), ERROR_FILE_NOT_FOUND);
}

namespace {

// A window that listens for the shell's association-change notification.
class AssociationChangeListener {
public:
    static constexpr UINT kMessage = WM_APP + 17;
    AssociationChangeListener() {
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = Procedure;
        windowClass.hInstance = GetModuleHandleA(nullptr);
        windowClass.lpszClassName = "VqcAssociationChangeListener";
        RegisterClassA(&windowClass);
        heard_ = false;
        window_ = CreateWindowExA(0, windowClass.lpszClassName, "listener", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                  nullptr, nullptr);
        SHChangeNotifyEntry entry = {nullptr, TRUE};
        registration_ = SHChangeNotifyRegister(window_, SHCNRF_ShellLevel | SHCNRF_InterruptLevel, SHCNE_ASSOCCHANGED,
                                               kMessage, 1, &entry);
    }
    ~AssociationChangeListener() {
        if (registration_) SHChangeNotifyDeregister(registration_);
        if (window_) DestroyWindow(window_);
    }
    bool Ready() const { return window_ && registration_; }
    // Pumps messages for a while; true when the notification arrived (sent or posted).
    bool Heard() {
        for (int i = 0; i < 50 && !heard_; ++i) {
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
            if (!heard_) MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        }
        const bool result = heard_;
        heard_ = false;
        return result;
    }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == kMessage && (static_cast<LONG>(lParam) & SHCNE_ASSOCCHANGED)) heard_ = true;
        return DefWindowProcA(window, message, wParam, lParam);
    }
    static inline bool heard_ = false;

    HWND window_ = nullptr;
    ULONG registration_ = 0;
};

}  // namespace

TEST(ServerRegistration, RegistrationAndRemovalTellTheShellAssociationsChanged) {
    PrivateClassesRoot root("notify");
    {
        AssociationChangeListener listener;
        ASSERT_TRUE(listener.Ready());
        EXPECT_FALSE(listener.Heard());
        RegistrationLog log;
        ASSERT_EQ(RegisterServer(TheModule(), log), S_OK);
        EXPECT_TRUE(listener.Heard());
    }
    {
        AssociationChangeListener listener;
        ASSERT_TRUE(listener.Ready());
        ASSERT_EQ(UnregisterServer(TheModule()), S_OK);
        EXPECT_TRUE(listener.Heard());
    }
}

TEST(ServerRegistration, FailedRegistrationDoesNotTellTheShell) {
    PrivateClassesRoot root("notify-failed");
    CreateKey(root.Get(), "CLSID", REG_OPTION_VOLATILE);
    AssociationChangeListener listener;
    ASSERT_TRUE(listener.Ready());
    RegistrationLog log;
    ASSERT_EQ(RegisterServerEntries(log, TheModule().instance), static_cast<HRESULT>(0x800703FD));
    EXPECT_FALSE(listener.Heard());
}

TEST(ServerRegistration, FailedValueIsLoggedAndTheWalkGoesOn) {
    PrivateKey root("value-walk");
    HKEY opened = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, root.Path().c_str(), 0, KEY_READ, &opened), ERROR_SUCCESS);
    UniqueRegKey readOnly(opened);
    TempFolder folder("value-walk");
    ScopedEnvironment variable(kVariable, folder.File("registration.log").c_str());
    RegistrationLog log;
    log.SetFileName();
    // Row 1 writes the default value of the read-only key itself, which the registry
    // refuses; row 2 creates a key of its own below it and writes there.
    const std::vector<RegistryRow> rows = {
        {1, 0, false, "", true, nullptr, "refused"},
        {2, 0, true, "Below", true, "Name", "kept"},
    };
    EXPECT_EQ(WriteRegistryRows(readOnly.Get(), rows, log), ERROR_SUCCESS);
    EXPECT_EQ(ReadValue(root.Get(), "Below", "Name").Text(), "kept");
    ASSERT_EQ(log.Messages().size(), 1u);
    const StoredValue missing = ReadValue(root.Get(), "", nullptr);
    EXPECT_NE(missing.result, ERROR_SUCCESS);
    EXPECT_EQ(log.Messages()[0], "Failed to set registry value " + NativeKeyName(root.Get()) +
                                     "\\(Default) to \"refused\" Error 5 " + SystemErrorText(5));
}

TEST(ServerRegistration, DisabledLogRecordsNoValueFailure) {
    PrivateKey root("value-walk-quiet");
    HKEY opened = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, root.Path().c_str(), 0, KEY_READ, &opened), ERROR_SUCCESS);
    UniqueRegKey readOnly(opened);
    SetEnvironmentVariableA(kVariable, nullptr);
    RegistrationLog log;
    log.SetFileName();
    const std::vector<RegistryRow> rows = {{1, 0, false, "", true, nullptr, "refused"}};
    EXPECT_EQ(WriteRegistryRows(readOnly.Get(), rows, log), ERROR_SUCCESS);
    EXPECT_TRUE(log.Messages().empty());
}
