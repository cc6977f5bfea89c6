#include "resources/ui_language.h"

#include <windows.h>

#include "resources/language_table.h"

// No lock: racing first calls compute the same value from the same locale and store it
// with single aligned 32-bit writes.
std::int32_t g_languageIndex = -1;
std::int32_t g_languageWork = 0;

namespace {

std::uint16_t UserDefaultLangId() { return static_cast<std::uint16_t>(GetUserDefaultLCID() & 0xFFFF); }

}  // namespace

int GetUILanguageIndex() noexcept { return DecideLanguageIndex(g_languageIndex, g_languageWork, UserDefaultLangId); }
