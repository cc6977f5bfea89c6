// The fixed identifiers of the server: the one class, its own interface (deliberately the
// very same GUID as the class) and the library id that doubles as the application id. Each
// is made from the text registration writes (server_entries.h), so the two cannot differ.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string_view>

#include "common/guid_text.h"
#include "registration/server_entries.h"

// The GUID a registry text names; a text that names none does not compile.
constexpr GUID GuidFromText(std::string_view text) {
    const guid_text::GuidFields fields = guid_text::ParseGuidText(text).value();
    GUID guid{fields.data1, fields.data2, fields.data3, {}};
    for (std::size_t i = 0; i < fields.data4.size(); ++i) guid.Data4[i] = fields.data4[i];
    return guid;
}

inline constexpr CLSID CLSID_VQCProp = GuidFromText(kClassIdText);
inline constexpr IID IID_IVQCProp = CLSID_VQCProp;
inline constexpr GUID kVqcPropLibraryId = GuidFromText(kAppIdText);

// The DLL's one icon group: every connection file without an icon of its own shows it.
inline constexpr int kDefaultIconGroupId = 10600;
