#include "resources/language_table.h"

#include <cstring>

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t kAny = 0xFFFFFFFFu;

struct Row {
    std::uint32_t index, primary, sub, codePage;
    const char* name;
    const char* tag;
};

// The table as it must read, row by row.
// clang-format off
constexpr Row kExpectedRows[29] = {
    {1, 0x09, 2, 1252, "English_UK", "en-GB"},
    {2, 0x07, kAny, 1252, "German", "de-DE"},
    {3, 0x0C, kAny, 1252, "French", "fr-FR"},
    {4, 0x0A, kAny, 1252, "Spanish", "es-ES"},
    {5, 0x10, kAny, 1252, "Italian", "it-IT"},
    {6, 0x16, kAny, 1252, "Portuguese", "pt-PT"},
    {7, 0x13, kAny, 1252, "Dutch", "nl-NL"},
    {8, 0x15, kAny, 1250, "Polish", "pl-PL"},
    {9, 0x09, 1, 1252, "English_US", "en-US"},
    {10, 0x12, kAny, 949, "Korean", "ko-KR"},
    {11, 0x0E, kAny, 1250, "Hungarian", "hu-HU"},
    {12, 0x11, kAny, 932, "Japanese", "ja-JP"},
    {13, 0x04, 1, 950, "Chinese_Traditional", "zh-TW"},
    {13, 0x04, 3, 950, "Chinese_Traditional", "zh-HK"},
    {14, 0x04, 2, 936, "Chinese_Simplified", "zh-CN"},
    {14, 0x04, 4, 936, "Chinese_Simplified", "zh-SG"},
    {15, 0x1F, kAny, 1254, "Turkish", "tr-TR"},
    {16, 0x1E, kAny, 874, "Thai", "th-TH"},
    {17, 0x19, kAny, 1251, "Cyrillic", "ru-RU"},
    {18, 0x08, kAny, 1253, "Greek", "el-GR"},
    {19, 0x01, kAny, 1256, "Arabic", "ar-AA"},
    {20, 0x26, kAny, 1257, "Baltic", "lv-LV"},
    {21, 0x2A, kAny, 1258, "Vietnamese", "vi-VN"},
    {22, 0x1D, kAny, 1252, "Swedish", "sv-SE"},
    {23, 0x06, kAny, 1252, "Danish", "da-DK"},
    {24, 0x14, kAny, 1252, "Norwegian", "nb-NO"},
    {25, 0x0C, 3, 1252, "French_CA", "fr-CA"},
    {26, 0x3E, 1, 1252, "Malaysia_MS", "ms-MY"},
    {27, 0x01, kAny, 1256, "Arabic_Extended", "ar-AA"},
};
// clang-format on

int IndexForLcid(std::uint32_t lcid) { return LanguageIndexForLangId(static_cast<std::uint16_t>(lcid & 0xFFFF)); }

}  // namespace

TEST(LanguageTable, HoldsTheTwentyNineRowsInTheirOrder) {
    ASSERT_EQ(kLanguageTableRows, 29);
    ASSERT_EQ(sizeof(g_languageTable) / sizeof(g_languageTable[0]), 29u);
    for (int row = 0; row < 29; ++row) {
        SCOPED_TRACE(row + 1);
        const LanguageEntry& actual = g_languageTable[row];
        const Row& want = kExpectedRows[row];
        EXPECT_EQ(actual.index, want.index);
        EXPECT_EQ(actual.primaryLang, want.primary);
        EXPECT_EQ(actual.subLang, want.sub);
        EXPECT_EQ(actual.codePage, want.codePage);
        EXPECT_STREQ(actual.name, want.name);
        EXPECT_STREQ(actual.tag, want.tag);
    }
}

TEST(LanguageTable, EnglishUnitedKingdomGivesOne) { EXPECT_EQ(IndexForLcid(0x0809), 1); }
TEST(LanguageTable, EnglishUnitedStatesGivesNine) { EXPECT_EQ(IndexForLcid(0x0409), 9); }
TEST(LanguageTable, EnglishAustraliaFallsBackToOne) { EXPECT_EQ(IndexForLcid(0x0C09), 1); }
TEST(LanguageTable, EnglishCanadaFallsBackToOne) { EXPECT_EQ(IndexForLcid(0x1009), 1); }

TEST(LanguageTable, FrenchCanadaScansPastTheFrenchWildcardToTwentyFive) { EXPECT_EQ(IndexForLcid(0x0C0C), 25); }
TEST(LanguageTable, FrenchFranceGivesThree) { EXPECT_EQ(IndexForLcid(0x040C), 3); }
TEST(LanguageTable, FrenchBelgiumAndSwitzerlandGiveThree) {
    EXPECT_EQ(IndexForLcid(0x080C), 3);
    EXPECT_EQ(IndexForLcid(0x100C), 3);
}

// The later Arabic wildcard row replaces the earlier one: 27, never 19.
TEST(LanguageTable, ArabicSaudiArabiaGivesTwentySevenNotNineteen) { EXPECT_EQ(IndexForLcid(0x0401), 27); }
TEST(LanguageTable, ArabicEmiratesGivesTwentySeven) { EXPECT_EQ(IndexForLcid(0x3801), 27); }
TEST(LanguageTable, EveryArabicSubLanguageGivesTwentySeven) {
    for (std::uint32_t sub = 0; sub < 64; ++sub)
        EXPECT_EQ(LanguageIndexForLangId(static_cast<std::uint16_t>((sub << 10) | 0x01)), 27) << sub;
}

