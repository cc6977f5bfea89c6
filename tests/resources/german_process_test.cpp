// Texts in a German process (LC_ALL=de_DE.UTF-8).
#include <windows.h>

#include <cstring>

#include <gtest/gtest.h>

#include "real_dialog_check.h"
#include "resources/dialog_template.h"
#include "resources/local_string_cache.h"

TEST(GermanProcess, ConnectionTitleIsVerbindung) { EXPECT_STREQ(GetLocalString(21), "Verbindung"); }

TEST(GermanProcess, IdWithoutGermanTextGivesEnglish) { EXPECT_STREQ(GetLocalString(0), "Use &encryption"); }

TEST(GermanProcess, FilterListKeepsItsTrailingBlank) {
    ASSERT_EQ(GetACP(), 1252u);
    static const char kWant[] = "Ausf\xFChrbare und Icon-Dateien \0*.exe;*.dll;*.ico\0Alle Dateien\0*.*\0";
    const char* filter = GetLocalString(40);
    ASSERT_NE(filter, nullptr);
    EXPECT_EQ(std::memcmp(filter, kWant, sizeof(kWant)), 0);
}

TEST(GermanProcess, BrowseButtonIsNinetyDialogUnitsWide) {
    TestOwnerWindow owner;
    const HWND dialog = reinterpret_cast<HWND>(
        CreateTableDialog(GetModuleHandleW(nullptr), 3, owner.Get(), QuietDialogProc, 0, 0, nullptr, 0));
    ASSERT_NE(dialog, nullptr);
    RECT ninety{0, 0, 90, 14};
    MapDialogRect(dialog, &ninety);
    RECT got{};
    GetWindowRect(GetDlgItem(dialog, 1040), &got);
    EXPECT_EQ(got.right - got.left, ninety.right);
    wchar_t caption[64] = {};
    GetWindowTextW(GetDlgItem(dialog, 1040), caption, 64);
    EXPECT_STREQ(caption, L"&Nach Icon durchsuchen...");
    DestroyWindow(dialog);
}
