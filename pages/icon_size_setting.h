// The desktop's nominal icon size for the Options page: "Shell Icon Size" of
// HKEY_CURRENT_USER "Control Panel\Desktop\WindowMetrics".
#pragma once

// The key is opened for reading and writing (0x2001F) and the value read into 8 bytes;
// the rules of option_page::IconSizeFromSetting decide. 32 when the key cannot be opened.
int ReadShellIconSize() noexcept;
