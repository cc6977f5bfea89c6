// The same checks in every locale this file is built for: the process's language, every
// text arriving through the ANSI code page, and every dialog as a real window. Each
// executable runs under its own LC_ALL and names its suite VQC_LOCALE_SUITE.
#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "expected_tables.h"
#include "real_dialog_check.h"
#include "resources/dialog_template.h"
#include "resources/local_string_cache.h"
#include "resources/local_strings.h"
#include "resources/ui_language.h"
#include "template_decoder.h"

TEST(VQC_LOCALE_SUITE, UserLocaleGivesTheTablesLanguage) {
    ASSERT_EQ(GetUserDefaultLCID(), static_cast<LCID>(VQC_EXPECTED_LCID));
    EXPECT_EQ(GetUILanguageIndex(), VQC_EXPECTED_LANGUAGE);
    EXPECT_EQ(GetUILanguageIndex(), VQC_EXPECTED_LANGUAGE);
    EXPECT_EQ(g_languageIndex, VQC_EXPECTED_LANGUAGE);
}

// Every id comes back as the language's text (or English_UK) in the ANSI code page,
// the whole list with both final NULs.
TEST(VQC_LOCALE_SUITE, EveryStringArrivesInTheAnsiCodePage) {
    for (int id = 0; id < 49; ++id) {
        const char* ansi = GetLocalString(static_cast<std::uint32_t>(id));
        ASSERT_NE(ansi, nullptr) << id;
        std::size_t bytes = 0;
        while (ansi[bytes] != '\0' || ansi[bytes + 1] != '\0') ++bytes;
        bytes += 2;
        std::vector<wchar_t> wide(bytes + 1, L'\x7777');
        const int chars =
            MultiByteToWideChar(CP_ACP, 0, ansi, static_cast<int>(bytes), wide.data(), static_cast<int>(wide.size()));
        const char16_t* const* texts = g_localStrings[id]->texts;
        const char16_t* want = texts[VQC_EXPECTED_LANGUAGE - 1] ? texts[VQC_EXPECTED_LANGUAGE - 1] : texts[0];
        const std::size_t wantLength = DoubleNulTextLength(want);
        ASSERT_EQ(static_cast<std::size_t>(chars), wantLength) << id;
        EXPECT_TRUE(std::equal(want, want + wantLength, wide.begin(), [](char16_t a, wchar_t b) {
            return a == static_cast<char16_t>(b);
        })) << id;
    }
}

TEST(VQC_LOCALE_SUITE, TemplatesCarryTheStockGuiFontFace) {
    for (int index = 1; index <= 4; ++index) {
        DLGTEMPLATE* block = AllocDialogTemplate(index, 0);
        ASSERT_NE(block, nullptr);
        const std::size_t size = BuildDialogTemplate(FindDialogDesc(index), nullptr, 0);
        const DecodedTemplate t = DecodeTemplate(reinterpret_cast<const std::uint8_t*>(block), size);
        free(block);
        ASSERT_TRUE(t.ok);
        EXPECT_EQ(std::wstring(t.faceName.begin(), t.faceName.end()), StockGuiFontFace()) << index;
        EXPECT_EQ(t.pointSize, 8);
    }
}

TEST(VQC_LOCALE_SUITE, ConnectionPageIsARealDialogMatchingItsTable) {
    ExpectRealDialogMatchesTable(1, VQC_EXPECTED_LANGUAGE);
}

TEST(VQC_LOCALE_SUITE, ProxyPageIsARealDialogMatchingItsTable) {
    ExpectRealDialogMatchesTable(2, VQC_EXPECTED_LANGUAGE);
}

TEST(VQC_LOCALE_SUITE, OptionsPageIsARealDialogMatchingItsTable) {
    ExpectRealDialogMatchesTable(3, VQC_EXPECTED_LANGUAGE);
}

TEST(VQC_LOCALE_SUITE, ConnectionDetailsIsARealDialogMatchingItsTable) {
    ExpectRealDialogMatchesTable(4, VQC_EXPECTED_LANGUAGE);
}

TEST(VQC_LOCALE_SUITE, BrowseButtonWidthIsTheLanguagesOwn) {
    TestOwnerWindow owner;
    const HWND dialog = reinterpret_cast<HWND>(
        CreateTableDialog(GetModuleHandleW(nullptr), 3, owner.Get(), QuietDialogProc, 0, 0, nullptr, 0));
    ASSERT_NE(dialog, nullptr);
    RECT want{0, 0, VQC_EXPECTED_LANGUAGE == 2 ? 90 : 62, 14};
    MapDialogRect(dialog, &want);
    RECT got{};
    GetWindowRect(GetDlgItem(dialog, 1040), &got);
    EXPECT_EQ(got.right - got.left, want.right - want.left);
    DestroyWindow(dialog);
}
