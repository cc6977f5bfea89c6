// The installed client: the names its DLL may have beside ours, and how its product
// version becomes one number (the first two fields joined: 6.40.0.12 is 640, 6.2 is 62).
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

// Tried in this order in the extension's own directory.
inline constexpr std::array<const char*, 3> kClientDllNames = {
    "vclient.dll",
    "vlientsh.dll",
    "vclientu.dll",
};

// The number that stands for "version unknown"; newer than every version gate.
inline constexpr std::int32_t kClientVersionUnknown = 726;

// The first two dot-separated fields (runs of dots are skipped) written one after the
// other and read as a decimal number; no digits give 0. Fields are joined, not scaled.
std::int32_t ClientVersionFromProductVersion(std::string_view productVersion);
