#include "resources/local_string_cache.h"

#include <windows.h>

#include <cstdlib>

#include "resources/local_strings.h"
#include "resources/ui_language.h"

AnsiStringCacheNode* g_ansiStringCache = nullptr;

namespace {

// Keyed by id alone: the language cannot change within a process.
const char* ConvertAndCache(std::uint32_t id, const char16_t* text) noexcept {
    AnsiStringCacheNode* last = nullptr;
    for (AnsiStringCacheNode* node = g_ansiStringCache; node != nullptr; node = node->next) {
        if (node->id == id) return node->text;
        last = node;
    }

    auto* node = static_cast<AnsiStringCacheNode*>(std::malloc(sizeof(AnsiStringCacheNode)));
    if (node == nullptr) return nullptr;
    node->next = nullptr;
    node->text = nullptr;
    node->id = id;
    if (last == nullptr)
        g_ansiStringCache = node;
    else
        last->next = node;

    const auto* wide = reinterpret_cast<const wchar_t*>(text);
    const int count = static_cast<int>(DoubleNulTextLength(text));
    const int bytes = WideCharToMultiByte(CP_ACP, 0, wide, count, nullptr, 0, nullptr, nullptr);
    if (bytes <= 0) return nullptr;
    // Converted straight into the block that is kept: no text needs a scratch copy.
    auto* converted = static_cast<char*>(std::malloc(static_cast<std::size_t>(bytes)));
    if (converted == nullptr) return nullptr;
    WideCharToMultiByte(CP_ACP, 0, wide, count, converted, bytes, nullptr, nullptr);
    node->text = converted;
    return converted;
}

}  // namespace

const char* GetLocalString(std::uint32_t id) noexcept {
    const int language = GetUILanguageIndex();
    const char16_t* text = LocalStringText(id, language);
    if (text == nullptr) return nullptr;
    return ConvertAndCache(id, text);
}
