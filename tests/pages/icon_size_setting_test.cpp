// "Shell Icon Size" read from the real key path under Wine. Each test gives the process
// its own HKEY_CURRENT_USER, so the values never reach the prefix's real user key.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "pages/icon_size_setting.h"
#include "tests/registration/registry_test_support.h"

namespace {

constexpr const char kWindowMetrics[] = "Control Panel\\Desktop\\WindowMetrics";

class ShellIconSize : public ::testing::Test {
protected:
    // The value as RegSetValueExA stores it, the size given as it stands.
    void SetRaw(DWORD type, const void* data, DWORD size) {
        HKEY key = nullptr;
        ASSERT_EQ(
            RegCreateKeyExA(HKEY_CURRENT_USER, kWindowMetrics, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            ERROR_SUCCESS);
        const UniqueRegKey owned(key);
        ASSERT_EQ(RegSetValueExA(key, "Shell Icon Size", 0, type, static_cast<const BYTE*>(data), size), ERROR_SUCCESS);
    }
    void SetText(const std::string& text, DWORD type = REG_SZ) {
        SetRaw(type, text.c_str(), static_cast<DWORD>(text.size() + 1));
    }

    test_support::PrivateCurrentUser root_{"shell-icon-size"};
};

}  // namespace

TEST_F(ShellIconSize, UserRootIsPrivateToTheTest) {
    SetText("48");
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(root_.Get(), kWindowMetrics, 0, KEY_READ, &key), ERROR_SUCCESS);
    RegCloseKey(key);
}

TEST_F(ShellIconSize, FortyEight) {
    SetText("48");
    EXPECT_EQ(ReadShellIconSize(), 48);
}

TEST_F(ShellIconSize, TwentyFour) {
    SetText("24");
    EXPECT_EQ(ReadShellIconSize(), 24);
}

TEST_F(ShellIconSize, ZeroGivesThirtyTwo) {
    SetText("0");
    EXPECT_EQ(ReadShellIconSize(), 32);
}

TEST_F(ShellIconSize, MinusFiveGivesThirtyTwo) {
    SetText("-5");
    EXPECT_EQ(ReadShellIconSize(), 32);
}

TEST_F(ShellIconSize, LettersGiveThirtyTwo) {
    SetText("abc");
    EXPECT_EQ(ReadShellIconSize(), 32);
}

TEST_F(ShellIconSize, BlankAndPlusSignBeforeTwenty) {
    SetText(" +20");
    EXPECT_EQ(ReadShellIconSize(), 20);
}

TEST_F(ShellIconSize, EightCharactersDoNotFitTheBuffer) {
    SetText("00000048");
    EXPECT_EQ(ReadShellIconSize(), 32);
}

TEST_F(ShellIconSize, SevenCharactersFitTheBuffer) {
    SetText("0000048");
    EXPECT_EQ(ReadShellIconSize(), 48);
}

TEST_F(ShellIconSize, DwordGivesThirtyTwo) {
    const DWORD value = 48;
    SetRaw(REG_DWORD, &value, sizeof(value));
    EXPECT_EQ(ReadShellIconSize(), 32);
}

TEST_F(ShellIconSize, EmptyStringGivesThirtyTwo) {
    SetText("");
    EXPECT_EQ(ReadShellIconSize(), 32);
}

TEST_F(ShellIconSize, EmptyValueOfNoBytesGivesThirtyTwo) {
    SetRaw(REG_SZ, "", 0);
    EXPECT_EQ(ReadShellIconSize(), 32);
}

TEST_F(ShellIconSize, ExpandStringCounts) {
    SetText("48", REG_EXPAND_SZ);
    EXPECT_EQ(ReadShellIconSize(), 48);
}

TEST_F(ShellIconSize, BinaryValueGivesThirtyTwo) {
    SetRaw(REG_BINARY, "48", 3);
    EXPECT_EQ(ReadShellIconSize(), 32);
}

TEST_F(ShellIconSize, MissingValueGivesThirtyTwo) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, kWindowMetrics, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(ReadShellIconSize(), 32);
}

TEST_F(ShellIconSize, MissingKeyGivesThirtyTwo) { EXPECT_EQ(ReadShellIconSize(), 32); }

TEST_F(ShellIconSize, StringWithoutNulIsReadWithOne) {
    // The ANSI query hands a stored string back with its terminator even when it was
    // stored without one (measured under Wine), so "48" stored in 2 bytes still counts.
    SetRaw(REG_SZ, "48", 2);
    EXPECT_EQ(ReadShellIconSize(), 48);
}
