// The UI language of this process, decided once from the user's default locale.
#pragma once

#include <cstdint>

// -1 until a language is decided; then the language index for the rest of the process.
extern std::int32_t g_languageIndex;
// The decided value before it is published in g_languageIndex; 0 while nothing is decided.
extern std::int32_t g_languageWork;

// The language index, 1 to 27, from GetUserDefaultLCID on the first call. Never fails.
int GetUILanguageIndex() noexcept;
