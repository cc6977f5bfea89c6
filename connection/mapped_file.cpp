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
    file_.reset(CreateFileA(path, rule.fileAccess, rule.shareMode, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file_) return Fail();
    mapping_.reset(CreateFileMappingA(file_.get(), nullptr, rule.pageProtection, 0, 0, nullptr));
    if (!mapping_) return Fail();
    const DWORD size = GetFileSize(file_.get(), nullptr);
    size_ = size == INVALID_FILE_SIZE ? 0 : size;
    view_.reset(MapViewOfFileEx(mapping_.get(), rule.viewAccess, 0, 0, 0, nullptr));
    if (!view_) return Fail();
    return true;
}

void MappedFile::Close() noexcept {
    view_.reset();
    file_.reset();
    mapping_.reset();
    size_ = 0;
}
