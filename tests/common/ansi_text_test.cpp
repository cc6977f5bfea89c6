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
