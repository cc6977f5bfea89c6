// VQCFileInfo::Write: replaces the connection file with the record's option line.
#include <new>
#include <stdexcept>
#include <string>

#include "common/hresult_error.h"

#include "common/win_handles.h"
#include "connection/icon_codec.h"
#include "connection/option_line.h"
#include "connection/vqc_file_info.h"

namespace {

constexpr std::uint64_t kLargestIconTextSize = 2147483646;  // text length plus one

// The hex text of the icon pair, or nothing when there is no icon to write.
bool MakeIconText(HICON icon, HICON smallIcon, std::string& text) {
    if (!icon && !smallIcon) return false;
    const std::uint64_t size = EncodeIcons(nullptr, icon, smallIcon);
    if (size < 1 || size > kLargestIconTextSize) return false;
    text.assign(static_cast<std::size_t>(size - 1), '\0');
    char* cursor = text.data();
    if (EncodeIcons(&cursor, icon, smallIcon) != size) return false;
    text.resize(static_cast<std::size_t>(cursor - text.data()));
    return true;
}

}  // namespace

std::int32_t VQCFileInfo::Write(const char* path) {
    std::string line;
    try {
        std::string iconText;
        const bool withIcon = MakeIconText(icon.Get(), smallIcon.Get(), iconText);
        line = BuildOptionLine(*this, withIcon ? iconText.c_str() : nullptr);
    } catch (const std::bad_alloc&) {
        throw HResultError(kResultFail);  // no string storage for the text
    } catch (const std::length_error&) {
        throw HResultError(kResultInvalidArg);
    }

    const UniqueKernelHandle file(
        CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        lastError = GetLastError();
        return 1;
    }
    DWORD written = 0;
    if (!WriteFile(file.Get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr) ||
        written != line.size()) {
        lastError = GetLastError();
        return 1;
    }
    return 0;
}
