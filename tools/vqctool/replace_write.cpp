#include "tools/vqctool/replace_write.h"

#include "common/win_handles.h"

namespace vqctool {

namespace {

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of("\\/:");
    if (slash == std::string::npos) return ".";
    if (path[slash] == ':') return path.substr(0, slash + 1);
    return slash == 0 ? path.substr(0, 1) : path.substr(0, slash);
}

// The whole content of a file; false when it cannot be read.
bool ReadWhole(const std::string& path, std::string& bytes) {
    const UniqueKernelHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return false;
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.Get(), &size) || size.QuadPart > 0x7FFFFFFF) return false;
    bytes.assign(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    return bytes.empty() || (ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) &&
                             read == bytes.size());
}

bool SameContent(const std::string& a, const std::string& b) {
    std::string first, second;
    return ReadWhole(a, first) && ReadWhole(b, second) && first == second;
}

// A fresh file's name in the folder, the file made (empty) so that no other run takes it.
std::string NewFileBeside(const std::string& path, DWORD& error) {
    char name[MAX_PATH + 1] = {};
    if (!GetTempFileNameA(FolderOf(path).c_str(), "vqc", 0, name)) {
        error = GetLastError();
        return {};
    }
    return name;
}

DWORD Moved(const std::string& from, const std::string& to, DWORD flags) {
    return MoveFileExA(from.c_str(), to.c_str(), flags | MOVEFILE_WRITE_THROUGH) ? ERROR_SUCCESS : GetLastError();
}

}  // namespace

WriteResult WriteReplacing(VQCFileInfo& record, const std::string& path, WriteMode mode) {
    WriteResult result;
    const DWORD attributes = GetFileAttributesA(path.c_str());
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    if (exists && (attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        result.error = ERROR_ACCESS_DENIED;
        return result;
    }
    if (mode == WriteMode::CreateNew && exists) {
        result.error = ERROR_FILE_EXISTS;
        return result;
    }
    // A read-only file is refused as a write into it would be; its replacement would not be.
    if (exists && (attributes & FILE_ATTRIBUTE_READONLY)) {
        result.error = ERROR_ACCESS_DENIED;
        return result;
    }

    const std::string fresh = NewFileBeside(path, result.error);
    if (fresh.empty()) return result;
    if (record.Write(fresh.c_str()) != 0) {
        result.error = record.lastError;
        DeleteFileA(fresh.c_str());
        return result;
    }
    if (exists && SameContent(fresh, path)) {  // nothing to replace: the file keeps its time
        DeleteFileA(fresh.c_str());
        return result;
    }
    // The old file's attributes (hidden, archive, ...) go with its new content; the rename
    // itself is one step, so the file is either the old one or the new one.
    if (exists) SetFileAttributesA(fresh.c_str(), attributes);
    result.error = Moved(fresh, path, mode == WriteMode::CreateNew ? 0 : MOVEFILE_REPLACE_EXISTING);
    if (result.error != ERROR_SUCCESS) {
        DeleteFileA(fresh.c_str());
        return result;
    }
    result.changed = true;
    return result;
}

DWORD WriteBytesReplacing(const std::string& path, const std::string& bytes) {
    DWORD error = ERROR_SUCCESS;
    const std::string fresh = NewFileBeside(path, error);
    if (fresh.empty()) return error;
    {
        const UniqueKernelHandle file(
            CreateFileA(fresh.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        if (!file || !WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
            written != bytes.size())
            error = GetLastError();
    }
    if (error == ERROR_SUCCESS) error = Moved(fresh, path, MOVEFILE_REPLACE_EXISTING);
    if (error != ERROR_SUCCESS) DeleteFileA(fresh.c_str());
    return error;
}

}  // namespace vqctool
