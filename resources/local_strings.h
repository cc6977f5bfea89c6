// Every user-visible text of the property pages: one row per string id, one UTF-16 text
// per language index (or none, and then English_UK stands in). Portable data and lookups;
// the ANSI copies the pages use come from local_string_cache.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "resources/language_table.h"

constexpr int kLocalStringCount = 49;  // string ids 0 to 48

// The texts of one string id: element k belongs to language index k + 1.
// Every text ends in two NULs, so each is also a NUL-separated list ending in an
// empty string (id 40, the file dialog filter, is such a list).
struct LocalTextRow {
    const char16_t* texts[kLanguageSlots];
};

struct LocalString {
    std::int32_t id;
    const char16_t* const* texts;  // kLanguageSlots elements
};

extern const LocalTextRow g_localTextRows[kLocalStringCount];
extern const LocalString* const g_localStrings[kLocalStringCount];

// The text array of a string id, for the control tables of the dialog builder.
constexpr const char16_t* const* LocalTexts(int id) { return g_localTextRows[id].texts; }

// Element languageIndex - 1 of `texts`, else element 0 (English_UK); null when `texts`
// is null or neither element holds a text.
const char16_t* PickLocalText(const char16_t* const* texts, int languageIndex) noexcept;

// The text of string id `id` in the language, with the same fallback; null for an id
// above 48.
const char16_t* LocalStringText(std::uint32_t id, int languageIndex) noexcept;

// Characters up to and including the first pair of NULs: the whole list of a filter.
std::size_t DoubleNulTextLength(const char16_t* text) noexcept;
