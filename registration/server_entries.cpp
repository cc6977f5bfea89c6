#include "registration/server_entries.h"

std::vector<RegistryRow> AppIdRows(std::string_view moduleFileName) {
    // Row 3's key is created below "AppID" (row 1), not below the key of row 2.
    return {
        {1, 0, true, "AppID", false, nullptr, ""},
        {2, 1, true, kAppIdText, true, nullptr, "vqcprop"},
        {3, 1, true, std::string(moduleFileName), true, "AppID", kAppIdText},
    };
}

std::vector<RegistryRow> ClassRows(std::string_view modulePath) {
    return {
        {4, 0, true, "CLSID", false, nullptr, ""},
        {5, 4, true, kClassIdText, true, nullptr, "VQCProp Class"},
        {6, 5, true, "InProcServer32", true, nullptr, std::string(modulePath)},
        {7, 6, false, "", true, "ThreadingModel", "Apartment"},
        {8, 6, false, "", true, "AppID", kAppIdText},
    };
}

std::int32_t HResultFromWin32(std::int32_t code) {
    if (code <= 0) return code;
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(code) & 0x0000FFFFu) | 0x80070000u);
}
