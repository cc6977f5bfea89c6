#include "resources/local_strings.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "expected_tables.h"

namespace {

constexpr int kGerman = 2, kFrench = 3, kSpanish = 4, kDutch = 7, kKorean = 10, kJapanese = 12,
              kChineseTraditional = 13, kChineseSimplified = 14, kFrenchCanada = 25;

const char16_t* Cell(int id, int languageIndex) { return g_localStrings[id]->texts[languageIndex - 1]; }

// The text up to its first NUL.
std::u16string_view FirstString(const char16_t* text) { return text ? std::u16string_view(text) : u""; }

// A whole NUL-separated list, both final NULs included.
std::u16string_view WholeList(const char16_t* text) { return std::u16string_view(text, DoubleNulTextLength(text)); }

// For gtest messages: UTF-16 as escaped code units.
std::string Show(std::u16string_view text) {
    std::string out;
    for (char16_t c : text) {
        if (c >= 0x20 && c < 0x7F)
            out.push_back(static_cast<char>(c));
        else
            out += "\\u" + std::to_string(static_cast<unsigned>(c));
    }
    return out;
}

}  // namespace

TEST(LocalStrings, HasFortyNineRecordsEachAtItsOwnId) {
    for (int id = 0; id < 49; ++id) {
        ASSERT_NE(g_localStrings[id], nullptr) << id;
        EXPECT_EQ(g_localStrings[id]->id, id);
        EXPECT_NE(g_localStrings[id]->texts, nullptr) << id;
    }
}

TEST(LocalStrings, EnglishColumnMatchesTheIndependentCopy) {
    for (int id = 0; id < 49; ++id) EXPECT_EQ(FirstString(Cell(id, 1)), expected::kEnglish[id]) << id;
}

TEST(LocalStrings, EveryTextEndsInTwoNuls) {
    for (int id = 0; id < 49; ++id) {
        for (int language = 1; language <= kLanguageSlots; ++language) {
            const char16_t* text = Cell(id, language);
            if (text == nullptr) continue;
            const std::size_t length = std::u16string_view(text).size();
            if (id == 40) {
                // A list: ends at the first pair of NULs, which follows a non-empty string.
                const std::size_t whole = DoubleNulTextLength(text);
                EXPECT_GT(whole, 2u) << language;
                EXPECT_EQ(text[whole - 2], u'\0');
                EXPECT_EQ(text[whole - 1], u'\0');
            } else {
                EXPECT_GT(length, 0u) << id << " " << language;
                EXPECT_EQ(text[length + 1], u'\0') << id << " " << language;
            }
        }
    }
}

TEST(LocalStrings, LanguagesTheColumnNamesHaveTextsAndNoOtherDoes) {
    for (int id = 0; id < 49; ++id) {
        for (int language = 1; language <= kLanguageSlots; ++language) {
            const bool has = Cell(id, language) != nullptr;
            EXPECT_EQ(has, expected::HasOwnText(id, language)) << "id " << id << " language " << language;
        }
    }
}

TEST(LocalStrings, TheTwentyEighthSlotIsAlwaysEmpty) {
    for (int id = 0; id < 49; ++id) EXPECT_EQ(Cell(id, 28), nullptr) << id;
}

TEST(LocalStrings, OwnTextsDifferFromEnglishWhereTheWordsDiffer) {
    // A translation that is still the English text would be a copy, not a translation;
    // "&Server:" is the same word in German and Dutch.
    for (int id = 0; id < 49; ++id) {
        for (const auto& own : expected::kOwnLanguageIndices) {
            const char16_t* text = Cell(id, own.index);
            if (text == nullptr) continue;
            if (id == 11 && (own.index == kGerman || own.index == kDutch)) continue;
            if (id == 40) continue;  // the lists share their patterns
            EXPECT_NE(FirstString(text), expected::kEnglish[id]) << id << " " << own.code;
        }
    }
}

