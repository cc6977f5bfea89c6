// The fixed identifiers of the server: the one class, its own interface (deliberately the
// very same GUID as the class) and the library id that doubles as the application id.
#pragma once

#include <windows.h>

// {5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}
inline constexpr CLSID CLSID_VQCProp = {0x5e1d7c40, 0xa3b2, 0x11d0, {0x8e, 0x6f, 0x00, 0xa0, 0xc9, 0xb3, 0x5d, 0x21}};
inline constexpr IID IID_IVQCProp = CLSID_VQCProp;
// {4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}
inline constexpr GUID kVqcPropLibraryId = {
    0x4b7d19e2, 0x60a3, 0x4f8c, {0xa2, 0xd5, 0x7c, 0x31, 0xe9, 0x8b, 0x0f, 0x46}};

// The DLL's one icon group: every connection file without an icon of its own shows it.
inline constexpr int kDefaultIconGroupId = 10600;
