// VQCFileInfo::Write: replaces the connection file with the record's option line.
#include <new>
#include <stdexcept>
#include <string>

#include "common/hresult_error.h"

#include "common/win_handles.h"
#include "connection/file_replacement.h"
#include "connection/icon_codec.h"
#include "connection/option_line.h"
#include "connection/vqc_file_info.h"

namespace {

constexpr std::uint64_t kLargestIconTextSize = 2147483646;  // text length plus one
constexpr DWORD kRefusedFileSize = 0x80000000;              // 2 GiB and more: the reader refuses it

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

// The connection file as the writer's steps see it: read whole, created anew, written from
// its start; the first failure's Windows error is kept for the record.
class FileOnDisk {
public:
    explicit FileOnDisk(const char* path) : path_(path) {}

    bool ReadCurrent(std::string& bytes) {
        const UniqueKernelHandle file(
            CreateFileA(path_, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file) return false;
        DWORD high = 0;
        const DWORD size = GetFileSize(file.Get(), &high);
        // A file the reader would refuse is not held in memory either.
        if (high != 0 || size >= kRefusedFileSize) return false;
        try {
            bytes.assign(size, '\0');
        } catch (const std::bad_alloc&) {
            return false;
        }
        DWORD read = 0;
        return size == 0 || (ReadFile(file.Get(), bytes.data(), size, &read, nullptr) && read == size);
    }

    bool CreateEmpty() {
        file_.Reset(
            CreateFileA(path_, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        return file_ || Fail();
    }

    bool Write(const std::string& text) { return WriteAtPosition(text, written_) || Fail(); }

    // The write's error stays the one the user hears of. The file was empty before the
    // failed write, so it needs cutting only where that write got further than the old bytes.
    bool PutBack(const std::string& bytes) {
        std::uint32_t taken = 0;
        return SetFilePointerEx(file_.Get(), LARGE_INTEGER{}, nullptr, FILE_BEGIN) && WriteAtPosition(bytes, taken) &&
               (written_ <= bytes.size() || SetEndOfFile(file_.Get()));
    }

    DWORD Error() const { return error_; }

private:
    // Writes bytes at the file's position; done counts what the system took.
    bool WriteAtPosition(const std::string& bytes, std::uint32_t& done) {
        const WholeWrite result = WriteWhole(bytes.data(), static_cast<std::uint32_t>(bytes.size()), done,
                                             [&](const char* data, std::uint32_t size, std::uint32_t& written) {
                                                 DWORD count = 0;
                                                 const BOOL wrote = WriteFile(file_.Get(), data, size, &count, nullptr);
                                                 written = count;
                                                 return wrote != FALSE;
                                             });
        // Success with nothing taken names no reason; a full volume is what it comes from.
        if (result == WholeWrite::Stalled) SetLastError(ERROR_DISK_FULL);
        return result == WholeWrite::Written;
    }

    bool Fail() {
        error_ = GetLastError();
        return false;
    }

    const char* path_;
    UniqueKernelHandle file_;
    std::uint32_t written_ = 0;  // bytes the write got into the emptied file
    DWORD error_ = ERROR_SUCCESS;
};

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

    FileOnDisk file(path);
    lastWrite = ReplaceFile(file, line);
    if (lastWrite != Replacement::Written) {
        lastError = file.Error();
        return 1;
    }
    return 0;
}
