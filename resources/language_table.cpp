#include "resources/language_table.h"

// The row order is part of the design: row 27 (French, Canada) comes after the French
// wildcard so that it can still win, and row 29 takes every Arabic locale from row 21.
// clang-format off
const LanguageEntry g_languageTable[kLanguageTableRows] = {
    // index  primary  sub              code page  name                   tag
    {1,  0x09, 2,               1252, "English_UK",          "en-GB"},
    {2,  0x07, kAnySubLanguage, 1252, "German",              "de-DE"},
    {3,  0x0C, kAnySubLanguage, 1252, "French",              "fr-FR"},
    {4,  0x0A, kAnySubLanguage, 1252, "Spanish",             "es-ES"},
    {5,  0x10, kAnySubLanguage, 1252, "Italian",             "it-IT"},
    {6,  0x16, kAnySubLanguage, 1252, "Portuguese",          "pt-PT"},
    {7,  0x13, kAnySubLanguage, 1252, "Dutch",               "nl-NL"},
    {8,  0x15, kAnySubLanguage, 1250, "Polish",              "pl-PL"},
    {9,  0x09, 1,               1252, "English_US",          "en-US"},
    {10, 0x12, kAnySubLanguage, 949,  "Korean",              "ko-KR"},
    {11, 0x0E, kAnySubLanguage, 1250, "Hungarian",           "hu-HU"},
    {12, 0x11, kAnySubLanguage, 932,  "Japanese",            "ja-JP"},
    {13, 0x04, 1,               950,  "Chinese_Traditional", "zh-TW"},
    {13, 0x04, 3,               950,  "Chinese_Traditional", "zh-HK"},
    {14, 0x04, 2,               936,  "Chinese_Simplified",  "zh-CN"},
    {14, 0x04, 4,               936,  "Chinese_Simplified",  "zh-SG"},
    {15, 0x1F, kAnySubLanguage, 1254, "Turkish",             "tr-TR"},
    {16, 0x1E, kAnySubLanguage, 874,  "Thai",                "th-TH"},
    {17, 0x19, kAnySubLanguage, 1251, "Cyrillic",            "ru-RU"},
    {18, 0x08, kAnySubLanguage, 1253, "Greek",               "el-GR"},
    {19, 0x01, kAnySubLanguage, 1256, "Arabic",              "ar-AA"},
    {20, 0x26, kAnySubLanguage, 1257, "Baltic",              "lv-LV"},
    {21, 0x2A, kAnySubLanguage, 1258, "Vietnamese",          "vi-VN"},
    {22, 0x1D, kAnySubLanguage, 1252, "Swedish",             "sv-SE"},
    {23, 0x06, kAnySubLanguage, 1252, "Danish",              "da-DK"},
    {24, 0x14, kAnySubLanguage, 1252, "Norwegian",           "nb-NO"},
    {25, 0x0C, 3,               1252, "French_CA",           "fr-CA"},
    {26, 0x3E, 1,               1252, "Malaysia_MS",         "ms-MY"},
    {27, 0x01, kAnySubLanguage, 1256, "Arabic_Extended",     "ar-AA"},
};
// clang-format on

int LanguageIndexForLangId(std::uint16_t langId) noexcept {
    const std::uint32_t primary = langId & 0x3FFu;
    const std::uint32_t sub = langId >> 10;
    int chosen = kEnglishUK;
    for (const LanguageEntry& row : g_languageTable) {
        if (row.primaryLang != primary) continue;
        if (row.subLang == sub) return static_cast<int>(row.index);
        if (row.subLang == kAnySubLanguage) chosen = static_cast<int>(row.index);
    }
    return chosen;
}

int DecideLanguageIndex(std::int32_t& index, std::int32_t& work, LangIdReader readLangId) noexcept {
    if (index >= 0) return index;
    if (work != 0) {
        index = work;
        return index;
    }
    const std::uint16_t langId = readLangId();
    work = LanguageIndexForLangId(langId);  // English_UK unless a row matches
    index = work;
    return index;
}
