// Whole-file reads and writes for the tests, through the handle owner so no handle is left
// open behind a failed assertion.
#pragma once

#include <windows.h>

#include <string>

#include "common/win_handles.h"

// The file's bytes; "<missing>" when it cannot be opened.
inline std::string ReadFileBytes(const std::string& path) {
    const UniqueKernelHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return "<missing>";
    std::string content(GetFileSize(file.Get(), nullptr), '\0');
    DWORD read = 0;
    if (!content.empty()) ReadFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
    content.resize(read);
    return content;
}

// Replaces the file with exactly these bytes.
inline void WriteFileBytes(const std::string& path, const std::string& content) {
    const UniqueKernelHandle file(
        CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return;
    DWORD written = 0;
    WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
}

// Whether nobody else holds the file open: it opens with share mode 0.
inline bool OpensExclusively(const std::string& path) {
    const UniqueKernelHandle file(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(file);
}
