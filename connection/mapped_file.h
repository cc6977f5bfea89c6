// A whole file mapped into memory for reading: owns the file handle, the mapping handle
// and the view, and gives all three back on every way out.
#pragma once

#include <windows.h>

#include <cstdint>

#include "common/win_handles.h"

enum class MapAccess { ReadOnly, ReadWrite, WriteCopy, ExecuteRead };

// How each access mode opens, shares, protects and views the file.
struct MapAccessRule {
    MapAccess access;
    DWORD fileAccess;
    DWORD shareMode;
    DWORD pageProtection;
    DWORD viewAccess;
};

// clang-format off
inline constexpr MapAccessRule kMapAccessRules[] = {
    // access                 file access                          share            protection          view
    {MapAccess::ReadOnly,    GENERIC_READ,                        FILE_SHARE_READ, PAGE_READONLY,      FILE_MAP_READ},
    {MapAccess::ReadWrite,   GENERIC_READ | GENERIC_WRITE,        0,               PAGE_READWRITE,     FILE_MAP_WRITE},
    {MapAccess::WriteCopy,   GENERIC_READ | GENERIC_WRITE,        0,               PAGE_WRITECOPY,     FILE_MAP_COPY},
    {MapAccess::ExecuteRead, GENERIC_READ | GENERIC_EXECUTE,      FILE_SHARE_READ, PAGE_EXECUTE_READ,  FILE_MAP_READ | FILE_MAP_EXECUTE},
};
// clang-format on

const MapAccessRule& RuleFor(MapAccess access) noexcept;

class MappedFile {
public:
    MappedFile() = default;
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile() { Close(); }

    // Opens, maps and views the whole file; stops at the first step that fails and keeps
    // its GetLastError() in Error(). An empty file cannot be mapped, so it fails too.
    // A size of 0xFFFFFFFF from GetFileSize counts as 0; only the low 32 bits are used.
    bool Open(const char* path, MapAccess access = MapAccess::ReadOnly);

    // Unmaps the view, closes the file, then the mapping.
    void Close() noexcept;

    const void* View() const noexcept { return view_.Get(); }
    std::uint32_t Size() const noexcept { return size_; }
    DWORD Error() const noexcept { return error_; }

private:
    bool Fail() noexcept;

    UniqueKernelHandle mapping_;
    UniqueKernelHandle file_;
    UniqueMappedView view_;
    std::uint32_t size_ = 0;
    DWORD error_ = ERROR_SUCCESS;
};
