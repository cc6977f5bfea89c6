// The registry entries of the server, as tables a reader can check line by line: what
// registration writes below HKEY_CLASSES_ROOT and what removal deletes again.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

inline constexpr char kClassIdText[] = "{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}";  // lower case
inline constexpr char kAppIdText[] = "{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}";    // upper case

// One row: a key created below the key of row `below` (0: the root), or, without a key
// name, a value written on the key of row `below` itself. Every value is REG_SZ.
struct RegistryRow {
    int number;
    int below;
    bool createsKey;
    std::string keyName;  // the key created, when the row creates one
    bool hasValue;
    const char* valueName;  // null: the key's default value
    std::string data;

    // Bytes passed to the registry: the text and its terminating zero.
    std::uint32_t ByteCount() const { return static_cast<std::uint32_t>(data.size() + 1); }
};

// Rows 1 to 3: the application id, and the DLL's file name pointing at it.
std::vector<RegistryRow> AppIdRows(std::string_view moduleFileName);

// Rows 4 to 8: the class, its in-process server, threading model and application id.
// The application id sits on "InProcServer32", not on the class key: that is intended.
std::vector<RegistryRow> ClassRows(std::string_view modulePath);

// What removal deletes, each key with its subtree, in this order.
struct RemovalRow {
    const char* below;    // a key below HKEY_CLASSES_ROOT, or null for the root itself
    const char* keyName;  // null: the DLL's file name
};
inline constexpr std::array<RemovalRow, 5> kRemovalRows = {{
    {"AppID", kAppIdText},
    {"AppID", nullptr},
    {"CLSID", kClassIdText},
    {nullptr, "VCLIENT"},
    {nullptr, ".vqc"},
}};

// HRESULT_FROM_WIN32: zero and negative codes pass unchanged, others become 0x8007xxxx.
std::int32_t HResultFromWin32(std::int32_t code);
