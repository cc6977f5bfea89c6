#include "tools/vqctool/record_io.h"

#include <cstdio>

#include "common/ansi_text.h"
#include "common/hresult_error.h"
#include "common/win_handles.h"
#include "shellext/client_probe.h"

namespace vqctool {

ClientInstallation InstalledClient() {
    ClientInstallation client;
    std::string path;
    // The probe looks beside the module it is given; null is vqctool.exe itself.
    if (FindClientInstallation(nullptr, &path)) {
        client.path = ansi_text::Trimmed(path);
        client.version = ReadClientVersion(path.c_str());
    }
    return client;
}

std::int32_t ClientVersionFor(const std::optional<std::int32_t>& given) {
    return given ? *given : InstalledClient().version;
}

std::string SystemErrorText(DWORD error) {
    char text[512] = {};
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                        text, sizeof(text), nullptr);
    if (!length) return "error " + std::to_string(error);
    std::string message(text, length);
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r')) message.pop_back();
    return message;
}

std::string ReadRecord(VQCFileInfo& record, const std::string& path) {
    try {
        if (record.Read(path.c_str()) == 0) return {};
        return SystemErrorText(record.lastError);
    } catch (const HResultError& error) {
        std::string text;
        ansi_text::AppendFormat(text, "the reader failed with HRESULT 0x%08lX",
                                static_cast<unsigned long>(error.Code()));
        return text;
    }
}

bool ReadRecordOrReport(VQCFileInfo& record, const std::string& path) {
    const std::string error = ReadRecord(record, path);
    if (error.empty()) return true;
    ReportFailure("cannot read", path, error);
    return false;
}

std::optional<IconFormat> IconFormatOf(HICON icon) {
    if (!icon) return std::nullopt;
    ICONINFO info{};
    if (!GetIconInfo(icon, &info)) return std::nullopt;
    const UniqueGdiObject colour(info.hbmColor);
    const UniqueGdiObject mask(info.hbmMask);
    IconFormat format;
    if (!colour) {  // black and white: the mask holds both halves
        BITMAP bitmap{};
        if (!GetObjectA(mask.Get(), sizeof(bitmap), &bitmap)) return std::nullopt;
        format.width = bitmap.bmWidth;
        format.height = bitmap.bmHeight / 2;
        format.bitsPerPixel = 1;
        return format;
    }
    // The depth GetDIBits reports, as the writer asks for it.
    const UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
    BITMAPINFO query{};
    query.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    if (!dc || !GetDIBits(dc.Get(), static_cast<HBITMAP>(colour.Get()), 0, 0, nullptr, &query, DIB_RGB_COLORS))
        return std::nullopt;
    format.width = query.bmiHeader.biWidth;
    format.height = query.bmiHeader.biHeight < 0 ? -query.bmiHeader.biHeight : query.bmiHeader.biHeight;
    format.bitsPerPixel = query.bmiHeader.biBitCount;
    return format;
}

std::optional<IconFormat> IconFormatOf(const RecordIcon& icon) {
    if (!icon) return std::nullopt;
    const DecodedIcon& decoded = icon.Decoded();
    if (!decoded.image.empty())
        if (auto format = ImageBlockFormat(decoded.image, decoded.width, decoded.height)) return format;
    return IconFormatOf(icon.Get());
}

std::string AnsiToUtf8(std::string_view text) {
    if (text.empty()) return {};
    const int count = static_cast<int>(text.size());
    const int wide = MultiByteToWideChar(CP_ACP, 0, text.data(), count, nullptr, 0);
    if (wide <= 0) return std::string(text);
    std::wstring utf16(static_cast<std::size_t>(wide), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), count, utf16.data(), wide);
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, utf16.data(), wide, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(bytes > 0 ? bytes : 0), '\0');
    if (bytes > 0) WideCharToMultiByte(CP_UTF8, 0, utf16.data(), wide, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

void ReportFailure(const char* what, const std::string& path, const std::string& reason) {
    std::fprintf(stderr, "vqctool: %s %s: %s\n", what, path.c_str(), reason.c_str());
}

bool WriteSucceededOrReport(DWORD error, const std::string& path) {
    if (error == ERROR_SUCCESS) return true;
    ReportFailure("cannot write", path, SystemErrorText(error));
    return false;
}

}  // namespace vqctool