TEST(LocalStrings, SampleRowConnection) {
    EXPECT_EQ(FirstString(Cell(21, kGerman)), u"Verbindung");
    EXPECT_EQ(Cell(21, kFrench), nullptr);
    EXPECT_EQ(FirstString(Cell(21, kSpanish)), u"Conexi\u00F3n");
    EXPECT_EQ(FirstString(Cell(21, kDutch)), u"Verbinding");
    EXPECT_EQ(FirstString(Cell(21, kKorean)), u"\uC5F0\uACB0");
    EXPECT_EQ(FirstString(Cell(21, kChineseTraditional)), u"\u9023\u63A5");
    EXPECT_EQ(FirstString(Cell(21, kChineseSimplified)), u"\u8FDE\u63A5");
}

TEST(LocalStrings, SampleRowOptions) {
    EXPECT_EQ(FirstString(Cell(23, kGerman)), u"Optionen");
    EXPECT_EQ(Cell(23, kFrench), nullptr);
    EXPECT_EQ(FirstString(Cell(23, kSpanish)), u"Opciones");
    EXPECT_EQ(FirstString(Cell(23, kDutch)), u"Opties");
    EXPECT_EQ(FirstString(Cell(23, kKorean)), u"\uC635\uC158");
    EXPECT_EQ(FirstString(Cell(23, kChineseTraditional)), u"\u9078\u9805");
    EXPECT_EQ(FirstString(Cell(23, kChineseSimplified)), u"\u9009\u9879");
}

TEST(LocalStrings, SampleRowBrowseIconAsStored) {
    EXPECT_EQ(FirstString(Cell(22, kGerman)), u"&Nach Icon durchsuchen...");
    EXPECT_EQ(FirstString(Cell(22, kFrench)), u"&Recherche....");
    EXPECT_EQ(FirstString(Cell(22, kSpanish)), u"&Buscar icono");
    EXPECT_EQ(FirstString(Cell(22, kDutch)), u"Ikoon &zoeken...");
    EXPECT_EQ(FirstString(Cell(22, kKorean)), u"\uC544\uC774\uCF58 \uBCF4\uAE30(&B)");
    EXPECT_EQ(FirstString(Cell(22, kChineseTraditional)), u"\u700F\u89BD\u5716\u7B26");
    EXPECT_EQ(FirstString(Cell(22, kChineseSimplified)), u"\u6D4F\u89C8\u56FE\u6807");
}

TEST(LocalStrings, SampleRowCommandLineAsStored) {
    EXPECT_EQ(FirstString(Cell(13, kGerman)), u"&VOXA-Befehlszeile:");
    EXPECT_EQ(FirstString(Cell(13, kFrench)), u"Ligne de commande &VOXA:");
    EXPECT_EQ(FirstString(Cell(13, kSpanish)), u"&Lnea de comando &VOXA:");  // stored so
    EXPECT_EQ(FirstString(Cell(13, kDutch)), u"&VOXA Commando regel:");
    EXPECT_EQ(FirstString(Cell(13, kKorean)), u"VOXA \uBA85\uB839\uC5B4 \uB77C\uC778(&K):");
    EXPECT_EQ(FirstString(Cell(13, kChineseTraditional)), u"VOXA\u547D\u4EE4\u884C");
    EXPECT_EQ(FirstString(Cell(13, kChineseSimplified)), u"VOXA\u547D\u4EE4\u884C");
}

TEST(LocalStrings, ProductNameStaysVoxaInEveryLanguage) {
    for (int language = 1; language <= kLanguageSlots; ++language) {
        const char16_t* text = Cell(13, language);
        if (text != nullptr) {
            EXPECT_NE(FirstString(text).find(u"VOXA"), std::u16string_view::npos) << language;
        }
    }
}

