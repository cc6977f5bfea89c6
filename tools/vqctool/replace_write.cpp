#include "tools/vqctool/replace_write.h"

#include "common/win_handles.h"

namespace vqctool {

namespace {

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

// Whether two files hold the same bytes; their sizes are compared before either is read.
bool SameContent(const std::string& a, const std::string& b) {
    WIN32_FILE_ATTRIBUTE_DATA first{}, second{};
    if (!GetFileAttributesExA(a.c_str(), GetFileExInfoStandard, &first) ||
        !GetFileAttributesExA(b.c_str(), GetFileExInfoStandard, &second) || first.nFileSizeLow != second.nFileSizeLow ||
        first.nFileSizeHigh != second.nFileSizeHigh)
        return false;
    std::string firstBytes, secondBytes;
    return ReadWhole(a, firstBytes) && ReadWhole(b, secondBytes) && firstBytes == secondBytes;
}

// A name beside the file that no other file of this run or of another run has: the file's
// own name, this process's id and a count. The writer makes the file.
std::string NameBeside(const std::string& path) {
    static unsigned count = 0;
    return path + "." + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count) + ".vqctool-new";
}

DWORD Moved(const std::string& from, const std::string& to, DWORD flags) {
    return MoveFileExA(from.c_str(), to.c_str(), flags) ? ERROR_SUCCESS : GetLastError();
}

}  // namespace

WriteResult WriteReplacing(VQCFileInfo& record, const std::string& path, WriteMode mode, bool recordChanged) {
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

    const std::string fresh = NameBeside(path);
    if (record.Write(fresh.c_str()) != 0) {
        result.error = record.lastError;
        DeleteFileA(fresh.c_str());
        return result;
    }
    if (exists && !recordChanged && SameContent(fresh, path)) {  // nothing to replace: the file keeps its time
        DeleteFileA(fresh.c_str());
        return result;
    }
    // The old file's attributes (hidden, archive, ...) go with its new content; the rename
    // itself is one step, so the file is either the old one or the new one.
    if (exists && (attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NORMAL)))
        SetFileAttributesA(fresh.c_str(), attributes);
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
    const std::string fresh = NameBeside(path);
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