TEST(LanguageTable, ChineseTaiwanGivesThirteen) { EXPECT_EQ(IndexForLcid(0x0404), 13); }
TEST(LanguageTable, ChineseHongKongGivesThirteen) { EXPECT_EQ(IndexForLcid(0x0C04), 13); }
TEST(LanguageTable, ChinesePrcGivesFourteen) { EXPECT_EQ(IndexForLcid(0x0804), 14); }
TEST(LanguageTable, ChineseSingaporeGivesFourteen) { EXPECT_EQ(IndexForLcid(0x1004), 14); }
TEST(LanguageTable, ChineseMacauFallsBackToOne) { EXPECT_EQ(IndexForLcid(0x1404), 1); }
TEST(LanguageTable, ChineseNeutralFallsBackToOne) { EXPECT_EQ(IndexForLcid(0x0004), 1); }

TEST(LanguageTable, MalayMalaysiaGivesTwentySix) { EXPECT_EQ(IndexForLcid(0x043E), 26); }
TEST(LanguageTable, MalayBruneiFallsBackToOne) { EXPECT_EQ(IndexForLcid(0x083E), 1); }

TEST(LanguageTable, RussianGivesSeventeen) { EXPECT_EQ(IndexForLcid(0x0419), 17); }
TEST(LanguageTable, LatvianGivesTwenty) { EXPECT_EQ(IndexForLcid(0x0426), 20); }
TEST(LanguageTable, NorwegianBokmalGivesTwentyFour) { EXPECT_EQ(IndexForLcid(0x0414), 24); }
TEST(LanguageTable, NorwegianNynorskGivesTwentyFour) { EXPECT_EQ(IndexForLcid(0x0814), 24); }

TEST(LanguageTable, CzechIsNotInTheTableAndGivesOne) { EXPECT_EQ(IndexForLcid(0x0405), 1); }

TEST(LanguageTable, EveryWildcardLanguageGivesItsIndex) {
    EXPECT_EQ(IndexForLcid(0x0407), 2);
    EXPECT_EQ(IndexForLcid(0x0C07), 2);  // German, Austria
    EXPECT_EQ(IndexForLcid(0x0C0A), 4);
    EXPECT_EQ(IndexForLcid(0x0410), 5);
    EXPECT_EQ(IndexForLcid(0x0816), 6);
    EXPECT_EQ(IndexForLcid(0x0413), 7);
    EXPECT_EQ(IndexForLcid(0x0415), 8);
    EXPECT_EQ(IndexForLcid(0x0412), 10);
    EXPECT_EQ(IndexForLcid(0x040E), 11);
    EXPECT_EQ(IndexForLcid(0x0411), 12);
    EXPECT_EQ(IndexForLcid(0x041F), 15);
    EXPECT_EQ(IndexForLcid(0x041E), 16);
    EXPECT_EQ(IndexForLcid(0x0408), 18);
    EXPECT_EQ(IndexForLcid(0x042A), 21);
    EXPECT_EQ(IndexForLcid(0x041D), 22);
    EXPECT_EQ(IndexForLcid(0x0406), 23);
}

TEST(LanguageTable, OnlyTheLowSixteenBitsOfTheLcidCount) {
    // A sort id above the LANGID changes nothing.
    EXPECT_EQ(LanguageIndexForLangId(static_cast<std::uint16_t>(0x00050407 & 0xFFFF)), 2);
}

namespace {

int g_reads = 0;
std::uint16_t g_langIdToRead = 0;

std::uint16_t CountingReader() {
    ++g_reads;
    return g_langIdToRead;
}

}  // namespace

TEST(LanguageDecision, FirstCallReadsTheLocaleAndPublishesTheIndex) {
    std::int32_t index = -1, work = 0;
    g_reads = 0;
    g_langIdToRead = 0x0407;
    EXPECT_EQ(DecideLanguageIndex(index, work, CountingReader), 2);
    EXPECT_EQ(g_reads, 1);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(work, 2);
}

TEST(LanguageDecision, SecondCallKeepsTheFirstValueWithoutReadingAgain) {
    std::int32_t index = -1, work = 0;
    g_reads = 0;
    g_langIdToRead = 0x0C0C;
    ASSERT_EQ(DecideLanguageIndex(index, work, CountingReader), 25);
    g_langIdToRead = 0x0407;  // the user changes the locale while the DLL stays loaded
    EXPECT_EQ(DecideLanguageIndex(index, work, CountingReader), 25);
    EXPECT_EQ(g_reads, 1);
}

TEST(LanguageDecision, DecidedButUnpublishedValueIsPublishedWithoutReading) {
    std::int32_t index = -1, work = 13;
    g_reads = 0;
    EXPECT_EQ(DecideLanguageIndex(index, work, CountingReader), 13);
    EXPECT_EQ(index, 13);
    EXPECT_EQ(g_reads, 0);
}

TEST(LanguageDecision, UnknownLocaleDecidesEnglishUK) {
    std::int32_t index = -1, work = 0;
    g_reads = 0;
    g_langIdToRead = 0x0405;
    EXPECT_EQ(DecideLanguageIndex(index, work, CountingReader), 1);
    EXPECT_EQ(work, 1);
    EXPECT_EQ(index, 1);
}
