#include "registration/server_registration.h"

#include <shlobj.h>
#include <shlwapi.h>

#include <map>

#include "common/win_handles.h"
#include "registration/server_entries.h"

namespace {

constexpr REGSAM kKeyAccess = KEY_READ | KEY_WRITE;  // 0x2001F
constexpr DWORD kModulePathBuffer = 261;

// The module's full path and its file name; false when the path cannot be had.
bool GetModulePaths(HMODULE module, std::string& path, std::string& fileName) {
    char buffer[kModulePathBuffer];
    if (GetModuleFileNameA(module, buffer, kModulePathBuffer) == 0) return false;
    path = buffer;
    PathStripPathA(buffer);
    fileName = buffer;
    return true;
}

}  // namespace

LONG WriteRegistryRows(HKEY root, const std::vector<RegistryRow>& rows, RegistrationLog& log) {
    std::map<int, UniqueRegKey> keys;
    auto keyOfRow = [&](int number) { return number == 0 ? root : keys[number].Get(); };
    for (const RegistryRow& row : rows) {
        HKEY target = keyOfRow(row.below);
        if (row.createsKey) {
            HKEY created = nullptr;
            const LONG result = RegCreateKeyExA(target, row.keyName.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                                kKeyAccess, nullptr, &created, nullptr);
            if (result != ERROR_SUCCESS) {
                if (log.IsEnabled()) log.LogKeyCreateFailure(target, row.keyName.c_str(), GetLastError());
                return result;
            }
            // Owned before the map's node is made: a node that cannot be had closes the key.
            UniqueRegKey owned(created);
            keys[row.number] = std::move(owned);
            target = created;
        }
        if (row.hasValue) {
            const LONG result = RegSetValueExA(target, row.valueName, 0, REG_SZ,
                                               reinterpret_cast<const BYTE*>(row.data.c_str()), row.ByteCount());
            if (result != ERROR_SUCCESS && log.IsEnabled()) {
                log.LogValueSetFailure(target, row.valueName, row.data.c_str(), static_cast<DWORD>(result));
            }
        }
    }
    return ERROR_SUCCESS;
}

namespace {

void NotifyShellOfAssociationChange() { SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr); }

using RegDeleteKeyExAFunction = LONG(WINAPI*)(HKEY, LPCSTR, REGSAM, DWORD);

RegDeleteKeyExAFunction LookUpRegDeleteKeyExA() {
    HMODULE advapi = GetModuleHandleA("Advapi32.dll");
    if (!advapi) return nullptr;
    return reinterpret_cast<RegDeleteKeyExAFunction>(
        reinterpret_cast<void*>(GetProcAddress(advapi, "RegDeleteKeyExA")));
}

// Looked up once, when the module starts: a function-local static would need the
// runtime's guard (and the memory it takes) on its first use.
const RegDeleteKeyExAFunction kRegDeleteKeyExA = LookUpRegDeleteKeyExA();

RegDeleteKeyExAFunction FindRegDeleteKeyExA() { return kRegDeleteKeyExA; }

}  // namespace

LONG RegisterAppIdEntries(HKEY root, const char* moduleFileName, RegistrationLog& log) {
    return WriteRegistryRows(root, AppIdRows(moduleFileName), log);
}

LONG RegisterClassEntries(HKEY root, const char* modulePath, RegistrationLog& log) {
    return WriteRegistryRows(root, ClassRows(modulePath), log);
}

HRESULT RegisterServerEntries(RegistrationLog& log, HMODULE module) {
    log.SetFileName();
    std::string path;
    std::string fileName;
    if (!GetModulePaths(module, path, fileName)) return HResultFromWin32(ERROR_INVALID_PARAMETER);

    LONG result = RegisterAppIdEntries(HKEY_CLASSES_ROOT, fileName.c_str(), log);
    if (result != ERROR_SUCCESS) return HResultFromWin32(result);
    result = RegisterClassEntries(HKEY_CLASSES_ROOT, path.c_str(), log);
    if (result != ERROR_SUCCESS) return HResultFromWin32(result);

    NotifyShellOfAssociationChange();
    return S_OK;
}

HRESULT UnregisterServerEntries(HMODULE module) {
    std::string path;
    std::string fileName;
    const bool havePath = GetModulePaths(module, path, fileName);
    UniqueRegKey appIds;
    UniqueRegKey classIds;
    for (const RemovalRow& row : kRemovalRows) {
        HKEY parent = HKEY_CLASSES_ROOT;
        if (row.below) {
            UniqueRegKey& opened = std::string_view(row.below) == "AppID" ? appIds : classIds;
            if (!opened && RegOpenKeyExA(HKEY_CLASSES_ROOT, row.below, 0, kKeyAccess, opened.Put()) != ERROR_SUCCESS) {
                continue;
            }
            parent = opened.Get();
        }
        if (row.keyName) {
            DeleteKeyTree(parent, row.keyName);
        } else if (havePath) {
            DeleteKeyTree(parent, fileName.c_str());
        }
    }
    NotifyShellOfAssociationChange();
    return S_OK;
}

LONG DeleteKeyTree(HKEY parent, const char* name) {
    HKEY opened = nullptr;
    LONG result = RegOpenKeyExA(parent, name, 0, kKeyAccess, &opened);
    if (result != ERROR_SUCCESS) return result;
    UniqueRegKey key(opened);

    char subkey[256];
    for (;;) {
        DWORD length = sizeof(subkey);
        if (RegEnumKeyExA(key.Get(), 0, subkey, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        result = DeleteKeyTree(key.Get(), subkey);
        if (result != ERROR_SUCCESS) return result;
    }
    key.Reset();

    if (RegDeleteKeyExAFunction deleteKeyEx = FindRegDeleteKeyExA()) return deleteKeyEx(parent, name, 0, 0);
    return RegDeleteKeyA(parent, name);
}
