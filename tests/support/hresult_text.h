// An HRESULT as the tests print it: "0x80004005".
#pragma once

#include <windows.h>

#include <cstdio>
#include <string>

namespace test_support {

inline std::string HresultText(HRESULT result) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%lx", static_cast<unsigned long>(result));
    return text;
}

}  // namespace test_support
