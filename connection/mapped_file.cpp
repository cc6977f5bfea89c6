#include "connection/mapped_file.h"

const MapAccessRule& RuleFor(MapAccess access) noexcept {
    for (const MapAccessRule& rule : kMapAccessRules)
        if (rule.access == access) return rule;
    return kMapAccessRules[0];
}

bool MappedFile::Fail() noexcept {
    error_ = GetLastError();
    return false;
}

bool MappedFile::Open(const char* path, MapAccess access) {
    Close();
    const MapAccessRule& rule = RuleFor(access);
    file_.Reset(
        CreateFileA(path, rule.fileAccess, rule.shareMode, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file_) return Fail();
    mapping_.Reset(CreateFileMappingA(file_.Get(), nullptr, rule.pageProtection, 0, 0, nullptr));
    if (!mapping_) return Fail();
    const DWORD size = GetFileSize(file_.Get(), nullptr);
    size_ = size == INVALID_FILE_SIZE ? 0 : size;
    view_.Reset(MapViewOfFileEx(mapping_.Get(), rule.viewAccess, 0, 0, 0, nullptr));
    if (!view_) return Fail();
    return true;
}

void MappedFile::Close() noexcept {
    view_.Reset();
    file_.Reset();
    mapping_.Reset();
    size_ = 0;
}
