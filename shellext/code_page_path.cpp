#include "shellext/code_page_path.h"

#include <cwchar>

namespace {

std::wstring ToWide(const std::string& text, UINT codePage) {
    const int length = MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    if (length <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
    return wide;
}

std::string ToCodePage(const std::wstring& wide, UINT codePage) {
    const int length =
        WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0, nullptr, nullptr);
    if (length <= 0) return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()), text.data(), length, nullptr, nullptr);
    return text;
}

// Whether the 8-bit text reads back as exactly the wide text: nothing was replaced by a
// default character or a look-alike.
bool Spells(const std::string& text, const std::wstring& wide, UINT codePage) { return ToWide(text, codePage) == wide; }

}  // namespace

std::string PathForCodePage(const wchar_t* widePath, UINT codePage, std::string converted) {
    if (!widePath) return converted;
    const std::wstring wide(widePath);
    if (wide.empty() || Spells(converted, wide, codePage)) return converted;

    const DWORD needed = GetShortPathNameW(wide.c_str(), nullptr, 0);
    if (needed == 0) return converted;
    std::wstring shortPath(needed, L'\0');
    const DWORD length = GetShortPathNameW(wide.c_str(), shortPath.data(), needed);
    if (length == 0 || length >= needed) return converted;
    shortPath.resize(length);

    std::string spelled = ToCodePage(shortPath, codePage);
    return !spelled.empty() && Spells(spelled, shortPath, codePage) ? spelled : converted;
}
