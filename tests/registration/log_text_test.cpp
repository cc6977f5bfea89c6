#include "registration/log_text.h"

#include <gtest/gtest.h>

TEST(LogText, ChildPathJoinsWithABackslash) {
    EXPECT_EQ(RegistryChildPath("HKEY_CLASSES_ROOT", "AppID"), "HKEY_CLASSES_ROOT\\AppID");
}

TEST(LogText, NullNameIsWrittenAsDefault) {
    EXPECT_EQ(RegistryChildPath("\\REGISTRY\\Machine\\Software\\Classes\\AppID\\{x}", nullptr),
              "\\REGISTRY\\Machine\\Software\\Classes\\AppID\\{x}\\(Default)");
}

TEST(LogText, KeyCreateFailureLineHasItsExactFormat) {
    EXPECT_EQ(KeyCreateFailureLine("HKEY_CLASSES_ROOT\\AppID", 5, "Access denied.\r\n"),
              "Failed to create registry key HKEY_CLASSES_ROOT\\AppID Error 5 Access denied.\r\n");
}

TEST(LogText, ValueSetFailureLineQuotesTheData) {
    EXPECT_EQ(ValueSetFailureLine("K\\(Default)", "vqcprop", 1021, "text"),
              "Failed to set registry value K\\(Default) to \"vqcprop\" Error 1021 text");
}

TEST(LogText, ErrorCodesAreWrittenAsSignedDecimal) {
    EXPECT_EQ(KeyCreateFailureLine("K", static_cast<std::int32_t>(0x80070005), "x"),
              "Failed to create registry key K Error -2147024891 x");
}

TEST(LogText, EmptyErrorTextBecomesQuestionMarks) {
    EXPECT_EQ(ErrorTextOrPlaceholder(""), "??");
    EXPECT_EQ(ErrorTextOrPlaceholder("Access denied.\r\n"), "Access denied.\r\n");
}

TEST(LogText, TwoLinesHaveOneLineFeedBetweenAndNoneAtTheEnd) {
    EXPECT_EQ(LogFileContents({"first", "second"}), "first\nsecond");
}

TEST(LogText, OneLineEndsWithoutALineBreak) {
    EXPECT_EQ(LogFileContents({"only"}), "only");
    EXPECT_EQ(LogFileContents({}), "");
}