TEST(LocalStrings, SampleRowLookForIconsOnlyInChineseSimplified) {
    for (const auto& own : expected::kOwnLanguageIndices) {
        if (own.index == kChineseSimplified) {
            EXPECT_EQ(FirstString(Cell(24, own.index)), u"\u67E5\u627E\u56FE\u6807\u4E8E: %1");
        } else {
            EXPECT_EQ(Cell(24, own.index), nullptr) << own.code;
        }
    }
}

TEST(LocalStrings, JapaneseKeepsItsThreeStoredTexts) {
    EXPECT_EQ(FirstString(Cell(11, kJapanese)), u"\u30B5\u30FC\u30D0\u540D:");
    // Half-width katakana, as stored.
    EXPECT_EQ(FirstString(Cell(12, kJapanese)), u"\uFF95\uFF70\uFF7B\uFF9E\uFF70ID:");
    EXPECT_EQ(FirstString(Cell(14, kJapanese)), u"\uFF8A\uFF9F\uFF7D\uFF9C\uFF70\uFF84\uFF9E:");
    for (int id = 0; id < 49; ++id)
        if (id != 11 && id != 12 && id != 14) {
            EXPECT_EQ(Cell(id, kJapanese), nullptr) << id;
        }
}

TEST(LocalStrings, FilterListsAreKeptAsStored) {
    using namespace std::string_view_literals;
    EXPECT_EQ(WholeList(Cell(40, 1)), expected::kEnglishFilter);
    EXPECT_EQ(WholeList(Cell(40, kGerman)),
              u"Ausf\u00FChrbare und Icon-Dateien \0*.exe;*.dll;*.ico\0Alle Dateien\0*.*\0\0"sv);
    EXPECT_EQ(WholeList(Cell(40, kFrench)),
              u"Fichier ex\u00E9cutables et icones\0*.exe;*.dll;*.ico\0All files\0*.*\0\0"sv);
    EXPECT_EQ(WholeList(Cell(40, kSpanish)), u"Ejecutables e iconos\0*.exe;*.dll;*.ico\0Todos los archivos\0*.*\0\0"sv);
    EXPECT_EQ(WholeList(Cell(40, kDutch)), u"Programma en ikoon bestanden\0*.exe;*.dll;*ico\0All files\0*.*\0\0"sv);
    EXPECT_EQ(WholeList(Cell(40, kKorean)),
              u"\uC2E4\uD589 \uBC0F \uC544\uC774\uCF58 \uD30C\uC77C\0*.exe;*.dll;*.ico\0"
              u"\uBAA8\uB4E0 \uD30C\uC77C\uB4E4\0*.*\0\0"sv);
    // Three strings only, with commas, and no pattern for "All files".
    EXPECT_EQ(WholeList(Cell(40, kChineseTraditional)),
              u"\u57F7\u884C\u548C\u9644\u5716\u6A94\u6848\0*.exe,*.dll,*.ico\0All files\0\0"sv);
    EXPECT_EQ(Cell(40, kChineseSimplified), nullptr);
    EXPECT_EQ(WholeList(LocalStringText(40, kChineseSimplified)), expected::kEnglishFilter);
}

TEST(LocalStrings, IdsAboveFortyEightHaveNoText) {
    EXPECT_EQ(LocalStringText(49, 1), nullptr);
    EXPECT_EQ(LocalStringText(50, 2), nullptr);
    EXPECT_EQ(LocalStringText(0xFFFFFFFFu, 1), nullptr);
    EXPECT_NE(LocalStringText(48, 1), nullptr);
}

TEST(LocalStrings, GermanConnectionTitleIsVerbindung) {
    EXPECT_EQ(FirstString(LocalStringText(21, kGerman)), u"Verbindung");
}

TEST(LocalStrings, LanguageWithoutOwnTextGetsEnglish) {
    EXPECT_EQ(LocalStringText(0, kGerman), Cell(0, 1));
    EXPECT_EQ(FirstString(LocalStringText(0, kGerman)), u"Use &encryption");
}

