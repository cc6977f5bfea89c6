// The built DLL, the stand-in client DLLs, and connection files with icons of our own,
// for the shell extension's tests.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "common/win_handles.h"
#include "tests/connection/test_icons.h"
#include "tests/registration/registry_test_support.h"

namespace test_support {

// Paths from the build, in the form Wine maps to the host's file system.
inline std::string DllPath() { return VQC_DLL_PATH; }
inline std::string FixturePath(const std::string& name) { return std::string(VQC_FIXTURE_DIR) + "/" + name + ".dll"; }

inline bool CopyInto(const std::string& from, const std::string& to) {
    return CopyFileA(from.c_str(), to.c_str(), FALSE) != FALSE;
}

// An icon file (ICO) of our own making: one image per size, 32 bits per pixel, every
// pixel opaque in a colour that depends on the size, so the images can be told apart.
inline std::vector<std::uint8_t> MakeIconFile(const std::vector<int>& sizes) {
    std::vector<std::vector<std::uint8_t>> images;
    for (int size : sizes) {
        std::vector<std::uint8_t> image(40, 0);
        auto put32 = [&](std::size_t at, std::uint32_t v) {
            for (int i = 0; i < 4; ++i) image[at + i] = static_cast<std::uint8_t>(v >> (8 * i));
        };
        put32(0, 40);
        put32(4, static_cast<std::uint32_t>(size));
        put32(8, static_cast<std::uint32_t>(size * 2));
        image[12] = 1;   // planes
        image[14] = 32;  // bits per pixel
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) {
                image.push_back(static_cast<std::uint8_t>(size * 4));  // blue
                image.push_back(static_cast<std::uint8_t>(x * 8));     // green
                image.push_back(static_cast<std::uint8_t>(y * 8));     // red
                image.push_back(0xFF);                                 // alpha
            }
        const std::size_t maskRow = static_cast<std::size_t>((size + 31) / 32 * 4);
        image.insert(image.end(), maskRow * size, 0);
        images.push_back(std::move(image));
    }
    std::vector<std::uint8_t> file = {0, 0, 1, 0, static_cast<std::uint8_t>(images.size()), 0};
    std::uint32_t offset = static_cast<std::uint32_t>(6 + 16 * images.size());
    for (std::size_t i = 0; i < images.size(); ++i) {
        const auto size = static_cast<std::uint8_t>(sizes[i]);
        const auto bytes = static_cast<std::uint32_t>(images[i].size());
        const std::uint8_t entry[16] = {size, size, 0, 0, 1, 0, 32, 0,
                                        static_cast<std::uint8_t>(bytes), static_cast<std::uint8_t>(bytes >> 8),
                                        static_cast<std::uint8_t>(bytes >> 16), static_cast<std::uint8_t>(bytes >> 24),
                                        static_cast<std::uint8_t>(offset), static_cast<std::uint8_t>(offset >> 8),
                                        static_cast<std::uint8_t>(offset >> 16), static_cast<std::uint8_t>(offset >> 24)};
        file.insert(file.end(), entry, entry + 16);
        offset += bytes;
    }
    for (const auto& image : images) file.insert(file.end(), image.begin(), image.end());
    return file;
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

inline std::wstring Wide(const std::string& text) {
    std::wstring wide(text.size() + 1, L'\0');
    const int length = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    wide.resize(length > 0 ? length - 1 : 0);
    return wide;
}

}  // namespace test_support
