#include "common/ansi_text.h"

#include <climits>

#include <gtest/gtest.h>

TEST(AnsiText, TrimRemovesWhiteSpaceFromBothEnds) { EXPECT_EQ(ansi_text::Trimmed(" \t\r\n bob \v\f"), "bob"); }

TEST(AnsiText, TrimKeepsInnerWhiteSpace) { EXPECT_EQ(ansi_text::Trimmed("  my host  "), "my host"); }

TEST(AnsiText, TrimOfOnlyWhiteSpaceIsEmpty) { EXPECT_EQ(ansi_text::Trimmed(" \t "), ""); }

TEST(AnsiText, TrimLeavesHighBytesAlone) { EXPECT_EQ(ansi_text::Trimmed("\xA0x\xA0"), "\xA0x\xA0"); }

TEST(AnsiText, AppendFormatAppendsToExistingText) {
    std::string out = "-h ";
    ansi_text::AppendFormat(out, "%s:%d", "broker", 3128);
    EXPECT_EQ(out, "-h broker:3128");
}

TEST(AnsiText, ParseDecimalFollowsAtoi) {
    EXPECT_EQ(ansi_text::ParseDecimal("4790"), 4790);
    EXPECT_EQ(ansi_text::ParseDecimal("  -12abc"), -12);
    EXPECT_EQ(ansi_text::ParseDecimal("+7"), 7);
    EXPECT_EQ(ansi_text::ParseDecimal("abc"), 0);
    EXPECT_EQ(ansi_text::ParseDecimal(""), 0);
    EXPECT_EQ(ansi_text::ParseDecimal("- 5"), 0);
}

TEST(AnsiText, ParseDecimalSaturatesOutOfRange) {
    EXPECT_EQ(ansi_text::ParseDecimal("99999999999"), INT_MAX);
    EXPECT_EQ(ansi_text::ParseDecimal("-99999999999"), INT_MIN);
    EXPECT_EQ(ansi_text::ParseDecimal("-2147483648"), INT_MIN);
    EXPECT_EQ(ansi_text::ParseDecimal("2147483647"), INT_MAX);
}

TEST(AnsiText, EqualsIgnoringCaseFoldsTheLettersAToZ) {
    EXPECT_TRUE(ansi_text::EqualsIgnoringCase("RegServer", "regserver"));
    EXPECT_TRUE(ansi_text::EqualsIgnoringCase("cache-PASSWORD", "Cache-password"));
    EXPECT_TRUE(ansi_text::EqualsIgnoringCase("", ""));
}

TEST(AnsiText, EqualsIgnoringCaseComparesOtherBytesAsTheyAre) {
    EXPECT_FALSE(ansi_text::EqualsIgnoringCase("\xC4", "\xE4"));  // A and a with diaeresis in code page 1252
    EXPECT_FALSE(ansi_text::EqualsIgnoringCase("@", "`"));        // 0x40 and 0x60 differ by the case bit alone
    EXPECT_FALSE(ansi_text::EqualsIgnoringCase("[", "{"));
}

TEST(AnsiText, EqualsIgnoringCaseNeedsTheSameLength) {
    EXPECT_FALSE(ansi_text::EqualsIgnoringCase("yes", "yes "));
    EXPECT_FALSE(ansi_text::EqualsIgnoringCase("Y", ""));
}
