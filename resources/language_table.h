// The languages the property pages know, and the choice of one of them from a LANGID.
// Portable: the Windows side (ui_language.h) only feeds it the user's default locale.
#pragma once

#include <cstdint>

// Language indices run from 1 (English_UK, also the fallback) to 27; the string table
// keeps one slot more than there are languages, always empty.
constexpr int kEnglishUK = 1;
constexpr int kLanguageCount = 27;
constexpr int kLanguageSlots = 28;

constexpr std::uint32_t kAnySubLanguage = 0xFFFFFFFFu;

struct LanguageEntry {
    std::uint32_t index;        // 1 to 27; the string table column is index - 1
    std::uint32_t primaryLang;  // low 10 bits of a LANGID
    std::uint32_t subLang;      // high 6 bits of a LANGID, or kAnySubLanguage
    std::uint32_t codePage;     // for a reader of the table only; nothing converts with it
    const char* name;
    const char* tag;
};

constexpr int kLanguageTableRows = 29;
extern const LanguageEntry g_languageTable[kLanguageTableRows];

// Scans the table in its order: an exact sub-language match wins at once, a wildcard row
// takes the place of an earlier choice and the scan goes on; nothing found gives 1.
int LanguageIndexForLangId(std::uint16_t langId) noexcept;

// The once-per-process decision over the two state words: `index` starts at -1, `work`
// at 0. The reader of the user's LANGID is called only while nothing is decided yet.
using LangIdReader = std::uint16_t (*)();
int DecideLanguageIndex(std::int32_t& index, std::int32_t& work, LangIdReader readLangId) noexcept;
