#include "pages/icon_size_setting.h"

#include <windows.h>

#include <cstdint>

#include "common/win_handles.h"
#include "pages/option_page_rules.h"

namespace {
constexpr const char kWindowMetricsKey[] = "Control Panel\\Desktop\\WindowMetrics";
constexpr const char kShellIconSizeValue[] = "Shell Icon Size";
constexpr REGSAM kReadWriteAccess = 0x2001F;  // KEY_READ | KEY_WRITE
static_assert(kReadWriteAccess == (KEY_READ | KEY_WRITE));
static_assert(option_page::kRegistryString == REG_SZ && option_page::kRegistryExpandString == REG_EXPAND_SZ);
}  // namespace

int ReadShellIconSize() noexcept {
    UniqueRegKey key;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kWindowMetricsKey, 0, kReadWriteAccess, key.Put()) != ERROR_SUCCESS)
        return option_page::kDefaultIconSize;
    std::uint8_t buffer[option_page::kIconSizeSettingBytes] = {};
    DWORD type = REG_NONE;
    DWORD size = sizeof(buffer);
    const bool read = RegQueryValueExA(key.Get(), kShellIconSizeValue, nullptr, &type, buffer, &size) == ERROR_SUCCESS;
    return option_page::IconSizeFromSetting(read, type, buffer, read ? size : 0);
}
