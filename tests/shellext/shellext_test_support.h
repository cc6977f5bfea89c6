// The built DLL, the stand-in client DLLs, and connection files with icons of our own,
// for the shell extension's tests.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "common/win_handles.h"
#include "tests/support/build_paths.h"
#include "tests/support/test_icons.h"
#include "tests/registration/registry_test_support.h"
#include "tests/support/wide_text.h"

namespace test_support {

inline bool CopyInto(const std::string& from, const std::string& to) {
    return CopyFileA(from.c_str(), to.c_str(), FALSE) != FALSE;
}

// An icon file (ICO) of our own making: one 32-bit test image per size, each with a
// pattern of its own, so the images can be told apart.
inline std::vector<std::uint8_t> MakeIconFile(const std::vector<int>& sizes) {
    std::vector<IconImage> images;
    for (int size : sizes) images.push_back(MakeTestIconImage(size, 32, static_cast<unsigned>(size)));
    return BuildIconStream(images.data(), images.size());
}

inline std::string HexText(const std::vector<std::uint8_t>& bytes) {
    std::string text;
    char digits[3];
    for (std::uint8_t byte : bytes) {
        std::snprintf(digits, sizeof(digits), "%02X", byte);
        text += digits;
    }
    return text;
}

// A connection file's option line carrying the icons of the given sizes after -I.
inline std::string ConnectionLineWithIcon(const std::vector<int>& sizes) {
    return "-h server.example -u tester -I \"" + HexText(MakeIconFile(sizes)) + "\" -C bookmark";
}

}  // namespace test_support
