#include "pages/connection_page_environment.h"

#include "common/win_handles.h"
#include "pages/connection_page_rules.h"

namespace {
constexpr DWORD kModulePathBuffer = 261;
constexpr DWORD kHostNameBuffer = 256;
}  // namespace

std::vector<std::string> ReadRecentHosts() {
    std::vector<std::string> hosts;
    UniqueRegKey key;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kRecentHostsKey, 0, KEY_READ, key.Put()) != ERROR_SUCCESS) return hosts;
    // A failing index is skipped; the walk also ends past the number of subkeys the key
    // had when opened, so a key deleted under us cannot keep it failing forever.
    DWORD subkeys = 0;
    if (RegQueryInfoKeyA(key.Get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr) != ERROR_SUCCESS)
        subkeys = 0;
    for (DWORD index = 0; index <= subkeys; ++index) {
        char name[kHostNameBuffer];
        DWORD length = kHostNameBuffer;
        const LSTATUS status = RegEnumKeyExA(key.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS) break;
        if (status == ERROR_SUCCESS) hosts.emplace_back(name, length);
    }
    return hosts;
}

bool IsServerModulePresent(HMODULE module) {
    char modulePath[kModulePathBuffer];
    const DWORD length = GetModuleFileNameA(module, modulePath, kModulePathBuffer);
    if (length == 0) return false;
    const std::string candidate = connection_page::SiblingPath(
        std::string_view(modulePath, length < kModulePathBuffer ? length : kModulePathBuffer - 1),
        connection_page::kServerModuleName);
    return GetFileAttributesA(candidate.c_str()) != INVALID_FILE_ATTRIBUTES;
}
