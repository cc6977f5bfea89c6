// The ANSI code page's text as UTF-16, for the calls that take only wide names.
#pragma once

#include <windows.h>

#include <string>

namespace test_support {

inline std::wstring Wide(const std::string& text) {
    std::wstring wide(text.size() + 1, L'\0');
    const int length = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    wide.resize(length > 0 ? length - 1 : 0);
    return wide;
}

}  // namespace test_support