TEST(LocalStrings, FrenchCanadaGetsEnglishForEveryId) {
    for (std::uint32_t id = 0; id < 49; ++id)
        EXPECT_EQ(LocalStringText(id, kFrenchCanada), Cell(static_cast<int>(id), 1)) << id;
}

TEST(LocalStrings, EveryLanguageWithoutOwnColumnGetsEnglishForEveryId) {
    const std::set<int> own = {1, 2, 3, 4, 7, 10, 12, 13, 14};
    for (int language = 1; language <= 27; ++language) {
        if (own.count(language)) continue;
        for (std::uint32_t id = 0; id < 49; ++id)
            EXPECT_EQ(LocalStringText(id, language), Cell(static_cast<int>(id), 1)) << id;
    }
}

TEST(LocalStrings, PickFallsBackToEnglishAndToNothing) {
    const char16_t* const englishOnly[kLanguageSlots] = {u"A\0"};
    const char16_t* const none[kLanguageSlots] = {};
    EXPECT_EQ(FirstString(PickLocalText(englishOnly, 5)), u"A");
    EXPECT_EQ(PickLocalText(none, 5), nullptr);
    EXPECT_EQ(PickLocalText(nullptr, 1), nullptr);
}

TEST(LocalStrings, DoubleNulLengthCoversBothNuls) {
    EXPECT_EQ(DoubleNulTextLength(u"ab\0"), 4u);
    EXPECT_EQ(DoubleNulTextLength(u"a\0b\0"), 5u);
    EXPECT_EQ(DoubleNulTextLength(u"\0"), 2u);
}

namespace {

// The character after '&', upper-cased for ASCII; 0 when there is none. "&&" is no accelerator.
char16_t Accelerator(std::u16string_view text) {
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != u'&') continue;
        if (text[i + 1] == u'&') {
            ++i;
            continue;
        }
        char16_t c = text[i + 1];
        if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
        return c;
    }
    return 0;
}

// Cells kept exactly as first shipped, with or without an accelerator.
bool IsStoredSample(int id, int language) {
    if (id == 13 || id == 21 || id == 22 || id == 23 || id == 24 || id == 40) return true;
    return language == kJapanese;
}

}  // namespace

TEST(LocalStrings, TranslationsHaveAnAcceleratorWhereEnglishHasOne) {
    for (int id = 0; id < 49; ++id) {
        const bool english = Accelerator(expected::kEnglish[id]) != 0;
        for (const auto& own : expected::kOwnLanguageIndices) {
            const char16_t* text = Cell(id, own.index);
            if (text == nullptr || IsStoredSample(id, own.index)) continue;
            EXPECT_EQ(Accelerator(FirstString(text)) != 0, english)
                << id << " " << own.code << " " << Show(FirstString(text));
            EXPECT_LE(std::count(FirstString(text).begin(), FirstString(text).end(), u'&'), 1) << id << " " << own.code;
        }
    }
}

// On the Proxy, Options and Connection Details dialogs every captioned control is visible
// at once in some state, so their accelerators must not collide in any language.
TEST(LocalStrings, AcceleratorsAreUniqueOnProxyOptionsAndDetailsDialogs) {
    // clang-format off
    const int pages[][7] = {
        {2, 3, 4, 7, 8, 6, -1},   // Proxy page: both groups and the dial-up box
        {25, 22, 10, -1},         // Options page
        {43, 44, 45, 46, 47, -1}, // Connection Details
    };
    // clang-format on
    for (int language = 1; language <= 27; ++language) {
        for (const auto& page : pages) {
            std::set<char16_t> seen;
            for (int k = 0; page[k] >= 0; ++k) {
                const char16_t key = Accelerator(FirstString(LocalStringText(page[k], language)));
                if (key == 0) continue;
                EXPECT_TRUE(seen.insert(key).second) << "language " << language << " id " << page[k];
            }
        }
    }
}
