#include "shellext/client_probe.h"

#include <shlwapi.h>

#include <cstring>
#include <new>
#include <vector>

#include "common/win_handles.h"
#include "shellext/client_version.h"

namespace {

constexpr std::size_t kPathRoom = 260;
constexpr DWORD kModulePathBuffer = 261;

void FitToText(std::string& text) { text.resize(std::strlen(text.c_str())); }

}  // namespace

bool FindClientInstallation(HMODULE module, std::string* path) {
    if (!path) return false;
    path->clear();

    char modulePath[kModulePathBuffer];
    if (GetModuleFileNameA(module, modulePath, kModulePathBuffer) == 0) return false;

    std::string candidate = modulePath;
    for (const char* name : kClientDllNames) {
        // The first pass strips our own name, later ones the previous candidate's.
        PathRemoveFileSpecA(candidate.data());
        FitToText(candidate);
        candidate.resize(candidate.size() + kPathRoom + 1, '\0');
        PathAddBackslashA(candidate.data());
        FitToText(candidate);
        candidate.resize(candidate.size() + kPathRoom + 1, '\0');
        PathAppendA(candidate.data(), name);
        FitToText(candidate);
        if (GetFileAttributesA(candidate.c_str()) != INVALID_FILE_ATTRIBUTES) {
            *path = candidate;
            return true;
        }
    }
    return false;
}

std::int32_t ReadClientVersion(const char* path) {
    // Held only for the life of the query, as the client's resources are read from it.
    UniqueModule library(LoadLibraryExA(path, nullptr, LOAD_LIBRARY_AS_DATAFILE));

    const DWORD size = GetFileVersionInfoSizeA(path, nullptr);
    if (size == 0) return kClientVersionUnknown;
    std::vector<char> buffer;
    try {
        buffer.resize(size);
    } catch (const std::bad_alloc&) {
        return kClientVersionUnknown;
    }
    if (!GetFileVersionInfoA(path, 0, size, buffer.data())) return kClientVersionUnknown;

    // Only the US English, Unicode block is consulted.
    void* text = nullptr;
    UINT length = 0;
    if (!VerQueryValueA(buffer.data(), "\\StringFileInfo\\040904B0\\ProductVersion", &text, &length)) {
        return kClientVersionUnknown;
    }
    return ClientVersionFromProductVersion(text ? static_cast<const char*>(text) : "");
}
